// Prints the table of the placeholders for the documents, from the tables that the plugin itself
// goes by: what the menu calls each, what players read, and which game types and codes it serves.

#include <iostream>

#include "broadcast/placeholders.h"
#include "game/game_builds.h"
#include "game/game_reader.h"
#include "stats/info_texts.h"
#include "ui/layout.h"

namespace rotacasts {
namespace {

// The player that most examples name.
const PlayerSlot kExample = {.name = "Rex",
                             .stats = {.Suicides = 2,
                                       .Murders = 1,
                                       .Kills = 23,
                                       .Deaths = 4,
                                       .ZoneTime = 750,
                                       .FlagsCaptured = 3,
                                       .FlagsSaved = 2,
                                       .Targets = 5,
                                       .MedicSaves = 6,
                                       .Revives = 4,
                                       .PspTakeovers = 4,
                                       .FlagCarrierKills = 3,
                                       .Headshots = 9,
                                       .ZoneAttackKills = 8,
                                       .ZoneDefenceKills = 7,
                                       .TargetDefenceKills = 6,
                                       .TargetAttackKills = 5,
                                       .Score = 1250}};

// A weaker one, so that the examples of most and least differ.
const PlayerSlot kOther = {.name = "Ghost", .stats = {.Kills = 3, .Deaths = 9, .Score = 150}};

constexpr int kGameTypes = 9;

/// The game types of a row, and one of them; a row for all of them serves every number.
struct ServedTypes {
  std::string text;
  int first = -1;
};

ServedTypes TypesOf(const CategoryRow& row) {
  if (row.gameTypes == kEveryGameType) return {"every", 0};
  ServedTypes served;
  for (int type = 0; type < kGameTypes; ++type) {
    if (FindCategory(row.category, type) != &row) continue;
    served.text += (served.first < 0 ? "" : ", ") + std::to_string(type);
    if (served.first < 0) served.first = type;
  }
  return served;
}

/// The codes of the game builds that have every one of these locations.
std::string CodesWith(std::initializer_list<std::string_view> locations) {
  std::string codes;
  bool isEvery = true;
  for (const std::string& code : GameCodes()) {
    const MemoryMap map =
        MemoryMapFor(code.ends_with(kAffiliateEnding), code.ends_with(kAffiliate2Ending), code);
    const bool serves = std::ranges::all_of(
        locations, [&](const std::string_view location) { return map.Holds(location); });
    isEvery = isEvery && serves;
    if (serves) codes += (codes.empty() ? "" : ", ") + code;
  }
  return isEvery ? "every" : codes;
}

void PrintRow(const layout::MenuRow& item, const std::string& example, const std::string& types,
              const std::string& codes) {
  const std::string_view caption = item.caption.substr(0, item.caption.find_last_not_of(' ') + 1);
  std::cout << "| " << caption << " | `" << item.token << "` | " << example << " | " << types
            << " | " << codes << " |\n";
}

void PrintStatistic(const layout::MenuRow& item, std::string_view category) {
  for (const CategoryRow& row : Categories()) {
    if (row.category != category) continue;
    const ServedTypes types = TypesOf(row);
    Selection selection(category);
    selection.Offer(types.first, kExample);
    selection.Offer(types.first, kOther);
    PrintRow(item, selection.Text(), types.text,
             CodesWith({location::kCurrentPlayers, location::kMaxPlayers, location::kGameType,
                        location::kPlayerStats}));
  }
}

void PrintTable() {
  std::cout << "| In the menu | The message | What players read | Game types | Game codes |\n"
               "|---|---|---|---|---|\n";
  for (const layout::MenuRow& item : layout::Menus()) {
    if (item.token == kShowNextMap) {
      PrintRow(item, std::string(kNextMapLabel) + "Old Refinery", "every",
               CodesWith({location::kMapPointer, location::kMapNames}));
    } else if (const auto category = PlaceholderCategory(item.token)) {
      PrintStatistic(item, *category);
    }
  }
}

}  // namespace
}  // namespace rotacasts

int main() {
  rotacasts::PrintTable();
}
