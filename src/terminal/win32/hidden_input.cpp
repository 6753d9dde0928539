#include "terminal/hidden_input.h"

#include "com/windows_api.h"
#include "terminal/win32/console_input.h"

namespace rotacasts::host {

// A program that is ended leaves the console hiding; every shell there sets its own mode again.
struct HiddenInput::Parts {
  Parts() : isConsole(::GetConsoleMode(input, &before) != FALSE) {
    if (isConsole) ::SetConsoleMode(input, before & ~DWORD{ENABLE_ECHO_INPUT});
  }
  ~Parts() {
    if (isConsole) ::SetConsoleMode(input, before);
  }
  Parts(const Parts&) = delete;
  Parts& operator=(const Parts&) = delete;

  const HANDLE input = ::GetStdHandle(STD_INPUT_HANDLE);
  DWORD before = 0;
  const bool isConsole;
  ConsoleReader lines = {};
};

HiddenInput::HiddenInput() : parts_(std::make_unique<Parts>()) {}
HiddenInput::~HiddenInput() = default;

bool HiddenInput::IsTerminal() const {
  return parts_->isConsole;
}

std::string HiddenInput::Line() {
  return parts_->lines.Next().value_or("");
}

}  // namespace rotacasts::host
