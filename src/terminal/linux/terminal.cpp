#include "terminal/terminal.h"

#include <unistd.h>

namespace rotacasts::host {

bool IsOnTerminal() {
  return ::isatty(STDIN_FILENO) != 0 && ::isatty(STDOUT_FILENO) != 0;
}

}  // namespace rotacasts::host
