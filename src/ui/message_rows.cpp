#include "ui/message_rows.h"

#include <utility>

#include "base/conversions.h"
#include "base/text.h"
#include "services/guard.h"
#include "store/options.h"

namespace rotacasts {

std::optional<ListedMessage> RowOf(MessageSection& section, std::string& line) {
  if (IsBlank(line)) return std::nullopt;
  MessageEntry entry;
  CompleteErrors([&] { entry = section.Split(std::move(line)); },
                 [&](RuntimeError& error) { error.Extend(" [" + line + "]"); });
  const std::int32_t key = ToLong(entry.key);
  if (key <= 0) return std::nullopt;
  entry.text.resize(FirstCharacters(entry.text, kMessageCharacters).size());
  return ListedMessage{std::move(entry.text), key};
}

void MessageRows::Fill(std::vector<ListedMessage> rows) {
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
  for (const ListedMessage& row : rows_) {
    list_.Add(row.text);
    list_.SetItemData(list_.Count() - 1, row.keyInFile);
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
    const auto& [text, listedKey] = items[i];
    list_.SetText(places[i], text);
    list_.SetItemData(places[i], listedKey);
    rows_[list_.Index(places[i])].text = text;
  }
  for (std::size_t row = 0; row < rows_.size(); ++row) {
    rows_[row].keyInFile = static_cast<std::int32_t>(row) + 1;
  }
}

}  // namespace rotacasts
