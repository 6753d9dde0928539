#include "ui/message_rows.h"

#include <algorithm>
#include <iterator>
#include <map>
#include <string_view>
#include <utility>

#include "base/conversions.h"
#include "base/text.h"
#include "services/guard.h"
#include "store/message_file.h"

namespace rotacasts {

std::optional<MessageRow> RowOf(MessageSection& section, std::string& line) {
  if (IsBlank(line)) return std::nullopt;
  MessageEntry entry;
  CompleteErrors([&] { entry = section.Split(std::move(line)); },
                 [&](RuntimeError& error) { error.Extend(" [" + line + "]"); });
  const std::int32_t key = ToLong(entry.key);
  if (key <= 0) return std::nullopt;
  entry.text.resize(FirstCharacters(entry.text, kMessageCharacters).size());
  return MessageRow{std::move(entry.text), key};
}

void MessageRows::Fill(std::vector<MessageRow> rows) {
  ++fillings_;
  rows_ = std::move(rows);
  const std::int32_t top = list_.TopRow();
  list_.Clear();
  if (rows_.empty()) return;
  struct Hidden {
    explicit Hidden(forms::ListBox& filled) : list(filled) { list.SetVisible(false); }
    ~Hidden() { list.SetVisible(true); }
    forms::ListBox& list;
  } hidden(list_);
  for (const MessageRow& row : rows_) {
    list_.Add(row.text);
    list_.SetItemData(list_.Count() - 1, row.key);
  }
  list_.ScrollTo(top);
}

void MessageRows::BeginAtTheTop() {
  list_.ScrollTo(0);
}

void MessageRows::Exchange(std::int32_t first, std::int32_t second) {
  const forms::ListBox::Item items[] = {list_.At(first), list_.At(second)};
  const std::int32_t places[] = {second, first};
  for (const int i : {0, 1}) {
    list_.SetText(places[i], items[i].text);
    list_.SetItemData(places[i], items[i].data);
    rows_[list_.Checked(places[i])].text = items[i].text;
  }
  for (std::size_t row = 0; row < rows_.size(); ++row) {
    rows_[row].key = static_cast<std::int32_t>(row) + 1;
  }
}

Places PlacesOf(const std::vector<MessageRow>& rows, const MessageEntries& entries) {
  using Shown = std::pair<std::string_view, std::int32_t>;  // text and key
  std::multimap<Shown, std::size_t> byRow;
  std::multimap<std::string_view, std::size_t> byText;
  for (std::size_t place = 0; place < entries.size(); ++place) {
    const std::string_view text = FirstCharacters(entries[place].text, kMessageCharacters);
    byRow.emplace(Shown{text, KeyNumber(entries[place].key).value_or(0)}, place);
    byText.emplace(text, place);
  }
  const auto only = [](const auto& found) -> std::optional<std::size_t> {
    const auto [begin, end] = found;
    return begin != end && std::next(begin) == end ? std::optional(begin->second) : std::nullopt;
  };
  std::vector<bool> isTaken(entries.size());
  Places places;
  for (const MessageRow& row : rows) {
    std::optional<std::size_t> place = only(byRow.equal_range(Shown{row.text, row.key}));
    if (!place) place = only(byText.equal_range(row.text));
    if (place && isTaken[*place]) place.reset();
    if (place) isTaken[*place] = true;
    places.push_back(place);
  }
  return places;
}

std::vector<std::string> InOrder(const Places& places, const MessageEntries& entries) {
  std::vector<std::string> texts;
  std::vector<bool> isTaken(entries.size());
  for (const std::optional<std::size_t>& place : places) {
    if (!place) continue;
    texts.push_back(entries[*place].text);
    isTaken[*place] = true;
  }
  for (std::size_t place = 0; place < entries.size(); ++place) {
    if (!isTaken[place]) texts.push_back(entries[place].text);
  }
  return texts;
}

}  // namespace rotacasts
