#include "files/linux/beside_file.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdio>
#include <ctime>
#include <functional>
#include <optional>

#include "base/runtime_error.h"
#include "files/linux/descriptor.h"
#include "files/native_files.h"

namespace rotacasts::host {
namespace {

namespace fs = std::filesystem;

constexpr std::string_view kNewMark = ".new-";
constexpr std::string_view kOldMark = ".old-";  // as long
constexpr std::string_view kRandom = "XXXXXX";

constexpr std::size_t kDigestSize = 16;  // hexadecimal digits

/// Another build may count otherwise: what it has left is then kept visibly.
std::string DigestOf(std::string_view bytes) {
  std::array<char, kDigestSize + 1> digits{};
  std::snprintf(digits.data(), digits.size(), "%016llx",
                static_cast<unsigned long long>(std::hash<std::string_view>()(bytes)));
  return digits.data();
}

/// What the name of a file in a settings folder says, if it is one beside another.
struct Leftover {
  fs::path path;
  fs::path target;
  bool isOld = false;
  std::string digestOfNew;  // empty without digests
  std::string digestOfOld;
};

std::optional<Leftover> LeftoverAt(const fs::path& path) {
  const std::string name = path.filename().string();
  const std::size_t mark = std::max(name.rfind(kNewMark) + 1, name.rfind(kOldMark) + 1);
  if (name[0] != '.' || mark < 3) return std::nullopt;  // npos + 1 is 0
  Leftover found{path, path.parent_path() / name.substr(1, mark - 2), false, {}, {}};
  found.isOld = name.compare(mark - 1, kOldMark.size(), kOldMark) == 0;
  const std::string rest = name.substr(mark - 1 + kNewMark.size());
  if (rest.size() == kRandom.size() && !found.isOld) return found;
  if (rest.size() != 2 * kDigestSize + 1 + kRandom.size()) return std::nullopt;
  found.digestOfNew = rest.substr(0, kDigestSize);
  found.digestOfOld = rest.substr(kDigestSize, kDigestSize);
  return found;
}

/// Empty for what is missing or cannot be read.
std::string DigestOfFile(const fs::path& path) try {
  const Descriptor file(path, O_RDONLY | O_NOFOLLOW);
  return file.IsOpen() ? DigestOf(ReadAll(file, path)) : std::string();
} catch (const RuntimeError&) {
  return {};
}

/// Whether it holds nothing that has not been replaced, or was to be put in the place of what is
/// still there.
bool IsSuperfluous(const Leftover& leftover) {
  if (leftover.digestOfNew.empty()) return true;
  const std::string digest = DigestOfFile(leftover.path);
  const std::string place = DigestOfFile(leftover.target);
  if (leftover.isOld) return digest == leftover.digestOfOld && place == leftover.digestOfNew;
  if (digest == leftover.digestOfOld || digest == leftover.digestOfNew) return true;
  return place == leftover.digestOfOld;  // it never got there, and may be incomplete
}

/// Returns what to tell of it; empty for nothing.
std::string TidyUp(const Leftover& leftover) {
  struct stat status {};
  const bool isMissing = ::lstat(leftover.target.c_str(), &status) != 0 && errno == ENOENT;
  if (leftover.isOld && isMissing && MoveToFreeName(leftover.path, leftover.target)) {
    return leftover.target.string() + ": put back; a host was ended while it replaced it";
  }
  if (IsSuperfluous(leftover)) {
    ::unlink(leftover.path.c_str());
  } else {
    KeepVisibly(leftover.path, leftover.target);
  }
  return {};
}

}  // namespace

std::string BesideName::Template(const fs::path& target, std::string_view bytes,
                                 const std::string* old) {
  std::string name = target.parent_path() / ("." + target.filename().string());
  name.append(kNewMark);
  if (old != nullptr) name.append(DigestOf(bytes)).append(DigestOf(*old)).append("-");
  return name.append(kRandom);
}

std::string BesideName::ForOld(const std::string& nameForNew) {
  std::string name = nameForNew;
  return name.replace(name.rfind(kNewMark), kNewMark.size(), kOldMark);
}

bool MoveToFreeName(const std::string& from, const fs::path& to) {
  if (::renameat2(AT_FDCWD, from.c_str(), AT_FDCWD, to.c_str(), RENAME_NOREPLACE) == 0) return true;
  if (errno == EEXIST) return false;
  if (errno != EINVAL && errno != ENOSYS) RaiseFileError(errno, to);
  if (::link(from.c_str(), to.c_str()) == 0) return ::unlink(from.c_str()), true;
  if (errno == EEXIST) return false;
  const bool hasNoLinks =
      errno == EPERM || errno == EOPNOTSUPP || errno == ENOSYS || errno == EMLINK;
  if (!hasNoLinks) RaiseFileError(errno, to);
  struct stat status {};
  if (::lstat(to.c_str(), &status) == 0) return false;
  if (errno != ENOENT || ::rename(from.c_str(), to.c_str()) != 0) RaiseFileError(errno, to);
  return true;
}

std::string KeepVisibly(const std::string& beside, const fs::path& target) noexcept try {
  struct stat status {};
  std::tm time{};
  std::array<char, 32> words{};
  ::stat(beside.c_str(), &status);
  ::localtime_r(&status.st_mtim.tv_sec, &time);
  std::strftime(words.data(), words.size(), "%Y%m%d-%H%M%S", &time);
  const std::string name = target.string() + std::string(kKeptMark) + words.data();
  std::string free = name;
  for (int number = 2; !MoveToFreeName(beside, free); ++number) {
    free = name + "-" + std::to_string(number);
  }
  return free;
} catch (...) {  // it stays hidden until the next start
  return beside;
}

std::vector<std::string> TidyLeftovers(const std::string& folder) noexcept try {
  std::vector<Leftover> leftovers;
  for (const auto& entry : fs::directory_iterator(NativePath(folder))) {
    if (const auto leftover = LeftoverAt(entry.path())) leftovers.push_back(*leftover);
  }
  std::vector<std::string> told;
  for (const Leftover& leftover : leftovers) {
    const std::string words = TidyUp(leftover);
    if (!words.empty()) told.push_back(words);
  }
  return told;
} catch (...) {  // NOLINT: the next start tries again
  return {};
}

}  // namespace rotacasts::host
