// rotacasts-bench for Windows: measures the component against named opponents in the same run. The
// DLLs and pictures must be next to it.

#include <filesystem>
#include <iostream>

#include "com/win32_platform.h"
#include "support/installed_plugin.h"
#include "win32/turns.h"

namespace rotacasts::bench {
namespace {

namespace fs = std::filesystem;

/// The path of a file next to this program.
fs::path FileBeside(const char* name) {
  return fs::path(win32::LoadedModule(::GetModuleHandleW(nullptr)).Folder()) / name;
}

Result CompareSizes() {
  const auto kilobytes = [](const char* file) {
    return static_cast<double>(fs::file_size(FileBeside(file))) / 1024;
  };
  const double ours = kilobytes("tvxRT.dll");
  const double theirs = kilobytes("bare.dll");
  return {"size of tvxRT.dll",
          Format("%.0f KB", ours),
          "DLL of the run-time library alone",
          Format("%.0f KB", theirs),
          "",
          ours / theirs};
}

void MeasureAll() {
  const testing::InstalledPlugin installed;
  const fs::path pictures = fs::path(installed.HostFolder()) / "imgs";
  fs::create_directories(pictures);
  for (const char* name : {"butup.gif", "butdown.gif"}) {
    fs::copy_file(FileBeside(name), pictures / name, fs::copy_options::overwrite_existing);
  }
  std::vector<Result> results = MeasureLateCalls();
  for (Result& result : MeasureWindow(installed.HostFolder())) results.push_back(std::move(result));
  results.push_back(CompareSizes());
  PrintTable(results);
}

}  // namespace
}  // namespace rotacasts::bench

int main(int argc, char** argv) {
  using namespace rotacasts;
  ::CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED);
  try {
    argc > 2 ? bench::ShowOnce(argv[1], argv[2]) : bench::MeasureAll();
    return 0;
  } catch (const std::exception& error) {
    std::cerr << "rotacasts-bench: " << error.what() << "\n";
  }
  return 1;
}
