// The file-system object of the stand-alone host.
#pragma once

#include "platform/components.h"

namespace rotacasts::host {

class HostFileSystem final : public FileSystemObject {
 public:
  bool FileExists(const std::string& path) override;
  bool FolderExists(const std::string& path) override;
  void CreateFolder(const std::string& path) override;
  void CreateTextFile(const std::string& path) override;
};

}  // namespace rotacasts::host
