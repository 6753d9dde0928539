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
    /// What can stand on a line behind `before`, which ends where a word begins; with the blank
    /// that follows it, if one does.
    std::function<std::vector<std::string>(const std::string& before)> words;
  };
  /// `loop` and `output` must outlive it.
  LineEditor(EventLoop& loop, ConsoleOutput& output, Person person);
  ~LineEditor();
  LineEditor(const LineEditor&) = delete;
  LineEditor& operator=(const LineEditor&) = delete;

 private:
  void Take(char* line);
  void End();
  char** Complete(const char* text, int start);

  EventLoop& loop_;
  ConsoleOutput& output_;
  Person person_;
  std::vector<std::string> completions_;
  bool isPrompting_ = true;  // not while a line is handled
  bool hasEnded_ = false;
};

}  // namespace rotacasts::host
