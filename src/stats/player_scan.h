// The game server's player table: its layout, and the scan through it.
#pragma once

#include <cstdint>
#include <functional>
#include <string>

#include "game/process_view.h"

namespace rotacasts {

/// The counters of one player. Times are in seconds, the score in experience points.
struct PlayerStats {
  std::int32_t Suicides = 0;
  std::int32_t Murders = 0;
  std::int32_t Kills = 0;
  std::int32_t Deaths = 0;
  std::int32_t ZoneTime = 0;
  std::int32_t FlagsCaptured = 0;
  std::int32_t FlagsSaved = 0;
  std::int32_t Targets = 0;
  std::int32_t MedicSaves = 0;
  std::int32_t Revives = 0;
  std::int32_t PspTakeovers = 0;
  std::int32_t FlagCarrierKills = 0;
  std::int32_t Headshots = 0;
  std::int32_t ZoneAttackKills = 0;
  std::int32_t ZoneDefenceKills = 0;
  std::int32_t TargetDefenceKills = 0;
  std::int32_t TargetAttackKills = 0;
  std::int32_t Score = 0;
  bool operator==(const PlayerStats&) const = default;
};

/// A counter and its offsets, in bytes, from the start of a slot's statistics block.
struct CounterRow {
  std::int32_t PlayerStats::*counter;
  std::int32_t dfbhdOffset;
  std::int32_t commonOffset;
};

/// Every counter, in reading order.
inline constexpr CounterRow kCounters[] = {
    {&PlayerStats::Suicides, 0, 16},
    {&PlayerStats::Murders, 4, 8},
    {&PlayerStats::Kills, 8, 12},
    {&PlayerStats::Deaths, 12, 20},
    {&PlayerStats::ZoneTime, 24, 116},
    {&PlayerStats::FlagsCaptured, 28, 40},
    {&PlayerStats::FlagsSaved, 32, 36},
    {&PlayerStats::Targets, 36, 48},
    {&PlayerStats::MedicSaves, 44, 28},
    {&PlayerStats::Revives, 48, 32},
    {&PlayerStats::PspTakeovers, 56, 56},
    {&PlayerStats::FlagCarrierKills, 60, 76},
    {&PlayerStats::Headshots, 68, 64},
    {&PlayerStats::ZoneAttackKills, 80, 88},
    {&PlayerStats::ZoneDefenceKills, 84, 92},
    {&PlayerStats::TargetDefenceKills, 88, 84},
    {&PlayerStats::TargetAttackKills, 96, 80},
    {&PlayerStats::Score, 104, 108},
};

/// Where a game build keeps its player slots, in bytes.
struct SlotLayout {
  std::int32_t stride;            // from one slot to the next
  std::int32_t nameOffset;        // of the name text, from the slot's start
  std::int32_t statisticsOffset;  // of the statistics block, from the slot's start
  std::int32_t CounterRow::*counterOffset;
};

inline constexpr SlotLayout kDfbhdLayout = {717628, 60, 711340, &CounterRow::dfbhdOffset};
/// Every other build, affiliate servers included.
inline constexpr SlotLayout kCommonLayout = {100584, 40, 80, &CounterRow::commonOffset};

/// A slot that holds a player.
struct PlayerSlot {
  std::string name;
  PlayerStats stats;
};

/// Called for every slot with a name, in ascending order, with the server's current game type.
using SlotVisitor = std::function<void(std::int32_t gameType, const PlayerSlot& slot)>;

/// Reads the player table. Errors: a failed read or an overflowing address ends the scan; the slots
/// before it were visited.
void ScanPlayers(const ProcessView& process, const SlotLayout& layout, const SlotVisitor& visit);

}  // namespace rotacasts
