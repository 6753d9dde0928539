#include "files/host_lock.h"

#include <sys/file.h>

#include <algorithm>
#include <cerrno>
#include <cstring>

#include "base/runtime_error.h"
#include "files/linux/descriptor.h"
#include "files/native_files.h"
#include "services/host_folder.h"

namespace rotacasts::host {
namespace {

/// What to do about `problem`, an errno value, with the lock file.
std::string WayOut(int problem, const std::string& hostFolder) {
  switch (problem) {
    case EISDIR:
    case ELOOP:
    case ENXIO:
      return "this is no file; remove it and start again";
    case ENOSPC:
    case EDQUOT:
      return "make room on the disk";
    case EROFS:
      return "put the host folder where it can be written";
    case ENOLCK:
    case EOPNOTSUPP:
      return "this file system has no locks; put the host folder on a local disk";
    case EMFILE:
    case ENFILE:
    case ENOMEM:
      return "the system is short of this now; start again later";
    default:
      return "let the host's user write it, and " + hostFolder;
  }
}

/// A host that root starts by hand leaves the file to the folder's owner, but no file that has
/// another name elsewhere.
void LeaveToOwner(const Descriptor& file, const std::string& hostFolder) {
  struct stat folder {};
  struct stat lock {};
  if (::stat(hostFolder.c_str(), &folder) != 0 || ::fstat(file.Get(), &lock) != 0) return;
  if (!S_ISREG(lock.st_mode) || lock.st_nlink != 1) return;
  (void)!::fchown(file.Get(), folder.st_uid, folder.st_gid);
  (void)!::fchmod(file.Get(), folder.st_mode & 0666);
}

std::string HolderIn(const Descriptor& file) {
  char words[100];
  const ssize_t size = ::pread(file.Get(), words, sizeof words, 0);
  std::string holder(words, size > 0 ? static_cast<std::size_t>(size) : 0);
  holder.erase(std::min(holder.find('\n'), holder.size()));
  return holder.empty() ? "another process" : holder;  // it has not written yet
}

}  // namespace

/// The locks belong to the open files; programs that the host starts do not inherit them. The
/// folder is locked as well because somebody may remove the file, and the file because not every
/// file system locks folders.
struct HostLock::File {
  explicit File(const std::string& hostFolder)
      : folder(NativePath(hostFolder), O_RDONLY | O_DIRECTORY),
        file(::open(NativePath(HostFolder(hostFolder).Lock()).c_str(),
                    O_RDWR | O_CREAT | O_CLOEXEC | O_NOFOLLOW | O_NONBLOCK | O_NOCTTY, 0644)) {}
  const Descriptor folder;
  const Descriptor file;
};

HostLock::~HostLock() = default;

HostLock::HostLock(const std::string& hostFolder, const std::string& time) {
  const auto raise = [&hostFolder] {
    const int problem = errno;
    const bool isForbidden =
        problem == EACCES || problem == EPERM || problem == EROFS || problem == ELOOP;
    throw RuntimeError(isForbidden ? ErrorNumber::PermissionDenied : ErrorNumber::DeviceIoError,
                       NativePath(HostFolder(hostFolder).Lock()).string() + " (" +
                           std::strerror(problem) + "); " + WayOut(problem, hostFolder));
  };
  file_ = std::make_unique<File>(hostFolder);
  const Descriptor& file = file_->file;
  if (!file.IsOpen()) raise();
  LeaveToOwner(file, hostFolder);
  const auto isTaken = [](const Descriptor& locked) {
    return ::flock(locked.Get(), LOCK_EX | LOCK_NB) != 0 && errno == EWOULDBLOCK;
  };
  if (isTaken(file_->folder) || isTaken(file)) {
    holder_ = HolderIn(file);
    return;
  }
  const std::string words = "process " + std::to_string(::getpid()) + " since " + time + "\n";
  if (::flock(file.Get(), LOCK_EX | LOCK_NB) != 0 || ::ftruncate(file.Get(), 0) != 0 ||
      ::pwrite(file.Get(), words.data(), words.size(), 0) < 0) {
    raise();
  }
}

}  // namespace rotacasts::host
