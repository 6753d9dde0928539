// The profiles of a host folder, while a host uses them.
#pragma once

#include <cstdint>
#include <map>
#include <ostream>
#include <string>
#include <vector>

#include "base/host_value.h"
#include "host/profile_settings.h"
#include "siblings/host_platform.h"

namespace rotacasts::host {

/// The contents of the profiles' files, kept until they are reread, and the components for them.
/// Errors: 5 for an index that no profile has.
class HostProfiles {
 public:
  /// Reads the profiles; later says on `out` what is wrong with profiles, that a server is away,
  /// and that it is back. `hostFolder` is absolute, in the machine's spelling. Error 76 without the
  /// folder.
  HostProfiles(const std::string& hostFolder, std::ostream& out);

  /// Says what is wrong with the profiles that could not be used when they were first read. Returns
  /// false if there are any.
  bool PrintSkipped() const;

  /// Creates what the plugin needs and the host folder lacks: settings\config.ini and the profiles'
  /// settings folders. A profile whose folder cannot be created is dropped, with a message.
  void MakeWhatIsMissing();

  /// The host's components. Everything created from them shares what they serve.
  HostPlatform& Components() { return platform_; }
  const std::string& Folder() const { return folder_; }

  /// By index.
  const std::map<std::int32_t, ProfileSettings>& All() const { return profiles_; }
  const ProfileSettings& At(std::int32_t index) const;
  /// Whether the profile's server is away, as the plugin's reads have found it.
  bool IsServerAway(std::int32_t index) { return platform_.Processes().IsAway(handles_.at(index)); }
  /// The elements of the profile data array that describe the profile.
  HostValue::Array DataOf(const ProfileSettings& profile) const;

  /// Rereads one profile.ini.
  const ProfileSettings& Reread(std::int32_t index);
  /// Rereads every profile. One that can no longer be used is reported and keeps its old settings.
  struct Changes {
    std::vector<std::int32_t> added;
    std::vector<std::int32_t> changed;
    std::vector<std::int32_t> removed;
  };
  Changes RereadAll();

  /// Writes a line to the error log for the host itself. Ignores errors.
  void Record(std::string procedure, const std::string& words) const;

 private:
  /// Also clears up there, and prints what that has kept.
  void MakeSettingsFolder(const std::string& settings) const;
  /// Returns false, and prints the reason, if it cannot be created.
  bool MakeSettingsFolderOf(const ProfileSettings& profile);
  void Use(ProfileSettings profile);
  bool IsStillDescribed(const ProfileSettings& profile) const;
  void TellOfServer(ServerNews news, const std::string& words) const;

  std::ostream& out_;
  const std::string folder_;
  HostPlatform platform_;
  std::map<std::int32_t, ProfileSettings> profiles_;
  std::vector<LoadedProfiles::Problem> skipped_;
  std::map<std::int32_t, std::int32_t> handles_;  // process handle of each profile index
};

}  // namespace rotacasts::host
