// As whom a host serves its folder, and what that user may use. One implementation per platform.
#pragma once

#include <memory>
#include <string>

namespace rotacasts::host {

/// The user as whom a service runs for a host folder: the folder's owner, or, where that is root,
/// the user that the Debian package has made, if there is one. On Windows, where a folder's rights
/// are inherited, everything may be used.
class HostUser {
 public:
  /// For a missing folder, a user who may use everything.
  explicit HostUser(const std::string& hostFolder);
  ~HostUser();

  /// The user's name, or number if the system knows no name.
  const std::string& Name() const { return name_; }
  /// Whether the user may read the file and, for `toWrite`, write it; or enter and list the folder,
  /// and make files there. True for what is missing, and for what is neither.
  bool MayUse(const std::string& path, bool toWrite) const;

 private:
  struct User;
  std::unique_ptr<User> user_;
  std::string name_;
};

}  // namespace rotacasts::host
