#include "store/message_file.h"

#include <algorithm>
#include <exception>
#include <limits>
#include <optional>
#include <set>
#include <span>
#include <utility>

#include "base/conversions.h"
#include "base/text.h"
#include "forms/form.h"

namespace rotacasts {
namespace {

using Entry = MessageFile::Entry;

Entry SplitLine(UtilityComponent& utility, const std::string& line) {
  const Variant pair = utility.ParseIniKey(line, true);
  return {ToText(pair.At(0)), ToText(pair.At(1))};
}

bool IsBlank(std::string_view text) {
  return TrimSpaces(text).empty();
}

/// The lines among the elements that GetIniSection answers: all but the last and blank ones.
std::vector<std::string> MessageLines(UtilityComponent& utility, std::string& file) {
  std::vector<std::string> lines = utility.GetIniSection(kMessagesSection, file);
  std::erase_if(lines, IsBlank);
  return lines;
}

std::vector<Entry> AllEntries(UtilityComponent& utility, std::string& file) {
  std::vector<Entry> entries;
  for (const std::string& line : MessageLines(utility, file)) {
    entries.push_back(SplitLine(utility, line));
  }
  return entries;
}

/// The list's row for a line; nothing for a line that is not listed.
std::optional<forms::ListBox::Item> RowOf(UtilityComponent& utility, const std::string& line) {
  if (IsBlank(line)) return std::nullopt;
  Entry entry;
  CompleteErrors([&] { entry = SplitLine(utility, line); },
                 [&](RuntimeError& error) { error.description += " [" + line + "]"; });
  const std::int32_t key = ToLong(entry.key);
  if (key <= 0) return std::nullopt;
  return forms::ListBox::Item{std::string(FirstCharacters(entry.text, kMessageCharacters)), key};
}

/// Lists these rows and no others. Hidden meanwhile: drawn once, not once per item.
void Fill(forms::ListBox& list, const std::vector<forms::ListBox::Item>& rows) {
  list.Clear();
  if (rows.empty()) return;
  struct Hidden {
    explicit Hidden(forms::ListBox& listBox) : box(listBox) { box.SetVisible(false); }
    ~Hidden() { box.SetVisible(true); }
    forms::ListBox& box;
  } hidden(list);
  for (const forms::ListBox::Item& row : rows) {
    list.Add(row.text);
    list.SetItemData(list.Count() - 1, row.data);
  }
}

/// The key of a "key=value" line, without asking the component for every line of a long list.
std::string KeyOf(const std::string& line) {
  return line.substr(0, line.find('='));
}

/// The key as a number; nothing for one that a hand has edited into something else.
std::optional<std::int32_t> KeyNumber(const std::string& key) {
  try {
    return ToLong(key);
  } catch (const RuntimeError&) {
    return std::nullopt;
  }
}

/// The key as the INI writer finds it: the number, or a hand-edited key as it is spelled.
UtilityComponent::Key KeyToRemove(const std::string& key) {
  const std::optional<std::int32_t> number = KeyNumber(key);
  if (number && std::to_string(*number) == key) return *number;
  return key;
}

/// The lowest number from `first` on that is none of these keys. There always is one: a section of
/// two billion lines fits no memory.
std::int32_t UnusedKey(const std::set<std::string, std::less<>>& keys, std::int32_t first) {
  while (keys.contains(std::to_string(first))) ++first;
  return first;
}

/// The key of a new message, behind `lines` as GetIniSection answers them: one more than the number
/// of lines or, in a hand-edited section, than the highest key, so that no text is overwritten.
/// Behind the highest number there is, any that is unused.
std::string NextKey(const std::vector<std::string>& lines) {
  const auto count = std::max(static_cast<std::int32_t>(lines.size()) - 1, 0);
  std::int32_t highest = count;
  std::set<std::string, std::less<>> keys;
  for (const std::string& line : lines) {
    highest = std::max(highest, KeyNumber(KeyOf(line)).value_or(0));
    keys.insert(KeyOf(line));
  }
  const bool isLast = highest == std::numeric_limits<std::int32_t>::max();
  return std::to_string(isLast ? UnusedKey(keys, count + 1) : highest + 1);
}

std::string KeyAt(std::size_t position) {
  return std::to_string(position + 1);
}

bool HasDenseKeys(const std::vector<Entry>& entries) {
  for (std::size_t i = 0; i < entries.size(); ++i) {
    if (entries[i].key != KeyAt(i)) return false;
  }
  return true;
}

/// How many entries at the head of a section need no renumbering: they have the key of their
/// position and a text that stays, and no later line has one of their keys.
std::size_t CountInPlace(const std::vector<Entry>& entries) {
  std::size_t count = 0;
  std::set<std::string> keys;
  while (count < entries.size() && entries[count].key == KeyAt(count) &&
         !IsBlank(entries[count].text)) {
    keys.insert(entries[count++].key);
  }
  const bool repeated =
      std::any_of(entries.begin() + static_cast<std::ptrdiff_t>(count), entries.end(),
                  [&](const Entry& entry) { return keys.contains(entry.key); });
  return repeated ? 0 : count;
}

/// Whether every one of these entries gets a smaller key than it has, their keys rising from line
/// to line: then no new key is that of an entry whose turn is yet to come. Before them stand
/// `position` entries that keep their keys.
bool OnlyMoveUp(std::span<const Entry> entries, std::size_t position) {
  auto next = static_cast<std::int32_t>(position) + 1;
  std::int32_t highest = 0;
  for (const Entry& entry : entries) {
    const std::int32_t key = KeyNumber(entry.key).value_or(0);
    if (key <= highest || (!IsBlank(entry.text) && key <= next++)) return false;
    highest = key;
  }
  return true;
}

std::vector<std::string> TextsThatStay(const std::vector<Entry>& entries) {
  std::vector<std::string> texts;
  for (const Entry& entry : entries) {
    if (!IsBlank(entry.text)) texts.push_back(entry.text);
  }
  return texts;
}

/// Replaces the entries of a section so that every text stands in the file at every moment: what
/// changes is written under spare keys first, then in its place; the spare keys go last.
class Replacement {
 public:
  Replacement(UtilityComponent& utility, std::string& file, const MessageFile::Arrange& arrange)
      : utility_(utility),
        file_(file),
        old_(AllEntries(utility, file)),
        texts_(arrange(old_)),
        dense_(HasDenseKeys(old_) && old_.size() == texts_.size()) {
    for (std::size_t i = 0; i < texts_.size(); ++i) {
      if (!dense_ || texts_[i] != old_[i].text) changed_.push_back(i);
    }
    std::set<std::string, std::less<>> keys;
    for (const Entry& entry : old_) keys.insert(entry.key);
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
      for (const std::size_t i : changed_) Write(KeyAt(i), texts_[i]);
      RemoveSpares();
    } catch (...) {
      PutBack();
      throw;
    }
  }

