// One section of an INI text whose lines are known by their keys.
#pragma once

#include <cstdint>
#include <memory_resource>
#include <span>
#include <string>
#include <vector>

#include "siblings/ini_lines.h"

namespace rotacasts::host {

/// A change costs its own line, however long the section. What the lines mean is said at IniText.
class IniSection {
 public:
  /// `cursor` stands in the section's header line. `bytes`, the whole file, stays as it is for as
  /// long as this lives.
  IniSection(std::string name, const std::string& bytes, IniCursor cursor);

  bool Is(std::string_view name) const { return name == name_ || EqualsIgnoringCase(name_, name); }
  std::vector<IniLine> Lines() const;
  std::optional<std::string_view> Value(std::string_view key);
  /// False when that is what the key holds already.
  bool Set(std::string_view key, std::string_view value);
  /// False when there is no such key.
  bool Remove(std::string_view key);

  /// The whole file with the section as it is now.
  std::string FileBytes() const;

 private:
  static constexpr std::uint32_t kNoRow = ~std::uint32_t{0};

  struct Row {
    std::string_view whole;
    std::uint8_t endSize = kIniLineEnd.size();  // of its line's end
    bool hasKey = false;
    bool isGone = false;
    std::uint32_t hash = 0;       // of its key
    std::uint32_t next = kNoRow;  // in the same bucket

    std::string_view Text() const { return whole.substr(0, whole.size() - endSize); }
    std::optional<IniLine> KeyLine() const { return IniCursor::KeyLineOf(Text()); }
  };

  /// The place that names the first row of the key: in its bucket or in the row before it there. It
  /// holds kNoRow when there is no such row.
  std::uint32_t& Find(std::string_view key);
  /// Puts every row with a key into its bucket anew, the first of each key in front.
  void FillBuckets();
  void PutInBucket(std::uint32_t row);

  std::string_view Own(std::span<const std::string_view> parts);
  void Append(std::string_view key, std::string_view value);
  /// Sees to it that a line can begin after the row before this one, or after the header.
  void EndLineBefore(std::size_t row);

  const std::string name_;
  const std::string& bytes_;
  const std::size_t begin_;        // of the first line after the header
  std::string_view behindHeader_;  // the end of its line, should it have had none
  std::size_t end_;
  std::vector<Row> rows_;
  std::vector<std::uint32_t> buckets_;       // the first row of each; their number a power of 2
  std::pmr::monotonic_buffer_resource own_;  // what new lines lie in, never moved
  std::size_t ownSize_ = 0;
};

}  // namespace rotacasts::host
