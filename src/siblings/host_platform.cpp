#include "siblings/host_platform.h"

#include <ctime>

#include "base/version.h"
#include "siblings/host_file_system.h"

namespace rotacasts::host {

LocalTime SystemClock::Now() const {
  const std::time_t now = std::time(nullptr);
  const std::tm local = *std::localtime(&now);
  return {local.tm_year + 1900, local.tm_mon + 1, local.tm_mday,
          local.tm_hour,        local.tm_min,     local.tm_sec};
}

std::unique_ptr<UtilityComponent> HostPlatform::CreateUtility() {
  return std::make_unique<HostUtilityComponent>(hostFolder_, clock_, files_);
}

std::unique_ptr<MemoryComponent> HostPlatform::CreateMemory(WhenAway whenAway) {
  return std::make_unique<HostMemoryComponent>(processes_, chat_, whenAway);
}

std::unique_ptr<FileSystemObject> HostPlatform::CreateFileSystem() {
  return std::make_unique<HostFileSystem>(files_);
}

ModuleVersion HostPlatform::Version() const {
  return {ROTACASTS_VERSION_MAJOR, ROTACASTS_VERSION_MINOR, ROTACASTS_VERSION_PATCH};
}

}  // namespace rotacasts::host
