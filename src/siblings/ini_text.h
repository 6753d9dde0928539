// The text of an INI file: finding and changing lines without touching any other.
#pragma once

#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "siblings/ini_section.h"

namespace rotacasts::host {

/// The bytes of an INI file (Windows-1252). Section and key names match without regard to ASCII
/// letter case; the first section, and in it the first key, of a name counts. A value is everything
/// after the line's first "=", blanks included. Comments (";" or "#"), unknown sections, order and
/// spacing of all other lines survive every change; new lines end in CR LF.
///
/// A change costs a look through the text. From the second change of one section on its lines are
/// known by their keys, and each further one costs no more than its own line.
class IniText {
 public:
  explicit IniText(std::string bytes = {});
  IniText(IniText&&) noexcept;
  IniText& operator=(IniText&&) noexcept;

  const std::string& Bytes() const;
  /// Whether any change made the bytes other than they were at that moment.
  bool IsChanged() const { return changed_; }
  void TakeAsUnchanged() { changed_ = false; }

  /// Every "key=value" line of the section in file order, without blanks around the key. A view is
  /// good until the next change.
  using Line = IniLine;
  std::vector<Line> Lines(std::string_view section) const;
  /// The names of all sections in file order.
  std::vector<std::string_view> Sections() const;
  std::optional<std::string_view> Value(std::string_view section, std::string_view key) const;

  /// Every line of the file in order, for whoever looks for what is wrong with it.
  struct Row {
    enum class Kind { Heading, Key, Ignored, Unknown };  // Ignored: blank or a comment
    Kind kind = Kind::Ignored;
    std::string_view name;  // the heading's or the key's
    std::string_view rest;  // what stands after the heading's "]" or the key's "="
  };
  std::vector<Row> Rows() const;
  /// The number of the key's line, from 1; where the key is missing, that of its section's heading,
  /// and without that 1.
  std::size_t LineOf(std::string_view section, std::string_view key) const;

  /// Writes a key: in its place, or after the last line of its section, which is made if needed.
  void SetValue(std::string_view section, std::string_view key, std::string_view value);
  void RemoveKey(std::string_view section, std::string_view key);
  void RemoveSection(std::string_view section);

 private:
  /// The section with its lines at hand, if it is worth it; null if not, and no section is open.
  IniSection* Open(std::string_view section);
  void Close() const;
  void Replace(std::size_t at, std::size_t length, std::string_view replacement);

  mutable std::string bytes_;  // but for what the open section has changed
  mutable std::unique_ptr<IniSection> open_;
  std::string lastChanged_;  // the section
  bool changed_ = false;
};

/// The text of a file with these bytes. Error 321, naming the path, if they are no Windows-1252
/// text.
IniText IniOf(const std::string& path, std::string bytes);
/// Reads an INI file of the machine; an empty text when the file does not exist.
IniText ReadIni(const std::string& path);

}  // namespace rotacasts::host
