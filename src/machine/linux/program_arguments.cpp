#include "machine/program_arguments.h"

#include <unistd.h>

#include <algorithm>
#include <csignal>

namespace rotacasts::host {

std::vector<std::string> ProgramArguments(int argc, char** argv) {
  std::signal(SIGXFSZ, SIG_IGN);
  std::vector<std::string> arguments(argv + std::min(argc, 1), argv + argc);
  std::reverse(arguments.begin(), arguments.end());
  return arguments;
}

bool IsOnTerminal() {
  return ::isatty(STDIN_FILENO) != 0 && ::isatty(STDOUT_FILENO) != 0;
}

}  // namespace rotacasts::host
