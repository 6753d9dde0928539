#include "terminal/terminal.h"

#include "com/windows_api.h"

namespace rotacasts::host {

bool IsOnTerminal() {
  DWORD mode = 0;
  return ::GetConsoleMode(::GetStdHandle(STD_INPUT_HANDLE), &mode) != 0 &&
         ::GetConsoleMode(::GetStdHandle(STD_OUTPUT_HANDLE), &mode) != 0;
}

}  // namespace rotacasts::host
