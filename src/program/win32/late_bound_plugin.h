// The plugin as the component tvxRT.clsPlugin, called by member name as any host does.
#pragma once

#include <chrono>

#include "com/late_bound.h"
#include "host/hosted_plugin.h"
#include "siblings/ini_files.h"

namespace rotacasts::host {

/// Each component call of the plugin reads and writes the disk at once. An error box runs a message
/// loop in which anything can be called, and the system's file-system object sees only the disk.
/// The order of the plugin's writes keeps every text.
class LateBoundPlugin final : public HostedPlugin {
 public:
  /// Creates the plugin. Requires: the siblings are registered. Errors: 5, with what to do, if the
  /// component is not registered or belongs to another folder than `hostFolder`. `files`, which the
  /// siblings use too, must outlive the plugin.
  LateBoundPlugin(const std::string& hostFolder, IniFiles& files);
  ~LateBoundPlugin() override;

  /// Sets the length of a minute for timers set from now on. Errors: 5 if the plugin does not
  /// support it.
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
