// What the windows of all kinds of controls share.
#pragma once

#include <memory>
#include <string>

#include "com/windows_api.h"
#include "forms/control.h"

namespace rotacasts::win32 {

class Win32FormView;
struct MouseRule;

/// Mirrors a control's model to a window and reports what the user does. Derived classes define how
/// a kind's window is created and how it differs. The form view outlives its control windows.
class ControlWindow {
 public:
  ControlWindow(Win32FormView& view, forms::Control& control) : view_(view), control_(control) {}
  virtual ~ControlWindow() = default;
  ControlWindow(const ControlWindow&) = delete;
  ControlWindow& operator=(const ControlWindow&) = delete;

  /// Creates the window with this child identifier, replacing the old one if there is one. Errors:
  /// 7 if the system has no window left.
  void Create(int id);
  /// The window was destroyed together with its form.
  virtual void Gone() { window_ = nullptr; }
  HWND Window() const { return window_; }
  forms::Control& Model() const { return control_; }

  /// Whether the Tab key reaches the control, and whether it lies behind the controls that it
  /// frames.
  virtual bool IsReachedByTab() const { return false; }
  virtual bool LiesBehind() const { return false; }

  /// A property of the model has changed.
  virtual void Changed(forms::Property property);
  /// The window sent its parent this notification code.
  virtual void Notified(WORD) {}
  // A list's items or an image's picture have changed.
  virtual void ItemsCleared() {}
  virtual void ItemAdded() {}
  virtual void ItemChanged(std::int32_t) {}
  /// Errors: as FormView::LoadPicture.
  virtual void LoadPicture(const std::string&) {}
  /// Sets the colours for drawing the control and returns its background brush. The text is black
  /// whatever the system's text colour is, because the form's colours are light.
  virtual HBRUSH Colour(HDC context) const;

  /// The window class of image controls.
  static const wchar_t* const kPictureClass;
  static LRESULT CALLBACK Procedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam);

 protected:
  /// What a window is created with.
  struct Recipe {
    const wchar_t* windowClass;
    DWORD style;
    DWORD extendedStyle;
  };
  virtual Recipe WindowRecipe() const = 0;
  virtual HWND Parent() const;
  /// The text that the window shows.
  virtual std::string Text() const { return {}; }
  virtual HFONT Font() const;
  /// Copies what the model holds, except its text, to a new window.
  virtual void Fill() {}
  virtual LRESULT Handle(UINT message, WPARAM wParam, LPARAM lParam);

  std::intptr_t Send(UINT message, WPARAM wParam = 0, LPARAM lParam = 0) const {
    return ::SendMessageW(window_, message, wParam, lParam);
  }
  void Redraw() const { ::InvalidateRect(window_, nullptr, TRUE); }

  Win32FormView& view_;

 private:
  void Arrange() const;
  void SetVisible(bool visible);
  bool HandleKey(UINT message, WPARAM key) const;
  /// Raises on the model what the rule says.
  void RaiseMouse(const MouseRule& rule, LPARAM lParam);

  forms::Control& control_;
  HWND window_ = nullptr;
  WNDPROC original_ = ::DefWindowProcW;
  bool hasCapture_ = false;
  bool hidWithFocus_ = false;
};

/// Makes the window object for the control's kind.
std::unique_ptr<ControlWindow> MakeControlWindow(Win32FormView& view, forms::Control& control);

}  // namespace rotacasts::win32
