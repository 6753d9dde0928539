#include "machine/folder_owner.h"

namespace rotacasts::host {

struct FolderOwner::User {};

FolderOwner::FolderOwner(const std::string&) {}
FolderOwner::~FolderOwner() = default;

bool FolderOwner::MayUse(const std::string&, bool) const {
  return true;
}

}  // namespace rotacasts::host
