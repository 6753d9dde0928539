#include "host/linux/headless_plugin.h"

#include "host/terminal.h"
#include "ui/layout.h"

namespace rotacasts::host {

HeadlessPlugin::HeadlessPlugin(HostPlatform& platform, std::chrono::nanoseconds minute,
                               std::ostream& out)
    : timers_(minute), toolkit_(timers_), state_(platform.Bundle(toolkit_)), plugin_(state_) {
  toolkit_.onMessageBox = [&out](const std::string& text, const std::string& title) {
    PrintBox(out, text, title);
  };
}

PluginArea HeadlessSite::Area() const {
  // What the settings window needs, and 28 pixels for the host's own heading.
  return {1, layout::kClientWidth, layout::kClientHeight + 28 * 15};
}

void HeadlessPlugin::LoadInterface(std::int32_t index, forms::WindowHandle parent,
                                   const Variant& data) {
  plugin_.LoadInterface(index, parent, data);
}

void HeadlessPlugin::HideInterface() {
  plugin_.HideInterface();
}

void HeadlessPlugin::UnLoadInterface() {
  plugin_.UnLoadInterface("");
}

void HeadlessPlugin::DisableProfile(std::int32_t index) {
  plugin_.DisableProfile(index);
}

std::string HeadlessPlugin::Remote(RemoteOperation operation, std::int32_t index,
                                   const Variant& data, const Variant& value) {
  using Call = std::string (clsPlugin::*)(std::int32_t, const Variant&, const Variant&);
  static constexpr Call kCalls[] = {
      &clsPlugin::GetMessagesRem,    &clsPlugin::AddMessageRem,      &clsPlugin::EnableRTRem,
      &clsPlugin::ChangeIntervalRem, &clsPlugin::MoveMessageDownRem, &clsPlugin::MoveMessageUpRem,
      &clsPlugin::DeleteMessageRem,
  };
  static_assert(std::size(kCalls) == std::size(kRemoteOperations));
  return (plugin_.*kCalls[static_cast<std::size_t>(operation)])(index, data, value);
}

std::optional<HostedPlugin::Progress> HeadlessPlugin::ProgressOf(std::int32_t index) const {
  const auto window = state_.window.IfLoaded();
  if (!window || !window->Timers().Elements().contains(static_cast<std::int16_t>(index))) {
    return Progress();
  }
  return Progress{true, state_.tables.ElapsedTicks(index), state_.tables.NextMessage(index)};
}

std::optional<HostedPlugin::Window> HeadlessPlugin::ShownWindow() const {
  const auto window = state_.window.IfLoaded();
  if (!window) return std::nullopt;
  return Window{state_.tables.currentWindowProfile, window->chkAuto().Value() == 1,
                window->txtInterval().Text()};
}

}  // namespace rotacasts::host
