#include "terminal/linux/console_input.h"

#include <poll.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <utility>

#include "terminal/terminal.h"

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
  char buffer[64 * 1024];
  const ssize_t count = ::read(STDIN_FILENO, buffer, sizeof buffer);
  if (count < 0 && (errno == EINTR || errno == EAGAIN)) return;
  if (count > 0) {
    Take({buffer, static_cast<std::size_t>(count)});
    return;
  }
  if (!text_.empty() && !Take("\n")) return;
  loop_.Unwatch(STDIN_FILENO);
  onEnd_();
}

bool ConsoleInput::Take(std::string_view bytes) {
  while (!bytes.empty()) {
    const std::size_t size = std::min(bytes.find('\n'), bytes.size());
    const std::size_t room = kLongestLine + 1 - text_.size();
    text_ += bytes.substr(0, std::min(size, room));
    if (size == bytes.size()) return true;
    bytes.remove_prefix(size + 1);
    std::string line = std::exchange(text_, {});
    if (line.ends_with('\r')) line.pop_back();
    if (onLine_(line)) continue;
    loop_.Unwatch(STDIN_FILENO);
    return false;
  }
  return true;
}

}  // namespace rotacasts::host
