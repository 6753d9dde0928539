#include "machine/native_files.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <cstring>
#include <utility>

#include "base/runtime_error.h"
#include "base/text.h"

namespace rotacasts::host {
namespace {

/// Raises the run-time error for `problem`, an errno value, at `path`.
[[noreturn]] void Raise(int problem, const std::filesystem::path& path) {
  ErrorNumber number = ErrorNumber::DeviceIoError;
  if (problem == EACCES || problem == EPERM || problem == EROFS) {
    number = ErrorNumber::PermissionDenied;
  } else if (problem == ENOENT || problem == ENOTDIR) {
    number = ErrorNumber::PathNotFound;
  } else if (problem == ENOSPC || problem == EDQUOT || problem == EFBIG) {
    number = ErrorNumber::DiskFull;
  }
  throw RuntimeError(number, path.string() + " (" + std::strerror(problem) + ")");
}

void RefuseNoFile(const struct stat& status, const std::filesystem::path& path) {
  if (S_ISREG(status.st_mode)) return;
  throw RuntimeError(ErrorNumber::PathFileAccessError, path.string() + " is no file");
}

/// An open descriptor. Opening never waits, not even for a pipe without a writer.
class Descriptor {
 public:
  Descriptor(const std::filesystem::path& path, int flags)
      : Descriptor(::open(path.c_str(), flags | O_CLOEXEC | O_NONBLOCK | O_NOCTTY)) {}
  explicit Descriptor(int descriptor) : descriptor_(descriptor) {}
  ~Descriptor() { Close(); }
  Descriptor(const Descriptor&) = delete;
  Descriptor& operator=(const Descriptor&) = delete;

  bool IsOpen() const { return descriptor_ >= 0; }
  int Get() const { return descriptor_; }
  int Close() { return IsOpen() ? ::close(std::exchange(descriptor_, -1)) : 0; }
  /// Errors: 75 if it is not a regular file.
  struct stat Status(const std::filesystem::path& path) const {
    struct stat status {};
    if (::fstat(descriptor_, &status) != 0) Raise(errno, path);
    RefuseNoFile(status, path);
    return status;
  }

 private:
  int descriptor_;
};

void WriteAll(const Descriptor& file, std::string_view bytes, const std::filesystem::path& path) {
  while (!bytes.empty()) {
    const ssize_t written = ::write(file.Get(), bytes.data(), bytes.size());
    if (written < 0 && errno == EINTR) continue;
    if (written < 0) Raise(errno, path);
    bytes.remove_prefix(static_cast<std::size_t>(written));
  }
}

std::string ReadAll(const Descriptor& file, const std::filesystem::path& path) {
  const auto expected = static_cast<std::size_t>(file.Status(path).st_size);
  std::string bytes(expected + 1, '\0');  // room to notice growth
  std::size_t size = 0;
  for (;;) {
    const ssize_t count = ::read(file.Get(), bytes.data() + size, bytes.size() - size);
    if (count < 0 && errno == EINTR) continue;
    if (count < 0) Raise(errno, path);
    size += static_cast<std::size_t>(count);
    if (count == 0 || size == expected) break;  // a file that had grown would have filled the room
    if (size == bytes.size()) bytes.resize(2 * size);
  }
  bytes.resize(size);
  return bytes;
}

/// The file to replace: the target of a symbolic link, so that the link survives.
std::filesystem::path Target(const std::string& path) {
  std::filesystem::path native = NativePath(path);
  struct stat status {};
  if (::lstat(native.c_str(), &status) == 0 && S_ISLNK(status.st_mode)) {
    native = std::filesystem::weakly_canonical(native);
  }
  return native;
}

void RefuseEmpty(const std::string& path) {
  if (path.empty()) throw RuntimeError(ErrorNumber::PathNotFound, "the path is empty");
}

// The name of a new file until it replaces the old one; the random part makes it unique.
constexpr std::string_view kNewMark = ".new-";
constexpr std::string_view kRandom = "XXXXXX";

/// Whether another program has the file open for writing, as far as the system can tell.
bool IsBeingWritten(const Descriptor& file) {
  ::fcntl(file.Get(), F_SETSIG, SIGURG);  // ignored by default; sent if somebody opens it just now
  if (::fcntl(file.Get(), F_SETLEASE, F_RDLCK) != 0) return errno == EAGAIN;
  ::fcntl(file.Get(), F_SETLEASE, F_UNLCK);
  return false;
}

/// Whether the file still holds what was seen and no program has it open for writing.
bool IsStill(const std::filesystem::path& path, const FileBytes& seen) {
  const Descriptor file(path, O_RDONLY | O_NOFOLLOW);
  if (!file.IsOpen()) return errno == ENOENT && !seen;
  return seen && !IsBeingWritten(file) && ReadAll(file, path) == *seen;
}

/// Gives a file or folder the owner and group that `status` has, as far as this user may.
void Give(const Descriptor& made, const struct stat& status) {
  if (::fchown(made.Get(), status.st_uid, status.st_gid) != 0) {
    (void)!::fchown(made.Get(), static_cast<uid_t>(-1), status.st_gid);
  }
}

/// Replaces one file with another.
class AtomicReplace {
 public:
  explicit AtomicReplace(std::filesystem::path target)
      : target_(std::move(target)), folder_(target_.parent_path()) {}
  ~AtomicReplace() {
    if (!beside_.empty()) ::unlink(beside_.c_str());
  }
  AtomicReplace(const AtomicReplace&) = delete;
  AtomicReplace& operator=(const AtomicReplace&) = delete;

