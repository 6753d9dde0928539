// A simulated user: moves the mouse, types, answers message boxes, chooses from menus.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "com/windows_api.h"

namespace rotacasts {
inline namespace testing {

/// Runs the message loop until the condition holds; false if it does not within ten seconds.
bool PumpUntil(const std::function<bool()>& condition);
/// Handles the messages that are in the queue now.
void PumpWaiting();

/// Presses and releases a mouse button over the middle of a window, with real input.
void ClickMouse(HWND window, bool right = false);
/// Presses and releases keys, with real input; holds the shift key if `shift`.
void PressKey(BYTE key, bool shift = false);
/// Types letters and digits, with real input.
void TypeKeys(const std::string& text);

/// Watches its thread's dialogs and menus while it exists, one at a time. Answers every message box
/// with its OK button and every popup menu as told.
class AnsweringUser {
 public:
  AnsweringUser();
  ~AnsweringUser();
  AnsweringUser(const AnsweringUser&) = delete;
  AnsweringUser& operator=(const AnsweringUser&) = delete;

  /// Chooses these items, one for each level, in the next popup menu; cancels it if there are none.
  void WillChoose(std::vector<std::string> captions) {
    wanted_ = std::move(captions);
    inSubmenu_ = false;  // where the last menu was ended
  }

  /// The message boxes so far: "title|text".
  std::vector<std::string> boxes;
  /// Runs once, while a message box is open, before it is answered.
  std::function<void()> insideBox;
  /// Runs once, while a popup menu waits for input.
  std::function<void()> insideMenu;
  /// The items of the popup menus so far: captions, in parentheses if disabled.
  std::vector<std::vector<std::string>> menus;

 private:
  static LRESULT CALLBACK Watch(int code, WPARAM wParam, LPARAM lParam);
  static void CALLBACK PressOk(HWND box, UINT message, UINT_PTR timer, DWORD time);
  void Answer(HWND box);
  void Choose(HMENU menu);
  void PressKeys(HWND owner);

  HHOOK hook_;
  AnsweringUser* before_;  // of another thread
  std::vector<std::string> wanted_;
  std::vector<WPARAM> keys_;  // that answer the open menu
  bool inSubmenu_ = false;
};

}  // namespace testing
}  // namespace rotacasts
