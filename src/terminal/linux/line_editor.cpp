#include "terminal/linux/line_editor.h"

#include <histedit.h>
#include <poll.h>
#include <unistd.h>

#include <algorithm>
#include <climits>
#include <clocale>
#include <cstdlib>
#include <cwchar>
#include <string_view>

namespace rotacasts::host {
namespace {

// How long to wait for the rest of a key that sends several bytes. The host does nothing meanwhile.
constexpr int kKeyTime = 50;  // milliseconds
constexpr int kRememberedLines = 500;
// Letters of a line. Each key draws the line again, so a very long one would take the host's time.
constexpr std::size_t kLongestTyped = 4096;
constexpr const char* kClearKey = "\x1f";  // Ctrl-_, which only the editor itself types

ssize_t WriteToOutput(void* output, const char* bytes, std::size_t size) {
  static_cast<ConsoleOutput*>(output)->Write({bytes, size});
  return static_cast<ssize_t>(size);
}

/// The locale says how the editor decodes what is typed. The console takes UTF-8.
void UseUtf8() {
  constexpr std::size_t kLongestOfUtf8 = 6;  // bytes of a letter; fewer in any other locale
  if (std::setlocale(LC_CTYPE, "") == nullptr || MB_CUR_MAX < kLongestOfUtf8) {
    std::setlocale(LC_CTYPE, "C.UTF-8");
  }
}

std::string Narrow(std::wstring_view text) {
  std::string bytes;
  std::mbstate_t state{};
  char letter[MB_LEN_MAX];
  for (const wchar_t character : text) {
    const std::size_t size = std::wcrtomb(letter, character, &state);
    if (size != static_cast<std::size_t>(-1)) bytes.append(letter, size);
  }
  return bytes;
}

std::wstring LineOf(editline* editor) {
  const LineInfoW* line = ::el_wline(editor);
  return {line->buffer, line->lastchar};
}

std::wstring LineUpToCursor(editline* editor) {
  const LineInfoW* line = ::el_wline(editor);
  return {line->buffer, line->cursor};
}

/// The longest beginning that all of them share.
std::string CommonStart(const std::vector<std::string>& words) {
  const auto [first, last] = std::minmax_element(words.begin(), words.end());
  const auto end = std::mismatch(first->begin(), first->end(), last->begin(), last->end()).first;
  return {first->begin(), end};
}

}  // namespace

LineEditor::LineEditor(EventLoop& loop, ConsoleOutput& output, Person person)
    : loop_(loop),
      output_(output),
      person_(std::move(person)),
      stream_(::fopencookie(&output_, "w", {nullptr, WriteToOutput, nullptr, nullptr}), ::fclose),
      history_(::history_init(), ::history_end) {
  UseUtf8();
  editor_ = {::el_init_fd("rotacasts-host", stdin, stream_.get(), stream_.get(), STDIN_FILENO,
                          STDOUT_FILENO, STDOUT_FILENO),
             ::el_end};
  HistEvent event;
  ::history(history_.get(), &event, H_SETSIZE, kRememberedLines);
  ::history(history_.get(), &event, H_SETUNIQUE, 1);
  editline* const editor = editor_.get();
  ::el_set(editor, EL_CLIENTDATA, this);
  ::el_set(editor, EL_HIST, ::history, history_.get());
  ::el_set(editor, EL_PROMPT, Prompt);
  ::el_set(editor, EL_SIGNAL, 0);  // the event loop handles signals
  ::el_set(editor, EL_GETCFN, ReadCharacter);
  BindKeys();
  Begin();
  output_.onBefore = [this] { Hide(); };
  output_.onAfter = [this] { Show(); };
  loop_.onStop = [this](bool isStopping) { Pause(isStopping); };
  loop_.onResize = [this] { Resize(); };
  loop_.Watch(STDIN_FILENO, POLLIN, [this](short ready) { HandleInput(ready); });
}

LineEditor::~LineEditor() {
  if (hasEnded_) return;
  End();
  output_.Write("\n");
}

LineEditor& LineEditor::Of(editline* editor) {
  void* own = nullptr;
  ::el_get(editor, EL_CLIENTDATA, &own);
  return *static_cast<LineEditor*>(own);
}

void LineEditor::BindKeys() {
  editline* const editor = editor_.get();
  ::el_set(editor, EL_EDITOR, "emacs");
  // Wide, because it would never free its copies of narrow names.
  ::el_wset(editor, EL_ADDFN, L"rotacasts-complete", L"Completes a word", Complete);
  ::el_wset(editor, EL_ADDFN, L"rotacasts-delete", L"Deletes a letter, or ends", DeleteOrEnd);
  ::el_wset(editor, EL_ADDFN, L"rotacasts-clear", L"Takes the line away", Clear);
  ::el_set(editor, EL_BIND, "\t", "rotacasts-complete", nullptr);
  ::el_set(editor, EL_BIND, "\x04", "rotacasts-delete", nullptr);
  ::el_set(editor, EL_BIND, kClearKey, "rotacasts-clear", nullptr);
  // These would wait for another key, and the host with them.
  for (const char* key : {"\x16", "\x1bx", "\x1bX"}) {
    ::el_set(editor, EL_BIND, key, "ed-unassigned", nullptr);
  }
}

/// Decodes a letter of the standard input, whose first byte is there. A lone Esc looks like the
/// beginning of an arrow key, so further bytes are given a moment only.
int LineEditor::ReadCharacter(editline*, wchar_t* character) {
  constexpr auto kIncomplete = static_cast<std::size_t>(-2);
  std::mbstate_t state{};
  for (;;) {
    pollfd input{STDIN_FILENO, POLLIN, 0};
    char byte;
    if (::poll(&input, 1, kKeyTime) <= 0) return -1;
    const ssize_t count = ::read(STDIN_FILENO, &byte, 1);
    if (count <= 0) return static_cast<int>(count);
    const std::size_t size = std::mbrtowc(character, &byte, 1, &state);
    if (size <= 1) return 1;
    if (size != kIncomplete) state = {};
  }
}

char* LineEditor::Prompt(editline* editor) {
  static char prompt[] = "rotacasts> ";
  static char none[] = "";
  return Of(editor).isShowing_ ? prompt : none;
}

unsigned char LineEditor::Complete(editline* editor, int) {
  LineEditor& self = Of(editor);
  const std::string line = Narrow(LineUpToCursor(editor));
  const std::size_t start = line.find_last_of(' ') + 1;
  const std::string word = line.substr(start);
  std::vector<std::string> words = self.person_.words(line.substr(0, start));
  std::erase_if(words, [&](const std::string& other) { return !other.starts_with(word); });
  if (words.empty()) return CC_REFRESH_BEEP;
  const std::string rest = CommonStart(words).substr(word.size());
  if (rest.empty() && words.size() > 1) self.candidates_ = std::move(words);
  ::el_insertstr(editor, rest.c_str());
  return CC_REFRESH;
}

unsigned char LineEditor::DeleteOrEnd(editline* editor, int) {
  const LineInfoW* line = ::el_wline(editor);
  if (line->buffer == line->lastchar) Of(editor).endIsAsked_ = true;
  if (line->cursor == line->lastchar) return CC_NORM;
  ::el_cursor(editor, 1);
  ::el_deletestr(editor, 1);
  return CC_REFRESH;
}

/// Keeps the line for Show.
unsigned char LineEditor::Clear(editline* editor, int) {
  LineEditor& self = Of(editor);
  self.hiddenLine_ = LineOf(editor);
  const int length = static_cast<int>(self.hiddenLine_.size());
  self.hiddenCursor_ = static_cast<int>(LineUpToCursor(editor).size());
  ::el_cursor(editor, length - self.hiddenCursor_);
  ::el_deletestr(editor, length);
  self.isShowing_ = false;
  return CC_REDISPLAY;
}

void LineEditor::HandleInput(short ready) {
  const bool isGone = (ready & (POLLHUP | POLLERR)) != 0;
  int count = 0;
  if (!isGone) {
    ::el_wgets(editor_.get(), &count);
    RefuseLonger();
  }
  if (isGone || endIsAsked_) {
    End();
    output_.Write("\n");
    return person_.onEnd();
  }
  if (!candidates_.empty()) {
    std::string list;
    for (const std::string& word : candidates_) list += word + "  ";
    candidates_.clear();
    Hide();
    output_.Write(list + "\n");
    return Show();
  }
  const std::wstring line = LineOf(editor_.get());
  if (line.ends_with(L'\n') || line.ends_with(L'\r')) Take();
}

void LineEditor::Take() {
  std::wstring line = LineOf(editor_.get());
  line.pop_back();
  const std::string text = Narrow(line);
  const bool isTooLong = line.size() > kLongestTyped;
  HistEvent event;
  if (!text.empty() && !isTooLong) ::history(history_.get(), &event, H_ENTER, text.c_str());
  ::el_set(editor_.get(), EL_UNBUFFERED, 0);
  isPrompting_ = isShowing_ = false;
  if (isTooLong) {
    output_.Write("a line is typed with at most " + std::to_string(kLongestTyped) +
                  " letters; nothing was done\n");
    return Begin();
  }
  if (person_.onLine(text)) return Begin();
  End();
}

/// Prompts for a line.
void LineEditor::Begin() {
  isPrompting_ = isShowing_ = true;
  ::el_set(editor_.get(), EL_UNBUFFERED, 1);
}

void LineEditor::Hide() {
  if (!isShowing_) return;
  ::el_push(editor_.get(), kClearKey);
  int count = 0;
  ::el_wgets(editor_.get(), &count);
}

/// Expects the terminal's cursor at the beginning of a line.
void LineEditor::Show() {
  if (!isPrompting_ || isShowing_) return;
  isShowing_ = true;
  ::el_winsertstr(editor_.get(), hiddenLine_.c_str());
  ::el_cursor(editor_.get(), hiddenCursor_ - static_cast<int>(hiddenLine_.size()));
  ::el_set(editor_.get(), EL_REFRESH);
}

void LineEditor::Pause(bool isStopping) {
  if (!isPrompting_) return;
  if (isStopping) {
    Hide();
    ::el_set(editor_.get(), EL_UNBUFFERED, 0);
    return;
  }
  ::el_set(editor_.get(), EL_UNBUFFERED, 1);
  ::el_resize(editor_.get());
  Show();
}

/// Wraps the line again.
void LineEditor::Resize() {
  if (!isShowing_) return;
  Hide();
  ::el_resize(editor_.get());
  Show();
}

/// Takes away what would make the line longer than any command.
void LineEditor::RefuseLonger() {
  const LineInfoW* line = ::el_wline(editor_.get());
  const auto size = static_cast<std::size_t>(line->lastchar - line->buffer);
  if (size <= kLongestTyped + 1 || line->lastchar[-1] == L'\n') return;
  ::el_deletestr(editor_.get(), 1);
}

void LineEditor::End() {
  hasEnded_ = true;
  isPrompting_ = isShowing_ = false;
  ::el_set(editor_.get(), EL_UNBUFFERED, 0);
  output_.onBefore = output_.onAfter = nullptr;
  loop_.onStop = nullptr;
  loop_.onResize = nullptr;
  loop_.Unwatch(STDIN_FILENO);
}

}  // namespace rotacasts::host
