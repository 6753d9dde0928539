#include "forms/win32/control_window.h"

#include <windowsx.h>

#include <algorithm>
#include <utility>

#include "base/runtime_error.h"
#include "forms/win32/form_view.h"
#include "forms/win32/win32_toolkit.h"
#include "forms/win32/window_procedure.h"

namespace rotacasts::win32 {

using namespace forms;

const wchar_t* const ControlWindow::kPictureClass = L"rotacasts.picture";

namespace {

constexpr COLORREF kBlack = RGB(0, 0, 0);

}  // namespace

struct MouseRule {
  /// What the message raises on the model.
  enum class Raises { Nothing, Press, Release, LostPress };
  /// Who captures the mouse at it, so that a release arrives wherever the pointer is: standard
  /// controls, which are those that Tab reaches, see to that themselves.
  enum class Captures { Nobody, OtherKinds };
  /// How far it goes on to the control's own procedure: not where the model's menu answers it.
  enum class GoesOn { Always, WithoutMenu };

  UINT message;
  std::int16_t button;
  Raises raises;
  Captures captures;
  GoesOn goesOn;
};

namespace {

using Raises = MouseRule::Raises;
using Captures = MouseRule::Captures;
using GoesOn = MouseRule::GoesOn;

constexpr std::int16_t kNoButton = 0;
constexpr MouseRule kMouseRules[] = {
    {WM_LBUTTONDOWN, MouseEvent::kLeft, Raises::Press, Captures::OtherKinds, GoesOn::Always},
    {WM_LBUTTONDBLCLK, MouseEvent::kLeft, Raises::Press, Captures::OtherKinds, GoesOn::Always},
    {WM_LBUTTONUP, MouseEvent::kLeft, Raises::Release, Captures::Nobody, GoesOn::Always},
    {WM_RBUTTONDOWN, MouseEvent::kRight, Raises::Press, Captures::OtherKinds, GoesOn::WithoutMenu},
    {WM_RBUTTONDBLCLK, MouseEvent::kRight, Raises::Press, Captures::OtherKinds, GoesOn::Always},
    {WM_RBUTTONUP, MouseEvent::kRight, Raises::Release, Captures::Nobody, GoesOn::WithoutMenu},
    {WM_MBUTTONDOWN, MouseEvent::kMiddle, Raises::Press, Captures::OtherKinds, GoesOn::Always},
    {WM_MBUTTONDBLCLK, MouseEvent::kMiddle, Raises::Press, Captures::OtherKinds, GoesOn::Always},
    {WM_MBUTTONUP, MouseEvent::kMiddle, Raises::Release, Captures::Nobody, GoesOn::Always},
    {WM_CAPTURECHANGED, kNoButton, Raises::LostPress, Captures::Nobody, GoesOn::Always},
    {WM_CONTEXTMENU, kNoButton, Raises::Nothing, Captures::Nobody, GoesOn::WithoutMenu},
};

}  // namespace

void ControlWindow::Create(int id) {
  if (const HWND old = std::exchange(window_, nullptr)) ::DestroyWindow(old);
  const Recipe recipe = WindowRecipe();
  DWORD style = recipe.style | WS_CHILD | WS_CLIPSIBLINGS;
  if (control_.IsVisible()) style |= WS_VISIBLE;
  if (!control_.IsEnabled()) style |= WS_DISABLED;
  window_ = ::CreateWindowExW(
      recipe.extendedStyle, recipe.windowClass, ToWide(Text()).c_str(), style, 0, 0, 0, 0, Parent(),
      reinterpret_cast<HMENU>(static_cast<std::intptr_t>(id)), view_.Toolkit().Module(), nullptr);
  if (window_ == nullptr) throw RuntimeError(ErrorNumber::OutOfMemory, "no window is left");
  ::SetWindowLongPtrW(window_, GWLP_USERDATA, reinterpret_cast<LONG_PTR>(this));
  if (recipe.windowClass != kPictureClass) {
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
    view_.Names().Remove(window);
    ::SetWindowLongPtrW(window, GWLP_USERDATA, 0);
    return byDefault();
  }
  if (HandleKey(message, wParam)) return 0;
  const auto rule = std::ranges::find(kMouseRules, message, &MouseRule::message);
  if (rule == std::end(kMouseRules)) return byDefault();
  constexpr LPARAM kFromKeyboard = -1;  // of a WM_CONTEXTMENU
  const bool isAnswered = rule->goesOn == GoesOn::WithoutMenu && control_.onMouseDown &&
                          !(message == WM_CONTEXTMENU && lParam == kFromKeyboard);
  RaiseMouse(*rule, lParam);
  return isAnswered || ::IsWindow(window) == FALSE ? 0 : byDefault();
}

bool ControlWindow::HandleKey(UINT message, WPARAM key) const {
  if (key != VK_TAB || !IsReachedByTab()) return false;
  if (message == WM_KEYDOWN) view_.FocusNext(*this, ::GetKeyState(VK_SHIFT) < 0);
  return message == WM_KEYDOWN || message == WM_CHAR;
}

void ControlWindow::RaiseMouse(const MouseRule& rule, LPARAM lParam) {
  const auto event = [&] {
    const TwipsPerPixel screen = view_.Toolkit().ScreenTwipsPerPixel();
    return MouseEvent{rule.button, static_cast<float>(GET_X_LPARAM(lParam) * screen.horizontal),
                      static_cast<float>(GET_Y_LPARAM(lParam) * screen.vertical)};
  };
  switch (rule.raises) {
    case Raises::Press:
      if (rule.captures == Captures::OtherKinds && !IsReachedByTab()) {
        ::SetCapture(window_);
        hasCapture_ = true;
      }
      return control_.UserPressed(event());
    case Raises::Release:
      if ((control_.PressedButtons() & ~rule.button) == 0 && std::exchange(hasCapture_, false)) {
        ::ReleaseCapture();
      }
      return control_.UserReleased(event());
    case Raises::LostPress:
      if (reinterpret_cast<HWND>(lParam) == window_) return;
      if (std::exchange(hasCapture_, false)) control_.UserLostPress();
      return;
    case Raises::Nothing:
      return;
  }
}

}  // namespace rotacasts::win32
