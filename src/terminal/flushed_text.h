// A stream's text, a flush at a time.
#pragma once

#include <cstdio>
#include <streambuf>
#include <string>
#include <string_view>
#include <utility>

namespace rotacasts::host {

/// A stream buffer that keeps text until the stream is flushed, and then hands it on in one piece.
class FlushedText : public std::streambuf {
 protected:
  /// Called with what was written since the last flush; never with nothing.
  virtual void Flushed(std::string_view text) = 0;

  int overflow(int character) override {
    if (character != EOF) text_ += static_cast<char>(character);
    return 0;
  }
  std::streamsize xsputn(const char* text, std::streamsize count) override {
    text_.append(text, static_cast<std::size_t>(count));
    return count;
  }
  int sync() override {
    const std::string text = std::exchange(text_, {});
    if (!text.empty()) Flushed(text);
    return 0;
  }

 private:
  std::string text_;
};

}  // namespace rotacasts::host
