#include "machine/program_arguments.h"

#include <memory>

// clang-format off
#include "com/com_support.h"
#include <shellapi.h>
// clang-format on

namespace rotacasts::host {
namespace {

struct Freed {
  void operator()(void* memory) const { ::LocalFree(memory); }
};

}  // namespace

std::vector<std::string> ProgramArguments(int, char**) {
  ::SetConsoleOutputCP(CP_UTF8);
  int count = 0;
  const std::unique_ptr<LPWSTR, Freed> wide(::CommandLineToArgvW(::GetCommandLineW(), &count));
  std::vector<std::string> arguments;
  for (int i = count - 1; i > 0; --i) arguments.push_back(win32::FromWide(wide.get()[i]));
  return arguments;
}

}  // namespace rotacasts::host
