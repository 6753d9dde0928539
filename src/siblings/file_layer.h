// Where the components keep their files: on the machine, or wherever else it suits.
#pragma once

#include "machine/native_files.h"

namespace rotacasts::host {

/// Paths and errors are those of native_files.h; what is said there of each holds here too.
class FileLayer {
 public:
  virtual ~FileLayer() = default;

  virtual FileBytes Read(const std::string& path) = 0;
  virtual bool Replace(const std::string& path, std::string_view bytes, const FileBytes* seen) = 0;
  virtual void Append(const std::string& path, const std::string& line) = 0;

  /// False for a folder.
  virtual bool FileExists(const std::string& path) = 0;
  virtual bool FolderExists(const std::string& path) = 0;
  /// One folder. Errors: 76 without its parent, 58 when it exists, 70 when not allowed.
  virtual void CreateFolder(const std::string& path) = 0;
};

/// The machine's own. Holds nothing.
class MachineFiles final : public FileLayer {
 public:
  FileBytes Read(const std::string& path) override;
  bool Replace(const std::string& path, std::string_view bytes, const FileBytes* seen) override;
  void Append(const std::string& path, const std::string& line) override;
  bool FileExists(const std::string& path) override;
  bool FolderExists(const std::string& path) override;
  void CreateFolder(const std::string& path) override;
};

}  // namespace rotacasts::host
