// The form toolkit of standard Windows controls.
#pragma once

#include "com/windows_api.h"
#include "forms/form.h"

namespace rotacasts::win32 {

class Win32Toolkit final : public forms::Toolkit {
 public:
  /// `module` is the DLL. Its window classes are registered here and unregistered at the end.
  explicit Win32Toolkit(HINSTANCE module);
  ~Win32Toolkit() override;

  std::shared_ptr<forms::FormView> CreateView(forms::Form& form) override;
  forms::TwipsPerPixel ScreenTwipsPerPixel() const override;
  void MoveWindow(forms::WindowHandle window, std::int32_t x, std::int32_t y, std::int32_t width,
                  std::int32_t height, bool repaint) override;
  void SetParent(forms::WindowHandle child, forms::WindowHandle newParent) override;

  HINSTANCE Module() const { return module_; }
  /// Sets the length of a minute for timers set from now on, so that a run can be watched.
  void ShortenMinute(std::int32_t milliseconds);
  /// Scales a timer interval to the length of a minute; at least the shortest that Windows allows.
  UINT Stretch(std::int32_t milliseconds) const;

 protected:
  void RunMessageBox(const std::string& text, const std::string& title) override;

 private:
  const HINSTANCE module_;
  std::int32_t minute_;      // milliseconds
  HWND lastForm_ = nullptr;  // message boxes appear over it
};

}  // namespace rotacasts::win32
