// What other programs saved while the host replaced the same file, kept under another name.
#pragma once

#include <string>
#include <vector>

namespace rotacasts::host {

/// A line for each such file in a settings folder, with what to do. Empty if the folder cannot be
/// read.
std::vector<std::string> TellOfKeptFiles(const std::string& folder);

}  // namespace rotacasts::host
