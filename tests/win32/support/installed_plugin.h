// The DLL as an administrator installs it: in a host folder's Plugins folder, registered.
#pragma once

#include <filesystem>
#include <string>

#include "com/late_bound.h"

namespace rotacasts::testing {

template <class... Arguments>
HRESULT CallEntryOf(HMODULE module, const char* name, Arguments... arguments) {
  const FARPROC entry = ::GetProcAddress(module, name);
  if (entry == nullptr) return E_NOTIMPL;
  return reinterpret_cast<HRESULT(WINAPI*)(Arguments...)>(reinterpret_cast<void*>(entry))(
      arguments...);
}

/// The folder that the test program lies in.
std::filesystem::path OwnFolder();

/// Copies the DLL that lies beside the test program into a host folder, and registers it, with COM
/// initialised, for as long as the object lives. The folders of the profiles 1 to 3 are there, each
/// with an empty message file.
class InstalledPlugin {
 public:
  InstalledPlugin();
  ~InstalledPlugin();
  InstalledPlugin(const InstalledPlugin&) = delete;
  InstalledPlugin& operator=(const InstalledPlugin&) = delete;

  std::string File() const { return hostFolder_ + "\\Plugins\\tvxRT.dll"; }
  /// Calls an entry point; E_NOTIMPL when there is none of that name.
  template <class... Arguments>
  HRESULT CallEntry(const char* name, Arguments... arguments) const {
    return CallEntryOf(module_, name, arguments...);
  }

  /// A new object of the plugin's class, by its programmatic identifier.
  static win32::LateBound Create() { return win32::LateBound::Create("tvxRT.clsPlugin"); }

 private:
  const std::string hostFolder_ = "C:\\Host";  // as the fakes have it
  HMODULE module_ = nullptr;
};

/// The one installation that the program's tests share.
InstalledPlugin& Installed();

}  // namespace rotacasts::testing
