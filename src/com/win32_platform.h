// What the plugin asks of its platform, on Windows, except for the forms.
#pragma once

#include "com/windows_api.h"
#include "platform/platform.h"

namespace rotacasts::win32 {

/// A loaded module: its path and the numbers of its version resource.
class LoadedModule final : public Module {
 public:
  explicit LoadedModule(HINSTANCE module) : module_(module) {}
  /// The full path of the module's file.
  std::string File() const;
  std::string Folder() const override;
  /// The major, minor and, as the revision, fourth number; zeros without a version resource.
  ModuleVersion Version() const override;

 private:
  const HINSTANCE module_;
};

/// Creates the sibling components and the file-system object as COM objects.
class ComFactory final : public ComponentFactory {
 public:
  std::unique_ptr<UtilityComponent> CreateUtility() override;
  std::unique_ptr<MemoryComponent> CreateMemory() override;
  std::unique_ptr<FileSystemObject> CreateFileSystem() override;
};

class SystemClock final : public LocalClock {
 public:
  LocalTime Now() const override;
};

}  // namespace rotacasts::win32
