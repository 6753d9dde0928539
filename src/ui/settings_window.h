// The one settings window: made by whoever first touches it, made again when it is gone.
#pragma once

#include <functional>
#include <memory>

#include "ui/frm_rt.h"

namespace rotacasts {

class SettingsWindow final : public SettingsView {
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

  std::shared_ptr<ShownMessages> Messages() override;
  bool IsLoaded() const override { return IfLoaded() != nullptr; }
  std::int16_t Switch() override { return Get()->chkAuto().Value(); }
  void SetSwitch(std::int16_t value) override { Get()->chkAuto().SetValue(value); }
  void RequireSwitchValue(std::int16_t value) const override {
    forms::CheckBox::RequireValue(value);
  }
  std::string Interval() override { return Get()->txtInterval().Text(); }
  void SetInterval(const std::string& text) override { Get()->txtInterval().SetText(text); }

 private:
  std::function<SettingsWindowContext()> makeContext_;
  std::shared_ptr<frmRT> window_;
};

}  // namespace rotacasts
