// The text of an INI file: finding and changing lines without touching any other.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace rotacasts::host {

/// The bytes of an INI file (Windows-1252). Section and key names match without regard to ASCII
/// letter case; the first section, and in it the first key, of a name counts. A value is everything
/// behind the line's first "=", blanks included. Comments (";" or "#"), unknown sections, order and
/// spacing of all other lines survive every change; new lines end in CR LF.
class IniText {
 public:
  explicit IniText(std::string bytes = {}) : bytes_(std::move(bytes)) {}

  const std::string& Bytes() const { return bytes_; }
  /// Whether any change made the bytes other than they were.
  bool IsChanged() const { return changed_; }

  /// Every "key=value" line of the section in file order, without blanks around the key. A view is
  /// good until the next change.
  struct Line {
    std::string_view key;
    std::string_view value;
  };
  std::vector<Line> Lines(std::string_view section) const;
  /// The names of all sections in file order.
  std::vector<std::string_view> Sections() const;
  std::optional<std::string_view> Value(std::string_view section, std::string_view key) const;

  /// Every line of the file in order, for whoever looks for what is wrong with it.
  struct Row {
    enum class Kind { Heading, Key, Ignored, Unknown };  // Ignored: blank or a comment
    Kind kind = Kind::Ignored;
    std::string_view name;  // the heading's or the key's
    std::string_view rest;  // what stands behind the heading's "]" or the key's "="
  };
  std::vector<Row> Rows() const;
  /// The number of the key's line, from 1; where the key is missing, that of its section's heading,
  /// and without that 1.
  std::size_t LineOf(std::string_view section, std::string_view key) const;

  /// Writes a key: in its place, or behind the last line of its section, which is made if needed.
  void SetValue(std::string_view section, std::string_view key, std::string_view value);
  void RemoveKey(std::string_view section, std::string_view key);
  void RemoveSection(std::string_view section);

 private:
  class Cursor;
  void Replace(std::size_t at, std::size_t length, std::string_view replacement);

  std::string bytes_;
  bool changed_ = false;
};

/// Reads an INI file; an empty text when the file does not exist. Error 321 for a file that is no
/// Windows-1252 text.
IniText ReadIni(const std::string& path);

}  // namespace rotacasts::host
