// The profiles of a host folder as the host itself sees them: their settings and message files, the
// state of their game servers, what every message would say now.
#pragma once

#include <cstdint>
#include <map>
#include <ostream>
#include <string>
#include <vector>

#include "forms/headless/headless_toolkit.h"
#include "host/components/host_platform.h"
#include "host/profile_settings.h"
#include "plugin/plugin_state.h"

namespace rotacasts::host {

/// Reads with the plugin's own readers, in a state of its own that never loads a window, so it
/// needs no plugin at work. Writes nothing below the host folder, but for MakeWhatIsMissing: what
/// it has to say, errors too, goes to `out`. An index that no profile has raises error 5.
class ProfileWatch {
 public:
  /// Reads the profiles and says what is wrong with those that cannot be used. `hostFolder` is
  /// absolute, in the machine's spelling. Error 76 without the folder.
  ProfileWatch(const std::string& hostFolder, std::ostream& out);

  /// Makes what the plugin needs and the host folder lacks: settings\config.ini and the profiles'
  /// settings folders. A profile whose folder cannot be made is dropped, and the reason said.
  void MakeWhatIsMissing();

  /// The host's components; what they serve is shared by everything that is made from them.
  HostPlatform& Components() { return platform_; }

  const std::map<std::int32_t, ProfileSettings>& Profiles() const { return profiles_; }
  const ProfileSettings& Profile(std::int32_t index) const;
  /// Reads the profile's profile.ini anew.
  const ProfileSettings& ReadAnew(std::int32_t index);
  /// The elements of the profile data array that describe the profile.
  Variant::Array DataOf(const ProfileSettings& profile) const;

  std::vector<std::string> MessagesOf(const ProfileSettings& profile) const;
  /// Error 5 unless the keys of the messages are 1 to n: a remote operation takes a position for a
  /// key less one, and would act on another message than the one named.
  void RequireNumbering(const ProfileSettings& profile) const;
  /// The value of an option as the message file holds it; empty when it does not.
  std::string OptionOf(const ProfileSettings& profile, const char* key) const;

  /// What is to be known of a profile's game server now.
  enum class Game { Unreachable, Idle, Running };
  Game GameOf(std::int32_t index);
  /// What a message says in this game at this moment, or in parentheses why it says nothing.
  std::string SaysNow(std::int32_t index, Game game, const std::string& message);

  /// Prints the profile's messages with their positions, what each says now, and its options.
  void PrintMessages(std::int32_t index);
  /// Prints what every message of the profile would say at this moment.
  void PrintPreview(std::int32_t index);

 private:
  std::string MessageFileOf(const ProfileSettings& profile) const;
  void PrintMessageTable(const ProfileSettings& profile);

  std::ostream& out_;
  const std::string folder_;
  headless::TimerLoop timers_;
  headless::HeadlessToolkit toolkit_;
  HostPlatform platform_;
  const std::unique_ptr<ComponentFactory> components_;  // the host's, without a log
  PluginState state_;
  std::map<std::int32_t, ProfileSettings> profiles_;
  std::map<std::int32_t, std::int32_t> handles_;  // process handle of each profile index
};

}  // namespace rotacasts::host
