#include "store/insertion.h"

#include <algorithm>
#include <utility>

namespace rotacasts {
namespace {

/// The section's texts after the insertion.
std::vector<std::string> TextsWith(const MessageEntries& entries, std::size_t position,
                                   const std::vector<std::string>& texts) {
  std::vector<std::string> all;
  for (const MessageEntry& entry : entries) all.push_back(entry.text);
  all.insert(all.begin() + static_cast<std::ptrdiff_t>(position), texts.begin(), texts.end());
  return all;
}

}  // namespace

// The new keys come first, in rising order because new lines go to the section's end. Then every
// text moves down, the last one first: it already stands below the place where it is overwritten.
SectionSteps StepsToInsert(MessageEntries entries, std::size_t position,
                           const std::vector<std::string>& texts) {
  position = std::min(position, entries.size());
  std::vector<std::string> all = TextsWith(entries, position, texts);
  if (!HasDenseKeys(entries)) return StepsToReplace(std::move(entries), std::move(all));
  SectionSteps change;
  for (std::size_t i = entries.size(); i < all.size(); ++i)
    change.steps.push_back({KeyAt(i), all[i]});
  for (std::size_t i = entries.size(); i-- > position;) change.steps.push_back({KeyAt(i), all[i]});
  for (std::size_t i = position; i < entries.size(); ++i) {
    change.wayBack.push_back({KeyAt(i), std::move(entries[i].text)});
  }
  for (std::size_t i = all.size(); i-- > entries.size();) {
    change.wayBack.push_back({KeyAt(i), std::nullopt});
  }
  return change;
}

}  // namespace rotacasts
