// Printing that never waits for a reader.
#pragma once

#include <functional>
#include <string_view>

#include "machine/linux/event_loop.h"
#include "terminal/flushed_text.h"
#include "terminal/unread_lines.h"

namespace rotacasts::host {

/// A stream buffer on the standard output that never blocks. It buffers what cannot be written at
/// once, up to a bound. Lines beyond the bound are dropped, and their number is printed when
/// somebody reads again. Nothing is buffered after the reader has gone.
///
/// Text is written when the stream is flushed. `loop` must outlive it.
class ConsoleOutput final : public FlushedText {
 public:
  explicit ConsoleOutput(EventLoop& loop);
  ~ConsoleOutput() override;
  ConsoleOutput(const ConsoleOutput&) = delete;
  ConsoleOutput& operator=(const ConsoleOutput&) = delete;

  /// Called before and after the stream's text is written, for a prompt on the last line.
  std::function<void()> onBefore;
  std::function<void()> onAfter;
  /// Writes bytes without calling these functions; drops them if they do not fit.
  void Write(std::string_view bytes);

 private:
  ConsoleOutput(EventLoop& loop, int own);
  void Flushed(std::string_view text) override;
  void WriteKept();

  EventLoop& loop_;
  const int descriptor_;
  const bool isOwn_;  // whether this object closes it
  UnreadLines kept_;
  bool isBroken_ = false;
};

}  // namespace rotacasts::host
