// Calls into this module that are on the stack.
#pragma once

#include <atomic>

namespace rotacasts::win32 {

/// One call into this module, for as long as it runs: of COM's, or of a window procedure. Whatever
/// runs a message loop beneath it (a box, a menu, a component's call) can bring the host to release
/// all that it has of the module; yet the call has to come back to its code.
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
