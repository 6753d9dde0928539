// The file-system object of the stand-alone host.
#pragma once

#include "platform/components.h"
#include "siblings/ini_files.h"

namespace rotacasts::host {

/// A file that the current operation has created exists, even before it is on the disk.
class HostFileSystem final : public FileSystemObject {
 public:
  explicit HostFileSystem(IniFiles& files) : files_(files) {}

  bool FileExists(const std::string& path) override;
  bool FolderExists(const std::string& path) override;
  void CreateFolder(const std::string& path) override;
  void CreateTextFile(const std::string& path) override;

 private:
  IniFiles& files_;
};

}  // namespace rotacasts::host
