#include "files/native_files.h"

#include "base/runtime_error.h"
#include "com/com_support.h"
#include "com/unique_handle.h"

// clang-format off
#include <aclapi.h>
#include <sddl.h>
// clang-format on

namespace rotacasts::host {
namespace {

/// Raises the run-time error for `problem`, a system error code, at `path`.
[[noreturn]] void Raise(DWORD problem, const std::filesystem::path& path) {
  ErrorNumber number = ErrorNumber::DeviceIoError;
  if (problem == ERROR_ACCESS_DENIED || problem == ERROR_SHARING_VIOLATION ||
      problem == ERROR_WRITE_PROTECT) {
    number = ErrorNumber::PermissionDenied;
  } else if (problem == ERROR_FILE_NOT_FOUND || problem == ERROR_PATH_NOT_FOUND ||
             problem == ERROR_DIRECTORY || problem == ERROR_INVALID_NAME) {
    number = ErrorNumber::PathNotFound;
  } else if (problem == ERROR_DISK_FULL || problem == ERROR_HANDLE_DISK_FULL) {
    number = ErrorNumber::DiskFull;
  }
  throw RuntimeError(number, win32::FromWide(path.native()) + " (" +
                                 win32::DescribeResult(static_cast<HRESULT>(problem)) + ")");
}

bool IsMissing(DWORD problem) {
  return problem == ERROR_FILE_NOT_FOUND || problem == ERROR_PATH_NOT_FOUND;
}

constexpr DWORD kShareAll = FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE;

/// An open file, or none. `share` says what others may do with it at the same time.
class File : public win32::UniqueHandle {
 public:
  File(const std::filesystem::path& path, DWORD access, DWORD creation, DWORD share = kShareAll)
      : UniqueHandle(::CreateFileW(path.c_str(), access, share, nullptr, creation,
                                   FILE_ATTRIBUTE_NORMAL, nullptr)) {}
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

std::string ReadAll(const File& file, const std::filesystem::path& path) {
  LARGE_INTEGER length{};
  if (::GetFileSizeEx(file.Get(), &length) == FALSE) Raise(::GetLastError(), path);
  std::string bytes(static_cast<std::size_t>(length.QuadPart) + 1, '\0');  // room to notice growth
  std::size_t size = 0;
  for (;;) {
    DWORD count = 0;
    if (::ReadFile(file.Get(), bytes.data() + size, static_cast<DWORD>(bytes.size() - size), &count,
                   nullptr) == FALSE) {
      Raise(::GetLastError(), path);
    }
    if (count == 0) break;
    size += count;
    if (size == bytes.size()) bytes.resize(2 * size);
  }
  bytes.resize(size);
  return bytes;
}

void RefuseEmpty(const std::string& path) {
  if (path.empty()) throw RuntimeError(ErrorNumber::PathNotFound, "the path is empty");
}

void RefuseFolder(const std::filesystem::path& path, DWORD attributes) {
  if (attributes == INVALID_FILE_ATTRIBUTES || (attributes & FILE_ATTRIBUTE_DIRECTORY) == 0) return;
  throw RuntimeError(ErrorNumber::PathFileAccessError,
                     win32::FromWide(path.native()) + " is no file");
}

void RefuseReadOnly(const std::filesystem::path& path) {
  const DWORD attributes = ::GetFileAttributesW(path.c_str());
  RefuseFolder(path, attributes);
  if (attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_READONLY) != 0) {
    throw RuntimeError(
        ErrorNumber::PermissionDenied,
        win32::FromWide(path.native()) + " is read-only; make it writable and try again");
  }
}

/// Whether the file still holds what was seen and no program has it open for writing.
bool IsStill(const std::filesystem::path& path, const FileBytes& seen) {
  const File file(path, GENERIC_READ, OPEN_EXISTING, FILE_SHARE_READ | FILE_SHARE_DELETE);
  if (!file) return IsMissing(::GetLastError()) && !seen;
  return seen && ReadAll(file, path) == *seen;
}

/// Replaces one file with the other, which keeps its owner and rights. Tries several times, because
/// virus scanners and indexers open files for a moment in a way that prevents it.
void MoveOver(const std::filesystem::path& from, const std::filesystem::path& to) {
  constexpr int kTries = 10;
  constexpr DWORD kPause = 20;  // milliseconds
  for (int tried = 1;; ++tried) {
    if (::ReplaceFileW(to.c_str(), from.c_str(), nullptr, REPLACEFILE_IGNORE_MERGE_ERRORS, nullptr,
                       nullptr) != FALSE) {
      return;
    }
    DWORD problem = ::GetLastError();
    if (IsMissing(problem)) {
      if (::MoveFileExW(from.c_str(), to.c_str(), MOVEFILE_WRITE_THROUGH) != FALSE) return;
      problem = ::GetLastError();
    }
    const bool isInUse = problem == ERROR_ACCESS_DENIED || problem == ERROR_SHARING_VIOLATION ||
                         problem == ERROR_UNABLE_TO_REMOVE_REPLACED;
    if (!isInUse || tried == kTries) Raise(problem, to);
    ::Sleep(kPause);
  }
}

// The name of a new file until it replaces the old one; the number makes it unique.
constexpr std::wstring_view kNewMark = L".new-";

std::filesystem::path NameBeside(const std::filesystem::path& target) {
  static unsigned count = 0;
  std::filesystem::path beside = target;
  beside += std::wstring(kNewMark) + std::to_wstring(::GetCurrentProcessId()) + L"-" +
            std::to_wstring(++count);
  return beside;
}

}  // namespace

std::filesystem::path NativePath(const std::string& path) {
  return win32::ToWide(path);
}

std::optional<std::string> ReadWholeFile(const std::string& path) {
  RefuseEmpty(path);
  const std::filesystem::path native = NativePath(path);
  const File file(native, GENERIC_READ, OPEN_EXISTING);
  if (!file) {
    const DWORD problem = ::GetLastError();
    if (IsMissing(problem)) return std::nullopt;
    RefuseFolder(native, ::GetFileAttributesW(native.c_str()));
    Raise(problem, native);
  }
  return ReadAll(file, native);
}

Replaced ReplaceFile(const std::string& path, std::string_view bytes, const FileBytes* seen) {
  constexpr DWORD kMomentForOthers = 5;  // milliseconds
  RefuseEmpty(path);
  const std::filesystem::path target = NativePath(path);
  RefuseReadOnly(target);
  const std::filesystem::path beside = NameBeside(target);
  try {
    File file(beside, GENERIC_WRITE, CREATE_ALWAYS);
    if (!file) Raise(::GetLastError(), target);
    WriteAll(file, bytes, target);
    if (::FlushFileBuffers(file.Get()) == FALSE) Raise(::GetLastError(), target);
    file.Close();
    if (seen == nullptr || IsStill(target, *seen)) {
      MoveOver(beside, target);
      return {};
    }
    ::DeleteFileW(beside.c_str());
    ::Sleep(kMomentForOthers);
    return {false, {}};
  } catch (...) {
    ::DeleteFileW(beside.c_str());
    throw;
  }
}

void AppendLine(const std::string& path, const std::string& line) {
  RefuseEmpty(path);
  const std::filesystem::path native = NativePath(path);
  const File file(native, GENERIC_READ | GENERIC_WRITE, OPEN_EXISTING);
  if (!file) {
    const DWORD problem = ::GetLastError();
    if (problem == ERROR_FILE_NOT_FOUND) {
      throw RuntimeError(ErrorNumber::FileNotFound, win32::FromWide(native.native()));
    }
    Raise(problem, native);
  }
  LARGE_INTEGER size{};
  if (::GetFileSizeEx(file.Get(), &size) == FALSE) Raise(::GetLastError(), native);
  const auto moveTo = [&](LONGLONG place) {
    LARGE_INTEGER there;
    there.QuadPart = place;
    ::SetFilePointerEx(file.Get(), there, nullptr, FILE_BEGIN);
  };
  char last = '\n';
  DWORD count = 0;
  if (size.QuadPart > 0) {
    moveTo(size.QuadPart - 1);
    ::ReadFile(file.Get(), &last, 1, &count, nullptr);
  }
  moveTo(size.QuadPart);
  try {
    WriteAll(file, (last != '\n' && last != '\r' ? "\r\n" : "") + line + "\r\n", native);
  } catch (...) {
    moveTo(size.QuadPart);
    ::SetEndOfFile(file.Get());
    throw;
  }
}

void MakePrivate(const std::string& path) {
  const std::filesystem::path native = NativePath(path);
  /// What the system allocates.
  struct Freed {
    ~Freed() { ::LocalFree(memory); }
    void* memory = nullptr;
  } current, name, rights;
  PSID owner = nullptr;
  DWORD problem =
      ::GetNamedSecurityInfoW(native.c_str(), SE_FILE_OBJECT, OWNER_SECURITY_INFORMATION, &owner,
                              nullptr, nullptr, nullptr, &current.memory);
  if (problem != ERROR_SUCCESS) Raise(problem, native);
  wchar_t* text = nullptr;
  if (::ConvertSidToStringSidW(owner, &text) == FALSE) Raise(::GetLastError(), native);
  name.memory = text;
  const std::wstring wanted = L"D:P(A;;FA;;;SY)(A;;FA;;;BA)(A;;FA;;;" + std::wstring(text) + L")";
  if (::ConvertStringSecurityDescriptorToSecurityDescriptorW(wanted.c_str(), SDDL_REVISION_1,
                                                             &rights.memory, nullptr) == FALSE ||
      ::SetFileSecurityW(native.c_str(), DACL_SECURITY_INFORMATION, rights.memory) == FALSE) {
    Raise(::GetLastError(), native);
  }
}

void ShareAsParent(const std::string&) noexcept {}

std::vector<std::string> TidyLeftovers(const std::string& folder) noexcept try {
  for (const auto& entry : std::filesystem::directory_iterator(NativePath(folder))) {
    const std::wstring name = entry.path().filename().native();
    const std::size_t mark = name.rfind(kNewMark);
    if (mark == name.npos) continue;
    const bool isOurs = name.find_first_not_of(L"0123456789-", mark + kNewMark.size()) == name.npos;
    if (isOurs) ::DeleteFileW(entry.path().c_str());
  }
  return {};
} catch (...) {  // NOLINT: leftovers only take up space
  return {};
}

}  // namespace rotacasts::host
