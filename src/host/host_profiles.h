// The profiles of a host folder, in use by a host.
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

/// What the profiles' files describe, kept until it is read again, and the components that serve
/// them. An index that no profile has raises error 5.
class HostProfiles {
 public:
  /// Reads the profiles and says on `out` what is wrong with those that cannot be used.
  /// `hostFolder` is absolute, in the machine's spelling. Error 76 without the folder.
  HostProfiles(const std::string& hostFolder, std::ostream& out);

  /// Makes what the plugin needs and the host folder lacks: settings\config.ini and the profiles'
  /// settings folders. A profile whose folder cannot be made is dropped, and the reason said.
  void MakeWhatIsMissing();

  /// The host's components; what they serve is shared by everything that is made from them.
  HostPlatform& Components() { return platform_; }
  const std::string& Folder() const { return folder_; }

  /// By index.
  const std::map<std::int32_t, ProfileSettings>& All() const { return profiles_; }
  const ProfileSettings& At(std::int32_t index) const;
  /// The elements of the profile data array that describe the profile.
  HostValue::Array DataOf(const ProfileSettings& profile) const;

  /// Reads one profile.ini again.
  const ProfileSettings& ReadAnew(std::int32_t index);
  /// Reads all of them again, and says what cannot be used: a profile that was usable so far stays
  /// as it was.
  struct Changes {
    std::vector<std::int32_t> added;
    std::vector<std::int32_t> changed;
    std::vector<std::int32_t> removed;
  };
  Changes ReadAllAnew();

  /// Puts a line of the host's own into the error log; a log that cannot be written is no error.
  void Record(std::string procedure, const std::string& words) const;

 private:
  /// False, and the reason said, when it cannot be made.
  bool MakeSettingsFolderOf(const ProfileSettings& profile);
  void Use(ProfileSettings profile);
  bool IsStillDescribed(const ProfileSettings& profile) const;

  std::ostream& out_;
  const std::string folder_;
  HostPlatform platform_;
  std::map<std::int32_t, ProfileSettings> profiles_;
  std::map<std::int32_t, std::int32_t> handles_;  // process handle of each profile index
};

}  // namespace rotacasts::host
