// Start-up, and the host services that everything else reaches through it.
//
// This room lies below the subsystems. They all use it; inside plugin/, which uses them all, it
// would make a circle.
#pragma once

#include <memory>
#include <string>

#include "platform/platform.h"

namespace rotacasts {

/// The plugin's own file name, as the host and the error log know it.
inline constexpr const char* kModuleFile = "tvxRT.dll";

/// Where whoever reads game servers has the memory component from.
class MemorySource {
 public:
  virtual ~MemorySource() = default;
  /// Error 91 while there is none.
  virtual MemoryComponent& Memory() const = 0;
};

/// The host folder and the components, created once and held for the plugin's life. A component
/// that could not be created stays unset; reaching for it raises error 91.
class HostServices final : public MemorySource {
 public:
  explicit HostServices(Platform platform) : platform_(platform) {}

  // The steps of start-up, in this order. Each raises what fails; what follows it stays undone.
  /// Works out the host folder from the module's own folder.
  void FindHostFolder();
  void CreateUtility();
  void CreateMemory();

  /// The host's installation folder, without a trailing backslash: the root of every path.
  const std::string& HostFolder() const { return hostFolder_; }
  UtilityComponent& Utility() const;
  MemoryComponent& Memory() const override;
  /// Created on first use. Error 429 when that fails; the next use tries again.
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
/// The host folder of a plugin loaded from `moduleFolder`: every "\Plugins", then every "\plugins",
/// then every "\dlls\Rotacasts" taken out, wherever it stands.
std::string HostFolderOf(const std::string& moduleFolder);

}  // namespace rotacasts
