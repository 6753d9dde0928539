// The DLL as an administrator installs it: in a host folder's Plugins folder, registered.
#pragma once

#include <filesystem>
#include <string>

#include "com/late_bound.h"

namespace rotacasts {
inline namespace testing {

template <class... Arguments>
HRESULT CallEntryOf(HMODULE module, const char* name, Arguments... arguments) {
  const FARPROC entry = ::GetProcAddress(module, name);
  if (entry == nullptr) return E_NOTIMPL;
  return reinterpret_cast<HRESULT(WINAPI*)(Arguments...)>(reinterpret_cast<void*>(entry))(
      arguments...);
}

/// The test program's folder.
std::filesystem::path OwnFolder();

/// Copies the DLL next to the test program into a host folder and registers it, with COM
/// initialised, while the object exists. Profiles 1 to 3 have folders with empty message files.
class InstalledPlugin {
 public:
  InstalledPlugin();
  ~InstalledPlugin();
  InstalledPlugin(const InstalledPlugin&) = delete;
  InstalledPlugin& operator=(const InstalledPlugin&) = delete;

  const std::string& HostFolder() const { return hostFolder_; }
  std::string File() const { return hostFolder_ + "\\Plugins\\tvxRT.dll"; }
  /// Calls an entry point; E_NOTIMPL if there is none of that name.
  template <class... Arguments>
  HRESULT CallEntry(const char* name, Arguments... arguments) const {
    return CallEntryOf(module_, name, arguments...);
  }

  /// Creates an object of the plugin's class by its programmatic identifier.
  static win32::LateBound Create() { return win32::LateBound::Create("tvxRT.clsPlugin"); }

 private:
  const std::string hostFolder_ = "C:\\Host";  // the same as the fakes'
  HMODULE module_ = nullptr;
};

/// The installation that all tests of the program share.
InstalledPlugin& Installed();

}  // namespace testing
}  // namespace rotacasts
