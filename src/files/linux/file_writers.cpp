#include "files/linux/file_writers.h"

#include <algorithm>
#include <cerrno>
#include <charconv>
#include <csignal>
#include <ctime>
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

/// Whether an open file, as its entry in `fdinfo` describes it, may be written.
bool MayWrite(const fs::path& description) {
  std::ifstream lines(description);
  unsigned flags = O_RDONLY;
  for (std::string label, value; lines >> label >> value;) {
    if (label == "flags:") std::from_chars(value.data(), value.data() + value.size(), flags, 8);
  }
  return (flags & O_ACCMODE) != O_RDONLY && (flags & O_PATH) == 0;
}

/// Whether one of the processes that this user may look into can write the file. A machine with
/// very many of them is not looked through to the end, because the broadcasts wait.
bool HasVisibleWriter(const Descriptor& file) {
  constexpr std::clock_t kLongestSearch = CLOCKS_PER_SEC / 50;  // of the processor's time
  const std::clock_t begin = std::clock();
  std::error_code problem;
  const fs::path name = fs::read_symlink("/proc/self/fd/" + std::to_string(file.Get()), problem);
  return AnyNumbered("/proc", [&](const fs::path& process) {
    return std::clock() - begin < kLongestSearch &&
           AnyNumbered(process / "fd", [&](const fs::path& open) {
             return fs::read_symlink(open, problem) == name &&
                    MayWrite(process / "fdinfo" / open.filename());
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
  return HasVisibleWriter(file) ? Writers::Some : Writers::Unknown;
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
