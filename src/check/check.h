// Checks a host folder for what its administrator probably did not intend.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "check/file_check.h"
#include "host/profile_settings.h"

namespace rotacasts::host {

/// The result of a check. Each warning is a line that names the file, the line in it if there is
/// one, and what to do.
struct Findings {
  std::vector<std::string> warnings;
  std::size_t profiles = 0;  // the usable ones
};

/// Checks every file and the game servers as they are now. Writes nothing but two empty files for a
/// moment, to see what the file system can do.
Findings CheckHostFolder(const std::string& hostFolder);

/// Converts every INI file that was saved as UTF-8, and keeps a copy. Returns a line for each,
/// including those that could not be converted.
std::vector<std::string> ConvertHostFolder(const std::string& hostFolder);

/// Checks a profile's message file.
void CheckMessages(FileCheck& file);

/// Checks what a usable profile names: its programs.
void CheckProfile(const std::string& hostFolder, const ProfileSettings& profile,
                  std::vector<std::string>& warnings);

/// Warns about what the host uses, in its folder and in these profiles', and a service's user may
/// not.
void CheckAccess(const std::string& hostFolder, const std::vector<ProfileSettings>& profiles,
                 std::vector<std::string>& warnings);

}  // namespace rotacasts::host
