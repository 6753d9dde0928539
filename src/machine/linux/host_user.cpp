#include "machine/host_user.h"

#include <grp.h>
#include <pwd.h>
#include <sys/stat.h>

#include <algorithm>
#include <vector>

#include "files/native_files.h"

namespace rotacasts::host {
namespace {

constexpr const char* kPackagesUser = "rotacasts";  // which package/debian/postinst makes

}  // namespace

struct HostUser::User {
  uid_t id = 0;
  std::vector<gid_t> groups;

  /// The bits of the mode that are this user's, as 0 to 7.
  unsigned Share(const struct stat& status) const {
    if (id == 0) return 7;
    if (status.st_uid == id) return status.st_mode >> 6 & 7;
    const bool isMember = std::find(groups.begin(), groups.end(), status.st_gid) != groups.end();
    return (isMember ? status.st_mode >> 3 : status.st_mode) & 7;
  }
};

HostUser::~HostUser() = default;

HostUser::HostUser(const std::string& hostFolder) : user_(std::make_unique<User>()) {
  struct stat status {};
  if (::stat(NativePath(hostFolder).c_str(), &status) != 0) return;
  const passwd* known = status.st_uid == 0 ? ::getpwnam(kPackagesUser) : nullptr;
  if (known == nullptr) known = ::getpwuid(status.st_uid);
  user_->id = known != nullptr ? known->pw_uid : status.st_uid;
  name_ = known != nullptr ? known->pw_name : std::to_string(status.st_uid);
  if (known == nullptr) return;
  constexpr int kMostGroups = 1024;
  int count = kMostGroups;
  user_->groups.resize(kMostGroups);
  if (::getgrouplist(known->pw_name, known->pw_gid, user_->groups.data(), &count) < 0) count = 0;
  user_->groups.resize(static_cast<std::size_t>(count));
}

bool HostUser::MayUse(const std::string& path, bool toWrite) const {
  struct stat status {};
  if (::stat(NativePath(path).c_str(), &status) != 0) return true;
  if (!S_ISDIR(status.st_mode) && !S_ISREG(status.st_mode)) return true;
  const unsigned wanted = S_ISDIR(status.st_mode) ? (toWrite ? 7U : 5U) : (toWrite ? 6U : 4U);
  return (user_->Share(status) & wanted) == wanted;
}

}  // namespace rotacasts::host
