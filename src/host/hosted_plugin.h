// The plugin as the stand-alone host sees it, wherever the plugin runs.
#pragma once

#include <chrono>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "base/host_value.h"
#include "platform/toolkit.h"

namespace rotacasts {
struct RemoteOperation;
}

namespace rotacasts::host {

/// The host's window that the plugin's lies in, and the size that the plugin is told, in twips.
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
  /// The host has loaded the plugin's window for this profile; 0 when it shows none.
  virtual void Shown(std::int32_t) {}
};

/// What the host calls, as `clsPlugin` describes it. `data` is the profile data array.
class HostedPlugin {
 public:
  virtual ~HostedPlugin() = default;

  virtual void LoadInterface(std::int32_t index, forms::WindowHandle parent,
                             const HostValue& data) = 0;
  virtual void HideInterface() = 0;
  virtual void UnLoadInterface() = 0;
  virtual void DisableProfile(std::int32_t index) = 0;
  /// A remote operation's raw reply, and what the plugin had to report meanwhile, in words. `value`
  /// is the operation's last argument; a missing one is left out.
  struct Reply {
    std::string text;  // empty when nothing could be stored
    std::vector<std::string> problems;
    bool isStored = true;  // false: what it was to change is as before, for a reason among problems
  };
  virtual Reply Remote(const RemoteOperation& operation, std::int32_t index, const HostValue& data,
                       const HostValue& value) = 0;

  /// How far a profile's broadcasts have come, and what they go by. The plugin alone knows: nothing
  /// is answered where its insides are not at hand.
  struct Progress {
    bool isStarted = false;
    bool isSwitchedOn = false;
    std::string interval;  // minutes, as the settings window has it
    std::int32_t elapsedTicks = 0;
    std::int32_t nextMessage = 0;
    std::chrono::steady_clock::time_point nextTick = {};
  };
  virtual std::optional<Progress> ProgressOf(std::int32_t) const { return std::nullopt; }
};

}  // namespace rotacasts::host
