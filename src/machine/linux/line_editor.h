// A prompt at a terminal: editing, history, completion.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "machine/linux/console_output.h"

namespace rotacasts::host {

/// Has lines edited at the terminal that the standard input is, a key at a time from the event
/// loop. What is printed meanwhile appears above the prompt. One at a time, for the library that
/// does it keeps its state for the whole program.
class LineEditor {
 public:
  struct Person {
    /// A line that was entered; false when no more are wanted.
    std::function<bool(const std::string&)> onLine;
    /// The input has ended (Ctrl-D on an empty line).
    std::function<void()> onEnd;
    /// What the first word of a line may be.
    std::vector<std::string> firstWords;
  };
  /// Loop and output live longer.
  LineEditor(EventLoop& loop, ConsoleOutput& output, Person person);
  ~LineEditor();
  LineEditor(const LineEditor&) = delete;
  LineEditor& operator=(const LineEditor&) = delete;

 private:
  void Take(char* line);
  void End();
  static char* Complete(const char* start, int state);

  EventLoop& loop_;
  ConsoleOutput& output_;
  Person person_;
  bool isPrompting_ = true;  // not while a line is carried out
  bool hasEnded_ = false;
};

}  // namespace rotacasts::host
