// Looking over a host folder for what would surprise its administrator.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "check/checked_file.h"

namespace rotacasts::host {

/// What was found: a line a warning, which names the file, the line in it where there is one, and
/// the way out.
struct Findings {
  std::vector<std::string> warnings;
  std::size_t profiles = 0;  // that can be used
};

/// Looks at every file, and at the game servers as they are now; writes nothing.
Findings CheckHostFolder(const std::string& hostFolder);

/// Converts every INI file that was saved as UTF-8 and keeps a copy; a line for each, also for one
/// that could not be converted.
std::vector<std::string> ConvertHostFolder(const std::string& hostFolder);

/// Looks at a profile's message file.
void CheckMessages(CheckedFile& file);

}  // namespace rotacasts::host
