// The plugin as the component tvxRT.clsPlugin, called by member name like any host calls it.
#pragma once

#include <chrono>

#include "com/late_bound.h"
#include "host/hosted_plugin.h"
#include "siblings/ini_files.h"

namespace rotacasts::host {

class LateBoundPlugin final : public HostedPlugin {
 public:
  /// Error 5, with the way out, when the component is not registered or when the registered one
  /// belongs to another host folder than `hostFolder`. The siblings can be created by now.
  /// `files` are those that the siblings work on; they outlive the plugin.
  LateBoundPlugin(const std::string& hostFolder, IniFiles& files);
  ~LateBoundPlugin() override;

  /// How long a minute lasts of the timers that are set from now on. Error 5 for a plugin that
  /// knows no such thing.
  void ShortenMinute(std::chrono::nanoseconds minute);

  void LoadInterface(std::int32_t index, forms::WindowHandle parent,
                     const HostValue& data) override;
  void HideInterface() override;
  void UnLoadInterface() override;
  void DisableProfile(std::int32_t index) override;
  Reply Remote(const RemoteOperation& operation, std::int32_t index, const HostValue& data,
               const HostValue& value) override;

 private:
  win32::LateBound object_;
  IniFiles& files_;
};

}  // namespace rotacasts::host
