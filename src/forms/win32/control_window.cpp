#include "forms/win32/control_window.h"

#include <windowsx.h>

#include <algorithm>

#include "base/runtime_error.h"
#include "forms/win32/form_view.h"
#include "forms/win32/win32_toolkit.h"
#include "forms/win32/window_procedure.h"

namespace rotacasts::win32 {

using namespace forms;

const wchar_t* const ControlWindow::kPictureClass = L"rotacasts.picture";

namespace {

constexpr COLORREF kBlack = RGB(0, 0, 0);

struct MouseRow {
  UINT message;
  std::int16_t button;
  bool pressed;
};

constexpr MouseRow kMouseMessages[] = {
    {WM_LBUTTONDOWN, MouseEvent::kLeft, true},    {WM_LBUTTONDBLCLK, MouseEvent::kLeft, true},
    {WM_LBUTTONUP, MouseEvent::kLeft, false},     {WM_RBUTTONDOWN, MouseEvent::kRight, true},
    {WM_RBUTTONDBLCLK, MouseEvent::kRight, true}, {WM_RBUTTONUP, MouseEvent::kRight, false},
    {WM_MBUTTONDOWN, MouseEvent::kMiddle, true},  {WM_MBUTTONDBLCLK, MouseEvent::kMiddle, true},
    {WM_MBUTTONUP, MouseEvent::kMiddle, false},
};

}  // namespace

void ControlWindow::Create(int id) {
  if (const HWND old = std::exchange(window_, nullptr)) ::DestroyWindow(old);
  const Making making = How();
  DWORD style = making.style | WS_CHILD | WS_CLIPSIBLINGS;
  if (control_.IsVisible()) style |= WS_VISIBLE;
  if (!control_.IsEnabled()) style |= WS_DISABLED;
  window_ = ::CreateWindowExW(
      making.extendedStyle, making.windowClass, ToWide(Text()).c_str(), style, 0, 0, 0, 0, Parent(),
      reinterpret_cast<HMENU>(static_cast<std::intptr_t>(id)), view_.Toolkit().Module(), nullptr);
  if (window_ == nullptr) throw RuntimeError(ErrorNumber::OutOfMemory, "no window is left");
  ::SetWindowLongPtrW(window_, GWLP_USERDATA, reinterpret_cast<LONG_PTR>(this));
  if (making.windowClass != kPictureClass) {
    original_ = reinterpret_cast<WNDPROC>(
        ::SetWindowLongPtrW(window_, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(&Procedure)));
  }
  Arrange();
  Changed(Property::Font);
  if (const CaptionedControl* label = control_.LabelledBy()) {
    view_.Names().Give(window_, label->Caption());
  }
  Fill();
}

HWND ControlWindow::Parent() const {
  return view_.Window();
}

HFONT ControlWindow::Font() const {
  return view_.FontOfSize(control_.FontSize());
}

void ControlWindow::Arrange() const {
  RECT area = view_.PixelBounds(control_);
  const HWND parent = ::GetAncestor(window_, GA_PARENT);
  if (parent != view_.Window()) {
    ::MapWindowPoints(view_.Window(), parent, reinterpret_cast<POINT*>(&area), 2);
  }
  ::MoveWindow(window_, area.left, area.top, area.right - area.left, area.bottom - area.top, TRUE);
  if (parent != view_.Window()) {
    ::InvalidateRect(parent, nullptr, TRUE);  // the image shows through
  }
}

void ControlWindow::Changed(Property property) {
  switch (property) {
    case Property::Bounds:
    case Property::Container:
      return Arrange();
    case Property::Enabled:
      ::EnableWindow(window_, control_.IsEnabled() ? TRUE : FALSE);
      return;
    case Property::Visible:
      return SetVisible(control_.IsVisible());
    case Property::Focus:
      ::SetFocus(window_);
      return;
    case Property::Font:
      Send(WM_SETFONT, reinterpret_cast<WPARAM>(Font()), TRUE);
      return;
    case Property::Text:
      if (TextOf(window_) == Text()) return;
      ::SetWindowTextW(window_, ToWide(Text()).c_str());
      return Arrange();
    case Property::Look:
      return Redraw();
    default:
      return;
  }
}

/// A control that had the keyboard focus when it was hidden gets it back, unless another has it
/// now.
void ControlWindow::SetVisible(bool visible) {
  if (!visible) hidWithFocus_ = ::GetFocus() == window_;
  ::ShowWindow(window_, visible ? SW_SHOWNA : SW_HIDE);
  if (!visible || !std::exchange(hidWithFocus_, false)) return;
  const HWND focus = ::GetFocus();
  if (focus == nullptr || focus == view_.Window()) ::SetFocus(window_);
}

HBRUSH ControlWindow::Colour(HDC context) const {
  const COLORREF back = ToColorRef(control_.BackColour().value_or(view_.BackColour()));
  ::SetTextColor(context, kBlack);
  ::SetBkColor(context, back);
  return view_.Brush(back);
}

LRESULT CALLBACK ControlWindow::Procedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
  auto* control = reinterpret_cast<ControlWindow*>(::GetWindowLongPtrW(window, GWLP_USERDATA));
  if (control == nullptr) return ::DefWindowProcW(window, message, wParam, lParam);
  return Contained([&] {
    const auto alive = control->view_.KeepAlive();
    return control->Handle(message, wParam, lParam);
  });
}

