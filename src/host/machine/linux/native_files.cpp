#include "host/machine/native_files.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <utility>

#include "base/runtime_error.h"
#include "base/text.h"

namespace rotacasts::host {
namespace {

/// Raises the run-time error that stands for `problem`, an errno value, met at `path`.
[[noreturn]] void Raise(int problem, const std::filesystem::path& path) {
  ErrorNumber number = ErrorNumber::DeviceIoError;
  if (problem == EACCES || problem == EPERM || problem == EROFS) {
    number = ErrorNumber::PermissionDenied;
  } else if (problem == ENOENT || problem == ENOTDIR) {
    number = ErrorNumber::PathNotFound;
  }
  throw RuntimeError(number, path.string() + " (" + std::strerror(problem) + ")");
}

/// An open file.
class Descriptor {
 public:
  Descriptor(const std::filesystem::path& path, int flags, mode_t mode = 0)
      : descriptor_(::open(path.c_str(), flags | O_CLOEXEC, mode)) {}
  ~Descriptor() { Close(); }
  Descriptor(const Descriptor&) = delete;
  Descriptor& operator=(const Descriptor&) = delete;

  bool IsOpen() const { return descriptor_ >= 0; }
  int Get() const { return descriptor_; }
  int Close() { return IsOpen() ? ::close(std::exchange(descriptor_, -1)) : 0; }

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

/// The file that a name stands for: a symbolic link's target, so that the link itself survives.
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

}  // namespace

std::filesystem::path NativePath(const std::string& path) {
  return ReplaceAll(path, "\\", "/");
}

std::string HostPath(const std::filesystem::path& path) {
  return ReplaceAll(path.string(), "/", "\\");
}

std::optional<std::string> ReadWholeFile(const std::string& path) {
  RefuseEmpty(path);
  const std::filesystem::path native = NativePath(path);
  const Descriptor file(native, O_RDONLY);
  if (!file.IsOpen()) {
    if (errno == ENOENT || errno == ENOTDIR) return std::nullopt;
    Raise(errno, native);
  }
  struct stat status {};
  if (::fstat(file.Get(), &status) != 0) Raise(errno, native);
  std::string bytes(static_cast<std::size_t>(status.st_size) + 1, '\0');  // room to notice growth
  std::size_t size = 0;
  for (;;) {
    const ssize_t count = ::read(file.Get(), bytes.data() + size, bytes.size() - size);
    if (count < 0 && errno == EINTR) continue;
    if (count < 0) Raise(errno, native);
    if (count == 0) break;
    size += static_cast<std::size_t>(count);
    if (size == bytes.size()) bytes.resize(2 * size);
  }
  bytes.resize(size);
  return bytes;
}

void ReplaceFile(const std::string& path, std::string_view bytes) {
  RefuseEmpty(path);
  const std::filesystem::path target = Target(path);
  mode_t mode = 0644;
  struct stat status {};
  if (::stat(target.c_str(), &status) == 0) {
    mode = status.st_mode & 07777;
    if ((mode & S_IWUSR) == 0) {
      throw RuntimeError(ErrorNumber::PermissionDenied,
                         target.string() + " is read-only; make it writable and try again");
    }
  }
  std::filesystem::path beside = target;
  beside += ".tmp";
  try {
    Descriptor file(beside, O_WRONLY | O_CREAT | O_TRUNC, mode);
    if (!file.IsOpen()) Raise(errno, target);
    WriteAll(file, bytes, target);
    if (file.Close() != 0) Raise(errno, target);
    if (::rename(beside.c_str(), target.c_str()) != 0) Raise(errno, target);
  } catch (...) {
    ::unlink(beside.c_str());
    throw;
  }
}

void AppendToFile(const std::string& path, std::string_view bytes) {
  RefuseEmpty(path);
  const std::filesystem::path native = NativePath(path);
  const Descriptor file(native, O_WRONLY | O_APPEND);
  if (!file.IsOpen()) {
    if (errno == ENOENT) throw RuntimeError(ErrorNumber::FileNotFound, native.string());
    Raise(errno, native);
  }
  WriteAll(file, bytes, native);
}

}  // namespace rotacasts::host
