// Passes the console's lines to the thread of the windows.
#pragma once

#include <optional>
#include <string>

#include "com/windows_api.h"

namespace rotacasts::host {

/// Reads the lines of the standard input that the process had when this was made.
class ConsoleReader {
 public:
  /// Waits for the next line, in UTF-8 and without its end; nullopt at the end of the input.
  std::optional<std::string> Next();

 private:
  const HANDLE input_ = ::GetStdHandle(STD_INPUT_HANDLE);
  std::string text_;  // was read, and is no whole line yet
};

/// Posts every line of the standard input to `window` from now on: as `message`, whose lParam is a
/// std::string* in UTF-8 that the receiver must delete. Stops at the end of the input or of the
/// window.
void PostConsoleLines(HWND window, UINT message);

}  // namespace rotacasts::host
