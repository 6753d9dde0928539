#include "store/listed_messages.h"

#include <algorithm>
#include <iterator>
#include <map>
#include <string_view>
#include <utility>

#include "base/text.h"
#include "store/options.h"

namespace rotacasts {
namespace {

/// Finds the messages of the file that those of a list stand for.
class Finder {
 public:
  /// The entries outlive the finder.
  explicit Finder(const MessageEntries& entries) {
    for (std::size_t place = 0; place < entries.size(); ++place) {
      const std::string_view text = FirstCharacters(entries[place].text, kMessageCharacters);
      byTextAndKey_.emplace(std::pair(text, KeyNumber(entries[place].key).value_or(0)), place);
      byText_.emplace(text, place);
    }
  }
  /// The place of the message under the listed one's key, if that reads as the list shows; if
  /// something has changed meanwhile, of the only message that does; nothing where more than one
  /// can be meant.
  std::optional<std::size_t> PlaceOf(const ListedMessage& message) const {
    const std::pair<std::string_view, std::int32_t> both(message.text, message.keyInFile);
    const std::optional<std::size_t> place = Only(byTextAndKey_.equal_range(both));
    return place ? place : Only(byText_.equal_range(message.text));
  }

 private:
  template <class Range>
  static std::optional<std::size_t> Only(const Range& found) {
    const auto [begin, end] = found;
    return begin != end && std::next(begin) == end ? std::optional(begin->second) : std::nullopt;
  }

  std::multimap<std::pair<std::string_view, std::int32_t>, std::size_t> byTextAndKey_;
  std::multimap<std::string_view, std::size_t> byText_;
};

/// For each message of the list its place among the entries; each place once.
using Places = std::vector<std::optional<std::size_t>>;
Places PlacesOf(const std::vector<ListedMessage>& list, const MessageEntries& entries) {
  const Finder finder(entries);
  std::vector<bool> isTaken(entries.size());
  Places places;
  for (const ListedMessage& message : list) {
    std::optional<std::size_t> place = finder.PlaceOf(message);
    if (place && isTaken[*place]) place.reset();
    if (place) isTaken[*place] = true;
    places.push_back(place);
  }
  return places;
}

/// The texts in the order of these places. Those that no place names follow in their order.
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

}  // namespace

bool ExchangeListed(MessageFile& file, std::vector<ListedMessage> list, std::size_t first,
                    std::size_t second) {
  std::swap(list.at(first), list.at(second));
  bool holdsAll = false;
  file.ReplaceEntries([&](const MessageEntries& entries) {
    const Places places = PlacesOf(list, entries);
    holdsAll = std::ranges::all_of(places, [](const auto& place) { return place.has_value(); });
    return places[first] && places[second] ? std::optional(InOrder(places, entries)) : std::nullopt;
  });
  return holdsAll;
}

bool RemoveListed(MessageFile& file, ListedMessage message) {  // NOLINT: a copy on purpose
  const MessageFile::Hold hold(file);
  const MessageEntries entries = file.Entries();
  const std::optional<std::size_t> place = Finder(entries).PlaceOf(message);
  if (!place) return true;
  const std::string& key = entries[*place].key;
  const auto holders = std::ranges::count_if(
      entries, [&](const auto& entry) { return EqualsIgnoringCase(entry.key, key); });
  if (holders == 1) return file.DeleteEntry(key);
  // A hand has given the key twice, and removing it would take the first one's text.
  file.ReplaceEntries([&](const MessageEntries& now) -> std::optional<std::vector<std::string>> {
    const std::optional<std::size_t> gone = Finder(now).PlaceOf(message);
    if (!gone) return std::nullopt;
    std::vector<std::string> others;
    for (std::size_t i = 0; i < now.size(); ++i) {
      if (i != *gone) others.push_back(now[i].text);
    }
    return others;
  });
  return true;
}

}  // namespace rotacasts
