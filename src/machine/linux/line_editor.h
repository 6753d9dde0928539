// A prompt on a terminal: editing, history, completion.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "machine/linux/console_output.h"

namespace rotacasts::host {

/// Lets the user edit lines on the terminal that is the standard input, one key at a time from the
/// event loop. Other output appears above the prompt. Only one may exist because readline's state
/// is global.
class LineEditor {
 public:
  struct Person {
    /// Handles a line; returns false to end the input.
    std::function<bool(const std::string&)> onLine;
    /// The input has ended (Ctrl-D on an empty line).
    std::function<void()> onEnd;
    /// The completions of a line's first word.
    std::vector<std::string> firstWords;
  };
  /// `loop` and `output` must outlive it.
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
  bool isPrompting_ = true;  // not while a line is handled
  bool hasEnded_ = false;
};

}  // namespace rotacasts::host
