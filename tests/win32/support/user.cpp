#include "support/user.h"

#include <algorithm>
#include <chrono>

#include "platform/win32/com_support.h"

namespace rotacasts::testing {
namespace {

using win32::FromWide;

AnsweringUser* theUser = nullptr;  // a thread's hook knows no object

constexpr UINT kAnswer = WM_APP + 1;

void Send(INPUT input) {
  ::SendInput(1, &input, sizeof input);
}

void SendKey(WORD key, bool up) {
  INPUT input{};
  input.type = INPUT_KEYBOARD;
  input.ki.wVk = key;
  input.ki.dwFlags = up ? KEYEVENTF_KEYUP : 0;
  Send(input);
}

void SendButton(DWORD flag) {
  INPUT input{};
  input.type = INPUT_MOUSE;
  input.mi.dwFlags = flag;
  Send(input);
}

std::string TextOf(HWND window) {
  wchar_t text[1024];
  return FromWide({text, static_cast<std::size_t>(::GetWindowTextW(window, text, 1024))});
}

std::string CaptionOf(HMENU menu, int position) {
  wchar_t text[200];
  const int size = ::GetMenuStringW(menu, static_cast<UINT>(position), text, 200, MF_BYPOSITION);
  return FromWide({text, static_cast<std::size_t>(size)});
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
  const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(10);
  for (;;) {
    PumpWaiting();
    if (condition()) return true;
    if (std::chrono::steady_clock::now() > end) return false;
    ::MsgWaitForMultipleObjects(0, nullptr, FALSE, 100, QS_ALLINPUT);
  }
}

void ClickMouse(HWND window, bool right) {
  RECT area;
  ::GetWindowRect(window, &area);
  ::SetCursorPos((area.left + area.right) / 2, (area.top + area.bottom) / 2);
  SendButton(right ? MOUSEEVENTF_RIGHTDOWN : MOUSEEVENTF_LEFTDOWN);
  SendButton(right ? MOUSEEVENTF_RIGHTUP : MOUSEEVENTF_LEFTUP);
  PumpWaiting();
}

void PressKey(WORD key, bool shift) {
  if (shift) SendKey(VK_SHIFT, false);
  SendKey(key, false);
  SendKey(key, true);
  if (shift) SendKey(VK_SHIFT, true);
  PumpWaiting();
}

void TypeKeys(const std::string& text) {
  for (const char letter : text) {
    PressKey(static_cast<WORD>(::toupper(letter)), ::isupper(letter) != 0);
  }
}

AnsweringUser::AnsweringUser()
    : hook_(::SetWindowsHookExW(WH_CALLWNDPROCRET, Watch, nullptr, ::GetCurrentThreadId())) {
  theUser = this;
}

AnsweringUser::~AnsweringUser() {
  ::UnhookWindowsHookEx(hook_);
  theUser = nullptr;
}

LRESULT CALLBACK AnsweringUser::Watch(int code, WPARAM wParam, LPARAM lParam) {
  const auto* sent = reinterpret_cast<const CWPRETSTRUCT*>(lParam);
  if (code == HC_ACTION && sent->message == WM_INITDIALOG) {
    theUser->Answer(sent->hwnd);
  } else if (code == HC_ACTION && sent->message == WM_INITMENUPOPUP) {
    theUser->Choose(sent->hwnd, reinterpret_cast<HMENU>(sent->wParam));
  }
  return ::CallNextHookEx(nullptr, code, wParam, lParam);
}

void CALLBACK AnsweringUser::PressOk(HWND box, UINT, UINT_PTR timer, DWORD) {
  ::KillTimer(box, timer);
  if (theUser->insideBox) theUser->insideBox();
  ::PostMessageW(box, WM_COMMAND, IDOK, 0);
}

void AnsweringUser::Answer(HWND box) {
  constexpr int kTextOfMessageBox = 0xFFFF;
  boxes.push_back(TextOf(box) + "|" + TextOf(::GetDlgItem(box, kTextOfMessageBox)));
  // In the box's own message loop, as a person would.
  ::SetTimer(box, kAnswer, 0, PressOk);
}

void AnsweringUser::Choose(HWND owner, HMENU menu) {
  const auto key = [owner](WORD code) { ::PostMessageW(owner, WM_KEYDOWN, code, 0); };
  std::vector<std::string>& seen = menus.emplace_back();
  int at = -1;  // how often Down leads to the item; separators are passed over
  int downs = 0;
  for (int i = 0; i < ::GetMenuItemCount(menu); ++i) {
    const UINT state = ::GetMenuState(menu, static_cast<UINT>(i), MF_BYPOSITION);
    const std::string caption = CaptionOf(menu, i);
    const bool isSeparator = (state & MF_SEPARATOR) != 0 && (state & MF_POPUP) == 0;
    const bool isDisabled = (state & (MF_GRAYED | MF_DISABLED)) != 0 && !isSeparator;
    seen.push_back(isSeparator ? "-" : isDisabled ? "(" + caption + ")" : caption);
    if (isSeparator) continue;
    ++downs;
    if (!wanted_.empty() && caption == wanted_.front()) at = downs;
  }
  if (insideMenu) insideMenu();
  if (at < 0) {
    ::PostMessageW(owner, WM_CANCELMODE, 0, 0);
    return;
  }
  wanted_.erase(wanted_.begin());
  // A popup menu opens with nothing selected, a submenu with its first item.
  for (int i = inSubmenu_ ? 1 : 0; i < at; ++i) key(VK_DOWN);
  inSubmenu_ = !wanted_.empty();
  key(inSubmenu_ ? VK_RIGHT : VK_RETURN);
}

}  // namespace rotacasts::testing
