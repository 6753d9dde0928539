// One section of an INI text whose lines are known by their keys.
#pragma once

#include <cstdint>
#include <deque>
#include <string>
#include <unordered_map>
#include <vector>

#include "host/components/ini_lines.h"

namespace rotacasts::host {

/// A change costs its own line, however long the section. What the lines mean is said at IniText.
class IniSection {
 public:
  /// `cursor` stands in the section's header line. `bytes`, the whole file, stays as it is for as
  /// long as this lives.
  IniSection(std::string name, const std::string& bytes, IniCursor cursor);

  bool Is(std::string_view name) const { return EqualsIgnoringCase(name_, name); }
  std::vector<IniLine> Lines() const;
  std::optional<std::string_view> Value(std::string_view key) const;
  /// False when that is what the key holds already.
  bool Set(std::string_view key, std::string_view value);
  /// False when there is no such key.
  bool Remove(std::string_view key);

  /// The whole file with the section as it is now.
  std::string FileBytes() const;

 private:
  struct Row {
    std::string_view whole;
    std::size_t endSize = kIniLineEnd.size();  // of its line's end
    bool isGone = false;
    std::size_t next = 0;  // the next row of the same key; 0 for none

    std::string_view Text() const { return whole.substr(0, whole.size() - endSize); }
    std::optional<IniLine> KeyLine() const { return IniCursor::KeyLineOf(Text()); }
  };
  /// The same for all spellings of a key.
  struct KeyHash {
    std::size_t operator()(std::string_view key) const;
  };
  struct SameKey {
    bool operator()(std::string_view a, std::string_view b) const {
      return EqualsIgnoringCase(a, b);
    }
  };

  std::string_view Own(std::string text);
  void Append(std::string_view key, std::string_view value);
  /// Sees to it that a line can begin after the row before this one, or after the header.
  void EndLineBefore(std::size_t row);

  const std::string name_;
  const std::string& bytes_;
  const std::size_t begin_;        // of the first line after the header
  std::string_view behindHeader_;  // the end of its line, should it have had none
  std::size_t end_;
  std::vector<Row> rows_;
  std::unordered_map<std::string_view, std::size_t, KeyHash, SameKey> byKey_;  // the first of each
  std::deque<std::string> own_;  // what new lines lie in, never moved
  std::size_t ownSize_ = 0;
};

}  // namespace rotacasts::host
