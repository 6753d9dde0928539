// The owner of one of the system's handles.
#pragma once

#include <utility>

#include "com/windows_api.h"

namespace rotacasts::win32 {

/// Closes its handle. Calls of the system answer a null one or the invalid one where there is none;
/// here either is none.
class UniqueHandle {
 public:
  explicit UniqueHandle(HANDLE handle)
      : handle_(handle != INVALID_HANDLE_VALUE ? handle : nullptr) {}
  ~UniqueHandle() { Close(); }
  UniqueHandle(const UniqueHandle&) = delete;
  UniqueHandle& operator=(const UniqueHandle&) = delete;

  HANDLE Get() const { return handle_; }
  explicit operator bool() const { return handle_ != nullptr; }
  void Close() {
    if (handle_ != nullptr) ::CloseHandle(std::exchange(handle_, nullptr));
  }

 private:
  HANDLE handle_;
};

}  // namespace rotacasts::win32
