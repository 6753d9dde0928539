#include "host/machine/program_arguments.h"

// clang-format off
#include "com/com_support.h"
#include <shellapi.h>
// clang-format on

namespace rotacasts::host {

std::vector<std::string> ProgramArguments(int, char**) {
  ::SetConsoleOutputCP(CP_UTF8);
  int count = 0;
  wchar_t** wide = ::CommandLineToArgvW(::GetCommandLineW(), &count);
  std::vector<std::string> arguments;
  for (int i = count - 1; i > 0; --i) arguments.push_back(win32::FromWide(wide[i]));
  ::LocalFree(wide);
  return arguments;
}

}  // namespace rotacasts::host
