#include "machine/linux/file_writers.h"

#include <algorithm>
#include <cerrno>
#include <charconv>
#include <csignal>
#include <fstream>
#include <string>

namespace rotacasts::host {
namespace {

namespace fs = std::filesystem;

/// Calls `visit` for each entry of a folder whose name is a number, until it returns true; returns
/// whether it did. A folder that cannot be read, or that goes, has no entries.
template <typename Visit>
bool AnyNumbered(const fs::path& folder, const Visit& visit) {
  std::error_code problem;
  for (fs::directory_iterator entry(folder, problem), end; !problem && entry != end;
       entry.increment(problem)) {
    const std::string name = entry->path().filename().string();
    if (name.find_first_not_of("0123456789") == name.npos && visit(entry->path())) return true;
  }
  return false;
}

/// Whether an open file, as its entry in `fdinfo` describes it, may be written and has this inode.
bool MayWrite(const fs::path& description, ino_t inode) {
  std::ifstream lines(description);
  bool isWriting = false;
  bool isSame = false;
  for (std::string label, value; lines >> label >> value;) {
    if (label == "flags:") {
      unsigned flags = 0;
      std::from_chars(value.data(), value.data() + value.size(), flags, 8);
      isWriting = (flags & O_ACCMODE) != O_RDONLY && (flags & O_PATH) == 0;
    }
    if (label == "ino:") isSame = value == std::to_string(inode);
  }
  return isWriting && isSame;
}

/// Whether one of the processes that this user may look into can write the file.
bool HasVisibleWriter(const struct stat& file) {
  return AnyNumbered("/proc", [&](const fs::path& process) {
    return AnyNumbered(process / "fdinfo", [&](const fs::path& description) {
      struct stat open {};
      return MayWrite(description, file.st_ino) &&
             ::stat((process / "fd" / description.filename()).c_str(), &open) == 0 &&
             open.st_dev == file.st_dev;
    });
  });
}

}  // namespace

Writers WritersOf(const Descriptor& file) {
  ::fcntl(file.Get(), F_SETSIG, SIGURG);  // ignored by default; sent if somebody opens it just now
  if (::fcntl(file.Get(), F_SETLEASE, F_RDLCK) == 0) {
    ::fcntl(file.Get(), F_SETLEASE, F_UNLCK);
    return Writers::None;
  }
  if (errno == EAGAIN) return Writers::Some;
  struct stat status {};
  if (::fstat(file.Get(), &status) != 0) return Writers::Unknown;
  return HasVisibleWriter(status) ? Writers::Some : Writers::Unknown;
}

std::chrono::nanoseconds TimeUntilQuiet(const struct stat& status, const timespec& now) {
  const auto since = [](const timespec& time) {
    return std::chrono::seconds(time.tv_sec) + std::chrono::nanoseconds(time.tv_nsec);
  };
  const std::chrono::nanoseconds age = since(now) - since(status.st_ctim);
  const bool wasClockSetBack = age < -kQuiet;
  return wasClockSetBack ? std::chrono::nanoseconds(0)
                         : std::clamp<std::chrono::nanoseconds>(kQuiet - age, {}, kQuiet);
}

}  // namespace rotacasts::host
