// Answering a costly yes-or-no question without blocking the event loop.
#pragma once

#include <functional>
#include <memory>
#include <optional>

#include "machine/win32/event_loop.h"

namespace rotacasts::host {

/// Asks a question on a thread of low priority.
class BackgroundCheck {
 public:
  /// nullopt if there was no memory for an answer.
  using Answer = std::optional<bool>;
  /// Calls `onAnswer` once, in a later turn; it may destroy this object. `question` must own what
  /// it needs: it goes on after the end of this object. Errors: 57 if no thread can be started.
  BackgroundCheck(EventLoop& loop, std::function<bool()> question,
                  std::function<void(Answer)> onAnswer);
  /// No answer follows.
  ~BackgroundCheck();
  BackgroundCheck(const BackgroundCheck&) = delete;
  BackgroundCheck& operator=(const BackgroundCheck&) = delete;

 private:
  struct Asked;
  const std::shared_ptr<std::function<void(Answer)>> onAnswer_;
};

}  // namespace rotacasts::host
