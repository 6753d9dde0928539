// The stand-alone host: the plugin at work on the profiles, and what a console asks of both.
#pragma once

#include <cstdint>
#include <ostream>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "host/host_options.h"
#include "host/hosted_plugin.h"
#include "host/profile_watch.h"

namespace rotacasts::host {

/// Plays the administration host for the plugin. What it has to say goes to `out`. An index that
/// no profile has raises error 5.
class ServerHost {
 public:
  /// All that is referred to outlives the host.
  ServerHost(ProfileWatch& watch, HostedPlugin& plugin, PluginSite& site, HostOptions options,
             std::ostream& out)
      : watch_(watch), plugin_(plugin), site_(site), options_(std::move(options)), out_(out) {}

  /// Loads the window for every profile, in the order of their indexes, so that each is started;
  /// their number.
  std::size_t LoadEveryProfile();
  /// Reads the profile's profile.ini anew and loads the window for it.
  void Show(std::int32_t index);
  void Hide();
  void Unload();
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
  void PrintMessages(std::int32_t index) { watch_.PrintMessages(index); }
  /// Prints a line a profile: whether it is stopped, the game's state, its options, the ticks
  /// counted, the next message and what that says now.
  void PrintStatus();

 private:
  /// The profile data array that the host hands to the plugin.
  Variant DataOf(const ProfileSettings& profile) const;
  void Load(const ProfileSettings& profile);
  std::string Remote(std::int32_t index, RemoteOperation operation, const Variant& value);
  std::string RequireMessage(std::int32_t index, std::int32_t position);
  std::string MessageAt(const ProfileSettings& profile, ProfileWatch::Game game,
                        std::int32_t position);
  std::vector<std::string> StatusRow(const ProfileSettings& profile);

  ProfileWatch& watch_;
  HostedPlugin& plugin_;
  PluginSite& site_;
  const HostOptions options_;
  std::ostream& out_;
  std::set<std::int32_t> started_;  // what has been asked of the plugin
};

}  // namespace rotacasts::host
