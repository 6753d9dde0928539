#include "terminal/linux/console_lines.h"

#include "terminal/terminal.h"

namespace rotacasts::host {

ConsoleLines::ConsoleLines(EventLoop& loop, ConsoleOutput& output,
                           const LineEditor::Person& person) {
  if (IsOnTerminal()) {
    editor_.emplace(loop, output, person);
  } else {
    input_.emplace(loop, person.onLine, person.onEnd);
  }
}

}  // namespace rotacasts::host
