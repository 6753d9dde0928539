// An owner of a system handle.
#pragma once

#include <utility>

#include "com/windows_api.h"

namespace rotacasts::win32 {

/// Closes its handle. The system reports failure with a null or an invalid handle; both are stored
/// as null.
class UniqueHandle {
 public:
  explicit UniqueHandle(HANDLE handle)
      : handle_(handle != INVALID_HANDLE_VALUE ? handle : nullptr) {}
  ~UniqueHandle() { Close(); }
  UniqueHandle(UniqueHandle&& other) noexcept : handle_(std::exchange(other.handle_, nullptr)) {}
  UniqueHandle& operator=(UniqueHandle&& other) noexcept {
    std::swap(handle_, other.handle_);
    return *this;
  }

  HANDLE Get() const { return handle_; }
  explicit operator bool() const { return handle_ != nullptr; }
  void Close() {
    if (handle_ != nullptr) ::CloseHandle(std::exchange(handle_, nullptr));
  }

 private:
  HANDLE handle_;
};

}  // namespace rotacasts::win32
