// Start-up, and access to the host folder and the components.
//
// This room lies below the subsystems. They all use it; inside plugin/, which uses them all, it
// would make a circle.
#pragma once

#include <memory>
#include <string>

#include "platform/platform.h"

namespace rotacasts {

/// The plugin's file name, for the host and the error log.
inline constexpr const char* kModuleFile = "tvxRT.dll";

/// Gives the code that reads game servers its memory component.
class MemorySource {
 public:
  virtual ~MemorySource() = default;
  /// Errors: 91 while there is none.
  virtual MemoryComponent& Memory() const = 0;
};

/// The host folder and the components, created once and kept for the plugin's life. Utility() and
/// Memory() raise error 91 if their component could not be created.
class HostServices final : public MemorySource {
 public:
  explicit HostServices(Platform platform) : platform_(platform) {}

  // The steps of start-up, in order. If one raises an error, the rest are left out.
  /// Derives the host folder from the module's folder.
  void FindHostFolder();
  void CreateUtility();
  void CreateMemory();

  /// The host's installation folder, without a trailing backslash; every path starts with it.
  const std::string& HostFolder() const { return hostFolder_; }
  UtilityComponent& Utility() const;
  MemoryComponent& Memory() const override;
  /// Created on first use. Errors: 429 if that fails; the next call tries again.
  FileSystemObject& FileSystem();
  LocalTime Now() const { return platform_.clock.Now(); }
  ModuleVersion Version() const { return platform_.module.Version(); }
  forms::Toolkit& Toolkit() const { return platform_.toolkit; }

 private:
  const Platform platform_;
  std::string hostFolder_;
  std::unique_ptr<UtilityComponent> utility_;
  std::unique_ptr<MemoryComponent> memory_;
  std::unique_ptr<FileSystemObject> fileSystem_;
};

/// "major.minor.revision", each in plain decimal.
std::string FormatVersion(const ModuleVersion& version);
/// The host folder of a plugin loaded from `moduleFolder`, which is this folder without every
/// "\Plugins", then every "\plugins", then every "\dlls\Rotacasts".
std::string HostFolderOf(const std::string& moduleFolder);

}  // namespace rotacasts
