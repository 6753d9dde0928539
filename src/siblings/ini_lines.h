// Splits an INI file into lines and classifies them.
#pragma once

#include <algorithm>
#include <array>
#include <optional>
#include <string>
#include <string_view>

#include "base/text.h"

namespace rotacasts::host {

/// A line with a key (trimmed) and its value; views into the text.
struct IniLine {
  std::string_view key;
  std::string_view value;
};

inline constexpr std::string_view kIniLineEnd = "\r\n";

inline std::string_view TrimBlanks(std::string_view text) {
  const auto isBlank = [](char letter) { return letter == ' ' || letter == '\t'; };
  while (!text.empty() && isBlank(text.front())) text.remove_prefix(1);
  while (!text.empty() && isBlank(text.back())) text.remove_suffix(1);
  return text;
}

/// Whether a new line can start after these bytes.
inline bool EndsInLine(std::string_view bytes) {
  return bytes.empty() || kIniLineEnd.find(bytes.back()) != kIniLineEnd.npos;
}

/// The parts of a new line, in order.
inline std::array<std::string_view, 4> NewIniLine(std::string_view key, std::string_view value) {
  return {key, "=", value, kIniLineEnd};
}

/// Steps through the lines and tells what each one is.
class IniCursor {
 public:
  explicit IniCursor(std::string_view bytes, std::size_t at = 0) : bytes_(bytes), next_(at) {}

  /// Moves to the next line; false after the last one. CR LF, LF and CR end a line.
  bool Next() {
    begin_ = next_;
    if (begin_ >= bytes_.size()) return false;
    const std::size_t feed = std::min(bytes_.find('\n', begin_), bytes_.size());
    const std::size_t carriage = bytes_.substr(begin_, feed - begin_).find('\r');
    end_ = carriage == bytes_.npos ? feed : begin_ + carriage;
    next_ = std::min(end_ + (end_ + 1 == feed ? 2 : 1), bytes_.size());
    return true;
  }

  /// Moves to the section's header line; false if there is none.
  bool FindSection(std::string_view section) {
    while (Next()) {
      const std::optional<std::string_view> header = Header();
      if (header && EqualsIgnoringCase(*header, section)) return true;
    }
    return false;
  }

  /// Moves to the next line of the current section; false at its end.
  bool NextInSection() { return Next() && !Header(); }

  /// Moves to the first line of the section that has the key; false if there is none.
  bool FindKey(std::string_view key) {
    while (NextInSection()) {
      const std::optional<IniLine> line = KeyLine();
      if (line && EqualsIgnoringCase(line->key, key)) return true;
    }
    return false;
  }

  std::string_view Text() const { return bytes_.substr(begin_, end_ - begin_); }
  std::size_t Begin() const { return begin_; }
  std::size_t NextBegin() const { return next_; }

  /// The section's name if the line is a section header.
  std::optional<std::string_view> Header() const {
    const std::string_view text = TrimBlanks(Text());
    if (!text.starts_with('[')) return std::nullopt;
    const auto close = text.find(']');
    if (close == text.npos) return std::nullopt;
    return TrimBlanks(text.substr(1, close - 1));
  }

  /// Key and value if the line has them.
  std::optional<IniLine> KeyLine() const { return KeyLineOf(Text()); }
  static std::optional<IniLine> KeyLineOf(std::string_view text) {
    const auto equals = text.find('=');
    if (equals == text.npos) return std::nullopt;
    const std::string_view key = TrimBlanks(text.substr(0, equals));
    if (key.starts_with(';') || key.starts_with('#')) return std::nullopt;
    return IniLine{key, text.substr(equals + 1)};
  }

 private:
  std::string_view bytes_;
  std::size_t begin_ = 0;
  std::size_t end_ = 0;
  std::size_t next_ = 0;
};

}  // namespace rotacasts::host
