#include "files/native_files.h"

#include <cerrno>

#include "base/runtime_error.h"
#include "base/text.h"
#include "files/linux/atomic_replace.h"
#include "files/linux/descriptor.h"
#include "files/linux/file_rights.h"

namespace rotacasts::host {
namespace {

/// The file to replace: the target of a symbolic link, so that the link survives.
std::filesystem::path Target(const std::string& path) {
  std::filesystem::path native = NativePath(path);
  struct stat status {};
  if (::lstat(native.c_str(), &status) != 0 || !S_ISLNK(status.st_mode)) return native;
  std::error_code problem;
  std::filesystem::path target = std::filesystem::canonical(native, problem);
  if (!problem) return target;
  throw RuntimeError(ErrorNumber::PathFileAccessError,
                     native.string() + " is a link that leads to no file (" + problem.message() +
                         "); make the file, or remove the link");
}

void RefuseEmpty(const std::string& path) {
  if (path.empty()) throw RuntimeError(ErrorNumber::PathNotFound, "the path is empty");
}

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
    RaiseFileError(errno, native);
  }
  return ReadAll(file, native);
}

Replaced ReplaceFile(const std::string& path, std::string_view bytes, const FileBytes* seen) {
  RefuseEmpty(path);
  constexpr useconds_t kMomentForOthers = 5000;
  Replaced replaced = AtomicReplace(Target(path)).Run(bytes, seen);
  if (!replaced.isDone) ::usleep(kMomentForOthers);
  return replaced;
}

void AppendLine(const std::string& path, const std::string& line) {
  RefuseEmpty(path);
  const std::filesystem::path native = NativePath(path);
  const Descriptor file(native, O_RDWR | O_APPEND);
  if (!file.IsOpen()) {
    if (errno == ENOENT) throw RuntimeError(ErrorNumber::FileNotFound, native.string());
    RaiseFileError(errno, native);
  }
  const off_t size = file.Status(native).st_size;
  char last = '\n';
  if (size > 0 && ::pread(file.Get(), &last, 1, size - 1) < 0) RaiseFileError(errno, native);
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
  GiveOwner(made, parent);
  (void)!::fchmod(made.Get(), parent.st_mode & 07777);
}

}  // namespace rotacasts::host
