// Where the components keep their files: on the machine or, in tests, elsewhere.
#pragma once

#include "files/native_files.h"

namespace rotacasts::host {

/// File access with the paths, contracts and errors of native_files.h.
class FileLayer {
 public:
  virtual ~FileLayer() = default;

  virtual FileBytes Read(const std::string& path) = 0;
  virtual Replaced Replace(const std::string& path, std::string_view bytes,
                           const FileBytes* seen) = 0;
  virtual void Append(const std::string& path, const std::string& line) = 0;

  /// False for a folder.
  virtual bool FileExists(const std::string& path) = 0;
  virtual bool FolderExists(const std::string& path) = 0;
  /// Creates one folder. Errors: 76 if its parent is missing, 58 if it exists, 61, 70 if access is
  /// denied.
  virtual void CreateFolder(const std::string& path) = 0;
};

/// The machine's files. Stateless.
class MachineFiles final : public FileLayer {
 public:
  FileBytes Read(const std::string& path) override;
  Replaced Replace(const std::string& path, std::string_view bytes, const FileBytes* seen) override;
  void Append(const std::string& path, const std::string& line) override;
  bool FileExists(const std::string& path) override;
  bool FolderExists(const std::string& path) override;
  void CreateFolder(const std::string& path) override;
};

}  // namespace rotacasts::host
