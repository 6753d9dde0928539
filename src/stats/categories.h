// The statistics that a message can announce: whom each picks and how it is worded.
#pragma once

#include <cstdint>
#include <span>
#include <string_view>

#include "stats/player_scan.h"

namespace rotacasts {

/// How a category picks its player among the named slots; the lowest slot wins a tie.
enum class Pick {
  HighestCount,       // of a counter; never a counter of 0 or less
  LowestCount,        // of a counter
  BestHeadshotRatio,  // head shots to kills, in percent
  BestKillRatio,      // kills to deaths
  WorstKillRatio,     // the lowest of those above 0
};

/// How the value is written after the player's name.
enum class ValueFormat {
  Plain,     // a count, or a ratio with two decimals, then the unit
  Duration,  // seconds as hh:mm:ss, without a unit
};

/// A set of game types, one bit each.
using GameTypes = std::uint16_t;
inline constexpr GameTypes kEveryGameType = 0xFFFF;

/// A category's wording. A category that depends on the game type has a row for each group of game
/// types; for a game type outside its rows it picks nobody.
struct CategoryRow {
  std::string_view category;
  GameTypes gameTypes;
  Pick pick;
  std::int32_t PlayerStats::*counter;  // null if the pick is a ratio
  std::string_view label;
  std::string_view unit;
  ValueFormat format = ValueFormat::Plain;
};

/// Every row of every category.
std::span<const CategoryRow> Categories();

/// The row of a category for a game type; null if the category is unknown (the whole name must
/// match, including letter case) or does not apply to the game type.
const CategoryRow* FindCategory(std::string_view category, std::int32_t gameType);

}  // namespace rotacasts
