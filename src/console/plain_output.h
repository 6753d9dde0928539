// Text that a terminal shows and does not obey.
#pragma once

#include <ostream>
#include <streambuf>

namespace rotacasts::host {

/// Passes UTF-8 text on to another stream with "?" for each control character but the line feed,
/// those of two bytes (U+0080 to U+009F) included: a message may hold a terminal's escape sequence.
class PlainOutput final : private std::streambuf, public std::ostream {
 public:
  explicit PlainOutput(std::ostream& target)
      : std::ostream(static_cast<std::streambuf*>(this)), target_(target) {}

 private:
  int overflow(int character) override;
  int sync() override;

  std::ostream& target_;
  bool holdsLead_ = false;  // the first byte of what may become a control character
};

}  // namespace rotacasts::host
