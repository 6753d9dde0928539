// Whether a file system can exchange two files. One implementation per platform.
#pragma once

#include <string>

namespace rotacasts::host {

/// Whether two files in the folder can be exchanged in one step, on which ReplaceFile relies. Makes
/// two empty files for a moment. True for a folder in which this user can make none, and on
/// Windows, where a replacement takes another way.
bool CanExchangeFiles(const std::string& folder) noexcept;

}  // namespace rotacasts::host
