// The stand-alone host: profiles on disk, the plugin at work, and what a console asks of both.
#pragma once

#include <chrono>
#include <cstdint>
#include <map>
#include <ostream>
#include <string>
#include <vector>

#include "host/host_platform.h"
#include "host/profile_settings.h"
#include "platform/headless/headless_toolkit.h"
#include "plugin/cls_plugin.h"

namespace rotacasts::host {

struct HostOptions {
  std::string folder;  // the host folder, absolute, in the machine's spelling
  std::chrono::nanoseconds minute = std::chrono::minutes(1);  // how long a minute lasts
  std::string administrator = "console";  // who the remote commands come from, for the log
  bool sharedLog = false;                 // log them for the whole host, not for each profile
};

/// Plays the administration host for the plugin, in one process and without a window system. What
/// it has to say, message boxes included, goes to `out`. An index that no profile has raises
/// error 5.
class ServerHost {
 public:
  /// Makes what a host folder lacks (settings\config.ini, the profiles' settings folders), reads
  /// the profiles and says what is wrong with those that cannot be used. Error 76 without the
  /// folder.
  ServerHost(const HostOptions& options, std::ostream& out);

  const std::map<std::int32_t, ProfileSettings>& Profiles() const { return profiles_; }
  headless::TimerLoop& Timers() { return timers_; }

  /// Loads the window for every profile, in the order of their indexes, so that each is started.
  void LoadEveryProfile();
  /// Reads the profile's profile.ini anew and loads the window for it.
  void Show(std::int32_t index);
  void Hide() { plugin_.HideInterface(); }
  void Unload() { plugin_.UnLoadInterface(""); }
  void Disable(std::int32_t index);

  /// Passes a remote operation to the plugin, `data` as it stands; the raw reply. Error 5 for an
  /// operation that there is not.
  std::string Remote(std::int32_t index, const std::string& operation, const Variant& data);
  // The same for people: texts as they are read, positions that must exist, the outcome in words.
  void AddMessage(std::int32_t index, const std::string& text);
  void DeleteMessage(std::int32_t index, std::int32_t position);
  void MoveMessage(std::int32_t index, std::int32_t position, bool up);
  void SetOption(std::int32_t index, const char* key, const std::string& value);

  /// Prints the profile's messages with their positions, what each says now, and its options.
  void PrintMessages(std::int32_t index);
  /// Prints what every message of the profile would say at this moment. Touches no file and loads
  /// no window.
  void PrintPreview(std::int32_t index);
  /// Prints a line a profile: build, game, options, ticks counted, the next message.
  void PrintStatus();

 private:
  const ProfileSettings& Profile(std::int32_t index) const;
  /// The profile data array that the host hands to the plugin.
  Variant DataOf(const ProfileSettings& profile);
  std::string MessageFileOf(const ProfileSettings& profile) const;
  std::vector<std::string> MessagesOf(const ProfileSettings& profile) const;

  /// What is to be known of a profile's game server now.
  enum class Game { UnknownBuild, Unreachable, Idle, Running };
  Game GameOf(std::int32_t index);
  std::string SaysNow(std::int32_t index, Game game, const std::string& message);
  void PrintMessageTable(const ProfileSettings& profile);
  std::string NextMessageOf(const ProfileSettings& profile, Game game);
  std::vector<std::string> StatusRow(const ProfileSettings& profile);

  std::string RequireMessage(std::int32_t index, std::int32_t position);
  std::string StoredOption(const ProfileSettings& profile, const char* key) const;

  std::ostream& out_;
  const HostOptions options_;
  const std::string folder_;
  headless::TimerLoop timers_;
  headless::HeadlessToolkit toolkit_;
  HostPlatform platform_;
  std::map<std::int32_t, ProfileSettings> profiles_;
  std::map<std::int32_t, std::int32_t> handles_;  // process handle of each profile index
  PluginState state_;
  clsPlugin plugin_;
};

}  // namespace rotacasts::host
