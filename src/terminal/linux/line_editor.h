// A prompt on a terminal: editing, history, completion.
#pragma once

#include <cstdio>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "terminal/linux/console_output.h"

// Of libedit.
struct editline;
struct history;

namespace rotacasts::host {

/// Lets the user edit lines on the terminal that is the standard input, one key at a time from the
/// event loop. Other output appears above the prompt.
class LineEditor {
 public:
  struct Person {
    /// Handles a line; returns false to end the input.
    std::function<bool(const std::string&)> onLine;
    /// The input has ended: Ctrl-D on an empty line, or the terminal is gone.
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
  template <typename Type>
  using Owned = std::unique_ptr<Type, std::function<void(Type*)>>;

  static LineEditor& Of(editline* editor);
  static int ReadCharacter(editline* editor, wchar_t* character);
  static char* Prompt(editline* editor);
  static unsigned char Complete(editline* editor, int key);
  static unsigned char DeleteOrEnd(editline* editor, int key);
  static unsigned char Clear(editline* editor, int key);
  void BindKeys();
  void HandleInput(short ready);
  void Take();
  void Begin();
  void Hide();
  void Show();
  /// Gives the terminal back while the program is stopped, and takes it again.
  void Pause(bool isStopping);
  void Resize();
  void RefuseLonger();
  void End();

  EventLoop& loop_;
  ConsoleOutput& output_;
  Person person_;
  Owned<FILE> stream_;  // writes to output_
  Owned<history> history_;
  Owned<editline> editor_;
  std::vector<std::string> candidates_;  // to be listed above the prompt
  std::wstring hiddenLine_;
  int hiddenCursor_ = 0;
  bool isPrompting_ = false;  // not while a line is handled
  bool isShowing_ = false;    // the prompt and the line are on the terminal
  bool endIsAsked_ = false;
  bool hasEnded_ = false;
};

}  // namespace rotacasts::host
