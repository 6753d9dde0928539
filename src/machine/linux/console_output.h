// Printing to whoever reads, or does not.
#pragma once

#include <functional>
#include <streambuf>
#include <string>
#include <string_view>

#include "machine/linux/event_loop.h"

namespace rotacasts::host {

/// A stream buffer on the standard output that never waits. What cannot be written at once is kept
/// up to a bound and written when there is room; lines beyond the bound are dropped, counted, and
/// the count is printed once somebody reads again. Once nobody can read any more, nothing is kept.
///
/// Text goes out when the stream is flushed. The loop lives longer.
class ConsoleOutput final : public std::streambuf {
 public:
  explicit ConsoleOutput(EventLoop& loop);
  ~ConsoleOutput() override;
  ConsoleOutput(const ConsoleOutput&) = delete;
  ConsoleOutput& operator=(const ConsoleOutput&) = delete;

  /// Called before and after text of the stream's goes out, for whoever has something on the last
  /// line of the screen.
  std::function<void()> onBefore;
  std::function<void()> onAfter;
  /// Bytes that go out as they are, with no call of the above; dropped if they do not fit.
  void Write(std::string_view bytes);

 protected:
  int overflow(int character) override;
  std::streamsize xsputn(const char* text, std::streamsize count) override;
  int sync() override;

 private:
  ConsoleOutput(EventLoop& loop, int own);
  void Keep(std::string_view text);
  void WriteKept();

  EventLoop& loop_;
  const int descriptor_;
  const bool isOwn_;          // whether the descriptor is this object's own
  std::string text_;          // since the last flush
  std::string kept_;          // to be written
  std::int64_t dropped_ = 0;  // lines
  bool isBroken_ = false;
};

}  // namespace rotacasts::host
