// What the plugin asks of the platform it runs on, in one bundle.
#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "base/local_time.h"
#include "platform/components.h"
#include "platform/toolkit.h"

namespace rotacasts {

/// The version of the plugin's module. The build number is left out because nothing uses it.
struct ModuleVersion {
  int majorNumber = 0;
  int minorNumber = 0;
  int revision = 0;
};

/// The module that the plugin was loaded from.
class Module {
 public:
  virtual ~Module() = default;
  /// Its folder, without a trailing backslash.
  virtual std::string Folder() const = 0;
  virtual ModuleVersion Version() const = 0;
};

/// Creates components by their programmatic identifiers (kProgId of each class). Errors: 429 if the
/// component cannot be created. The caller owns the result.
class ComponentFactory {
 public:
  virtual ~ComponentFactory() = default;
  virtual std::unique_ptr<UtilityComponent> CreateUtility() = 0;
  virtual std::unique_ptr<MemoryComponent> CreateMemory() = 0;
  virtual std::unique_ptr<FileSystemObject> CreateFileSystem() = 0;
};

/// The bundle. Whatever composes the plugin owns the members and keeps them until the plugin is
/// gone.
struct Platform {
  Module& module;
  ComponentFactory& components;
  LocalClock& clock;
  forms::Toolkit& toolkit;
};

}  // namespace rotacasts
