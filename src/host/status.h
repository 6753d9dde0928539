// The state of a profile at a moment.
#pragma once

#include <chrono>
#include <cstddef>
#include <optional>
#include <string>

#include "host/hosted_plugin.h"
#include "host/preview.h"

namespace rotacasts::host {

struct ProfileStatus {
  ProfileSettings profile;
  Preview::Game game;
  std::optional<HostedPlugin::Progress> progress;  // nullopt if not accessible
  bool isStopped = false;
  std::string problem;  // why the message file cannot be read; what it says is then empty

  /// Why its texts fail; empty if they do not, and while it is stopped or switched off.
  std::string failing;

  // The settings that the broadcasts follow; for a stopped profile, those of the message file.
  bool isSwitchedOn = false;
  std::string interval;
  bool isFileAhead = false;  // the file has another switch or interval, until "reload"

  std::size_t messages = 0;  // their number
  // The next message, unless there is none or the plugin's state is not accessible.
  std::optional<std::size_t> position;
  std::string message;
  /// When it is due; nullopt while the profile says nothing.
  std::optional<std::chrono::steady_clock::time_point> due;
};

/// Reads the profile's message file. `chatFailure` is why its latest text failed, if it did.
ProfileStatus ReadStatus(const HostProfiles& profiles, const ProfileSettings& profile,
                         const Preview::Game& game,
                         const std::optional<HostedPlugin::Progress>& progress,
                         const std::string& chatFailure);

}  // namespace rotacasts::host
