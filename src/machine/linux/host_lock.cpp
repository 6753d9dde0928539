#include "machine/host_lock.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>

#include "base/runtime_error.h"
#include "machine/native_files.h"
#include "services/host_folder.h"

namespace rotacasts::host {

/// The lock belongs to the open file; programs that the host starts do not inherit it.
struct HostLock::File {
  explicit File(const std::string& path)
      : descriptor(::open(path.c_str(),
                          O_RDWR | O_CREAT | O_CLOEXEC | O_NOFOLLOW | O_NONBLOCK | O_NOCTTY,
                          0644)) {}
  ~File() {
    if (descriptor >= 0) ::close(descriptor);
  }
  const int descriptor;
};

HostLock::~HostLock() = default;

HostLock::HostLock(const std::string& hostFolder, const std::string& time) {
  const std::string path = NativePath(HostFolder(hostFolder).Lock()).string();
  const auto raise = [&path, &hostFolder] {
    const bool isForbidden = errno == EACCES || errno == EPERM || errno == EROFS || errno == ELOOP;
    throw RuntimeError(
        isForbidden ? ErrorNumber::PermissionDenied : ErrorNumber::DeviceIoError,
        path + " (" + std::strerror(errno) + "); let the host's user write it, and " + hostFolder);
  };
  file_ = std::make_unique<File>(path);
  if (file_->descriptor < 0) raise();
  // A host that root starts by hand leaves the file to the folder's owner, but no file that has
  // another name elsewhere.
  struct stat folder {};
  struct stat lock {};
  if (::stat(hostFolder.c_str(), &folder) == 0 && ::fstat(file_->descriptor, &lock) == 0 &&
      S_ISREG(lock.st_mode) && lock.st_nlink == 1) {
    (void)!::fchown(file_->descriptor, folder.st_uid, folder.st_gid);
    (void)!::fchmod(file_->descriptor, folder.st_mode & 0666);
  }
  if (::flock(file_->descriptor, LOCK_EX | LOCK_NB) == 0) {
    const std::string words = "process " + std::to_string(::getpid()) + " since " + time + "\n";
    if (::ftruncate(file_->descriptor, 0) != 0 ||
        ::pwrite(file_->descriptor, words.data(), words.size(), 0) < 0) {
      raise();
    }
    return;
  }
  if (errno != EWOULDBLOCK) raise();
  char words[100];
  const ssize_t size = ::pread(file_->descriptor, words, sizeof words, 0);
  holder_ = std::string(words, size > 0 ? static_cast<std::size_t>(size) : 0);
  holder_.erase(std::min(holder_.find('\n'), holder_.size()));
  if (holder_.empty()) holder_ = "another process";  // it has not written yet
}

}  // namespace rotacasts::host
