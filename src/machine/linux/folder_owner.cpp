#include "machine/folder_owner.h"

#include <grp.h>
#include <pwd.h>
#include <sys/stat.h>

#include <algorithm>
#include <vector>

#include "machine/native_files.h"

namespace rotacasts::host {

struct FolderOwner::User {
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

FolderOwner::~FolderOwner() = default;

FolderOwner::FolderOwner(const std::string& folder) : user_(std::make_unique<User>()) {
  struct stat status {};
  if (::stat(NativePath(folder).c_str(), &status) != 0) return;
  user_->id = status.st_uid;
  name_ = std::to_string(status.st_uid);
  user_->groups = {status.st_gid};
  const passwd* const known = ::getpwuid(status.st_uid);
  if (known == nullptr) return;
  name_ = known->pw_name;
  constexpr int kMostGroups = 1024;
  int count = kMostGroups;
  std::vector<gid_t> groups(kMostGroups);
  if (::getgrouplist(known->pw_name, known->pw_gid, groups.data(), &count) < 0) return;
  groups.resize(static_cast<std::size_t>(count));
  user_->groups = std::move(groups);
}

bool FolderOwner::MayUse(const std::string& path, bool toWrite) const {
  struct stat status {};
  if (::stat(NativePath(path).c_str(), &status) != 0) return true;
  const unsigned wanted = S_ISDIR(status.st_mode) ? (toWrite ? 7U : 5U) : (toWrite ? 6U : 4U);
  return (user_->Share(status) & wanted) == wanted;
}

}  // namespace rotacasts::host
