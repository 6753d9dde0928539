#include "files/linux/file_rights.h"

#include <sys/xattr.h>

#include <cerrno>
#include <cstring>
#include <string>
#include <string_view>

namespace rotacasts::host {
namespace {

constexpr const char* kAccessList = "system.posix_acl_access";
constexpr std::size_t kLongest =
    65536;  // bytes; the system's limit for a list of names and for a value

bool CopyAttribute(const std::filesystem::path& path, const char* name, const Descriptor& made) {
  std::string value(kLongest, '\0');
  const ssize_t size = ::getxattr(path.c_str(), name, value.data(), value.size());
  if (size < 0) return errno == ENODATA;
  return ::fsetxattr(made.Get(), name, value.data(), static_cast<std::size_t>(size), 0) == 0;
}

}  // namespace

void GiveOwner(const Descriptor& made, const struct stat& status) {
  if (::fchown(made.Get(), status.st_uid, status.st_gid) != 0) {
    (void)!::fchown(made.Get(), static_cast<uid_t>(-1), status.st_gid);
  }
}

bool CopyAttributes(const std::filesystem::path& path, const Descriptor& made) {
  std::string names(kLongest, '\0');
  const ssize_t size = ::listxattr(path.c_str(), names.data(), names.size());
  if (size < 0) return errno == ENOTSUP || errno == ENOSYS;
  bool isKept = true;
  bool hasList = false;
  for (const char* name = names.data(); name < names.data() + size; name += std::strlen(name) + 1) {
    const std::string_view known(name);
    if (known != kAccessList && !known.starts_with("user.")) continue;
    hasList = hasList || known == kAccessList;
    isKept = CopyAttribute(path, name, made) && isKept;
  }
  if (!hasList) ::fremovexattr(made.Get(), kAccessList);  // which its folder has given it
  return isKept;
}

}  // namespace rotacasts::host
