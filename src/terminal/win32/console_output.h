// Printing that never waits for a reader.
#pragma once

#include <memory>
#include <streambuf>
#include <string>

namespace rotacasts::host {

/// A stream buffer on the standard output whose text a thread writes, so that a person who marks
/// text in the console, or a program that does not read, holds nobody up. Text is written when the
/// stream is flushed. The destructor waits a moment for what is left.
class ConsoleOutput final : public std::streambuf {
 public:
  ConsoleOutput();
  ~ConsoleOutput() override;
  ConsoleOutput(const ConsoleOutput&) = delete;
  ConsoleOutput& operator=(const ConsoleOutput&) = delete;

 protected:
  int overflow(int character) override;
  std::streamsize xsputn(const char* text, std::streamsize count) override;
  int sync() override;

 private:
  struct Writer;

  std::string text_;  // since the last flush
  const std::shared_ptr<Writer> writer_;
};

}  // namespace rotacasts::host
