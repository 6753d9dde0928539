// The form toolkit of standard Windows controls.
#pragma once

#include "com/windows_api.h"
#include "forms/form.h"

namespace rotacasts::win32 {

class Win32Toolkit final : public forms::Toolkit {
 public:
  /// `module` is what the window classes are registered for: the DLL's, so that they go with it.
  explicit Win32Toolkit(HINSTANCE module);
  ~Win32Toolkit() override;

  std::shared_ptr<forms::FormView> CreateView(forms::Form& form) override;
  forms::TwipsPerPixel ScreenTwipsPerPixel() const override;
  void MoveWindow(forms::WindowHandle window, std::int32_t x, std::int32_t y, std::int32_t width,
                  std::int32_t height, bool repaint) override;
  void SetParent(forms::WindowHandle child, forms::WindowHandle newParent) override;

  HINSTANCE Module() const { return module_; }
  /// How long a minute lasts of the timers that are set from now on, so that a run can be watched.
  void ShortenMinute(std::int32_t milliseconds);
  /// A timer interval by the length of a minute, at least the shortest that timers have.
  UINT Stretch(std::int32_t milliseconds) const;

 protected:
  void RunMessageBox(const std::string& text, const std::string& title) override;

 private:
  const HINSTANCE module_;
  std::int32_t minute_;      // milliseconds
  HWND lastForm_ = nullptr;  // what a message box lies over
};

}  // namespace rotacasts::win32
