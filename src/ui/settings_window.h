// The one settings window: made by whoever first touches it, made anew when it is gone.
#pragma once

#include <functional>
#include <memory>

#include "ui/frm_rt.h"

namespace rotacasts {

class SettingsWindow final : public WindowControls {
 public:
  /// `makeContext` is called each time a window is made.
  explicit SettingsWindow(std::function<SettingsWindowContext()> makeContext)
      : makeContext_(std::move(makeContext)) {}

  /// The loaded window; made and loaded first, hidden, where there is none or where its parent has
  /// destroyed it. Raises what the platform refuses.
  std::shared_ptr<frmRT> Get();
  /// The loaded window, or null.
  std::shared_ptr<frmRT> IfLoaded() const;
  /// Destroys the window, if there is one, and with it every timer element.
  void Unload();

  forms::ListBox& lstMessages() override { return Get()->lstMessages(); }
  forms::CheckBox& chkAuto() override { return Get()->chkAuto(); }
  forms::TextBox& txtInterval() override { return Get()->txtInterval(); }

 private:
  std::function<SettingsWindowContext()> makeContext_;
  std::shared_ptr<frmRT> window_;
};

}  // namespace rotacasts