LRESULT ControlWindow::Handle(UINT message, WPARAM wParam, LPARAM lParam) {
  const HWND window = window_;
  const WNDPROC original = original_;
  const auto byDefault = [&] {
    return ::CallWindowProcW(original, window, message, wParam, lParam);
  };
  if (message == WM_NCDESTROY) {
    view_.Names().Take(window);
    ::SetWindowLongPtrW(window, GWLP_USERDATA, 0);
    return byDefault();
  }
  if (HandleKey(message, wParam)) return 0;
  const bool hasMenu = static_cast<bool>(control_.onMouseDown);
  constexpr LPARAM kFromKeyboard = -1;
  if (message == WM_CONTEXTMENU && hasMenu && lParam != kFromKeyboard) {
    return 0;  // the control's own menu has been shown
  }
  if (!HandleMouse(message, lParam)) return byDefault();
  // The right button belongs to a model that has a menu; any other goes on to the control.
  const bool isRight = message == WM_RBUTTONDOWN || message == WM_RBUTTONUP;
  if ((isRight && hasMenu) || ::IsWindow(window) == FALSE) return 0;
  return byDefault();
}

bool ControlWindow::HandleKey(UINT message, WPARAM key) const {
  if (key != VK_TAB || !IsReachedByTab()) return false;
  if (message == WM_KEYDOWN) view_.FocusNext(*this, ::GetKeyState(VK_SHIFT) < 0);
  return message == WM_KEYDOWN || message == WM_CHAR;
}

bool ControlWindow::HandleMouse(UINT message, LPARAM lParam) {
  if (message == WM_CAPTURECHANGED && reinterpret_cast<HWND>(lParam) != window_) {
    if (std::exchange(hasCapture_, false)) control_.UserLostPress();
    return false;
  }
  const auto row =
      std::find_if(std::begin(kMouseMessages), std::end(kMouseMessages),
                   [message](const MouseRow& other) { return other.message == message; });
  if (row == std::end(kMouseMessages)) return false;
  const TwipsPerPixel screen = view_.Toolkit().ScreenTwipsPerPixel();
  const MouseEvent event{row->button, static_cast<float>(GET_X_LPARAM(lParam) * screen.horizontal),
                         static_cast<float>(GET_Y_LPARAM(lParam) * screen.vertical)};
  // Standard controls capture the mouse themselves. The others capture it here, so that a release
  // reaches them wherever the pointer is.
  const bool captures = !IsReachedByTab();
  if (row->pressed) {
    if (captures) {
      ::SetCapture(window_);
      hasCapture_ = true;
    }
    control_.UserPressed(event);
    return true;
  }
  if ((control_.PressedButtons() & ~row->button) == 0 && std::exchange(hasCapture_, false)) {
    ::ReleaseCapture();
  }
  control_.UserReleased(event);
  return true;
}

}  // namespace rotacasts::win32