 private:
  void Write(const std::string& key, const std::optional<std::string>& text) {
    utility_.WriteIniKey(kMessagesSection, key, text, file_);
  }
  void RemoveOld() {
    for (const Entry& entry : old_) {
      utility_.WriteIniKey(kMessagesSection, KeyToRemove(entry.key), std::nullopt, file_);
    }
  }
  void Stage() {
    for (std::size_t i = 0; i < changed_.size(); ++i) Write(spares_[i], texts_[changed_[i]]);
  }
  void RemoveSpares() {
    for (const std::string& key : spares_) Write(key, std::nullopt);
  }

  /// After a failure: the old texts in their old places. The spare copies stay in the file unless
  /// every text is back.
  void PutBack() noexcept {
    try {
      if (!dense_) return;
      Stage();  // anew: some of the copies may be gone already
      for (const std::size_t i : changed_) Write(KeyAt(i), old_[i].text);
      RemoveSpares();
    } catch (...) {  // NOLINT: the first error is the one to report
    }
  }

  UtilityComponent& utility_;
  std::string& file_;
  const std::vector<Entry> old_;
  const std::vector<std::string> texts_;
  const bool dense_;  // the keys are 1 to n already: the lines stay where they are
  std::vector<std::size_t> changed_;
  std::vector<std::string> spares_;  // an unused key for each that changes
};

}  // namespace

void MessageFile::LoadMessages(std::int32_t profileIndex) {
  Guard(reporter_, {"LoadMessages", profileIndex}, [&](Step& at) {
    at(1);
    std::string file = tables_.MessageFiles(profileIndex);
    UtilityComponent& utility = services_.Utility();
    forms::ListBox& list = window_.lstMessages();
    const auto keepAlive = list.GetForm().KeepAlive();
    const std::int32_t shown = tables_.currentWindowProfile;
    std::vector<std::string> lines;  // of a missing file, none
    at(2);
    if (services_.FileSystem().FileExists(file)) {
      lines = utility.GetIniSection(kMessagesSection, file);
    }
    at(6);
    std::vector<forms::ListBox::Item> rows;
    std::exception_ptr error;  // what was read before it is listed all the same
    try {
      for (const std::string& line : lines) {
        if (const auto row = RowOf(utility, line)) rows.push_back(*row);
      }
    } catch (...) {
      error = std::current_exception();
    }
    if (tables_.currentWindowProfile == shown) Fill(list, rows);
    if (error) std::rethrow_exception(error);
  });
}

