// The info texts: one line that names the player who leads a category, and the value.
#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "services/guard.h"
#include "stats/categories.h"

namespace rotacasts {

/// A duration as "hh:mm:ss", the hours with more digits where they need them; "00:00:00" for a
/// negative one.
std::string FormatSeconds(std::int32_t seconds);

/// Picks a category's player while slot after slot is offered, and words the result.
class Selection {
 public:
  /// `category` outlives the selection.
  explicit Selection(std::string_view category) : category_(category) {}

  void Offer(std::int32_t gameType, const PlayerSlot& slot);
  /// The info text; empty when no player was taken.
  std::string Text() const;
  /// The last ratio computed, rounded to two decimals; 0 while none was.
  double LastRatio() const { return lastRatio_; }

 private:
  void OfferCount(const CategoryRow& row, const PlayerSlot& slot);
  void OfferRatio(const CategoryRow& row, const PlayerSlot& slot);
  void Take(const CategoryRow& row, const PlayerSlot& slot);

  const std::string_view category_;
  std::optional<const CategoryRow*> row_;  // once it has been looked up; null for none
  std::string bestText_;                   // label and name; empty until a player is taken
  std::int32_t bestValue_ = 0;
  double bestRatio_ = 0;
  double lastRatio_ = 0;
  const CategoryRow* taken_ = nullptr;
};

/// Builds info texts from a fresh scan of the profile's game server. An error is reported under the
/// procedure's name and gives the empty text, so nothing is announced.
class InfoTexts {
 public:
  InfoTexts(const MemorySource& source, ProfileTables& tables, ErrorHandler& errors)
      : source_(source), tables_(tables), errors_(errors) {}

  /// For a profile whose game code is "DFBHD". An overflow's description is completed by the
  /// category and the last ratio.
  std::string GetStat(std::int32_t profileIndex, const std::string& category);
  /// For every other build.
  std::string GetStat2(std::int32_t profileIndex, const std::string& category);

 private:
  struct EntryPoint;
  std::string Build(const EntryPoint& entry, std::int32_t profileIndex,
                    const std::string& category);

  const MemorySource& source_;
  ProfileTables& tables_;
  ErrorHandler& errors_;
};

}  // namespace rotacasts
