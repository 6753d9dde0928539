// Reads the console's lines through the event loop.
#pragma once

#include <functional>
#include <string>
#include <string_view>

#include "machine/linux/event_loop.h"

namespace rotacasts::host {

/// Passes every line of the standard input to `onLine` until that returns false; the last line
/// needs no line feed. Calls `onEnd` at the end of the input. `loop` must outlive it.
class ConsoleInput {
 public:
  ConsoleInput(EventLoop& loop, std::function<bool(const std::string&)> onLine,
               std::function<void()> onEnd);
  ~ConsoleInput();
  ConsoleInput(const ConsoleInput&) = delete;
  ConsoleInput& operator=(const ConsoleInput&) = delete;

 private:
  void Read();
  /// Passes the lines on; false if no more are wanted.
  bool Take(std::string_view bytes);

  EventLoop& loop_;
  const std::function<bool(const std::string&)> onLine_;
  const std::function<void()> onEnd_;
  std::string text_;  // read, but without its line feed yet; at most kLongestLine + 1 bytes
};

}  // namespace rotacasts::host