bool MessageFile::AddEntry(std::int32_t profileIndex, const std::string& text) {
  try {
    if (HasLineBreak(text)) return false;
    std::string file = tables_.MessageFiles(profileIndex);
    UtilityComponent& utility = services_.Utility();
    const std::string key = NextKey(utility.GetIniSection(kMessagesSection, file));
    utility.WriteIniKey(kMessagesSection, key, text, file);
    return utility.GetIniKey(kMessagesSection, key, file) == text;
  } catch (...) {
    return false;
  }
}

bool MessageFile::DeleteEntry(std::int32_t profileIndex, const std::string& key) {
  std::string file;
  try {
    file = tables_.MessageFiles(profileIndex);
    services_.Utility().WriteIniKey(kMessagesSection, key, std::nullopt, file);
  } catch (...) {
    return false;
  }
  RewriteEntries(profileIndex, std::move(file));
  return true;
}

void MessageFile::RewriteEntries(std::int32_t profileIndex, std::string file) {
  Guard(reporter_, {"RewriteEntries", profileIndex}, [&](Step& at) {
    at(1);
    UtilityComponent& utility = services_.Utility();
    const std::vector<Entry> entries = AllEntries(utility, file);
    at(2);
    std::size_t position = CountInPlace(entries);
    const std::span others = std::span(entries).subspan(position);
    if (!OnlyMoveUp(others, position)) {
      return Replacement(utility, file, TextsThatStay).Run();
    }
    // New keys go to the section's end, so line order and key order agree again afterwards. A text
    // goes from its old key only when it stands under its new one.
    for (const Entry& entry : others) {
      at(4);
      if (!IsBlank(entry.text)) {
        utility.WriteIniKey(kMessagesSection, KeyAt(position++), entry.text, file);
      }
      at(3);
      utility.WriteIniKey(kMessagesSection, KeyToRemove(entry.key), std::nullopt, file);
    }
  });
}

std::vector<Entry> MessageFile::ReadEntries(std::int32_t profileIndex) {
  std::string file = tables_.MessageFiles(profileIndex);
  return AllEntries(services_.Utility(), file);
}

std::vector<std::string> MessageFile::ReadLines(std::int32_t profileIndex) {
  std::string file = tables_.MessageFiles(profileIndex);
  return MessageLines(services_.Utility(), file);
}

Entry MessageFile::Split(const std::string& line) {
  return SplitLine(services_.Utility(), line);
}

std::string MessageFile::ReadText(std::int32_t profileIndex, const std::string& key) {
  std::string file = tables_.MessageFiles(profileIndex);
  return services_.Utility().GetIniKey(kMessagesSection, key, file);
}

bool MessageFile::HoldsKey(std::int32_t profileIndex, const std::string& key) {
  std::string file = tables_.MessageFiles(profileIndex);
  const std::vector<std::string> lines = services_.Utility().GetIniSection(kMessagesSection, file);
  return std::any_of(lines.begin(), lines.end(),
                     [&](const std::string& line) { return KeyOf(line) == key; });
}

MessageFile::Exchanged MessageFile::ExchangeEntries(std::int32_t profileIndex,
                                                    const std::string& firstKey,
                                                    const std::string& secondKey) {
  std::string file = tables_.MessageFiles(profileIndex);
  UtilityComponent& utility = services_.Utility();
  Exchanged texts{utility.GetIniKey(kMessagesSection, firstKey, file),
                  utility.GetIniKey(kMessagesSection, secondKey, file)};
  utility.WriteIniKey(kMessagesSection, firstKey, texts.second, file);
  try {
    utility.WriteIniKey(kMessagesSection, secondKey, texts.first, file);
  } catch (...) {  // the first text stands nowhere now
    utility.WriteIniKey(kMessagesSection, firstKey, texts.first, file);
    throw;
  }
  return texts;
}

void MessageFile::ReplaceEntries(std::int32_t profileIndex, const Arrange& arrange) {
  std::string file = tables_.MessageFiles(profileIndex);
  Replacement(services_.Utility(), file, arrange).Run();
}

void MessageFile::SetOption(std::int32_t profileIndex, const char* key, const std::string& value) {
  if (HasLineBreak(value)) {
    throw RuntimeError(ErrorNumber::InvalidProcedureCall,
                       std::string(key) + " cannot hold a line break");
  }
  std::string file = tables_.MessageFiles(profileIndex);
  services_.Utility().WriteIniKey(kOptionsSection, key, value, file);
}

std::string MessageFile::ReadOption(std::int32_t profileIndex, const char* key) {
  std::string file = tables_.MessageFiles(profileIndex);
  return services_.Utility().GetIniKey(kOptionsSection, key, file);
}

}  // namespace rotacasts
