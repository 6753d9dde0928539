// Printing that never waits for a reader.
#pragma once

#include <memory>
#include <string_view>

#include "terminal/flushed_text.h"

namespace rotacasts::host {

/// A stream buffer on the standard output whose text a thread writes, so that a person who marks
/// text in the console, or a program that does not read, holds nobody up. Text is written when the
/// stream is flushed. The destructor waits a moment for what is left.
class ConsoleOutput final : public FlushedText {
 public:
  ConsoleOutput();
  ~ConsoleOutput() override;
  ConsoleOutput(const ConsoleOutput&) = delete;
  ConsoleOutput& operator=(const ConsoleOutput&) = delete;

 private:
  struct Writer;

  void Flushed(std::string_view text) override;

  const std::shared_ptr<Writer> writer_;
};

}  // namespace rotacasts::host
