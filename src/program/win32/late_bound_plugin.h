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
  /// Error 5, with the reason and the way out, when the component cannot be created or when it
  /// belongs to another host folder than `hostFolder`. The siblings can be created by now.
  /// `files` are those that the siblings work on; they outlive the plugin.
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
