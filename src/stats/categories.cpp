#include "stats/categories.h"

namespace rotacasts {
namespace {

constexpr GameTypes Types(std::initializer_list<int> types) {
  GameTypes set = 0;
  for (const int type : types) set = static_cast<GameTypes>(set | 1U << type);
  return set;
}

using P = PlayerStats;
using enum Pick;

// clang-format off
constexpr CategoryRow kRows[] = {
    {"HighScorer",            kEveryGameType,      HighestCount,      &P::Score,              "[Highest Scorer] ",           " Exp Pts"},
    {"LowScorer",             kEveryGameType,      LowestCount,       &P::Score,              "[Lowest Scorer] ",            " Exp Pts"},
    {"MostKills",             kEveryGameType,      HighestCount,      &P::Kills,              "[Most Kills] ",               " Kills"},
    {"LeastKills",            kEveryGameType,      LowestCount,       &P::Kills,              "[Least Kills] ",              " Kills"},
    {"MostDeaths",            kEveryGameType,      HighestCount,      &P::Deaths,             "[Most Deaths] ",              " Deaths"},
    {"LeastDeaths",           kEveryGameType,      LowestCount,       &P::Deaths,             "[Least Deaths] ",             " Deaths"},
    {"MostHeadshots",         kEveryGameType,      HighestCount,      &P::Headshots,          "[Most Headshots] ",           " Headshots"},
    {"MostMedicSaves",        kEveryGameType,      HighestCount,      &P::MedicSaves,         "[Most Medic Saves] ",         " Medic Saves"},
    {"MostMurders",           kEveryGameType,      HighestCount,      &P::Murders,            "[Most Murders] ",             " Murders"},
    {"MostRevives",           kEveryGameType,      HighestCount,      &P::Revives,            "[Most Revives] ",             " Revives"},
    {"MostSuicides",          kEveryGameType,      HighestCount,      &P::Suicides,           "[Most Suicides] ",            " Suicides"},
    {"BestHeadshotKillRatio", kEveryGameType,      BestHeadshotRatio, nullptr,                "[Best Headshot/Kill %] ",     " %"},
    {"BestKillDeathRatio",    kEveryGameType,      BestKillRatio,     nullptr,                "[Best Kill/Death Ratio] ",    " Ratio"},
    {"WorstKillDeathRatio",   kEveryGameType,      WorstKillRatio,    nullptr,                "[Worst Kill/Death Ratio] ",   " Ratio"},

    {"BestGametypeStat1",     Types({0, 1, 2, 8}), HighestCount,      &P::Score,              "[Highest Scorer] ",           " Exp Pts"},
    {"BestGametypeStat1",     Types({3, 4}),       HighestCount,      &P::ZoneTime,           "[Most Zone Time] ",           "", ValueFormat::Duration},
    {"BestGametypeStat1",     Types({5, 6}),       HighestCount,      &P::Targets,            "[Most Targets] ",             " Targets"},
    {"BestGametypeStat1",     Types({7}),          HighestCount,      &P::FlagsCaptured,      "[Most Flags Captured] ",      " Flags"},

    {"BestGametypeStat2",     Types({0, 1, 2}),    HighestCount,      &P::Kills,              "[Most Kills] ",               " Kills"},
    {"BestGametypeStat2",     Types({3, 4}),       HighestCount,      &P::ZoneAttackKills,    "[Most Zone Att Kills] ",      " Kills"},
    {"BestGametypeStat2",     Types({5, 6}),       HighestCount,      &P::TargetAttackKills,  "[Most Zone Att Kills] ",      " Kills"},
    {"BestGametypeStat2",     Types({7}),          HighestCount,      &P::FlagsSaved,         "[Most Flags Saved] ",         " Flags"},
    {"BestGametypeStat2",     Types({8}),          HighestCount,      &P::FlagsCaptured,      "[Most Flags Captured] ",      " Flags"},

    {"BestGametypeStat3",     Types({0}),          BestKillRatio,     nullptr,                "[Best Kill/Death Ratio] ",    " Ratio"},
    {"BestGametypeStat3",     Types({1}),          HighestCount,      &P::PspTakeovers,       "[Most PSP's] ",               " Takeovers"},
    {"BestGametypeStat3",     Types({2}),          HighestCount,      &P::MedicSaves,         "[Most Medic Saves] ",         " Medic Saves"},
    {"BestGametypeStat3",     Types({3, 4}),       HighestCount,      &P::ZoneDefenceKills,   "[Most Zone Def Kills] ",      " Kills"},
    {"BestGametypeStat3",     Types({5, 6}),       HighestCount,      &P::TargetDefenceKills, "[Most Zone Def Kills] ",      " Kills"},
    {"BestGametypeStat3",     Types({7, 8}),       HighestCount,      &P::FlagCarrierKills,   "[Most Flags Carrier Kills] ", " Kills"},
};
// clang-format on

bool Serves(GameTypes types, std::int32_t gameType) {
  if (types == kEveryGameType) return true;
  return gameType >= 0 && gameType < 16 && (types >> gameType & 1U) != 0;
}

}  // namespace

std::span<const CategoryRow> Categories() {
  return kRows;
}

const CategoryRow* FindCategory(std::string_view category, std::int32_t gameType) {
  for (const CategoryRow& row : kRows) {
    if (row.category == category && Serves(row.gameTypes, gameType)) return &row;
  }
  return nullptr;
}

}  // namespace rotacasts
