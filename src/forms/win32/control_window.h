// A control on the screen: what the windows of all kinds of controls share.
#pragma once

#include <memory>
#include <string>

#include "com/windows_api.h"
#include "forms/control.h"

namespace rotacasts::win32 {

class Win32FormView;

/// Mirrors a control's model to a window and brings the user's acts back. A kind says how its
/// window is made and what is its own. The form view outlives its control windows.
class ControlWindow {
 public:
  ControlWindow(Win32FormView& view, forms::Control& control) : view_(view), control_(control) {}
  virtual ~ControlWindow() = default;
  ControlWindow(const ControlWindow&) = delete;
  ControlWindow& operator=(const ControlWindow&) = delete;

  /// Makes the window, again if there is one, with this child identifier. Raises error 7 when the
  /// system has none left.
  void Create(int id);
  /// The window is gone with its form.
  virtual void Gone() { window_ = nullptr; }
  HWND Window() const { return window_; }
  forms::Control& Model() const { return control_; }

  /// Whether Tab reaches the control; and whether it lies behind the controls it frames.
  virtual bool IsReachedByTab() const { return false; }
  virtual bool LiesBehind() const { return false; }

  /// A property of the model has changed.
  virtual void Changed(forms::Property property);
  /// The window has told its parent of something, by its notification code.
  virtual void Notified(WORD) {}
  // What a list's model has done to its items, and the picture of an image.
  virtual void ItemsCleared() {}
  virtual void ItemAdded() {}
  virtual void ItemChanged(std::int32_t) {}
  /// Errors as FormView has them.
  virtual void LoadPicture(const std::string&) {}
  /// Prepares the drawing of the control and returns the brush of its back. Black on the form's
  /// light colours, whatever the system's text colour is.
  virtual HBRUSH Colour(HDC context) const;

  /// The class of windows that image controls are.
  static const wchar_t* const kPictureClass;
  static LRESULT CALLBACK Procedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam);

 protected:
  /// How a window is made.
  struct Making {
    const wchar_t* windowClass;
    DWORD style;
    DWORD extendedStyle;
  };
  virtual Making How() const = 0;
  virtual HWND Parent() const;
  /// The text that the window shows.
  virtual std::string Text() const { return {}; }
  virtual HFONT Font() const;
  /// Shows what the model holds besides its text, in a new window.
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
  /// Raises a mouse event on the model; whether the message was one.
  bool HandleMouse(UINT message, LPARAM lParam);

  forms::Control& control_;
  HWND window_ = nullptr;
  WNDPROC original_ = ::DefWindowProcW;
  bool hasCapture_ = false;
  bool hidWithFocus_ = false;
};

/// The window of a control's kind.
std::unique_ptr<ControlWindow> MakeControlWindow(Win32FormView& view, forms::Control& control);

}  // namespace rotacasts::win32
