#include "simulator/game_image.h"

#include "base/runtime_error.h"
#include "base/text.h"

namespace rotacasts::simulator {
namespace {

// Where the image keeps what the fixed addresses point to; any free place works.
constexpr std::int32_t kRotation = 0x10000000;
constexpr std::int32_t kMapTable = 0x10010000;
constexpr std::int32_t kPlayerTable = 0x10100000;

// The two families' records and player slots, copied here on purpose: an image that took them from
// the readers would agree with them even if they were wrong.
constexpr std::int32_t kDfbhdNameRecord = 1840;
constexpr std::int32_t kMapRecord = 4584;
constexpr std::int32_t kNameInMapRecord = 1044;
constexpr std::int32_t kRotationEntry = 8;

struct SlotRecord {
  std::int32_t size;
  std::int32_t name;
  std::int32_t counters;
};
constexpr SlotRecord kDfbhdSlot = {717628, 60, 711340};
constexpr SlotRecord kCommonSlot = {100584, 40, 80};

/// A counter's offset from the start of a slot's counters.
struct CounterPlace {
  std::int32_t PlayerStats::*counter;
  std::int32_t inDfbhd;
  std::int32_t inCommon;
};

// clang-format off
constexpr CounterPlace kPlaces[] = {
    {&PlayerStats::Suicides,              0,  16},
    {&PlayerStats::Murders,               4,   8},
    {&PlayerStats::Kills,                 8,  12},
    {&PlayerStats::Deaths,               12,  20},
    {&PlayerStats::ZoneTime,             24, 116},
    {&PlayerStats::FlagsCaptured,        28,  40},
    {&PlayerStats::FlagsSaved,           32,  36},
    {&PlayerStats::Targets,              36,  48},
    {&PlayerStats::MedicSaves,           44,  28},
    {&PlayerStats::Revives,              48,  32},
    {&PlayerStats::PspTakeovers,         56,  56},
    {&PlayerStats::FlagCarrierKills,     60,  76},
    {&PlayerStats::Headshots,            68,  64},
    {&PlayerStats::ZoneAttackKills,      80,  88},
    {&PlayerStats::ZoneDefenceKills,     84,  92},
    {&PlayerStats::TargetDefenceKills,   88,  84},
    {&PlayerStats::TargetAttackKills,    96,  80},
    {&PlayerStats::Score,               104, 108},
};
// clang-format on

/// Map numbers differ from positions, so that confusing them shows.
std::int32_t MapNumber(std::int32_t position) {
  return position * 3 + 2;
}

MemoryMap MapOfCode(std::string_view gameCode) {
  const MemoryMap map = MemoryMapFor(gameCode.ends_with(kAffiliateEnding),
                                     gameCode.ends_with(kAffiliate2Ending), gameCode);
  if (map.IsEmpty()) {
    throw RuntimeError(ErrorNumber::InvalidProcedureCall,
                       "no game build has the code " + std::string(gameCode));
  }
  return map;
}

const SlotRecord& SlotOf(bool isDfbhd) {
  return isDfbhd ? kDfbhdSlot : kCommonSlot;
}

}  // namespace

GameImage::GameImage(GameMemory& memory, std::string_view gameCode, const World& world)
    : memory_(memory), isDfbhd_(gameCode == "DFBHD"), map_(MapOfCode(gameCode)) {
  const auto maps = static_cast<std::int32_t>(world.maps.size());
  const auto slots = static_cast<std::uint32_t>(world.slots.size());
  for (const Location& location : map_.All()) memory_.Reserve(location.address, 4);
  memory_.Reserve(kRotation, 20 + static_cast<std::uint32_t>(maps * kRotationEntry));
  memory_.Reserve(kPlayerTable, slots * static_cast<std::uint32_t>(SlotOf(isDfbhd_).size));
  if (isDfbhd_) {
    memory_.Reserve(map_.Address(location::kMapNames),
                    static_cast<std::uint32_t>(maps * kDfbhdNameRecord));
  } else {
    memory_.Reserve(kMapTable, static_cast<std::uint32_t>((MapNumber(maps) + 1) * kMapRecord));
  }
}

void GameImage::Write(const World& world) {
  WriteRotation(world);
  WritePlayers(world);
  memory_.WriteLong(map_.Address(location::kGameType), world.gameType);
  memory_.WriteLong(map_.Address(location::kGameState), world.state);
}

void GameImage::WriteRotation(const World& world) {
  memory_.WriteLong(map_.Address(location::kMapPointer), kRotation);
  memory_.WriteLong(kRotation + (isDfbhd_ ? 8 : 4), static_cast<std::int32_t>(world.maps.size()));
  memory_.WriteLong(kRotation + 12, world.position);
  if (!isDfbhd_) memory_.WriteLong(map_.Address(location::kMapNames), kMapTable);
  std::int32_t position = 0;
  for (const std::string& name : world.maps) {
    std::int32_t at = map_.Address(location::kMapNames) + position * kDfbhdNameRecord;
    if (!isDfbhd_) {
      const std::int32_t number = MapNumber(position);
      memory_.WriteLong(kRotation + 20 + position * kRotationEntry, number);
      at = kMapTable + number * kMapRecord + kNameInMapRecord;
    }
    memory_.WriteText(at, ToWindows1252(name));
    ++position;
  }
}

void GameImage::WritePlayers(const World& world) {
  memory_.WriteLong(map_.Address(location::kPlayerStats), kPlayerTable);
  memory_.WriteLong(map_.Address(location::kMaxPlayers),
                    static_cast<std::int32_t>(world.slots.size()) - 1);
  memory_.WriteLong(map_.Address(location::kCurrentPlayers), world.PlayerCount());
  const SlotRecord& slot = SlotOf(isDfbhd_);
  std::int32_t start = kPlayerTable;
  for (const auto& player : world.slots) {
    memory_.WriteText(start + slot.name, player ? ToWindows1252(player->name) : "");
    for (const CounterPlace& place : kPlaces) {
      memory_.WriteLong(start + slot.counters + (isDfbhd_ ? place.inDfbhd : place.inCommon),
                        player ? player->stats.*place.counter : 0);
    }
    start += slot.size;
  }
}

}  // namespace rotacasts::simulator
