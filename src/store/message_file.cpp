#include "store/message_file.h"

#include <exception>
#include <optional>
#include <utility>
#include <vector>

#include "base/conversions.h"
#include "base/text.h"

namespace rotacasts {
namespace {

/// A message as the window lists it.
struct Row {
  std::string text;
  std::int32_t key;
};

/// The list's row for a line; nothing for a line that is not listed.
std::optional<Row> RowOf(MessageSection& section, std::string& line) {
  if (IsBlank(line)) return std::nullopt;
  MessageEntry entry;
  CompleteErrors([&] { entry = section.Split(std::move(line)); },
                 [&](RuntimeError& error) { error.description += " [" + line + "]"; });
  const std::int32_t key = ToLong(entry.key);
  if (key <= 0) return std::nullopt;
  entry.text.resize(FirstCharacters(entry.text, kMessageCharacters).size());
  return Row{std::move(entry.text), key};
}

/// Lists these rows and no others. Hidden meanwhile: drawn once, not once per item.
void Fill(ShownMessages& list, std::vector<Row>& rows) {
  list.Clear();
  if (rows.empty()) return;
  struct Hidden {
    explicit Hidden(ShownMessages& messages) : shown(messages) { shown.Hide(); }
    ~Hidden() { shown.Show(); }
    ShownMessages& shown;
  } hidden(list);
  for (Row& row : rows) list.Append(std::move(row.text), row.key);
}

}  // namespace

MessageSection MessageFile::Open(std::int32_t profileIndex) {
  const std::string& file = tables_.MessageFiles(profileIndex);
  if (file.empty()) {
    throw RuntimeError(ErrorNumber::PathNotFound,
                       "profile " + std::to_string(profileIndex) + " is stopped; load it first");
  }
  return {services_.Utility(), file};
}

void MessageFile::LoadMessages(std::int32_t profileIndex) {
  Guard(errors_, {"LoadMessages", profileIndex}, [&](Step& at) {
    at(1);
    const std::string file = tables_.MessageFiles(profileIndex);
    MessageSection section(services_.Utility(), file);
    const std::shared_ptr<ShownMessages> list = window_.Messages();
    const std::int32_t shown = tables_.currentWindowProfile;
    std::vector<std::string> lines;  // of a missing file, none
    at(2);
    if (!file.empty() && services_.FileSystem().FileExists(file)) lines = section.Lines();
    at(6);
    std::vector<Row> rows;
    std::exception_ptr error;  // what was read before it is listed all the same
    try {
      rows.reserve(lines.size());
      for (std::string& line : lines) {
        if (auto row = RowOf(section, line)) rows.push_back(std::move(*row));
      }
    } catch (...) {
      error = std::current_exception();
    }
    if (tables_.currentWindowProfile == shown) Fill(*list, rows);
    if (error) std::rethrow_exception(error);
  });
}

bool MessageFile::AddEntry(std::int32_t profileIndex, const std::string& text) {
  try {
    if (HasLineBreak(text)) return false;
    MessageSection section = Open(profileIndex);
    const std::string key = NextKey(section.Lines());
    section.Write(key, text);
    return section.Read(key) == text;
  } catch (...) {
    return false;
  }
}

bool MessageFile::DeleteEntry(std::int32_t profileIndex, const std::string& key) {
  std::optional<MessageSection> section;
  try {
    section.emplace(Open(profileIndex));
    section->Remove(key);
  } catch (...) {
    return false;
  }
  RewriteEntries(profileIndex, *section);
  return true;
}

/// Renumbers.
void MessageFile::RewriteEntries(std::int32_t profileIndex, MessageSection section) {
  Guard(errors_, {"RewriteEntries", profileIndex}, [&](Step& at) {
    at(1);
    MessageEntries entries = section.Entries();
    at(2);
    std::size_t position = CountInPlace(entries);
    if (!OnlyMoveUp(entries, position)) {
      Replace(section, TextsThatStay);
      return;
    }
    // New keys go to the section's end, so line order and key order agree again afterwards. A text
    // goes from its old key only when it stands under its new one.
    for (std::size_t i = position; i < entries.size(); ++i) {
      at(4);
      if (!IsBlank(entries[i].text)) section.Write(KeyAt(position++), std::move(entries[i].text));
      at(3);
      section.Remove(KeyToRemove(entries[i].key));
    }
  });
}

MessageFile::Exchanged MessageFile::ExchangeEntries(std::int32_t profileIndex,
                                                    const std::string& firstKey,
                                                    const std::string& secondKey) {
  MessageSection section = Open(profileIndex);
  Exchanged texts{section.Read(firstKey), section.Read(secondKey)};
  section.Write(firstKey, texts.second);
  try {
    section.Write(secondKey, texts.first);
  } catch (...) {  // the first text stands nowhere now
    section.Write(firstKey, texts.first);
    throw;
  }
  return texts;
}

bool MessageFile::ReplaceEntries(std::int32_t profileIndex, const Arrange& arrange) {
  MessageSection section = Open(profileIndex);
  return Replace(section, arrange);
}

void MessageFile::SetOption(std::int32_t profileIndex, const char* key, const std::string& value) {
  if (HasLineBreak(value)) {
    throw RuntimeError(ErrorNumber::InvalidProcedureCall,
                       std::string(key) + " cannot hold a line break");
  }
  Open(profileIndex).WriteOption(key, value);
}

}  // namespace rotacasts
