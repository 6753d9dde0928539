#include "machine/program_arguments.h"

#include <algorithm>
#include <csignal>

namespace rotacasts::host {

std::vector<std::string> ProgramArguments(int argc, char** argv) {
  std::signal(SIGXFSZ, SIG_IGN);
  std::vector<std::string> arguments(argv + std::min(argc, 1), argv + argc);
  std::reverse(arguments.begin(), arguments.end());
  return arguments;
}

}  // namespace rotacasts::host
