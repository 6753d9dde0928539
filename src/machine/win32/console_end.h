// The end of the console that the program runs in.
#pragma once

#include <functional>

namespace rotacasts::host {

/// From when it is made, `end` is called once for Ctrl-C and Ctrl-Break, and when the console is
/// closed, the person logs off or the machine shuts down; on a thread of the system. `end` has the
/// program end. Only one may be made.
class ConsoleEnd {
 public:
  explicit ConsoleEnd(std::function<void()> end);
  ConsoleEnd(const ConsoleEnd&) = delete;
  ConsoleEnd& operator=(const ConsoleEnd&) = delete;
};

}  // namespace rotacasts::host
