// Output that cannot control the terminal.
#pragma once

#include <ostream>
#include <streambuf>

namespace rotacasts::host {

/// Passes UTF-8 text to another stream, with "?" for each control character except the line feed,
/// including those of two bytes (U+0080 to U+009F), because a message may contain a terminal's
/// escape sequence.
class PlainOutput final : private std::streambuf, public std::ostream {
 public:
  explicit PlainOutput(std::ostream& target)
      : std::ostream(static_cast<std::streambuf*>(this)), target_(target) {}

 private:
  int overflow(int character) override;
  int sync() override;

  std::ostream& target_;
  bool holdsLead_ = false;  // the first byte of a possible control character
};

}  // namespace rotacasts::host
