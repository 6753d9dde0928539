// The form toolkit of standard Windows controls.
#pragma once

#include "com/windows_api.h"
#include "forms/form.h"

namespace rotacasts::win32 {

class Win32Toolkit final : public forms::Toolkit {
 public:
  /// `module` is what the window classes are registered for: the DLL's, so that they go with it.
  /// `minute` is how long a minute of a timer lasts, in milliseconds; another length than a
  /// minute's lets a long run be watched.
  explicit Win32Toolkit(HINSTANCE module, std::int32_t minute = 60000);
  ~Win32Toolkit() override;

  std::shared_ptr<forms::FormView> CreateView(forms::Form& form) override;
  forms::TwipsPerPixel ScreenTwipsPerPixel() const override;
  void MoveWindow(forms::WindowHandle window, std::int32_t x, std::int32_t y, std::int32_t width,
                  std::int32_t height, bool repaint) override;
  void SetParent(forms::WindowHandle child, forms::WindowHandle newParent) override;

  HINSTANCE Module() const { return module_; }
  /// A timer interval by the length of a minute, at least the shortest that timers have.
  UINT Stretch(std::int32_t milliseconds) const;

 protected:
  void RunMessageBox(const std::string& text, const std::string& title) override;

 private:
  const HINSTANCE module_;
  const std::int32_t minute_;
  HWND lastForm_ = nullptr;  // what a message box lies over
};

}  // namespace rotacasts::win32
