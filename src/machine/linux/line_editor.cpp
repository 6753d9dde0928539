#include "machine/linux/line_editor.h"

#include <poll.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>

// clang-format off
#include <readline/readline.h>  // needs FILE from cstdio
#include <readline/history.h>
// clang-format on

namespace rotacasts::host {
namespace {

constexpr const char* kPrompt = "rotacasts> ";
char kBlank[] = " ";  // readline wants it writable

LineEditor* editor = nullptr;  // readline's callbacks take no object

ssize_t WriteToOutput(void* output, const char* bytes, std::size_t size) {
  static_cast<ConsoleOutput*>(output)->Write({bytes, size});
  return static_cast<ssize_t>(size);
}

}  // namespace

LineEditor::LineEditor(EventLoop& loop, ConsoleOutput& output, Person person)
    : loop_(loop), output_(output), person_(std::move(person)) {
  editor = this;
  ::rl_catch_signals = 0;  // the event loop handles signals
  ::rl_outstream = ::fopencookie(&output_, "w", {nullptr, WriteToOutput, nullptr, nullptr});
  ::rl_completer_word_break_characters = kBlank;
  ::rl_attempted_completion_function = [](const char* text, int start, int) {
    return editor->Complete(text, start);
  };
  ::rl_callback_handler_install(kPrompt, [](char* line) { editor->Take(line); });
  output_.onBefore = [this] {
    if (isPrompting_) ::rl_clear_visible_line();
    ::fflush(::rl_outstream);
  };
  output_.onAfter = [this] {
    if (!isPrompting_) return;
    ::rl_on_new_line();
    ::rl_redisplay();
    ::fflush(::rl_outstream);
  };
  loop_.Watch(STDIN_FILENO, POLLIN, [](short) { ::rl_callback_read_char(); });
}

LineEditor::~LineEditor() {
  if (!hasEnded_) {
    isPrompting_ = false;
    output_.Write("\n");
    End();
  }
  ::fclose(::rl_outstream);
  ::rl_outstream = nullptr;
  editor = nullptr;
}

void LineEditor::End() {
  hasEnded_ = true;
  isPrompting_ = false;
  ::rl_callback_handler_remove();
  ::fflush(::rl_outstream);
  output_.onBefore = output_.onAfter = nullptr;
  loop_.Unwatch(STDIN_FILENO);
}

void LineEditor::Take(char* line) {
  ::fflush(::rl_outstream);
  if (line == nullptr) {
    End();
    output_.Write("\n");
    return person_.onEnd();
  }
  const std::string text = line;
  if (!text.empty()) ::add_history(line);
  ::free(line);
  isPrompting_ = false;
  const bool goesOn = person_.onLine(text);
  isPrompting_ = true;
  if (!goesOn) End();
}

char** LineEditor::Complete(const char* text, int start) {
  ::rl_attempted_completion_over = 1;  // no file names
  ::rl_completion_append_character = '\0';
  const std::string before(::rl_line_buffer, static_cast<std::size_t>(start));
  completions_ = person_.words(before);
  std::erase_if(completions_, [&](const std::string& word) { return !word.starts_with(text); });
  return ::rl_completion_matches(text, [](const char*, int state) -> char* {
    const auto next = static_cast<std::size_t>(state);
    const std::vector<std::string>& words = editor->completions_;
    return next < words.size() ? ::strdup(words[next].c_str()) : nullptr;
  });
}

}  // namespace rotacasts::host
