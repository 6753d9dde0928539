// Splits an INI file into lines and tells what each one is.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <string_view>

namespace rotacasts::host {

inline constexpr std::string_view kIniLineEnd = "\r\n";

inline std::string_view TrimBlanks(std::string_view text) {
  const auto isBlank = [](char letter) { return letter == ' ' || letter == '\t'; };
  while (!text.empty() && isBlank(text.front())) text.remove_prefix(1);
  while (!text.empty() && isBlank(text.back())) text.remove_suffix(1);
  return text;
}

/// A line of the file; views into its text.
struct IniRow {
  enum class Kind : std::uint8_t { Heading, Key, Ignored, Unknown };  // Ignored: blank or a comment
  Kind kind = Kind::Ignored;
  std::string_view name = {};  // the heading's or the key's, trimmed
  std::string_view rest = {};  // after the heading's "]" or the key's "="
};

/// Tells what a line, given without its line break, is.
inline IniRow ParseIniRow(std::string_view text) {
  const std::string_view trimmed = TrimBlanks(text);
  if (trimmed.starts_with('[')) {
    const auto close = trimmed.find(']');
    if (close != trimmed.npos) {
      return {IniRow::Kind::Heading, TrimBlanks(trimmed.substr(1, close - 1)),
              trimmed.substr(close + 1)};
    }
  }
  if (trimmed.empty() || trimmed.front() == ';' || trimmed.front() == '#') return {};
  const auto equals = text.find('=');
  if (equals == text.npos) return {IniRow::Kind::Unknown};
  return {IniRow::Kind::Key, TrimBlanks(text.substr(0, equals)), text.substr(equals + 1)};
}

/// Steps through the lines of a file. CR LF, LF and CR end a line.
class IniLines {
 public:
  explicit IniLines(std::string_view bytes) : bytes_(bytes) {}

  /// Moves to the next line; false after the last one.
  bool Next() {
    begin_ = next_;
    if (begin_ >= bytes_.size()) return false;
    const std::size_t feed = std::min(bytes_.find('\n', begin_), bytes_.size());
    const std::size_t carriage = bytes_.substr(begin_, feed - begin_).find('\r');
    end_ = carriage == bytes_.npos ? feed : begin_ + carriage;
    next_ = std::min(end_ + (end_ + 1 == feed ? 2 : 1), bytes_.size());
    return true;
  }
  /// The line with its line break.
  std::string_view Whole() const { return bytes_.substr(begin_, next_ - begin_); }
  /// The size of its line break in bytes, 0 at the end of a file that lacks it.
  std::size_t EndSize() const { return next_ - end_; }

 private:
  std::string_view bytes_;
  std::size_t begin_ = 0;
  std::size_t end_ = 0;
  std::size_t next_ = 0;
};

}  // namespace rotacasts::host
