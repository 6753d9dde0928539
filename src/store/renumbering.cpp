#include "store/renumbering.h"

#include <algorithm>
#include <limits>
#include <set>

namespace rotacasts {
namespace {

using Keys = std::set<std::string, std::less<>>;

/// The lowest number from `first` on that is none of these keys. There always is one: a section of
/// two billion lines fits no memory.
std::int32_t UnusedKey(const Keys& keys, std::int32_t first) {
  while (keys.contains(std::to_string(first))) ++first;
  return first;
}

bool HasDenseKeys(const MessageEntries& entries) {
  for (std::size_t i = 0; i < entries.size(); ++i) {
    if (entries[i].key != KeyAt(i)) return false;
  }
  return true;
}

class Replacement {
 public:
  Replacement(MessageSection& section, MessageEntries old, std::vector<std::string> texts)
      : section_(section),
        old_(std::move(old)),
        texts_(std::move(texts)),
        dense_(HasDenseKeys(old_) && old_.size() == texts_.size()) {
    for (std::size_t i = 0; i < texts_.size(); ++i) {
      if (!dense_ || texts_[i] != old_[i].text) changed_.push_back(i);
    }
    Keys keys;
    for (const MessageEntry& entry : old_) keys.insert(entry.key);
    auto spare = static_cast<std::int32_t>(texts_.size());
    for (std::size_t i = 0; i < changed_.size(); ++i) {
      spare = UnusedKey(keys, spare + 1);
      spares_.push_back(std::to_string(spare));
    }
  }

  void Run() {
    try {
      Stage();
      if (!dense_) RemoveOld();
      for (const std::size_t i : changed_) section_.Write(KeyAt(i), texts_[i]);
      RemoveSpares();
    } catch (...) {
      PutBack();
      throw;
    }
  }

 private:
  void RemoveOld() {
    for (const MessageEntry& entry : old_) section_.Remove(KeyToRemove(entry.key));
  }
  void Stage() {
    for (std::size_t i = 0; i < changed_.size(); ++i) {
      section_.Write(spares_[i], texts_[changed_[i]]);
    }
  }
  void RemoveSpares() {
    for (const std::string& key : spares_) section_.Remove(key);
  }

  /// After a failure: the old texts in their old places. The spare copies stay in the file unless
  /// every text is back.
  void PutBack() noexcept {
    try {
      if (!dense_) return;
      Stage();  // again: some of the copies may be gone already
      for (const std::size_t i : changed_) section_.Write(KeyAt(i), old_[i].text);
      RemoveSpares();
    } catch (...) {  // NOLINT: the first error is the one to report
    }
  }

  MessageSection& section_;
  const MessageEntries old_;
  const std::vector<std::string> texts_;
  const bool dense_;  // the keys are 1 to n already: the lines stay where they are
  std::vector<std::size_t> changed_;
  std::vector<std::string> spares_;  // an unused key for each that changes
};

}  // namespace

std::string NextKey(const std::vector<std::string>& lines) {
  const auto count = static_cast<std::int32_t>(lines.size());
  std::int32_t highest = count;
  Keys keys;
  for (const std::string& line : lines) {
    highest = std::max(highest, KeyNumber(KeyOf(line)).value_or(0));
    keys.insert(KeyOf(line));
  }
  const bool isLast = highest == std::numeric_limits<std::int32_t>::max();
  return std::to_string(isLast ? UnusedKey(keys, count + 1) : highest + 1);
}

std::size_t CountInPlace(const MessageEntries& entries) {
  std::size_t count = 0;
  Keys keys;
  while (count < entries.size() && entries[count].key == KeyAt(count) &&
         !IsBlank(entries[count].text)) {
    keys.insert(entries[count++].key);
  }
  const bool repeated =
      std::any_of(entries.begin() + static_cast<std::ptrdiff_t>(count), entries.end(),
                  [&](const MessageEntry& entry) { return keys.contains(entry.key); });
  return repeated ? 0 : count;
}

bool OnlyMoveUp(const MessageEntries& entries, std::size_t position) {
  auto next = static_cast<std::int32_t>(position) + 1;
  std::int32_t highest = 0;
  for (std::size_t i = position; i < entries.size(); ++i) {
    const std::int32_t key = KeyNumber(entries[i].key).value_or(0);
    if (key <= highest || (!IsBlank(entries[i].text) && key <= next++)) return false;
    highest = key;
  }
  return true;
}

std::vector<std::string> TextsThatStay(const MessageEntries& entries) {
  std::vector<std::string> texts;
  for (const MessageEntry& entry : entries) {
    if (!IsBlank(entry.text)) texts.push_back(entry.text);
  }
  return texts;
}

bool Replace(MessageSection& section, const Arrange& arrange) {
  MessageEntries entries = section.Entries();
  std::optional<std::vector<std::string>> texts = arrange(entries);
  if (!texts) return false;
  Replacement(section, std::move(entries), std::move(*texts)).Run();
  return true;
}

}  // namespace rotacasts
