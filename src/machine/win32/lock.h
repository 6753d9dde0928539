// A lock between threads.
#pragma once

#include "com/windows_api.h"

namespace rotacasts::win32 {

class Lock {
 public:
  Lock() { ::InitializeCriticalSection(&section_); }
  ~Lock() { ::DeleteCriticalSection(&section_); }
  Lock(const Lock&) = delete;
  Lock& operator=(const Lock&) = delete;

  /// Holds the lock while it lives.
  class Held {
   public:
    explicit Held(Lock& lock) : lock_(lock) { ::EnterCriticalSection(&lock_.section_); }
    ~Held() { ::LeaveCriticalSection(&lock_.section_); }
    Held(const Held&) = delete;
    Held& operator=(const Held&) = delete;

   private:
    Lock& lock_;
  };

 private:
  CRITICAL_SECTION section_;
};

}  // namespace rotacasts::win32
