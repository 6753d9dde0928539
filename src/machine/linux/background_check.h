// Answering a costly yes-or-no question without blocking the event loop.
#pragma once

#include <functional>

#include "machine/linux/event_loop.h"

namespace rotacasts::host {

/// Asks a question in a child process of low priority, which ends with this object and with the
/// host.
class BackgroundCheck {
 public:
  /// Calls `onAnswer` once, in a later turn; it may destroy this object. A child that cannot be
  /// started, or that ends without an answer, answers no. Errors: std::bad_alloc without a pipe.
  BackgroundCheck(EventLoop& loop, const std::function<bool()>& question,
                  std::function<void(bool)> onAnswer);
  /// No answer follows.
  ~BackgroundCheck();
  BackgroundCheck(const BackgroundCheck&) = delete;
  BackgroundCheck& operator=(const BackgroundCheck&) = delete;

 private:
  void Finish();
  void Close();

  EventLoop& loop_;
  std::function<void(bool)> onAnswer_;
  int process_ = -1;
  int answer_ = -1;  // a pipe's end: one byte for yes, none for no
};

}  // namespace rotacasts::host
