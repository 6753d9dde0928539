// Who serves a host folder, and what they may use. One implementation per platform.
#pragma once

#include <memory>
#include <string>

namespace rotacasts::host {

/// The user who owns a folder, as whom a service runs for it. On Windows, where a folder's rights
/// are handed down, everything may be used.
class FolderOwner {
 public:
  /// A folder that is missing has an owner who may use everything.
  explicit FolderOwner(const std::string& folder);
  ~FolderOwner();

  /// The user's name, or number if the system knows no name.
  const std::string& Name() const { return name_; }
  /// Whether the owner may read the file and, for `toWrite`, write it; or enter and list the
  /// folder, and make files there. True for what is missing.
  bool MayUse(const std::string& path, bool toWrite) const;

 private:
  struct User;
  std::unique_ptr<User> user_;
  std::string name_;
};

}  // namespace rotacasts::host
