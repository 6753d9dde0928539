// The profiles of a host folder, as their profile.ini files describe them.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "siblings/file_layer.h"

namespace rotacasts::host {

/// The highest UDP port.
inline constexpr std::int32_t kHighestPort = 65535;

/// One `profiles/<folder>/profile.ini`, section "Profile".
struct ProfileSettings {
  std::int32_t index = 0;   // 1 to 32767
  std::string folder;       // below `profiles`
  std::string gameCode;     // one that a game build has
  std::string process;      // process id or program name
  std::int32_t target = 0;  // UDP port of the game server's chat on 127.0.0.1; 0 if Say replaces it
  std::string say;          // a program for the messages, and its arguments; empty to use Target

  bool operator==(const ProfileSettings&) const = default;
  /// The profile's name in errors and listings.
  std::string Label() const { return "profile " + std::to_string(index) + " (" + folder + ")"; }
};

/// The usable profiles by index, and the problem of each other one or of their folder.
struct LoadedProfiles {
  struct Problem {
    std::string folder;  // the profile's, empty for the one of all profiles
    std::string words;   // a line that names the file and what to do
  };
  std::vector<ProfileSettings> profiles;
  std::vector<Problem> problems;
};

LoadedProfiles LoadProfiles(const std::string& hostFolder);

/// Reads one profile. Errors: 5, naming the file and what to do, for invalid contents.
ProfileSettings ReadProfile(const std::string& hostFolder, const std::string& folder);
ProfileSettings ReadProfile(const std::string& hostFolder, const std::string& folder,
                            FileLayer& files);

/// The place of a key in the profile's profile.ini, as "file:line".
std::string PlaceInProfile(const std::string& hostFolder, const std::string& folder,
                           const std::string& key);

/// Why the profile's folder cannot be entered, with what to do; empty if it can, and for what is no
/// folder.
std::string WhyClosed(const std::string& hostFolder, const std::string& folder);

/// Whether the folder has a profile.ini, usable or not.
bool HasProfileFile(const std::string& hostFolder, const std::string& folder);

}  // namespace rotacasts::host
