// What the page may say about files.
#pragma once

#include <string>

namespace rotacasts::host::web {

/// An error's words for administrators, who need not know where the host lives: paths inside the
/// host folder begin there, and of all others only the file's name is left.
std::string WithoutPaths(const std::string& words, const std::string& hostFolder);

/// The same for words that quote a message: only the host folder's own path is left out.
std::string WithoutFolder(const std::string& words, const std::string& hostFolder);

}  // namespace rotacasts::host::web
