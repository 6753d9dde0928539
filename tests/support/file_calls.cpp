#include "support/file_calls.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <cerrno>
#include <cstdarg>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <utility>

namespace rotacasts {
inline namespace testing {
namespace {

std::function<int(const FileCall&)> hook;
bool isInHook = false;

std::string OpenedPath(int descriptor) {
  std::error_code problem;
  return std::filesystem::read_symlink("/proc/self/fd/" + std::to_string(descriptor), problem);
}

/// Whether the call is to fail; sets errno then.
template <typename Describe>
bool Fails(const Describe& describe) {
  if (!hook || isInHook) return false;
  isInHook = true;
  const int problem = hook(describe());
  isInHook = false;
  errno = problem;
  return problem != 0;
}

}  // namespace

FileCalls::FileCalls(std::function<int(const FileCall&)> asked) {
  hook = std::move(asked);
}
FileCalls::~FileCalls() {
  hook = nullptr;
}

}  // namespace testing
}  // namespace rotacasts

using namespace rotacasts;

// These take the place of the C library's functions in the whole program.
extern "C" {

int open(const char* path, int flags, ...) {
  std::va_list rest;
  va_start(rest, flags);
  const mode_t mode = (flags & O_CREAT) != 0 ? va_arg(rest, mode_t) : 0;
  va_end(rest);
  if (Fails([&] { return FileCall{"open", path}; })) return -1;
  return static_cast<int>(::syscall(SYS_openat, AT_FDCWD, path, flags, mode));
}

int mkostemp(char* path, int flags) noexcept {
  static int made = 100000;
  std::memcpy(path + std::strlen(path) - 6, std::to_string(++made).c_str(), 6);
  if (Fails([&] { return FileCall{"create", path}; })) return -1;
  return static_cast<int>(
      ::syscall(SYS_openat, AT_FDCWD, path, flags | O_RDWR | O_CREAT | O_EXCL, 0600));
}

ssize_t read(int descriptor, void* bytes, size_t size) {
  if (Fails([&] { return FileCall{"read", OpenedPath(descriptor)}; })) return -1;
  return ::syscall(SYS_read, descriptor, bytes, size);
}

ssize_t write(int descriptor, const void* bytes, size_t size) {
  const auto describe = [&] {
    return FileCall{"write", OpenedPath(descriptor), "", {static_cast<const char*>(bytes), size}};
  };
  return Fails(describe) ? -1 : ::syscall(SYS_write, descriptor, bytes, size);
}

int fsync(int descriptor) {
  if (Fails([&] { return FileCall{"fsync", OpenedPath(descriptor)}; })) return -1;
  return hook ? 0 : static_cast<int>(::syscall(SYS_fsync, descriptor));
}

int close(int descriptor) {
  const bool fails = Fails([&] { return FileCall{"close", OpenedPath(descriptor)}; });
  const int problem = errno;
  const int result = static_cast<int>(::syscall(SYS_close, descriptor));
  if (fails) errno = problem;
  return fails ? -1 : result;
}

int fchmod(int descriptor, mode_t mode) noexcept {
  if (Fails([&] { return FileCall{"fchmod", OpenedPath(descriptor)}; })) return -1;
  return static_cast<int>(::syscall(SYS_fchmod, descriptor, mode));
}

int rename(const char* from, const char* to) noexcept {
  if (Fails([&] { return FileCall{"rename", from, to}; })) return -1;
  return static_cast<int>(::syscall(SYS_renameat2, AT_FDCWD, from, AT_FDCWD, to, 0));
}

int renameat2(int fromFolder, const char* from, int toFolder, const char* to,
              unsigned flags) noexcept {
  const char* const name = flags == RENAME_EXCHANGE ? "exchange" : "move";
  if (Fails([&] { return FileCall{name, from, to}; })) return -1;
  if (!hasExchange) return errno = EINVAL, -1;
  return static_cast<int>(::syscall(SYS_renameat2, fromFolder, from, toFolder, to, flags));
}

int link(const char* from, const char* to) noexcept {
  if (Fails([&] { return FileCall{"link", from, to}; })) return -1;
  return static_cast<int>(::syscall(SYS_linkat, AT_FDCWD, from, AT_FDCWD, to, 0));
}

int unlink(const char* path) noexcept {
  if (Fails([&] { return FileCall{"unlink", path}; })) return -1;
  return static_cast<int>(::syscall(SYS_unlinkat, AT_FDCWD, path, 0));
}
}
