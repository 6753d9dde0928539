// Answering a costly yes-or-no question without blocking the event loop.
#pragma once

#include <functional>
#include <optional>

#include "machine/linux/event_loop.h"

namespace rotacasts::host {

/// Asks a question in a child process of low priority, which ends with this object and with the
/// host.
class BackgroundCheck {
 public:
  /// nullopt if the child process has ended without an answer.
  using Answer = std::optional<bool>;
  /// Calls `onAnswer` once, in a later turn; it may destroy this object. Errors: 57 if no child
  /// process can be started.
  BackgroundCheck(EventLoop& loop, const std::function<bool()>& question,
                  std::function<void(Answer)> onAnswer);
  /// No answer follows.
  ~BackgroundCheck();
  BackgroundCheck(const BackgroundCheck&) = delete;
  BackgroundCheck& operator=(const BackgroundCheck&) = delete;

 private:
  void Finish();
  void Close();

  EventLoop& loop_;
  std::function<void(Answer)> onAnswer_;
  int process_ = -1;
  int answer_ = -1;  // a pipe's end: a byte, "y" for yes
};

}  // namespace rotacasts::host
