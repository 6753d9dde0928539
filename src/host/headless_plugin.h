// The plugin inside this program, without a screen. Each profile has a separate instance, so that
// each follows its own switch and interval.
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

/// An area of exactly the settings window's size.
class HeadlessSite final : public PluginSite {
 public:
  PluginArea Area() const override;
};

class HeadlessPlugin : public HostedPlugin {
 public:
  /// `minute` is the length of a minute for the timers. Errors of a profile go to `troubles`,
  /// except during a remote operation, which answers them. Both references must outlive it.
  HeadlessPlugin(HostProfiles& profiles, Troubles& troubles, std::chrono::nanoseconds minute);
  ~HeadlessPlugin() override;

  // When the next timer is due; runs those that are due.
  std::optional<headless::TimerLoop::Clock::time_point> NextDue() const;
  void RunDue();

  void LoadInterface(std::int32_t index, forms::WindowHandle parent,
                     const HostValue& data) override;
  void HideInterface() override;
  void UnLoadInterface() override;
  void DisableProfile(std::int32_t index) override;
  Reply Remote(const RemoteOperation& operation, std::int32_t index, const HostValue& data,
               const HostValue& value) override;
  Reply ChangeList(const ListChange& change, std::int32_t index, const HostValue& data) override;
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
