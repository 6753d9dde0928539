#include "services/host_services.h"

#include "base/text.h"

namespace rotacasts {
namespace {

constexpr const char* kPluginFolders[] = {"\\Plugins", "\\plugins", "\\dlls\\Rotacasts"};

template <class Component>
Component& Required(const std::unique_ptr<Component>& component) {
  if (!component) throw RuntimeError(ErrorNumber::ObjectVariableNotSet);
  return *component;
}

}  // namespace

std::string HostFolderOf(const std::string& moduleFolder) {
  std::string folder = moduleFolder;
  for (const char* part : kPluginFolders) folder = ReplaceAll(folder, part, "");
  return folder;
}

std::string FormatVersion(const ModuleVersion& version) {
  return std::to_string(version.majorNumber) + "." + std::to_string(version.minorNumber) + "." +
         std::to_string(version.revision);
}

void HostServices::FindHostFolder() {
  hostFolder_ = HostFolderOf(platform_.module.Folder());
}

void HostServices::CreateUtility() {
  utility_ = platform_.components.CreateUtility();
}

void HostServices::CreateMemory() {
  memory_ = platform_.components.CreateMemory();
}

UtilityComponent& HostServices::Utility() const {
  return Required(utility_);
}
MemoryComponent& HostServices::Memory() const {
  return Required(memory_);
}

FileSystemObject& HostServices::FileSystem() {
  if (!fileSystem_) fileSystem_ = platform_.components.CreateFileSystem();
  return *fileSystem_;
}

}  // namespace rotacasts
