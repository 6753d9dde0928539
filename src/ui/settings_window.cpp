#include "ui/settings_window.h"

namespace rotacasts {

std::shared_ptr<frmRT> SettingsWindow::IfLoaded() const {
  return window_ && window_->IsLoaded() ? window_ : nullptr;
}

std::shared_ptr<frmRT> SettingsWindow::Get() {
  if (auto loaded = IfLoaded()) return loaded;
  // In place before it loads, so that whatever the load event touches finds this very window.
  window_ = std::make_shared<frmRT>(makeContext_());
  std::shared_ptr<frmRT> made = window_;
  made->Load();
  return made;
}

std::shared_ptr<ShownMessages> SettingsWindow::Messages() {
  const std::shared_ptr<frmRT> window = Get();
  return {window, &window->Messages()};  // the window lives as long as the result
}

void SettingsWindow::Unload() {
  if (const auto last = std::exchange(window_, nullptr)) last->Unload();
}

}  // namespace rotacasts
