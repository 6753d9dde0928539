// A person at the screen: moves the mouse, types, answers message boxes, chooses from menus.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "com/windows_api.h"

namespace rotacasts::testing {

/// Runs the message loop until the condition holds; whether it did within ten seconds.
bool PumpUntil(const std::function<bool()>& condition);
/// Handles what waits in the queue now.
void PumpWaiting();

/// Presses and releases a button of the mouse over the middle of a window, with real input.
void ClickMouse(HWND window, bool right = false);
/// Presses and releases keys, with real input. `shift` holds the shift key meanwhile.
void PressKey(BYTE key, bool shift = false);
/// Types a text of letters and digits, with real input.
void TypeKeys(const std::string& text);

/// Watches the thread's dialogs and menus while it lives. Answers every message box with its OK
/// button, and every popup menu as it was told.
class AnsweringUser {
 public:
  AnsweringUser();
  ~AnsweringUser();
  AnsweringUser(const AnsweringUser&) = delete;
  AnsweringUser& operator=(const AnsweringUser&) = delete;

  /// The next popup menu is answered with these items, one a level; with none it is cancelled.
  void WillChoose(std::vector<std::string> captions) { wanted_ = std::move(captions); }

  /// The message boxes so far: "title|text".
  std::vector<std::string> boxes;
  /// Runs once, while a message box is open, before it is answered.
  std::function<void()> insideBox;
  /// Runs once, while a popup menu waits for input.
  std::function<void()> insideMenu;
  /// The popup menus so far, an item each: its caption, in brackets when it is disabled.
  std::vector<std::vector<std::string>> menus;

 private:
  static LRESULT CALLBACK Watch(int code, WPARAM wParam, LPARAM lParam);
  static void CALLBACK PressOk(HWND box, UINT message, UINT_PTR timer, DWORD time);
  void Answer(HWND box);
  void Choose(HMENU menu);
  void PressKeys(HWND owner);

  HHOOK hook_;
  std::vector<std::string> wanted_;
  std::vector<WPARAM> keys_;  // that answer the menu which is open
  bool inSubmenu_ = false;
};

}  // namespace rotacasts::testing
