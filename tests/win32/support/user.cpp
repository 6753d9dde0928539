#include "support/user.h"

#include <utility>

#include "forms/win32/gdi.h"

namespace rotacasts {
inline namespace testing {
namespace {

AnsweringUser* theUser = nullptr;  // a hook gets no object

constexpr UINT kAnswer = WM_APP + 1;

std::string CaptionOf(HMENU menu, int position) {
  wchar_t text[200];
  const int size = ::GetMenuStringW(menu, static_cast<UINT>(position), text, 200, MF_BYPOSITION);
  return win32::FromWide({text, static_cast<std::size_t>(size)});
}

}  // namespace

void PumpWaiting() {
  MSG message;
  while (::PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE) != FALSE) {
    ::TranslateMessage(&message);
    ::DispatchMessageW(&message);
  }
}

bool PumpUntil(const std::function<bool()>& condition) {
  for (const ULONGLONG end = ::GetTickCount64() + 10000; ::GetTickCount64() < end;) {
    PumpWaiting();
    if (condition()) return true;
    ::MsgWaitForMultipleObjects(0, nullptr, FALSE, 100, QS_ALLINPUT);
  }
  return false;
}

void ClickMouse(HWND window, bool right) {
  RECT area;
  ::GetWindowRect(window, &area);
  ::SetCursorPos((area.left + area.right) / 2, (area.top + area.bottom) / 2);
  ::mouse_event(right ? MOUSEEVENTF_RIGHTDOWN : MOUSEEVENTF_LEFTDOWN, 0, 0, 0, 0);
  ::mouse_event(right ? MOUSEEVENTF_RIGHTUP : MOUSEEVENTF_LEFTUP, 0, 0, 0, 0);
  PumpWaiting();
}

void PressKey(BYTE key, bool shift) {
  if (shift) ::keybd_event(VK_SHIFT, 0, 0, 0);
  ::keybd_event(key, 0, 0, 0);
  ::keybd_event(key, 0, KEYEVENTF_KEYUP, 0);
  if (shift) ::keybd_event(VK_SHIFT, 0, KEYEVENTF_KEYUP, 0);
  PumpWaiting();
}

void TypeKeys(const std::string& text) {
  for (const char letter : text) {
    PressKey(static_cast<BYTE>(::toupper(letter)), ::isupper(letter) != 0);
  }
}

AnsweringUser::AnsweringUser()
    : hook_(::SetWindowsHookExW(WH_CALLWNDPROCRET, Watch, nullptr, ::GetCurrentThreadId())) {
  before_ = std::exchange(theUser, this);
}

AnsweringUser::~AnsweringUser() {
  ::UnhookWindowsHookEx(hook_);
  theUser = before_;
}

LRESULT CALLBACK AnsweringUser::Watch(int code, WPARAM wParam, LPARAM lParam) {
  const auto* sent = reinterpret_cast<const CWPRETSTRUCT*>(lParam);
  if (code == HC_ACTION && sent->message == WM_INITDIALOG) {
    theUser->Answer(sent->hwnd);
  } else if (code == HC_ACTION && sent->message == WM_INITMENUPOPUP) {
    theUser->Choose(reinterpret_cast<HMENU>(sent->wParam));
  } else if (code == HC_ACTION && sent->message == WM_ENTERIDLE && sent->wParam == MSGF_MENU) {
    theUser->PressKeys(sent->hwnd);
  }
  return ::CallNextHookEx(nullptr, code, wParam, lParam);
}

void CALLBACK AnsweringUser::PressOk(HWND box, UINT, UINT_PTR timer, DWORD) {
  ::KillTimer(box, timer);
  if (const auto act = std::exchange(theUser->insideBox, nullptr)) act();
  ::PostMessageW(box, WM_COMMAND, IDOK, 0);
}

void AnsweringUser::Answer(HWND box) {
  constexpr int kTextOfMessageBox = 0xFFFF;
  boxes.push_back(win32::TextOf(box) + "|" + win32::TextOf(::GetDlgItem(box, kTextOfMessageBox)));
  // In the box's own message loop, like a real user.
  ::SetTimer(box, kAnswer, 0, PressOk);
}

/// Finds the keys that lead to the wanted item. Down skips separators. A popup menu opens without a
/// selection, a submenu with its first item selected.
void AnsweringUser::Choose(HMENU menu) {
  std::vector<std::string>& seen = menus.emplace_back();
  int at = 0;  // the number of items down to the wanted one
  int items = 0;
  for (int i = 0; i < ::GetMenuItemCount(menu); ++i) {
    const UINT state = ::GetMenuState(menu, static_cast<UINT>(i), MF_BYPOSITION);
    const std::string caption = CaptionOf(menu, i);
    const bool isSeparator = (state & MF_SEPARATOR) != 0 && (state & MF_POPUP) == 0;
    const bool isDisabled = (state & (MF_GRAYED | MF_DISABLED)) != 0;
    seen.push_back(isSeparator ? "-" : isDisabled ? "(" + caption + ")" : caption);
    if (!isSeparator) ++items;
    if (!wanted_.empty() && caption == wanted_.front()) at = items;
  }
  if (at == 0) {
    keys_ = {VK_ESCAPE};
    return;
  }
  wanted_.erase(wanted_.begin());
  keys_.assign(static_cast<std::size_t>(inSubmenu_ ? at - 1 : at), VK_DOWN);
  inSubmenu_ = !wanted_.empty();
  keys_.push_back(inSubmenu_ ? VK_RIGHT : VK_RETURN);
}

/// Called when the menu waits for input.
void AnsweringUser::PressKeys(HWND owner) {
  if (const auto act = std::exchange(insideMenu, nullptr)) act();
  for (const WPARAM key : std::exchange(keys_, {})) ::PostMessageW(owner, WM_KEYDOWN, key, 0);
}

}  // namespace testing
}  // namespace rotacasts
