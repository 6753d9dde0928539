// Looking over a profile's message file for what would surprise its administrator.
#pragma once

#include <string>
#include <vector>

namespace rotacasts::host {

/// A warning a line, each naming the message or key and what is wrong with it; none for a file that
/// is in order or missing. Raises what keeps the file from being read.
std::vector<std::string> CheckMessageFile(const std::string& path);

}  // namespace rotacasts::host
