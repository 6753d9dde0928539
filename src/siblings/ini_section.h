// A section of an INI text with its lines indexed by key.
#pragma once

#include <cstdint>
#include <memory_resource>
#include <span>
#include <string>
#include <vector>

#include "siblings/ini_lines.h"

namespace rotacasts::host {

/// A change takes the time for one line, however long the section is. IniText says what the lines
/// mean.
class IniSection {
 public:
  /// `cursor` must be at the section's header line. `bytes`, the whole file, must not change while
  /// this object exists.
  IniSection(std::string name, const std::string& bytes, IniCursor cursor);

  bool Is(std::string_view name) const { return name == name_ || EqualsIgnoringCase(name_, name); }
  std::vector<IniLine> Lines() const;
  std::optional<std::string_view> Value(std::string_view key);
  /// Sets a key. Returns false if it already has the value.
  bool Set(std::string_view key, std::string_view value);
  /// Removes a key. Returns false if there is none.
  bool Remove(std::string_view key);

  /// The whole file, with the section's changes.
  std::string FileBytes() const;

 private:
  static constexpr std::uint32_t kNoRow = ~std::uint32_t{0};

  struct Row {
    std::string_view whole;
    std::uint8_t endSize = kIniLineEnd.size();  // of its line break
    bool hasKey = false;
    bool isGone = false;
    std::uint32_t hash = 0;       // of its key
    std::uint32_t next = kNoRow;  // in the same bucket

    std::string_view Text() const { return whole.substr(0, whole.size() - endSize); }
    std::optional<IniLine> KeyLine() const { return IniCursor::KeyLineOf(Text()); }
  };

  /// The link to the key's first row, in its bucket or in the row before; holds kNoRow if there is
  /// none.
  std::uint32_t& Find(std::string_view key);
  /// Distributes all rows with keys to new buckets; the first row of each key comes first.
  void FillBuckets();
  void PutInBucket(std::uint32_t row);

  std::string_view Own(std::span<const std::string_view> parts);
  void Append(std::string_view key, std::string_view value);
  /// Adds a missing line break before this row: to the row above or to the header.
  void EndLineBefore(std::size_t row);

  const std::string name_;
  const std::string& bytes_;
  const std::size_t begin_;        // of the first line after the header
  std::string_view behindHeader_;  // the header's line break, if it had none
  std::size_t end_;
  std::vector<Row> rows_;
  std::vector<std::uint32_t> buckets_;       // the first row of each; their number is a power of 2
  std::pmr::monotonic_buffer_resource own_;  // holds new lines, never moved
  std::size_t ownSize_ = 0;
};

}  // namespace rotacasts::host
