// Passes the console's lines on.
#pragma once

#include <functional>
#include <optional>
#include <string>

#include "com/windows_api.h"

namespace rotacasts::host {

/// Reads the lines of the standard input that the process had when this was made.
class ConsoleReader {
 public:
  /// Waits for the next line, in UTF-8 and without its end; nullopt at the end of the input. Of a
  /// longer line, kLongestLine bytes and one more.
  std::optional<std::string> Next();

 private:
  const HANDLE input_ = ::GetStdHandle(STD_INPUT_HANDLE);
  std::string piece_;   // of what was read last
  std::size_t at_ = 0;  // what was returned of it
};

/// Hands every line of the standard input to `deliver` from now on, on a thread that waits for
/// them; nullopt once at the end of the input. Stops there, or when `deliver` returns false.
void ReadConsoleLines(std::function<bool(std::optional<std::string> line)> deliver);

}  // namespace rotacasts::host
