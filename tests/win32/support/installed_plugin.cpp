#include "support/installed_plugin.h"

#include <fstream>

#include "com/com_support.h"

namespace rotacasts {
inline namespace testing {
namespace fs = std::filesystem;

fs::path OwnFolder() {
  wchar_t path[MAX_PATH];
  ::GetModuleFileNameW(nullptr, path, MAX_PATH);
  return fs::path(path).parent_path();
}

InstalledPlugin& Installed() {
  static InstalledPlugin installed;
  return installed;
}

InstalledPlugin::InstalledPlugin() {
  ::CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED);
  const fs::path host = hostFolder_;
  fs::create_directories(host / "Plugins");
  fs::copy_file(OwnFolder() / "tvxRT.dll", host / "Plugins" / "tvxRT.dll",
                fs::copy_options::overwrite_existing);
  // The real files only exist; the fakes have the contents.
  for (const char* profile : {"srv1", "srv2", "srv3"}) {
    const fs::path settings = host / "profiles" / profile / "settings";
    fs::create_directories(settings);
    std::ofstream(settings / "Rotacasts.ini");
  }
  module_ = ::LoadLibraryW(win32::ToWide(File()).c_str());
  const bool isThere = module_ != nullptr && SUCCEEDED(CallEntry("DllRegisterServer"));
  if (!isThere) throw RuntimeError(ErrorNumber::FileNotFound, File());
}

InstalledPlugin::~InstalledPlugin() {
  ::CoUninitialize();
  CallEntry("DllUnregisterServer");
  ::FreeLibrary(module_);
  std::error_code ignored;
  fs::remove_all(hostFolder_, ignored);
}

}  // namespace testing
}  // namespace rotacasts
