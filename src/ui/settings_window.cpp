#include "ui/settings_window.h"

#include <utility>

#include "ui/shown_profile.h"

namespace rotacasts {
namespace {

/// The window as a remote command on a profile reaches it.
class RemoteView final : public ShownSettings {
 public:
  template <class... Arguments>
  explicit RemoteView(const Arguments&... arguments) : shown_(arguments...) {}

  void LoadMessages() override {
    shown_.If([&](frmRT& window) { window.GetHandlers().LoadMessages(shown_); });
  }
  void LoadMessagesAgain() override {
    if (shown_.WasFilled()) LoadMessages();
  }
  void SetSwitch(std::int16_t value) override {
    forms::CheckBox::RequireValue(value);
    shown_.If([&](frmRT& window) { window.chkAuto().SetValue(value); });
  }
  void SetInterval(const std::string& text) override {
    shown_.If([&](frmRT& window) { window.txtInterval().SetText(text); });
  }

 private:
  const ShownProfile shown_;
};

}  // namespace

std::shared_ptr<frmRT> SettingsWindow::IfLoaded() const {
  return window_ && window_->IsLoaded() ? window_ : nullptr;
}

std::shared_ptr<frmRT> SettingsWindow::Get() {
  if (auto loaded = IfLoaded()) return loaded;
  Unload();
  // In place before it loads, so that whatever the load event touches finds this very window.
  window_ = std::make_shared<frmRT>(context_);
  std::shared_ptr<frmRT> made = window_;
  made->Timers().onTimer = onTick;
  made->Load();
  return made;
}

std::unique_ptr<ShownSettings> SettingsWindow::Showing(std::int32_t profile) {
  return std::make_unique<RemoteView>(*this, context_.tables, profile);
}

void SettingsWindow::Unload() {
  if (const auto last = std::exchange(window_, nullptr)) last->Unload();
}

}  // namespace rotacasts
