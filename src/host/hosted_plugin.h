// The plugin, as the stand-alone host sees it, wherever the plugin runs.
#pragma once

#include <chrono>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "base/host_value.h"
#include "host/complaint.h"
#include "platform/toolkit.h"

namespace rotacasts {
class ListCommands;
class ProfileData;
struct RemoteOperation;
}  // namespace rotacasts

namespace rotacasts::host {

/// The host's window that contains the plugin's, and the size that the plugin is told, in twips.
struct PluginArea {
  forms::WindowHandle window = 0;
  std::int32_t width = 0;
  std::int32_t height = 0;
};

/// Where the host shows the plugin's window.
class PluginSite {
 public:
  virtual ~PluginSite() = default;
  virtual PluginArea Area() const = 0;
  /// The host has loaded the plugin's window for this profile; 0 if it shows none.
  virtual void Shown(std::int32_t) {}
};

/// The plugin's operations for the host, as `clsPlugin` describes them. `data` is the profile data
/// array.
class HostedPlugin {
 public:
  virtual ~HostedPlugin() = default;

  virtual void LoadInterface(std::int32_t index, forms::WindowHandle parent,
                             const HostValue& data) = 0;
  virtual void HideInterface() = 0;
  virtual void UnLoadInterface() = 0;
  virtual void DisableProfile(std::int32_t index) = 0;
  /// Calls a remote operation. Returns its raw reply and the problems that the plugin reported.
  /// `value` is the last argument; HostValue::Missing leaves it out.
  struct Reply {
    std::string text;
    std::vector<std::string> problems;  // with the reason if something could not be stored
  };
  virtual Reply Remote(const RemoteOperation& operation, std::int32_t index, const HostValue& data,
                       const HostValue& value) = 0;

  /// Calls an operation on the list of messages that no remote administrator knows; `change` gets
  /// the profile data. Errors: 5 where the plugin has only the remote operations.
  using ListChange = std::function<std::string(ListCommands&, const ProfileData&)>;
  virtual Reply ChangeList(const ListChange&, std::int32_t, const HostValue&) {
    throw Complaint(
        "the plugin that runs here only adds, deletes and moves by one place; use \"add\", "
        "\"delete\", \"up\" and \"down\"");
  }

  /// The progress of a profile's broadcasts and the settings that they follow; nullopt if the
  /// plugin's state is not accessible.
  struct Progress {
    bool isStarted = false;
    bool isSwitchedOn = false;
    std::string interval;  // minutes, as in the settings window
    std::int32_t elapsedTicks = 0;
    std::int32_t nextMessage = 0;
    std::string problem = {};  // why its last tick failed; empty if it did not
    /// When the next message is due if the switch is on and a game is running; nullopt if the
    /// interval is no number.
    std::optional<std::chrono::steady_clock::time_point> due;
  };
  virtual std::optional<Progress> ProgressOf(std::int32_t) const { return std::nullopt; }
};

}  // namespace rotacasts::host