  bool Run(std::string_view bytes, const FileBytes* seen) {
    WriteBeside(bytes);
    if (seen != nullptr && !IsStill(target_, *seen)) return false;
    if (!(seen != nullptr ? Exchange(bytes, *seen) : Rename(0))) return false;
    const Descriptor folder(folder_, O_RDONLY | O_DIRECTORY);
    if (::fsync(folder.Get()) != 0 && errno != EINVAL) Raise(errno, folder_);
    return true;
  }

 private:
  void WriteBeside(std::string_view bytes) {
    struct stat status {};
    const bool exists = ::stat(target_.c_str(), &status) == 0;
    if (exists) {
      RefuseNoFile(status, target_);
      RefuseReadOnly(status);
    }
    std::string name = folder_ / ("." + target_.filename().string());
    name.append(kNewMark).append(kRandom);
    Descriptor file(::mkostemp(name.data(), O_CLOEXEC));
    if (!file.IsOpen()) Raise(errno, folder_);
    beside_ = name;
    if (!exists && ::stat(folder_.c_str(), &status) != 0) Raise(errno, folder_);
    // Where neither owner nor group may be changed, the mode still gives everybody their access.
    Give(file, status);
    if (::fchmod(file.Get(), status.st_mode & (exists ? 07777 : 0666)) != 0) Raise(errno, target_);
    WriteAll(file, bytes, target_);
    if (::fsync(file.Get()) != 0 || file.Close() != 0) Raise(errno, target_);
  }

  void RefuseReadOnly(const struct stat& status) const {
    const bool isWritable = (status.st_mode & S_IWUSR) != 0 &&
                            ::faccessat(AT_FDCWD, target_.c_str(), W_OK, AT_EACCESS) == 0;
    if (isWritable) return;
    throw RuntimeError(ErrorNumber::PermissionDenied,
                       target_.string() + " is read-only; make it writable and try again");
  }

  /// Returns false, without a change, if the name does not (or no longer) fit the flags.
  bool Rename(unsigned flags) {
    const char* const from = beside_.c_str();
    int failed = ::renameat2(AT_FDCWD, from, AT_FDCWD, target_.c_str(), flags);
    if (failed != 0 && flags != 0 && (errno == ENOENT || errno == EEXIST)) return false;
    if (failed != 0 && (errno == EINVAL || errno == ENOSYS)) {  // a file system without flags
      failed = ::rename(from, target_.c_str());
      flags = 0;
    }
    if (failed != 0) Raise(errno, target_);
    if (flags != RENAME_EXCHANGE) beside_.clear();
    return true;
  }

  /// Exchanges the files, then checks the old one again when nobody can open it any more. If a
  /// program saved it at the last moment, puts it back and returns false.
  bool Exchange(std::string_view bytes, const FileBytes& seen) {
    if (!Rename(seen ? RENAME_EXCHANGE : RENAME_NOREPLACE)) return false;
    if (beside_.empty() || IsStill(beside_, seen)) return true;
    if (Rename(RENAME_EXCHANGE) && !IsStill(beside_, std::string(bytes))) {
      Rename(RENAME_EXCHANGE);  // saved once more in between: that is the latest
    }
    return false;
  }

  const std::filesystem::path target_;
  const std::filesystem::path folder_;
  std::string beside_;  // the other file, while there is one
};

}  // namespace

std::filesystem::path NativePath(const std::string& path) {
  return ReplaceAll(path, "\\", "/");
}

std::optional<std::string> ReadWholeFile(const std::string& path) {
  RefuseEmpty(path);
  const std::filesystem::path native = NativePath(path);
  const Descriptor file(native, O_RDONLY);
  if (!file.IsOpen()) {
    if (errno == ENOENT || errno == ENOTDIR) return std::nullopt;
    Raise(errno, native);
  }
  return ReadAll(file, native);
}

bool ReplaceFile(const std::string& path, std::string_view bytes, const FileBytes* seen) {
  RefuseEmpty(path);
  constexpr useconds_t kMomentForOthers = 5000;
  const bool isReplaced = AtomicReplace(Target(path)).Run(bytes, seen);
  if (!isReplaced) ::usleep(kMomentForOthers);
  return isReplaced;
}

void AppendLine(const std::string& path, const std::string& line) {
  RefuseEmpty(path);
  const std::filesystem::path native = NativePath(path);
  const Descriptor file(native, O_RDWR | O_APPEND);
  if (!file.IsOpen()) {
    if (errno == ENOENT) throw RuntimeError(ErrorNumber::FileNotFound, native.string());
    Raise(errno, native);
  }
  const off_t size = file.Status(native).st_size;
  char last = '\n';
  if (size > 0 && ::pread(file.Get(), &last, 1, size - 1) < 0) Raise(errno, native);
  const bool isWithinLine = last != '\n' && last != '\r';
  try {
    WriteAll(file, (isWithinLine ? "\r\n" : "") + line + "\r\n", native);
  } catch (...) {
    if (::ftruncate(file.Get(), size) != 0) {  // half a line remains; the first error matters more
    }
    throw;
  }
}

void ShareAsParent(const std::string& folder) noexcept {
  const Descriptor made(NativePath(folder), O_RDONLY | O_DIRECTORY | O_NOFOLLOW);
  struct stat parent {};
  if (::stat(NativePath(folder).parent_path().c_str(), &parent) != 0) return;
  Give(made, parent);
  (void)!::fchmod(made.Get(), parent.st_mode & 07777);
}

void RemoveLeftovers(const std::string& folder) noexcept try {
  for (const auto& entry : std::filesystem::directory_iterator(NativePath(folder))) {
    const std::string name = entry.path().filename().string();
    const std::size_t mark = name.rfind(kNewMark);
    if (name[0] != '.' || mark == name.npos) continue;
    if (name.size() == mark + kNewMark.size() + kRandom.size()) ::unlink(entry.path().c_str());
  }
} catch (...) {  // NOLINT: leftovers only take up space
}

}  // namespace rotacasts::host
