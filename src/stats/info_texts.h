// The info texts: one line with the player who leads a category, and the value.
#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "services/guard.h"
#include "stats/categories.h"

namespace rotacasts {

/// A duration as "hh:mm:ss", with more digits for the hours if needed; "00:00:00" if negative.
std::string FormatSeconds(std::int32_t seconds);

/// Picks a category's player from the slots that it is offered, and words the result.
class Selection {
 public:
  /// `category` must outlive the selection.
  explicit Selection(std::string_view category) : category_(category) {}

  void Offer(std::int32_t gameType, const PlayerSlot& slot);
  /// The info text; empty if no player was picked.
  std::string Text() const;
  /// The last computed ratio, rounded to two decimals; 0 before the first.
  double LastRatio() const { return lastRatio_; }

 private:
  void OfferCount(const CategoryRow& row, const PlayerSlot& slot);
  void OfferRatio(const CategoryRow& row, const PlayerSlot& slot);
  void Pick(const CategoryRow& row, const PlayerSlot& slot);

  const std::string_view category_;
  std::optional<const CategoryRow*> row_;  // once looked up; null for none
  std::string bestText_;                   // label and name; empty until a player is picked
  std::int32_t bestValue_ = 0;
  double bestRatio_ = 0;
  double lastRatio_ = 0;
  const CategoryRow* picked_ = nullptr;
};

/// Builds info texts from a new scan of the profile's game server. Errors are reported under the
/// procedure's name; the text is then empty, so nothing is announced.
class InfoTexts {
 public:
  InfoTexts(const MemorySource& source, ProfileTables& tables, ErrorHandler& errors)
      : source_(source), tables_(tables), errors_(errors) {}

  /// For game code "DFBHD". Adds the category and the last ratio to the description of an overflow.
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
