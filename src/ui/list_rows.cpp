#include "ui/list_rows.h"

#include <algorithm>

#include "base/text.h"

namespace rotacasts {
namespace {

using Rows = std::vector<forms::ListBox::Item>;
using Entries = std::vector<MessageFile::Entry>;

/// Hands out entries to rows, each entry once.
class Matching {
 public:
  Matching(const Rows& rows, const Entries& entries)
      : rows_(rows), entries_(entries), matches_(rows.size()), taken_(entries.size()) {}

  void Offer(std::size_t row, std::size_t entry) {
    if (matches_[row] || entry >= entries_.size() || taken_[entry]) return;
    if (FirstCharacters(entries_[entry].text, kMessageCharacters) != rows_[row].text) return;
    matches_[row] = entry;
    taken_[entry] = true;
  }
  void OfferAny(std::size_t row) {
    for (std::size_t entry = 0; entry < entries_.size() && !matches_[row]; ++entry) {
      Offer(row, entry);
    }
  }
  const std::vector<std::optional<std::size_t>>& Matches() const { return matches_; }
  bool IsTaken(std::size_t entry) const { return taken_[entry]; }

 private:
  const Rows& rows_;
  const Entries& entries_;
  std::vector<std::optional<std::size_t>> matches_;
  std::vector<bool> taken_;
};

Matching Match(const Rows& rows, const Entries& entries) {
  Matching matching(rows, entries);
  for (std::size_t row = 0; row < rows.size(); ++row) matching.Offer(row, row);
  for (std::size_t row = 0; row < rows.size(); ++row) matching.OfferAny(row);
  return matching;
}

}  // namespace

std::vector<std::optional<std::size_t>> MatchRows(const Rows& rows, const Entries& entries) {
  return Match(rows, entries).Matches();
}

std::vector<std::string> WholeMessages(const Rows& rows, const Entries& entries) {
  const Matching matching = Match(rows, entries);
  std::vector<std::string> messages;
  for (std::size_t row = 0; row < rows.size(); ++row) {
    const std::optional<std::size_t> entry = matching.Matches()[row];
    messages.push_back(entry ? entries[*entry].text : rows[row].text);
  }
  for (std::size_t entry = 0; entry < entries.size(); ++entry) {
    if (!matching.IsTaken(entry)) messages.push_back(entries[entry].text);
  }
  return messages;
}

}  // namespace rotacasts
