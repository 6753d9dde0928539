#include "files/host_lock.h"

#include <algorithm>

#include "base/runtime_error.h"
#include "com/com_support.h"
#include "com/unique_handle.h"
#include "files/native_files.h"
#include "services/host_folder.h"

namespace rotacasts::host {

/// The file, open for writing; nobody else can open it for writing.
struct HostLock::File : win32::UniqueHandle {
  explicit File(const std::string& path)
      : UniqueHandle(::CreateFileW(NativePath(path).c_str(), GENERIC_READ | GENERIC_WRITE,
                                   FILE_SHARE_READ, nullptr, OPEN_ALWAYS, FILE_ATTRIBUTE_NORMAL,
                                   nullptr)) {}
};

HostLock::~HostLock() = default;

HostLock::HostLock(const std::string& hostFolder, const std::string& time) {
  const std::string path = HostFolder(hostFolder).Lock();
  file_ = std::make_unique<File>(path);
  const DWORD problem = ::GetLastError();
  if (*file_) {
    const std::string words =
        "process " + std::to_string(::GetCurrentProcessId()) + " since " + time + "\r\n";
    DWORD written = 0;
    ::WriteFile(file_->Get(), words.data(), static_cast<DWORD>(words.size()), &written, nullptr);
    ::SetEndOfFile(file_->Get());
    return;
  }
  if (problem != ERROR_SHARING_VIOLATION) {
    throw RuntimeError(ErrorNumber::PermissionDenied,
                       path + " (" + win32::DescribeResult(static_cast<HRESULT>(problem)) + ")");
  }
  holder_ = ReadWholeFile(path).value_or("");
  holder_.erase(std::min(holder_.find('\r'), holder_.size()));
  if (holder_.empty()) holder_ = "another process";  // it has not written yet
}

}  // namespace rotacasts::host
