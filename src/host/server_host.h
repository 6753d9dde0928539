// The stand-alone host: runs the plugin on the profiles and does what people ask of both.
#pragma once

#include <cstdint>
#include <ostream>
#include <set>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "host/host_options.h"
#include "host/hosted_plugin.h"
#include "host/message_list.h"
#include "host/status.h"

namespace rotacasts::host {

/// Errors: 5, listing the operations, if there is none of that name.
const RemoteOperation& RemoteOperationOf(std::string_view name);

/// Acts as the administration host for the plugin. Errors: 5 for an index that no profile has.
class ServerHost {
 public:
  /// Everything passed by reference must outlive it.
  ServerHost(HostProfiles& profiles, HostedPlugin& plugin, PluginSite& site, HostOptions options)
      : profiles_(profiles),
        preview_(profiles),
        plugin_(plugin),
        site_(site),
        options_(std::move(options)) {}

  HostProfiles& Profiles() { return profiles_; }
  Preview& Previews() { return preview_; }

  /// Loads the window for every profile, in the order of their indexes, which starts them. Returns
  /// their number.
  std::size_t LoadEveryProfile();
  /// Rereads the profile's profile.ini and loads the window for it.
  void Show(std::int32_t index);
  void Hide();
  void Unload();
  void Disable(std::int32_t index);
  /// Rereads every profile.ini: starts new profiles, stops removed ones, and reloads those that are
  /// running. Stopped profiles stay stopped.
  HostProfiles::Changes Reload();

  /// Passes a remote operation and `value`, unchanged, to the plugin, in the name of an
  /// administrator (the console's if empty).
  HostedPlugin::Reply Remote(std::int32_t index, const RemoteOperation& operation,
                             const HostValue& value, const std::string& administrator = {});
  // Remote operations for people: these check the values before anything is written, and return the
  // outcome in words. Errors: 5, with the reason, if nothing was changed.
  std::string AddMessage(std::int32_t index, const std::string& text,
                         const std::string& administrator = {});
  std::string DeleteMessage(std::int32_t index, std::int32_t position,
                            const std::string& administrator = {});
  std::string MoveMessage(std::int32_t index, std::int32_t position, bool up,
                          const std::string& administrator = {});
  /// Gives a message another text; says what looks unintended in it, as after an addition.
  std::string ChangeMessage(std::int32_t index, std::int32_t position, const std::string& text,
                            const std::string& administrator = {});
  /// Moves a message to the position `to`; behind the end this is the last one.
  std::string PlaceMessage(std::int32_t index, std::int32_t position, std::int32_t to,
                           const std::string& administrator = {});
  /// Adds messages before the one at the position, or at the end, in one write.
  std::string InsertMessages(std::int32_t index, std::int32_t position,
                             const std::vector<std::string>& texts,
                             const std::string& administrator = {});
  std::string SetSwitch(std::int32_t index, bool isOn, const std::string& administrator = {});
  /// Requires: 0 to 30 minutes.
  std::string SetInterval(std::int32_t index, std::int32_t minutes,
                          const std::string& administrator = {});

  /// What became of a text that was said.
  struct Said {
    std::string words;
    std::int64_t number;  // in the profile's latest texts
    SentText::Outcome outcome;
  };
  /// Says a text once, now, even if no game is running; a placeholder with its live text. Errors: 5
  /// or 57, with the reason, if nothing was said.
  Said Say(std::int32_t index, const std::string& text);

  MessageList MessagesOf(std::int32_t index) const;
  ProfileStatus StatusOf(std::int32_t index);
  /// Like StatusOf, with the game's state as the caller read it.
  ProfileStatus StatusOf(std::int32_t index, const Preview::Game& game) const;

  /// Whether all profiles share one administration log, so that it tells of every profile.
  bool IsLogShared() const { return options_.sharedLog; }
  /// The folder of the profile's administration log.
  std::string LogFolderOf(std::int32_t index) const;

 private:
  /// The progress of its broadcasts; nullopt if the plugin's state is not accessible.
  std::optional<HostedPlugin::Progress> ProgressOf(std::int32_t index) const;
  /// The profile data array for the plugin.
  HostValue DataOf(const ProfileSettings& profile, const std::string& administrator) const;
  void Load(const ProfileSettings& profile);
  /// Errors: 5, with what to do, if the profile is stopped.
  void RequireStarted(std::int32_t index) const;

  HostProfiles& profiles_;
  Preview preview_;
  HostedPlugin& plugin_;
  PluginSite& site_;
  const HostOptions options_;
  std::set<std::int32_t> started_;  // as far as the plugin was told
};

}  // namespace rotacasts::host
