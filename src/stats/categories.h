// The statistics that a message can announce: which player each picks and how it is worded.
#pragma once

#include <cstdint>
#include <span>
#include <string_view>

#include "stats/player_scan.h"

namespace rotacasts {

/// How a category picks its player among the named slots; the lowest slot wins a tie.
enum class Pick {
  HighestCount,       // of a counter; never a player whose counter is 0 or less
  LowestCount,        // of a counter
  BestHeadshotRatio,  // head shots to kills, in per cent
  BestKillRatio,      // kills to deaths
  WorstKillRatio,     // the lowest of those above 0
};

/// How the value is written after the player's name.
enum class ValueFormat {
  Plain,     // a count as it is, a ratio with two decimals, then the unit
  Duration,  // seconds as hh:mm:ss, and no unit
};

/// A set of game types, a bit each.
using GameTypes = std::uint16_t;
inline constexpr GameTypes kEveryGameType = 0xFFFF;

/// One category as one line of wording. A category that depends on the game type has a row for each
/// group of game types; a game type outside its rows picks nobody.
struct CategoryRow {
  std::string_view category;
  GameTypes gameTypes;
  Pick pick;
  std::int32_t PlayerStats::*counter;  // null where the pick is a ratio
  std::string_view label;
  std::string_view unit;
  ValueFormat format = ValueFormat::Plain;
};

/// Every row of every category.
std::span<const CategoryRow> Categories();

/// The row of a category for a game type; null for an unknown category (the whole name counts,
/// letter case included) or a game type that it does not serve.
const CategoryRow* FindCategory(std::string_view category, std::int32_t gameType);

}  // namespace rotacasts
