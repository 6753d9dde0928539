// Where a profile's files lie below the host folder.
#pragma once

#include <string>

namespace rotacasts {

/// `profiles\<folder>` below the host folder. Error 76 for a name that would lead elsewhere: one
/// that climbs with "..", or holds control characters.
std::string ProfileFolderPath(const std::string& hostFolder, const std::string& profileFolder);

/// The profile's message file.
std::string MessageFilePath(const std::string& hostFolder, const std::string& profileFolder);

}  // namespace rotacasts
