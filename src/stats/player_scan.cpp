#include "stats/player_scan.h"

#include "game/game_builds.h"

namespace rotacasts {

void ScanPlayers(const ProcessView& process, const SlotLayout& layout, const SlotVisitor& visit) {
  const std::int32_t players = process.ReadLong(location::kCurrentPlayers);
  const std::int32_t lastSlot = process.ReadLong(location::kMaxPlayers);
  const std::int32_t gameType = process.ReadLong(location::kGameType);
  if (players < 1) return;

  const std::int32_t table = process.Address(location::kPlayerStats);
  PlayerSlot slot;
  for (Checked number = 0; number.Value() <= lastSlot; number = number + 1) {
    const Checked first = process.ReadLong(table);
    const Checked fromFirst = number * layout.stride;
    slot.name = process.ReadStr(first + layout.nameOffset + fromFirst);
    if (slot.name.empty()) continue;
    const Checked block = first + layout.statisticsOffset + fromFirst;
    for (const CounterRow& row : kCounters) {
      slot.stats.*row.counter = process.ReadLong(block + row.*layout.counterOffset);
    }
    visit(gameType, slot);
  }
}

}  // namespace rotacasts
