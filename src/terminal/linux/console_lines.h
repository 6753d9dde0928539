// The lines that somebody types or a program writes.
#pragma once

#include <optional>

#include "terminal/linux/console_input.h"
#include "terminal/linux/line_editor.h"

namespace rotacasts::host {

/// Reads the standard input: on a terminal with a prompt, else line by line.
class ConsoleLines {
 public:
  /// `loop` and `output` must outlive it.
  ConsoleLines(EventLoop& loop, ConsoleOutput& output, const LineEditor::Person& person);

 private:
  std::optional<LineEditor> editor_;
  std::optional<ConsoleInput> input_;
};

}  // namespace rotacasts::host
