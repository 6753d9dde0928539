#include "files/linux/atomic_replace.h"

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <utility>

#include "base/runtime_error.h"
#include "files/linux/beside_file.h"
#include "files/linux/file_rights.h"
#include "files/linux/file_writers.h"

namespace rotacasts::host {
namespace {

/// Whether the file holds these bytes and nobody is known to write it. Errors: as RaiseFileError.
bool IsSame(const std::string& path, std::string_view bytes) {
  const Descriptor file(path, O_RDONLY | O_NOFOLLOW);
  if (!file.IsOpen()) RaiseFileError(errno, path);
  return WritersOf(file) != Writers::Some && ReadAll(file, path) == bytes;
}

enum class Look { Same, Changed, Failed };

Look LookAt(const std::string& path, std::string_view bytes) noexcept try {
  return IsSame(path, bytes) ? Look::Same : Look::Changed;
} catch (...) {
  return Look::Failed;
}

/// Puts the old file back in its empty place. If another program has filled that, keeps the old one
/// visibly; if it cannot be moved, a later start does.
void PutBackOld(const std::string& old, const std::filesystem::path& target) noexcept {
  try {
    if (!MoveToFreeName(old, target)) KeepVisibly(old, target);
  } catch (...) {
    struct stat status {};
    if (::lstat(target.c_str(), &status) != 0) (void)!std::rename(old.c_str(), target.c_str());
  }
}

}  // namespace

AtomicReplace::AtomicReplace(std::filesystem::path target)
    : target_(std::move(target)),
      folderPath_(target_.parent_path()),
      folder_(folderPath_, O_RDONLY | O_DIRECTORY),
      folderProblem_(folder_.IsOpen() ? 0 : errno) {}

AtomicReplace::~AtomicReplace() {
  if (!beside_.empty()) ::unlink(beside_.c_str());
}

Replaced AtomicReplace::Run(std::string_view bytes, const FileBytes* seen) {
  if (folderProblem_ != 0 && folderProblem_ != EACCES) RaiseFileError(folderProblem_, folderPath_);
  WriteBeside(bytes, seen);
  if (seen == nullptr) {
    if (std::rename(beside_.c_str(), target_.c_str()) != 0) RaiseFileError(errno, target_);
    beside_.clear();
  } else if (!IsStill(*seen)) {
    return {false, {}};
  } else if (*seen) {
    if (!Exchange(bytes, **seen)) return {false, warning_};
  } else {
    if (!MoveToFreeName(beside_, target_)) return {false, {}};
    beside_.clear();
  }
  FlushFolder();
  return {true, warning_};
}

void AtomicReplace::WriteBeside(std::string_view bytes, const FileBytes* seen) {
  const std::string* const old = seen != nullptr && *seen ? &**seen : nullptr;
  std::string name = BesideName::Template(target_, bytes, old);
  Descriptor file(::mkostemp(name.data(), O_CLOEXEC));
  if (!file.IsOpen()) RaiseFileError(errno, folderPath_);
  beside_ = name;
  ShareRights(file);
  WriteAll(file, bytes, target_);
  if (::fsync(file.Get()) != 0) RaiseFileError(errno, target_);
  writtenAt_ = file.Status(target_).st_ctim;
  if (file.Close() != 0) RaiseFileError(errno, target_);
}

void AtomicReplace::ShareRights(const Descriptor& file) {
  struct stat status {};
  const bool exists = ::stat(target_.c_str(), &status) == 0;
  if (exists) {
    RefuseNoFile(status, target_);
    RefuseReadOnly(status);
  } else if (::stat(folderPath_.c_str(), &status) != 0) {
    RaiseFileError(errno, folderPath_);
  }
  // Where neither owner nor group may be changed, the mode still gives everybody their access.
  GiveOwner(file, status);
  if (::fchmod(file.Get(), status.st_mode & (exists ? 07777 : 0666)) != 0) {
    RaiseFileError(errno, target_);
  }
  if (exists && !CopyAttributes(target_, file)) Warn("its access list or attributes are lost");
}

void AtomicReplace::RefuseReadOnly(const struct stat& status) const {
  const bool isWritable = (status.st_mode & S_IWUSR) != 0 &&
                          ::faccessat(AT_FDCWD, target_.c_str(), W_OK, AT_EACCESS) == 0;
  if (isWritable) return;
  throw RuntimeError(ErrorNumber::PermissionDenied,
                     target_.string() + " is read-only; make it writable and try again");
}

bool AtomicReplace::IsStill(const FileBytes& seen) const {
  const Descriptor file(target_, O_RDONLY | O_NOFOLLOW);
  if (!file.IsOpen() && errno == ENOENT) return !seen;
  if (!file.IsOpen() && errno != ELOOP) RaiseFileError(errno, target_);
  if (!file.IsOpen() || !seen) return false;
  const Writers writers = WritersOf(file);
  if (writers == Writers::Unknown) WaitUntilQuiet(file);
  return writers != Writers::Some && ReadAll(file, target_) == *seen;
}

void AtomicReplace::WaitUntilQuiet(const Descriptor& file) const {
  constexpr std::chrono::milliseconds kLongestWait{50};  // the broadcasts wait, too
  const struct stat before = file.Status(target_);
  const std::chrono::nanoseconds wait = TimeUntilQuiet(before, writtenAt_);
  if (wait <= kLongestWait) {
    ::usleep(static_cast<useconds_t>(wait / std::chrono::microseconds(1)));
    const timespec changed = file.Status(target_).st_ctim;
    if (changed.tv_sec == before.st_ctim.tv_sec && changed.tv_nsec == before.st_ctim.tv_nsec) {
      return;
    }
  }
  throw RuntimeError(ErrorNumber::PermissionDenied,
                     target_.string() +
                         " was changed a moment ago, and this user cannot see whether another "
                         "program is still writing it; try again in a second");
}

int AtomicReplace::ExchangeNames() const {
  const int failed =
      ::renameat2(AT_FDCWD, beside_.c_str(), AT_FDCWD, target_.c_str(), RENAME_EXCHANGE);
  return failed == 0 ? 0 : errno;
}

bool AtomicReplace::Exchange(std::string_view bytes, const std::string& seen) {
  const int problem = ExchangeNames();
  if (problem == ENOENT) return false;
  if (problem == EINVAL || problem == ENOSYS) return ReplaceByTurns(seen);
  if (problem != 0) RaiseFileError(problem, target_);
  const Look look = LookAt(beside_, seen);  // nobody can open the old file any more
  if (look == Look::Changed) return PutBack(bytes);
  if (look == Look::Failed) Keep("the file that it replaced could not be looked at again");
  return true;
}

bool AtomicReplace::PutBack(std::string_view bytes) {
  const char* const whatIsKept = "another program saved it at the same moment";
  const int problem = ExchangeNames();
  if (problem == ENOENT) return PutBackOld(std::exchange(beside_, {}), target_), false;
  if (problem != 0) return Keep(whatIsKept), true;
  const Look ours = LookAt(beside_, bytes);
  if (ours == Look::Same) return false;
  if (ours == Look::Changed && ExchangeNames() == 0) return false;  // saved again; that is later
  Keep(whatIsKept);
  return false;
}

bool AtomicReplace::ReplaceByTurns(const std::string& seen) {
  const std::string old = BesideName::ForOld(beside_);
  if (std::rename(target_.c_str(), old.c_str()) != 0) {
    if (errno == ENOENT) return false;
    RaiseFileError(errno, target_);
  }
  try {
    const bool isSame = IsSame(old, seen);
    if (!isSame) return PutBackOld(old, target_), false;
    const bool isPut = MoveToFreeName(beside_, target_);
    if (!isPut) ::unlink(beside_.c_str());  // another program has just saved the file
    beside_ = old;                          // goes when the folder has been flushed
    return isPut;
  } catch (...) {
    PutBackOld(old, target_);
    throw;
  }
}

void AtomicReplace::Keep(const std::string& words) {
  Warn(words + "; that is kept in " + KeepVisibly(std::exchange(beside_, {}), target_));
}

void AtomicReplace::Warn(const std::string& words) {
  if (!warning_.empty()) warning_ += "; ";
  warning_ += target_.string() + ": " + words;
}

void AtomicReplace::FlushFolder() {
  int problem = folderProblem_;
  if (folder_.IsOpen() && ::fsync(folder_.Get()) != 0) problem = errno;
  if (problem == 0 || problem == EINVAL) return;
  Warn(std::string("a loss of power can still undo the change, because the folder cannot be "
                   "flushed (") +
       std::strerror(problem) + ")");
}

}  // namespace rotacasts::host
