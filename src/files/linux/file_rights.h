// Owner, group, mode, access list and attributes of a file that takes another one's place.
#pragma once

#include "files/linux/descriptor.h"

namespace rotacasts::host {

/// Gives a file or folder the owner and group that `status` has, as far as this user may.
void GiveOwner(const Descriptor& made, const struct stat& status);

/// Gives a file the access list (ACL) and the user's attributes of the file at `path`, or none if
/// that has none. Returns false if something could not be kept.
bool CopyAttributes(const std::filesystem::path& path, const Descriptor& made);

}  // namespace rotacasts::host
