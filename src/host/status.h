// What is to be known of the profiles at a moment.
#pragma once

#include <optional>
#include <string>

#include "host/hosted_plugin.h"
#include "host/preview.h"

namespace rotacasts::host {

struct ProfileStatus {
  ProfileSettings profile;
  Preview::Game game;
  std::optional<HostedPlugin::Progress> progress;  // nothing of a plugin that is not looked into
  bool isStopped = false;
  std::string problem;  // why the message file cannot be read; what follows is then empty

  // What the broadcasts go by; for a stopped profile, what the message file holds.
  bool isSwitchedOn = false;
  std::string interval;
  bool isFileAhead = false;  // the file holds another switch or interval, until "reload"
  // The next message, unless there is none or the plugin is not looked into.
  std::optional<std::size_t> position;
  std::string message;
  Preview::Text text;
};

/// Reads the profile's message file once, and its game server.
ProfileStatus ReadStatus(HostProfiles& profiles, Preview& preview, const ProfileSettings& profile,
                         const std::optional<HostedPlugin::Progress>& progress);

}  // namespace rotacasts::host
