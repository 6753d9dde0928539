#include "machine/linux/console_input.h"

#include <poll.h>
#include <unistd.h>

#include <cerrno>
#include <utility>

namespace rotacasts::host {

ConsoleInput::ConsoleInput(EventLoop& loop, std::function<bool(const std::string&)> onLine,
                           std::function<void()> onEnd)
    : loop_(loop), onLine_(std::move(onLine)), onEnd_(std::move(onEnd)) {
  loop_.Watch(STDIN_FILENO, POLLIN, [this](short) { Read(); });
}

ConsoleInput::~ConsoleInput() {
  loop_.Unwatch(STDIN_FILENO);
}

void ConsoleInput::Read() {
  char buffer[4096];
  const ssize_t count = ::read(STDIN_FILENO, buffer, sizeof buffer);
  if (count < 0 && (errno == EINTR || errno == EAGAIN)) return;
  if (count > 0) text_.append(buffer, static_cast<std::size_t>(count));
  if (count <= 0 && !text_.empty()) text_ += '\n';
  TakeLines();
  if (count > 0) return;
  loop_.Unwatch(STDIN_FILENO);
  onEnd_();
}

void ConsoleInput::TakeLines() {
  for (auto end = text_.find('\n'); end != text_.npos; end = text_.find('\n')) {
    std::string line = text_.substr(0, end);
    text_.erase(0, end + 1);
    if (line.ends_with('\r')) line.pop_back();
    if (!onLine_(line)) return loop_.Unwatch(STDIN_FILENO);
  }
}

}  // namespace rotacasts::host
