// Calls into this module that are on the stack.
#pragma once

#include <atomic>

namespace rotacasts::win32 {

/// Marks a call into this module, by COM or to a window procedure, for as long as it runs. A
/// message loop inside the call (a box, a menu, a component's call) may let the host release
/// everything, but the call still has to return to this module's code.
class Entry {
 public:
  Entry() { ++count_; }
  ~Entry() { --count_; }
  Entry(const Entry&) = delete;
  Entry& operator=(const Entry&) = delete;

  static bool IsAnyUnderWay() { return count_ > 0; }

 private:
  static inline std::atomic<int> count_ = 0;
};

}  // namespace rotacasts::win32
