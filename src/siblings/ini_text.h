// The text of an INI file: finds and changes lines without touching others.
#pragma once

#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "siblings/ini_section.h"

namespace rotacasts::host {

/// The bytes of an INI file (Windows-1252). Names of sections and keys match without regard to
/// ASCII letter case; of several with the same name the first counts. A value is everything after
/// the line's first "=", including blanks. Every change preserves comments (";" or "#"), unknown
/// sections, and the order and spacing of all other lines; new lines end in CR LF.
///
/// The first change of a section searches the text. From the second one on its lines are indexed by
/// key, and a change takes the time for one line.
class IniText {
 public:
  explicit IniText(std::string bytes = {});
  IniText(IniText&&) noexcept;
  IniText& operator=(IniText&&) noexcept;

  const std::string& Bytes() const;
  /// Whether a change has altered the bytes, since the start or TakeAsUnchanged.
  bool IsChanged() const { return changed_; }
  void TakeAsUnchanged() { changed_ = false; }

  /// The section's "key=value" lines in file order, with trimmed keys. The views are valid until
  /// the next change.
  using Line = IniLine;
  std::vector<Line> Lines(std::string_view section) const;
  /// The names of all sections in file order.
  std::vector<std::string_view> Sections() const;
  std::optional<std::string_view> Value(std::string_view section, std::string_view key) const;

  /// Every line of the file in order, for finding mistakes.
  struct Row {
    enum class Kind { Heading, Key, Ignored, Unknown };  // Ignored: blank or a comment
    Kind kind = Kind::Ignored;
    std::string_view name;  // the heading's or the key's
    std::string_view rest;  // after the heading's "]" or the key's "="
  };
  std::vector<Row> Rows() const;
  /// The number of the key's line, from 1. Without the key it is the section's heading, without
  /// that 1.
  std::size_t LineOf(std::string_view section, std::string_view key) const;

  /// Sets a key: in its place, or after the last line of its section, which is added if necessary.
  void SetValue(std::string_view section, std::string_view key, std::string_view value);
  void RemoveKey(std::string_view section, std::string_view key);
  void RemoveSection(std::string_view section);

 private:
  /// Opens the section with its lines indexed, if that pays. Otherwise returns null, and no section
  /// is open.
  IniSection* Open(std::string_view section);
  void Close() const;
  void Replace(std::size_t at, std::size_t length, std::string_view replacement);

  mutable std::string bytes_;  // without the open section's changes
  mutable std::unique_ptr<IniSection> open_;
  std::string lastChanged_;  // the section's name
  bool changed_ = false;
};

/// The text of a file with these bytes. Errors: 321, naming the path, if it is not Windows-1252
/// text.
IniText IniOf(const std::string& path, std::string bytes);
/// Reads an INI file of the machine; empty if it does not exist. Errors: as IniOf, and those of
/// native_files.h.
IniText ReadIni(const std::string& path);

}  // namespace rotacasts::host
