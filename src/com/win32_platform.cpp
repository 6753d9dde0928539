#include "com/win32_platform.h"

#include "com/com_support.h"
#include "com/late_components.h"

namespace rotacasts::win32 {

std::string LoadedModule::File() const {
  std::wstring path(MAX_PATH, L'\0');
  for (;;) {
    const DWORD size = ::GetModuleFileNameW(module_, path.data(), static_cast<DWORD>(path.size()));
    if (size < path.size()) return FromWide({path.data(), size});
    path.resize(2 * path.size());
  }
}

std::string LoadedModule::Folder() const {
  const std::string file = File();
  return file.substr(0, file.find_last_of('\\'));
}

ModuleVersion LoadedModule::Version() const {
  const HRSRC resource = ::FindResourceW(module_, MAKEINTRESOURCEW(1), RT_VERSION);
  const HGLOBAL loaded = resource != nullptr ? ::LoadResource(module_, resource) : nullptr;
  const auto* bytes =
      loaded != nullptr ? static_cast<const char*>(::LockResource(loaded)) : nullptr;
  if (bytes == nullptr) return {};
  // The fixed part starts at the first 32-bit boundary that holds its signature.
  constexpr DWORD kSignature = 0xFEEF04BD;
  const DWORD size = ::SizeofResource(module_, resource);
  for (DWORD at = 0; at + sizeof(VS_FIXEDFILEINFO) <= size; at += sizeof(DWORD)) {
    const auto* info = reinterpret_cast<const VS_FIXEDFILEINFO*>(bytes + at);
    if (info->dwSignature != kSignature) continue;
    return {HIWORD(info->dwFileVersionMS), LOWORD(info->dwFileVersionMS),
            LOWORD(info->dwFileVersionLS)};
  }
  return {};
}

std::unique_ptr<UtilityComponent> ComFactory::CreateUtility() {
  return CreateUtilityComponent();
}
std::unique_ptr<MemoryComponent> ComFactory::CreateMemory() {
  return CreateMemoryComponent();
}
std::unique_ptr<FileSystemObject> ComFactory::CreateFileSystem() {
  return CreateFileSystemObject();
}

LocalTime SystemClock::Now() const {
  SYSTEMTIME now;
  ::GetLocalTime(&now);
  return {now.wYear, now.wMonth, now.wDay, now.wHour, now.wMinute, now.wSecond};
}

}  // namespace rotacasts::win32
