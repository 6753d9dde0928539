#include "host/machine/native_files.h"

#include <utility>

#include "base/runtime_error.h"
#include "com/com_support.h"

#undef ReplaceFile  // the system's own name for something else

namespace rotacasts::host {
namespace {

/// Raises the run-time error that stands for `problem`, a system error code, met at `path`.
[[noreturn]] void Raise(DWORD problem, const std::filesystem::path& path) {
  ErrorNumber number = ErrorNumber::DeviceIoError;
  if (problem == ERROR_ACCESS_DENIED || problem == ERROR_SHARING_VIOLATION ||
      problem == ERROR_WRITE_PROTECT) {
    number = ErrorNumber::PermissionDenied;
  } else if (problem == ERROR_FILE_NOT_FOUND || problem == ERROR_PATH_NOT_FOUND ||
             problem == ERROR_DIRECTORY || problem == ERROR_INVALID_NAME) {
    number = ErrorNumber::PathNotFound;
  }
  throw RuntimeError(number, win32::FromWide(path.native()) + " (" +
                                 win32::DescribeResult(static_cast<HRESULT>(problem)) + ")");
}

bool IsMissing(DWORD problem) {
  return problem == ERROR_FILE_NOT_FOUND || problem == ERROR_PATH_NOT_FOUND;
}

/// An open file. Others may read, write and replace it meanwhile.
class File {
 public:
  File(const std::filesystem::path& path, DWORD access, DWORD creation)
      : handle_(::CreateFileW(path.c_str(), access,
                              FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, nullptr,
                              creation, FILE_ATTRIBUTE_NORMAL, nullptr)) {}
  ~File() { Close(); }
  File(const File&) = delete;
  File& operator=(const File&) = delete;

  bool IsOpen() const { return handle_ != INVALID_HANDLE_VALUE; }
  HANDLE Get() const { return handle_; }
  void Close() {
    if (IsOpen()) ::CloseHandle(std::exchange(handle_, INVALID_HANDLE_VALUE));
  }

 private:
  HANDLE handle_;
};

void WriteAll(const File& file, std::string_view bytes, const std::filesystem::path& path) {
  while (!bytes.empty()) {
    DWORD written = 0;
    if (::WriteFile(file.Get(), bytes.data(), static_cast<DWORD>(bytes.size()), &written,
                    nullptr) == FALSE) {
      Raise(::GetLastError(), path);
    }
    bytes.remove_prefix(written);
  }
}

void RefuseEmpty(const std::string& path) {
  if (path.empty()) throw RuntimeError(ErrorNumber::PathNotFound, "the path is empty");
}

void RefuseReadOnly(const std::filesystem::path& path) {
  const DWORD attributes = ::GetFileAttributesW(path.c_str());
  if (attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_READONLY) != 0) {
    throw RuntimeError(
        ErrorNumber::PermissionDenied,
        win32::FromWide(path.native()) + " is read-only; make it writable and try again");
  }
}

/// Puts one file in the other's place. What a program has open cannot be replaced unless it allows
/// for that, and a virus scanner or an indexer has for a moment: a few tries are made.
void MoveOver(const std::filesystem::path& from, const std::filesystem::path& to) {
  constexpr int kTries = 10;
  constexpr DWORD kPause = 20;  // milliseconds
  constexpr DWORD kHow = MOVEFILE_REPLACE_EXISTING | MOVEFILE_WRITE_THROUGH;
  for (int tried = 1; ::MoveFileExW(from.c_str(), to.c_str(), kHow) == FALSE; ++tried) {
    const DWORD problem = ::GetLastError();
    const bool isInUse = problem == ERROR_ACCESS_DENIED || problem == ERROR_SHARING_VIOLATION;
    if (!isInUse || tried == kTries) Raise(problem, to);
    ::Sleep(kPause);
  }
}

}  // namespace

std::filesystem::path NativePath(const std::string& path) {
  return win32::ToWide(path);
}

std::string HostPath(const std::filesystem::path& path) {
  return win32::FromWide(std::filesystem::path(path).make_preferred().native());
}

std::optional<std::string> ReadWholeFile(const std::string& path) {
  RefuseEmpty(path);
  const std::filesystem::path native = NativePath(path);
  const File file(native, GENERIC_READ, OPEN_EXISTING);
  if (!file.IsOpen()) {
    const DWORD problem = ::GetLastError();
    if (IsMissing(problem)) return std::nullopt;
    Raise(problem, native);
  }
  LARGE_INTEGER length{};
  if (::GetFileSizeEx(file.Get(), &length) == FALSE) Raise(::GetLastError(), native);
  std::string bytes(static_cast<std::size_t>(length.QuadPart) + 1, '\0');  // room to notice growth
  std::size_t size = 0;
  for (;;) {
    DWORD count = 0;
    if (::ReadFile(file.Get(), bytes.data() + size, static_cast<DWORD>(bytes.size() - size), &count,
                   nullptr) == FALSE) {
      Raise(::GetLastError(), native);
    }
    if (count == 0) break;
    size += count;
    if (size == bytes.size()) bytes.resize(2 * size);
  }
  bytes.resize(size);
  return bytes;
}

void ReplaceFile(const std::string& path, std::string_view bytes) {
  RefuseEmpty(path);
  const std::filesystem::path target = NativePath(path);
  RefuseReadOnly(target);
  std::filesystem::path beside = target;
  beside += L".tmp";
  try {
    File file(beside, GENERIC_WRITE, CREATE_ALWAYS);
    if (!file.IsOpen()) Raise(::GetLastError(), target);
    WriteAll(file, bytes, target);
    file.Close();
    MoveOver(beside, target);
  } catch (...) {
    ::DeleteFileW(beside.c_str());
    throw;
  }
}

void AppendToFile(const std::string& path, std::string_view bytes) {
  RefuseEmpty(path);
  const std::filesystem::path native = NativePath(path);
  const File file(native, FILE_APPEND_DATA, OPEN_EXISTING);
  if (!file.IsOpen()) {
    const DWORD problem = ::GetLastError();
    if (problem == ERROR_FILE_NOT_FOUND) {
      throw RuntimeError(ErrorNumber::FileNotFound, win32::FromWide(native.native()));
    }
    Raise(problem, native);
  }
  WriteAll(file, bytes, native);
}

}  // namespace rotacasts::host
