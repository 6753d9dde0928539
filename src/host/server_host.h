// The stand-alone host: the plugin at work on the profiles, and what people ask of both.
#pragma once

#include <cstdint>
#include <ostream>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "host/host_options.h"
#include "host/hosted_plugin.h"
#include "host/message_list.h"
#include "host/status.h"

namespace rotacasts::host {

/// Plays the administration host for the plugin. An index that no profile has raises error 5.
class ServerHost {
 public:
  /// All that is referred to outlives the host.
  ServerHost(HostProfiles& profiles, HostedPlugin& plugin, PluginSite& site, HostOptions options)
      : profiles_(profiles),
        preview_(profiles),
        plugin_(plugin),
        site_(site),
        options_(std::move(options)) {}

  HostProfiles& Profiles() { return profiles_; }
  Preview& Previews() { return preview_; }

  /// Loads the window for every profile, in the order of their indexes, so that each is started;
  /// their number.
  std::size_t LoadEveryProfile();
  /// Reads the profile's profile.ini again and loads the window for it.
  void Show(std::int32_t index);
  void Hide();
  void Unload();
  void Disable(std::int32_t index);
  /// Reads every profile.ini again: starts what is new, stops what is gone, and lets every profile
  /// that is started go by its files as they are now. A profile that was stopped stays so.
  HostProfiles::Changes Reload();

  /// Passes a remote operation to the plugin, `value` as it stands, in the name of an
  /// administrator; no name: the console's.
  HostedPlugin::Reply Remote(std::int32_t index, std::string_view operation, const HostValue& value,
                             const std::string& administrator = {});
  // The same for people: values that are checked before anything is written, and the outcome in
  // words. Error 5 with the reason when nothing has been changed.
  std::string AddMessage(std::int32_t index, const std::string& text,
                         const std::string& administrator = {});
  std::string DeleteMessage(std::int32_t index, std::int32_t position,
                            const std::string& administrator = {});
  std::string MoveMessage(std::int32_t index, std::int32_t position, bool up,
                          const std::string& administrator = {});
  std::string SetSwitch(std::int32_t index, bool isOn, const std::string& administrator = {});
  /// 0 to 30 minutes.
  std::string SetInterval(std::int32_t index, std::int32_t minutes,
                          const std::string& administrator = {});

  /// Says a text now, once, whether a game is running or not; a placeholder with its live text. The
  /// outcome in words; error 5 or 57 with the reason when nothing was said.
  std::string Say(std::int32_t index, const std::string& text);

  MessageList MessagesOf(std::int32_t index) const;
  ProfileStatus StatusOf(std::int32_t index);
  /// How far its broadcasts have come; nothing of a plugin that is not looked into.
  std::optional<HostedPlugin::Progress> ProgressOf(std::int32_t index) const;

 private:
  /// The profile data array that the host hands to the plugin.
  HostValue DataOf(const ProfileSettings& profile, const std::string& administrator) const;
  void Load(const ProfileSettings& profile);
  /// Error 5, with the way out, for a profile that is stopped.
  void RequireStarted(std::int32_t index) const;

  HostProfiles& profiles_;
  Preview preview_;
  HostedPlugin& plugin_;
  PluginSite& site_;
  const HostOptions options_;
  std::set<std::int32_t> started_;  // what has been asked of the plugin
};

}  // namespace rotacasts::host
