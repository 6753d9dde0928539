// The text of an INI file: finds and changes lines without touching others.
#pragma once

#include <cstddef>
#include <cstdint>
#include <initializer_list>
#include <memory>
#include <memory_resource>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "siblings/ini_lines.h"

namespace rotacasts::host {

/// The text of an INI file (Windows-1252), as lines. Names of sections and keys match without
/// regard to ASCII letter case; of several with the same name the first counts. A value is
/// everything after the line's first "=", including blanks. Every change preserves comments (";" or
/// "#"), unknown sections, and the order and spacing of all other lines; new lines end in CR LF.
///
/// The first change of a section searches its lines. From the second one on they are indexed by
/// key, and a change takes the time for one line, however long the section is.
class IniText {
 public:
  explicit IniText(std::string bytes = {});

  std::string Bytes() const;
  /// Whether a change has altered the bytes, since the start or MarkUnchanged.
  bool IsChanged() const { return isChanged_; }
  void MarkUnchanged() { isChanged_ = false; }

  // The views that these return are valid until the next change.
  /// The section's "key=value" lines in file order.
  struct Line {
    std::string_view key;
    std::string_view value;
  };
  std::vector<Line> Lines(std::string_view section) const;
  /// The names of all sections in file order.
  std::vector<std::string_view> Sections() const;
  std::optional<std::string_view> Value(std::string_view section, std::string_view key) const;
  /// Every line of the file in order, for finding mistakes.
  using Row = IniRow;
  std::vector<Row> Rows() const;
  /// The number of the key's line, from 1. Without the key it is the section's heading, without
  /// that 1.
  std::size_t LineOf(std::string_view section, std::string_view key) const;

  /// Sets a key: in its place, or after the last line of its section, which is added if necessary.
  void SetValue(std::string_view section, std::string_view key, std::string_view value);
  void RemoveKey(std::string_view section, std::string_view key);
  void RemoveSection(std::string_view section);

 private:
  using Number = std::uint32_t;  // of a row, from 0
  static constexpr Number kNone = ~Number{0};

  struct StoredRow : Row {
    std::uint8_t endSize = 0;  // of its line break
    bool isGone = false;
    std::uint32_t hash = 0;  // of its key, once the section is indexed
    Number next = kNone;     // in the same bucket
    std::string_view whole;

    bool IsIn(Kind wanted) const { return kind == wanted && !isGone; }
    std::string_view Text() const { return whole.substr(0, whole.size() - endSize); }
    /// Replaces the line's bytes.
    void Set(std::string_view bytes, std::size_t sizeOfEnd);
  };
  /// The rows of a section: its heading and the one after its last.
  struct Range {
    Number heading = kNone;  // kNone if there is no such section
    Number end = kNone;
  };
  /// Where a key was found: the row, and the row that links to it in its bucket.
  struct Found {
    Number row = kNone;
    Number before = kNone;
  };

  Range Find(std::string_view section) const;
  /// The first row of the section with the key; of the section that is being changed, quickly.
  Number Find(std::string_view section, std::string_view key) const;
  bool IsChanging(std::string_view section) const;
  /// Prepares a change of the section. Indexes its keys if the change before was in it, too.
  void BeginChange(std::string_view section);
  void BuildIndex();
  void PutInBucket(Number row);
  Found FindInBucket(std::string_view key) const;

  /// Keeps the concatenation of these parts as long as the text lives.
  std::string_view Keep(std::initializer_list<std::string_view> parts);
  void Append(std::string_view key, std::string_view value);
  /// Inserts a row for this line, which ends in CR LF.
  StoredRow& Insert(Number at, std::string_view whole);
  /// Adds a missing line break to the last row before this one.
  void EndLineBefore(Number at);
  void NoteChange() {
    isOriginal_ = false;
    isChanged_ = true;
  }

  std::unique_ptr<const std::string> original_;  // which most rows refer to
  std::unique_ptr<std::pmr::monotonic_buffer_resource> kept_;
  std::vector<StoredRow> rows_;
  // The section that is being changed.
  std::string section_;
  Range range_;
  std::vector<Number> buckets_;  // of its keys, each with its first row; empty without an index

  bool isOriginal_ = true;  // no change at all so far
  bool isChanged_ = false;
};

/// The text of a file with these bytes. Errors: 321, naming the path, if it is not Windows-1252
/// text.
IniText IniOf(const std::string& path, std::string bytes);
/// Reads an INI file of the machine; empty if it does not exist. Errors: as IniOf, and those of
/// native_files.h.
IniText ReadIni(const std::string& path);

}  // namespace rotacasts::host
