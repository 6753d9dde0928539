// The plugin inside this program, on the toolkit without pixels.
#pragma once

#include <chrono>
#include <ostream>

#include "forms/headless/headless_toolkit.h"
#include "host/components/host_platform.h"
#include "host/hosted_plugin.h"
#include "plugin/cls_plugin.h"

namespace rotacasts::host {

/// An area that just holds the settings window.
class HeadlessSite final : public PluginSite {
 public:
  PluginArea Area() const override;
};

class HeadlessPlugin final : public HostedPlugin {
 public:
  /// `minute` is how long a minute of its timers lasts; message boxes go to `out`.
  HeadlessPlugin(HostPlatform& platform, std::chrono::nanoseconds minute, std::ostream& out);

  headless::TimerLoop& Timers() { return timers_; }

  void LoadInterface(std::int32_t index, forms::WindowHandle parent, const Variant& data) override;
  void HideInterface() override;
  void UnLoadInterface() override;
  void DisableProfile(std::int32_t index) override;
  std::string Remote(RemoteOperation operation, std::int32_t index, const Variant& data,
                     const Variant& value) override;
  std::optional<Progress> ProgressOf(std::int32_t index) const override;
  std::optional<Window> ShownWindow() const override;

 private:
  headless::TimerLoop timers_;
  headless::HeadlessToolkit toolkit_;
  mutable PluginState state_;  // its tables make an element when it is looked at
  clsPlugin plugin_;
};

}  // namespace rotacasts::host
