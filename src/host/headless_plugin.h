// The plugin inside this program, on the toolkit without pixels: one of its own for each profile,
// so that each goes by its own switch and interval.
#pragma once

#include <chrono>
#include <functional>
#include <map>
#include <memory>

#include "forms/headless/headless_toolkit.h"
#include "host/host_profiles.h"
#include "host/hosted_plugin.h"
#include "host/troubles.h"

namespace rotacasts::host {

/// An area that just holds the settings window.
class HeadlessSite final : public PluginSite {
 public:
  PluginArea Area() const override;
};

class HeadlessPlugin : public HostedPlugin {
 public:
  /// `minute` is how long a minute of its timers lasts. What goes wrong with a profile is told to
  /// `troubles`, but for what a remote operation answers.
  HeadlessPlugin(HostProfiles& profiles, Troubles& troubles, std::chrono::nanoseconds minute);
  ~HeadlessPlugin() override;

  // The profiles' timers: when the next one is due, and running those that are.
  std::optional<headless::TimerLoop::Clock::time_point> NextDue() const;
  void RunDue();

  void LoadInterface(std::int32_t index, forms::WindowHandle parent,
                     const HostValue& data) override;
  void HideInterface() override;
  void UnLoadInterface() override;
  void DisableProfile(std::int32_t index) override;
  Reply Remote(const RemoteOperation& operation, std::int32_t index, const HostValue& data,
               const HostValue& value) override;
  std::optional<Progress> ProgressOf(std::int32_t index) const override;

 private:
  class Instance;

  Instance& At(std::int32_t index);

  HostProfiles& profiles_;
  Troubles& troubles_;
  const std::chrono::nanoseconds minute_;
  std::map<std::int32_t, std::unique_ptr<Instance>> instances_;
};

}  // namespace rotacasts::host
