#include "stats/info_texts.h"

#include "base/conversions.h"

namespace rotacasts {
namespace {

std::string TwoDigits(std::int32_t number) {
  return (number < 10 ? "0" : "") + std::to_string(number);
}

/// Avoids a division by zero: a player without deaths (or kills) counts as having one.
double Ratio(std::int32_t count, std::int32_t per) {
  return static_cast<double>(count) / (per == 0 ? 1 : per);
}

double RatioOf(Pick pick, const PlayerStats& stats) {
  return RoundToTwoDecimals(pick == Pick::BestHeadshotRatio
                                ? Ratio(stats.Headshots, stats.Kills) * 100
                                : Ratio(stats.Kills, stats.Deaths));
}

}  // namespace

std::string FormatSeconds(std::int32_t seconds) {
  if (seconds < 0) return "00:00:00";
  return TwoDigits(seconds / 3600) + ":" + TwoDigits(seconds % 3600 / 60) + ":" +
         TwoDigits(seconds % 60);
}

void Selection::Offer(std::int32_t gameType, const PlayerSlot& slot) {
  if (!row_) row_ = FindCategory(category_, gameType);  // a scan has one game type
  const CategoryRow* row = *row_;
  if (row == nullptr) return;
  if (row->counter != nullptr) {
    OfferCount(*row, slot);
  } else {
    OfferRatio(*row, slot);
  }
}

void Selection::OfferCount(const CategoryRow& row, const PlayerSlot& slot) {
  const std::int32_t value = slot.stats.*row.counter;
  const bool better =
      row.pick == Pick::LowestCount ? picked_ == nullptr || value < bestValue_ : value > bestValue_;
  if (!better) return;
  Pick(row, slot);
  bestValue_ = value;
}

void Selection::OfferRatio(const CategoryRow& row, const PlayerSlot& slot) {
  const double ratio = lastRatio_ = RatioOf(row.pick, slot.stats);
  const bool better = row.pick == Pick::WorstKillRatio
                          ? ratio > 0 && (picked_ == nullptr || ratio < bestRatio_)
                          : ratio > bestRatio_;
  if (!better) return;
  Pick(row, slot);
  bestRatio_ = ratio;
}

void Selection::Pick(const CategoryRow& row, const PlayerSlot& slot) {
  picked_ = &row;
  bestText_.assign(row.label).append(slot.name);
}

std::string Selection::Text() const {
  if (picked_ == nullptr) return {};
  const std::string head = bestText_ + ": ";
  if (picked_->format == ValueFormat::Duration) return head + FormatSeconds(bestValue_);
  const std::string value =
      bestRatio_ != 0 ? FormatTwoDecimals(bestRatio_) : std::to_string(bestValue_);
  return head + value + std::string(picked_->unit);
}

struct InfoTexts::EntryPoint {
  const char* procedure;
  const SlotLayout& layout;
  bool completesOverflow;
};

std::string InfoTexts::GetStat(std::int32_t profileIndex, const std::string& category) {
  return Build({"GetStat", kDfbhdLayout, true}, profileIndex, category);
}

std::string InfoTexts::GetStat2(std::int32_t profileIndex, const std::string& category) {
  return Build({"GetStat2", kCommonLayout, false}, profileIndex, category);
}

std::string InfoTexts::Build(const EntryPoint& entry, std::int32_t profileIndex,
                             const std::string& category) {
  std::string text;
  Guard(errors_, {entry.procedure, profileIndex}, [&](Step& at) {
    Selection selection(category);
    at(1);
    CompleteErrors(
        [&] {
          ScanPlayers({source_, tables_, profileIndex}, entry.layout,
                      [&](auto gameType, const auto& slot) { selection.Offer(gameType, slot); });
        },
        [&](RuntimeError& error) {
          if (!entry.completesOverflow || !error.Is(ErrorNumber::Overflow)) return;
          error.Extend(" [" + category + " - " + FormatNumber(selection.LastRatio()) + "]");
        });
    at(2);
    text = selection.Text();
  });
  return text;
}

}  // namespace rotacasts
