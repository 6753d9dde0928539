// The console's lines, brought to the event loop.
#pragma once

#include <functional>
#include <string>

#include "machine/linux/event_loop.h"

namespace rotacasts::host {

/// Hands every line of the standard input to `onLine`, the last one even without a line feed, until
/// that returns false; calls `onEnd` at the end of the input. The loop is the caller's and lives
/// longer.
class ConsoleInput {
 public:
  ConsoleInput(EventLoop& loop, std::function<bool(const std::string&)> onLine,
               std::function<void()> onEnd);
  ~ConsoleInput();
  ConsoleInput(const ConsoleInput&) = delete;
  ConsoleInput& operator=(const ConsoleInput&) = delete;

 private:
  void Read();
  void TakeLines();

  EventLoop& loop_;
  const std::function<bool(const std::string&)> onLine_;
  const std::function<void()> onEnd_;
  std::string text_;  // what has been read and waits for its line feed
};

}  // namespace rotacasts::host
