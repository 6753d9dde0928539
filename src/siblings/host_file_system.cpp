#include "siblings/host_file_system.h"

namespace rotacasts::host {

bool HostFileSystem::FileExists(const std::string& path) {
  return files_.Exists(path);
}

bool HostFileSystem::FolderExists(const std::string& path) {
  return files_.Layer().FolderExists(path);
}

void HostFileSystem::CreateFolder(const std::string& path) {
  files_.Layer().CreateFolder(path);
}

void HostFileSystem::CreateTextFile(const std::string& path) {
  if (files_.Exists(path)) throw RuntimeError(ErrorNumber::FileAlreadyExists, path);
  files_.Layer().Replace(path, "", nullptr);
}

}  // namespace rotacasts::host
