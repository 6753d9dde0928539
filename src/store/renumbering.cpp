#include "store/renumbering.h"

#include <algorithm>
#include <iterator>
#include <limits>
#include <map>
#include <set>
#include <string_view>
#include <utility>

namespace rotacasts {
namespace {

using Keys = std::set<std::string, std::less<>>;

/// The lowest number from `first` on that is none of these keys. There always is one: a section of
/// two billion lines fits no memory.
std::int32_t UnusedKey(const Keys& keys, std::int32_t first) {
  while (keys.contains(std::to_string(first))) ++first;
  return first;
}

/// How many entries at the head of a section need no renumbering: they have the key of their
/// position and a text that stays, and no later line has one of their keys.
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

/// Whether every entry from `position` on gets a smaller key than it has, their keys rising from
/// line to line: then no new key is that of an entry whose turn is yet to come.
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

/// Drops the blank entries. New keys go to the section's end, so line order and key order agree
/// again afterwards. A text goes from its old key only when it stands under its new one.
SectionSteps StepsUp(MessageEntries entries, std::size_t position) {
  SectionSteps change;
  for (std::size_t i = position; i < entries.size(); ++i) {
    if (!IsBlank(entries[i].text)) {
      change.steps.push_back({KeyAt(position++), std::move(entries[i].text)});
    }
    change.steps.push_back({std::move(entries[i].key), std::nullopt});
  }
  return change;
}

/// An entry of the section that keeps its key and gets another text.
struct Rewritten {
  std::string key;
  std::string before;
  std::string after;
};

/// A text that is overwritten before it is written in its new place stands under a spare key
/// meanwhile; the spare keys, from `spare` on, go last. The way back writes in the opposite order,
/// so that the same spare copies serve.
SectionSteps StepsInPlace(const std::vector<Rewritten>& rewritten, std::int32_t spare) {
  std::map<std::string_view, std::size_t> lastPlaces;  // by new text
  for (std::size_t i = 0; i < rewritten.size(); ++i) lastPlaces[rewritten[i].after] = i;
  SectionSteps change;
  std::vector<SectionStep> last;
  for (std::size_t i = 0; i < rewritten.size(); ++i) {
    const auto place = lastPlaces.find(rewritten[i].before);
    if (place == lastPlaces.end() || place->second <= i) continue;
    change.steps.push_back({std::to_string(spare++), rewritten[i].before});
    last.push_back({change.steps.back().key, std::nullopt});
  }
  change.wayBack = change.steps;  // some of the copies may be gone already
  for (const Rewritten& entry : rewritten) change.steps.push_back({entry.key, entry.after});
  std::transform(rewritten.rbegin(), rewritten.rend(), std::back_inserter(change.wayBack),
                 [](const Rewritten& entry) {
                   return SectionStep{entry.key, entry.before};
                 });
  for (std::vector<SectionStep>* steps : {&change.steps, &change.wayBack}) {
    steps->insert(steps->end(), last.begin(), last.end());
  }
  return change;
}

/// For keys in any order: every text goes under a spare key before the old keys go.
SectionSteps StepsThroughSpares(const MessageEntries& entries,
                                const std::vector<std::string>& texts) {
  SectionSteps change;
  Keys keys;
  for (const MessageEntry& entry : entries) keys.insert(entry.key);
  auto spare = static_cast<std::int32_t>(texts.size());
  for (const std::string& text : texts) {
    spare = UnusedKey(keys, spare + 1);
    change.steps.push_back({std::to_string(spare), text});
  }
  for (const MessageEntry& entry : entries) change.steps.push_back({entry.key, std::nullopt});
  for (std::size_t i = 0; i < texts.size(); ++i) change.steps.push_back({KeyAt(i), texts[i]});
  for (std::size_t i = 0; i < texts.size(); ++i) {
    change.steps.push_back({change.steps[i].key, std::nullopt});
  }
  return change;
}

/// The texts that a renumbering keeps: those that are not blank.
std::vector<std::string> TextsThatStay(const MessageEntries& entries) {
  std::vector<std::string> texts;
  for (const MessageEntry& entry : entries) {
    if (!IsBlank(entry.text)) texts.push_back(entry.text);
  }
  return texts;
}

std::int32_t NextKeyNumber(const std::vector<std::string>& lines) {
  const auto count = static_cast<std::int32_t>(lines.size());
  std::int32_t highest = count;
  for (const std::string& line : lines) {
    highest = std::max(highest, KeyNumber(KeyOf(line)).value_or(0));
  }
  if (highest < std::numeric_limits<std::int32_t>::max()) return highest + 1;
  Keys keys;
  for (const std::string& line : lines) keys.insert(KeyOf(line));
  return UnusedKey(keys, count + 1);
}

void Write(MessageSection& section, SectionStep& step) {
  if (step.text) return section.Write(step.key, std::move(*step.text));
  section.Remove(KeyToRemove(step.key));
}

}  // namespace

bool HasDenseKeys(const MessageEntries& entries) {
  for (std::size_t i = 0; i < entries.size(); ++i) {
    if (entries[i].key != KeyAt(i)) return false;
  }
  return true;
}

std::string NextKey(const std::vector<std::string>& lines) {
  return std::to_string(NextKeyNumber(lines));
}

SectionSteps StepsToRenumber(MessageEntries entries) {
  const std::size_t position = CountInPlace(entries);
  if (OnlyMoveUp(entries, position)) return StepsUp(std::move(entries), position);
  std::vector<std::string> texts = TextsThatStay(entries);
  return StepsToReplace(std::move(entries), std::move(texts));
}

SectionSteps StepsToReplace(MessageEntries entries, std::vector<std::string> texts) {
  if (!HasDenseKeys(entries) || entries.size() != texts.size()) {
    return StepsThroughSpares(entries, texts);
  }
  const auto unused = static_cast<std::int32_t>(entries.size()) + 1;
  std::vector<Rewritten> rewritten;
  for (std::size_t i = 0; i < texts.size(); ++i) {
    if (texts[i] == entries[i].text) continue;
    rewritten.push_back(
        {std::move(entries[i].key), std::move(entries[i].text), std::move(texts[i])});
  }
  return StepsInPlace(rewritten, unused);
}

SectionSteps StepsToExchange(const MessageEntry& first, const MessageEntry& second,
                             const std::vector<std::string>& lines) {
  return StepsInPlace({{first.key, first.text, second.text}, {second.key, second.text, first.text}},
                      NextKeyNumber(lines));
}

void Execute(MessageSection& section, SectionSteps change, Step* at) {
  constexpr std::int32_t kRemoving = 3;
  constexpr std::int32_t kWriting = 4;
  try {
    for (SectionStep& step : change.steps) {
      if (at != nullptr) (*at)(step.text ? kWriting : kRemoving);
      Write(section, step);
    }
  } catch (...) {
    try {
      for (SectionStep& step : change.wayBack) Write(section, step);
    } catch (...) {  // NOLINT: the first error is the one to report
    }
    throw;
  }
}

}  // namespace rotacasts
