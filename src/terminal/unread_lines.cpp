#include "terminal/unread_lines.h"

#include <algorithm>
#include <utility>

namespace rotacasts::host {

void UnreadLines::Add(std::string_view text) {
  const bool isRead = kept_.empty();
  while (!text.empty()) {
    const std::size_t end = std::min(text.find('\n'), text.size() - 1) + 1;
    if (isRead || kept_.size() + end <= kMost) {
      kept_ += text.substr(0, end);
    } else {
      ++dropped_;
    }
    text.remove_prefix(end);
  }
}

void UnreadLines::AddBytes(std::string_view bytes) {
  if (kept_.size() + bytes.size() <= kMost) kept_ += bytes;
}

void UnreadLines::Remove(std::size_t count) {
  kept_.erase(0, count);
  if (!kept_.empty() || dropped_ == 0) return;
  kept_ = "(" + std::to_string(std::exchange(dropped_, 0)) +
          " lines were not shown because nobody was reading)\n";
}

}  // namespace rotacasts::host
