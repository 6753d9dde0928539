#include "forms/win32/win32_toolkit.h"

#include <algorithm>

#include "com/com_support.h"
#include "forms/win32/form_view.h"

namespace rotacasts::win32 {
namespace {

constexpr double kTwipsPerInch = 1440;
constexpr std::int32_t kMinute = 60000;  // milliseconds

HWND Window(forms::WindowHandle handle) {
  return reinterpret_cast<HWND>(handle);
}

/// Gives the focus back to the window that had it before a message box, because not every host
/// window does so when it is activated again.
void RestoreFocus(HWND window) {
  if (window == nullptr || ::IsWindowVisible(window) == FALSE ||
      ::IsWindowEnabled(window) == FALSE) {
    return;
  }
  const HWND root = ::GetAncestor(window, GA_ROOT);
  if (root == ::GetActiveWindow() && ::GetFocus() == root) ::SetFocus(window);
}

}  // namespace

Win32Toolkit::Win32Toolkit(HINSTANCE module) : module_(module), minute_(kMinute) {
  Win32FormView::RegisterClasses(module_);
}

Win32Toolkit::~Win32Toolkit() {
  Win32FormView::UnregisterClasses(module_);
}

std::shared_ptr<forms::FormView> Win32Toolkit::CreateView(forms::Form& form) {
  const auto view = std::make_shared<Win32FormView>(*this, form);
  view->CreateWindows();
  lastForm_ = Window(view->Handle());
  return view;
}

forms::TwipsPerPixel Win32Toolkit::ScreenTwipsPerPixel() const {
  const DeviceContext screen;
  return {kTwipsPerInch / ::GetDeviceCaps(screen.Get(), LOGPIXELSX),
          kTwipsPerInch / ::GetDeviceCaps(screen.Get(), LOGPIXELSY)};
}

void Win32Toolkit::MoveWindow(forms::WindowHandle window, std::int32_t x, std::int32_t y,
                              std::int32_t width, std::int32_t height, bool repaint) {
  ::MoveWindow(Window(window), x, y, width, height, repaint ? TRUE : FALSE);
}

void Win32Toolkit::SetParent(forms::WindowHandle child, forms::WindowHandle newParent) {
  const HWND window = Window(child);
  if (::IsWindow(Window(newParent)) == FALSE || ::GetParent(window) == Window(newParent)) return;
  // SetParent does not change the style: a popup needs the child style first.
  const LONG style = ::GetWindowLongW(window, GWL_STYLE);
  ::SetWindowLongW(window, GWL_STYLE,
                   static_cast<LONG>((static_cast<DWORD>(style) & ~WS_POPUP) | WS_CHILD));
  ::SetParent(window, Window(newParent));
}

void Win32Toolkit::ShortenMinute(std::int32_t milliseconds) {
  minute_ = std::clamp(milliseconds, std::int32_t{1}, kMinute);
}

UINT Win32Toolkit::Stretch(std::int32_t milliseconds) const {
  const std::int64_t stretched = std::int64_t{milliseconds} * minute_ / kMinute;
  return static_cast<UINT>(std::max<std::int64_t>(stretched, USER_TIMER_MINIMUM));
}

void Win32Toolkit::RunMessageBox(const std::string& text, const std::string& title) {
  const HWND owner = ::IsWindow(lastForm_) ? ::GetAncestor(lastForm_, GA_ROOT) : nullptr;
  const HWND visibleOwner = owner != nullptr && ::IsWindowVisible(owner) ? owner : nullptr;
  const HWND focus = ::GetFocus();
  ::MessageBoxW(visibleOwner, ToWide(text).c_str(), ToWide(title).c_str(),
                MB_OK | MB_TASKMODAL | MB_SETFOREGROUND);
  RestoreFocus(focus);
}

}  // namespace rotacasts::win32
