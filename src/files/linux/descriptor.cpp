#include "files/linux/descriptor.h"

#include <cerrno>
#include <cstring>

#include "base/runtime_error.h"

namespace rotacasts::host {

void RaiseFileError(int problem, const std::filesystem::path& path) {
  ErrorNumber number = ErrorNumber::DeviceIoError;
  if (problem == EACCES || problem == EPERM || problem == EROFS) {
    number = ErrorNumber::PermissionDenied;
  } else if (problem == ENOENT || problem == ENOTDIR) {
    number = ErrorNumber::PathNotFound;
  } else if (problem == ELOOP || problem == EISDIR || problem == ENXIO) {
    number = ErrorNumber::PathFileAccessError;
  } else if (problem == ENOSPC || problem == EDQUOT || problem == EFBIG) {
    number = ErrorNumber::DiskFull;
  }
  throw RuntimeError(number, path.string() + " (" + std::strerror(problem) + ")");
}

void RefuseNoFile(const struct stat& status, const std::filesystem::path& path) {
  if (S_ISREG(status.st_mode)) return;
  throw RuntimeError(ErrorNumber::PathFileAccessError,
                     path.string() + " is no file; put one there, or remove it");
}

struct stat Descriptor::Status(const std::filesystem::path& path) const {
  struct stat status {};
  if (::fstat(descriptor_, &status) != 0) RaiseFileError(errno, path);
  RefuseNoFile(status, path);
  return status;
}

void WriteAll(const Descriptor& file, std::string_view bytes, const std::filesystem::path& path) {
  while (!bytes.empty()) {
    const ssize_t written = ::write(file.Get(), bytes.data(), bytes.size());
    if (written < 0 && errno == EINTR) continue;
    if (written < 0) RaiseFileError(errno, path);
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
    if (count < 0) RaiseFileError(errno, path);
    size += static_cast<std::size_t>(count);
    if (count == 0 || size == expected) break;  // a file that had grown would have filled the room
    if (size == bytes.size()) bytes.resize(2 * size);
  }
  bytes.resize(size);
  return bytes;
}

}  // namespace rotacasts::host
