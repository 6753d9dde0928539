#include "host/machine/host_lock.h"

#include <algorithm>

#include "base/runtime_error.h"
#include "com/com_support.h"
#include "host/machine/native_files.h"

namespace rotacasts::host {

/// Open for writing, and nobody else may.
struct HostLock::File {
  explicit File(const std::string& path)
      : handle(::CreateFileW(NativePath(path).c_str(), GENERIC_READ | GENERIC_WRITE,
                             FILE_SHARE_READ, nullptr, OPEN_ALWAYS, FILE_ATTRIBUTE_NORMAL,
                             nullptr)) {}
  ~File() {
    if (handle != INVALID_HANDLE_VALUE) ::CloseHandle(handle);
  }
  const HANDLE handle;
};

HostLock::~HostLock() = default;

HostLock::HostLock(const std::string& hostFolder, const std::string& time) {
  const std::string path = hostFolder + "\\host.lock";
  file_ = std::make_unique<File>(path);
  const DWORD problem = ::GetLastError();
  if (file_->handle != INVALID_HANDLE_VALUE) {
    const std::string words =
        "process " + std::to_string(::GetCurrentProcessId()) + " since " + time + "\r\n";
    DWORD written = 0;
    ::WriteFile(file_->handle, words.data(), static_cast<DWORD>(words.size()), &written, nullptr);
    ::SetEndOfFile(file_->handle);
    return;
  }
  if (problem != ERROR_SHARING_VIOLATION) {
    throw RuntimeError(ErrorNumber::PermissionDenied,
                       path + " (" + win32::DescribeResult(static_cast<HRESULT>(problem)) + ")");
  }
  holder_ = ReadWholeFile(path).value_or("");
  holder_.erase(std::min(holder_.find('\r'), holder_.size()));
  if (holder_.empty()) holder_ = "another process";  // that has only just begun
}

}  // namespace rotacasts::host
