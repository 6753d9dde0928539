// The platform that the stand-alone host provides for the plugin.
#pragma once

#include <string>

#include "platform/platform.h"
#include "siblings/memory_component.h"
#include "siblings/utility_component.h"

namespace rotacasts::host {

/// The machine's local time.
class SystemClock final : public LocalClock {
 public:
  LocalTime Now() const override;
};

/// The host's own sibling components and file-system object. Presents the plugin's module as if it
/// were in the host folder's `Plugins`.
class HostPlatform final : public ComponentFactory, public Module {
 public:
  explicit HostPlatform(std::string hostFolder)
      : hostFolder_(std::move(hostFolder)), files_(machine_) {}
  /// Keeps its files in `files`, which must outlive it.
  HostPlatform(std::string hostFolder, FileLayer& files)
      : hostFolder_(std::move(hostFolder)), files_(files) {}

  std::unique_ptr<UtilityComponent> CreateUtility() override;
  std::unique_ptr<MemoryComponent> CreateMemory() override {
    return CreateMemory(WhenAway::ReadsAsZero);
  }
  /// For whoever shows how the servers are, IsError.
  std::unique_ptr<MemoryComponent> CreateMemory(WhenAway whenAway);
  std::unique_ptr<FileSystemObject> CreateFileSystem() override;
  std::string Folder() const override { return hostFolder_ + "\\Plugins"; }
  ModuleVersion Version() const override;

  GameProcesses& Processes() { return processes_; }
  Chat& GetChat() { return chat_; }
  SystemClock& Clock() { return clock_; }
  /// The INI files, as the components see them.
  IniFiles& Files() { return files_; }
  Platform Bundle(forms::Toolkit& toolkit) { return {*this, *this, clock_, toolkit}; }

 private:
  const std::string hostFolder_;
  MachineFiles machine_;
  IniFiles files_;
  SystemClock clock_;
  GameProcesses processes_;
  Chat chat_{clock_};
};

}  // namespace rotacasts::host
