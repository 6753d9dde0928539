// The player table scan and the info texts.

#include "stats/info_texts.h"
#include "support/fake_host.h"

namespace rotacasts {
namespace {

using testing::PluginTest;

constexpr int kTable = 0x01000000;

using P = PlayerStats;

struct Offsets {
  int P::*counter;
  int dfbhd;
  int common;
};
// Written down a second time on purpose: a test that took them from the program would agree with it
// whatever it says.
// clang-format off
constexpr Offsets kOffsets[] = {
    {&P::Suicides,              0,  16},
    {&P::Murders,               4,   8},
    {&P::Kills,                 8,  12},
    {&P::Deaths,               12,  20},
    {&P::ZoneTime,             24, 116},
    {&P::FlagsCaptured,        28,  40},
    {&P::FlagsSaved,           32,  36},
    {&P::Targets,              36,  48},
    {&P::MedicSaves,           44,  28},
    {&P::Revives,              48,  32},
    {&P::PspTakeovers,         56,  56},
    {&P::FlagCarrierKills,     60,  76},
    {&P::Headshots,            68,  64},
    {&P::ZoneAttackKills,      80,  88},
    {&P::ZoneDefenceKills,     84,  92},
    {&P::TargetDefenceKills,   88,  84},
    {&P::TargetAttackKills,    96,  80},
    {&P::Score,               104, 108},
};

struct Announcement {
  const char* category;
  const char* gameTypes;
  const char* text;
};
constexpr const char* kEvery = "012345678";
// Of two players: each counter of Low has the number of its row above, Rex has a hundred more.
constexpr Announcement kAnnouncements[] = {
    {"HighScorer",            kEvery,  "[Highest Scorer] Rex: 118 Exp Pts"},
    {"LowScorer",             kEvery,  "[Lowest Scorer] Low: 18 Exp Pts"},
    {"MostKills",             kEvery,  "[Most Kills] Rex: 103 Kills"},
    {"LeastKills",            kEvery,  "[Least Kills] Low: 3 Kills"},
    {"MostDeaths",            kEvery,  "[Most Deaths] Rex: 104 Deaths"},
    {"LeastDeaths",           kEvery,  "[Least Deaths] Low: 4 Deaths"},
    {"MostHeadshots",         kEvery,  "[Most Headshots] Rex: 113 Headshots"},
    {"MostMedicSaves",        kEvery,  "[Most Medic Saves] Rex: 109 Medic Saves"},
    {"MostMurders",           kEvery,  "[Most Murders] Rex: 102 Murders"},
    {"MostRevives",           kEvery,  "[Most Revives] Rex: 110 Revives"},
    {"MostSuicides",          kEvery,  "[Most Suicides] Rex: 101 Suicides"},
    {"BestHeadshotKillRatio", kEvery,  "[Best Headshot/Kill %] Low: 433.33 %"},
    {"BestKillDeathRatio",    kEvery,  "[Best Kill/Death Ratio] Rex: 0.99 Ratio"},
    {"WorstKillDeathRatio",   kEvery,  "[Worst Kill/Death Ratio] Low: 0.75 Ratio"},
    {"BestGametypeStat1",     "0128",  "[Highest Scorer] Rex: 118 Exp Pts"},
    {"BestGametypeStat1",     "34",    "[Most Zone Time] Rex: 00:01:45"},
    {"BestGametypeStat1",     "56",    "[Most Targets] Rex: 108 Targets"},
    {"BestGametypeStat1",     "7",     "[Most Flags Captured] Rex: 106 Flags"},
    {"BestGametypeStat2",     "012",   "[Most Kills] Rex: 103 Kills"},
    {"BestGametypeStat2",     "34",    "[Most Zone Att Kills] Rex: 114 Kills"},
    {"BestGametypeStat2",     "56",    "[Most Zone Att Kills] Rex: 117 Kills"},
    {"BestGametypeStat2",     "7",     "[Most Flags Saved] Rex: 107 Flags"},
    {"BestGametypeStat2",     "8",     "[Most Flags Captured] Rex: 106 Flags"},
    {"BestGametypeStat3",     "0",     "[Best Kill/Death Ratio] Rex: 0.99 Ratio"},
    {"BestGametypeStat3",     "1",     "[Most PSP's] Rex: 111 Takeovers"},
    {"BestGametypeStat3",     "2",     "[Most Medic Saves] Rex: 109 Medic Saves"},
    {"BestGametypeStat3",     "34",    "[Most Zone Def Kills] Rex: 115 Kills"},
    {"BestGametypeStat3",     "56",    "[Most Zone Def Kills] Rex: 116 Kills"},
    {"BestGametypeStat3",     "78",    "[Most Flags Carrier Kills] Rex: 112 Kills"},
};
// clang-format on

class StatsTest : public PluginTest {
 protected:
  /// Sets up profile 1 with an empty server of the build.
  void SetUpServer(const std::string& code, int lastSlot, int gameType = 0, int players = 1) {
    dfbhd_ = code == "DFBHD";
    State().profiles.SetProfileData(1, Data(1, code));
    host.longs = {{dfbhd_ ? 0x009DDA2C : 0x00B5DA1C, players},
                  {dfbhd_ ? 0x00A03430 : 0x00C8761C, lastSlot},
                  {dfbhd_ ? 0x00A0342C : 0x024E3EF0, gameType},
                  {dfbhd_ ? 0x009ED600 : 0x024C0CC4, kTable}};
    host.texts.clear();
    host.calls.clear();
  }
  void AddPlayer(int slot, const std::string& name, const PlayerStats& stats) {
    const int start = kTable + slot * (dfbhd_ ? 717628 : 100584);
    host.texts[start + (dfbhd_ ? 60 : 40)] = name;
    for (const Offsets& row : kOffsets) {
      host.longs[start + (dfbhd_ ? 711340 + row.dfbhd : 80 + row.common)] = stats.*row.counter;
    }
  }
  std::string Text(const std::string& category) {
    return dfbhd_ ? State().infoTexts.GetStat(1, category)
                  : State().infoTexts.GetStat2(1, category);
  }
  bool dfbhd_ = false;
};

TEST_F(StatsTest, TheScanReadsNamedSlotsInOrder) {
  SetUpServer("JO", 2);
  AddPlayer(1, "Rex", {.Kills = 3});
  EXPECT_EQ(Text("MostKills"), "[Most Kills] Rex: 3 Kills");
  std::vector<std::string> expected = {
      "ReadLong(101, 0x00B5DA1C)", "ReadLong(101, 0x00C8761C)", "ReadLong(101, 0x024E3EF0)",
      "ReadLong(101, 0x024C0CC4)", "ReadStr(101, 0x01000028)",   // slot 0 is empty
      "ReadLong(101, 0x024C0CC4)", "ReadStr(101, 0x01018910)"};  // slot 1: + 100624
  ASSERT_EQ(host.calls.size(), expected.size() + 18 + 2);
  EXPECT_EQ(std::vector<std::string>(host.calls.begin(), host.calls.begin() + 7), expected);
  EXPECT_EQ(host.calls[7], "ReadLong(101, 0x01018948)");   // suicides: + 100584 + 80 + 16
  EXPECT_EQ(host.calls[24], "ReadLong(101, 0x010189A4)");  // score: + 100772
}

TEST_F(StatsTest, EveryCategoryAnnouncesItsCounter) {
  PlayerStats low;
  PlayerStats high;
  int number = 0;
  for (const Offsets& row : kOffsets) {
    low.*row.counter = ++number;
    high.*row.counter = 100 + number;
  }
  for (const char* code : {"DFBHD", "JO"}) {
    for (const Announcement& row : kAnnouncements) {
      for (const char gameType : std::string(row.gameTypes)) {
        SetUpServer(code, 2, gameType - '0');
        AddPlayer(0, "Low", low);
        AddPlayer(2, "Rex", high);
        EXPECT_EQ(Text(row.category), row.text) << code << " " << row.category << " " << gameType;
      }
    }
  }
}

TEST_F(StatsTest, TheScanVisitsTheSlotsUpToTheLimitInclusive) {
  const auto slotsRead = [&] {
    return std::count_if(host.calls.begin(), host.calls.end(),
                         [](const std::string& call) { return call.starts_with("ReadStr"); });
  };
  for (const auto& [lastSlot, players, visited] : std::vector<std::array<int, 3>>{
           {32, 1, 33}, {0, 1, 1}, {-1, 5, 0}, {32, 0, 0}, {32, -1, 0}}) {
    SetUpServer("JO", lastSlot, 0, players);
    AddPlayer(0, "left over", {.Kills = 9});
    EXPECT_EQ(Text("MostKills").empty(), visited == 0);
    EXPECT_EQ(slotsRead(), visited);
  }
}

TEST_F(StatsTest, AnAbsurdLimitEndsInAnOverflow) {
  SetUpServer("DFBHD", 2147483647);
  AddPlayer(0, "Rex", {.Kills = 7, .Deaths = 2});
  AddPlayer(1, "Low", {.Kills = -1, .Deaths = 1000});  // the last ratio, and a minus zero
  EXPECT_EQ(Text("BestKillDeathRatio"), "");
  ASSERT_EQ(host.logged.size(), 1U);
  EXPECT_EQ(host.logged[0], "GetStat: 6 Overflow [BestKillDeathRatio - 0]");
  EXPECT_LE(host.calls.size(), 2992U * 2 + 43);
  EXPECT_EQ(host.boxes.size(), 1U);
  SetUpServer("JO", 2147483647);
  EXPECT_EQ(Text("MostKills"), "");
  EXPECT_EQ(host.logged[1], "GetStat2: 6 Overflow");
}

TEST_F(StatsTest, AServerThatDiesBetweenAnyTwoReadsAnnouncesNothing) {
  for (int call = 1;; ++call) {
    SetUpServer("JO", 1);
    AddPlayer(0, "Rex", {.Kills = 7});
    host.failAtCall = call;
    const std::string text = Text("MostKills");
    if (host.failAtCall != 0) break;
    EXPECT_EQ(text, "") << call;
    EXPECT_EQ(TakeErrors(), std::vector<std::string>{"GetStat2: 57"});
  }
  EXPECT_EQ(host.boxes.size(), 25U);  // three numbers, two slots, eighteen counters
}

TEST_F(StatsTest, WordsEveryKindOfValue) {
  struct Row {
    const char* category;
    PlayerStats stats;
    const char* text;
    int gameType = 0;
  };
  for (const Row& row : std::initializer_list<Row>{
           {"LowScorer", {.Score = -5}, "[Lowest Scorer] Rex: -5 Exp Pts"},
           {"LeastDeaths", {}, "[Least Deaths] Rex: 0 Deaths"},
           {"MostSuicides", {}, ""},
           {"BestKillDeathRatio", {.Kills = 1, .Deaths = 201}, ""},  // rounds to nothing
           {"WorstKillDeathRatio", {}, ""},
           {"BestGametypeStat1", {.ZoneTime = 3725}, "[Most Zone Time] Rex: 01:02:05", 4},
           {"BestGametypeStat1", {.ZoneTime = 360000}, "[Most Zone Time] Rex: 100:00:00", 4},
           {"BestGametypeStat2", {.Kills = 4, .FlagsCaptured = 4}, "", 9},
           {"BestGametypeStat2", {.Kills = 4}, "", -1},
           {"MostAssists", {.Kills = 4}, ""},
           {"mostkills", {.Kills = 4}, ""}}) {
    SetUpServer("JO", 0, row.gameType);
    AddPlayer(0, "Rex", row.stats);
    EXPECT_EQ(Text(row.category), row.text) << row.category;
  }
  EXPECT_TRUE(host.logged.empty());
}

TEST_F(StatsTest, TheLowestSlotWinsATieAndHalvesRoundToTheEvenDigit) {
  struct Row {
    const char* category;
    std::vector<PlayerStats> players;
    const char* text;
  };
  for (const Row& row : std::initializer_list<Row>{
           {"MostKills", {{.Kills = 3}, {.Kills = 9}, {.Kills = 9}}, "P1: 9 Kills"},
           {"LeastDeaths", {{.Deaths = 4}, {.Deaths = 2}, {.Deaths = 2}}, "P1: 2 Deaths"},
           {"LowScorer", {{.Score = 10}, {.Score = -5}, {.Score = -5}}, "P1: -5 Exp Pts"},
           // 1 of 8 in hundredths is 12.5, 3 of 8 is 37.5.
           {"BestKillDeathRatio", {{.Kills = 1, .Deaths = 8}}, "P0: 0.12 Ratio"},
           {"BestKillDeathRatio", {{.Kills = 3, .Deaths = 8}}, "P0: 0.38 Ratio"},
           {"BestKillDeathRatio",
            {{.Kills = 100, .Deaths = 300},
             {.Kills = 333, .Deaths = 1000},
             {.Kills = 1, .Deaths = 4}},
            "P0: 0.33 Ratio"},
           {"BestKillDeathRatio",
            {{.Kills = 2, .Deaths = -1}, {.Kills = 1, .Deaths = 5}},
            "P1: 0.20 Ratio"},
           {"WorstKillDeathRatio",
            {{.Kills = 0}, {.Kills = 1, .Deaths = 2}, {.Kills = 3}, {.Kills = 2, .Deaths = 4}},
            "P1: 0.50 Ratio"},
           {"BestHeadshotKillRatio",
            {{.Headshots = 1}, {.Kills = 3, .Headshots = 1}},
            "P0: 100.00 %"}}) {
    SetUpServer("JO", 7);
    for (std::size_t slot = 0; slot < row.players.size(); ++slot) {
      AddPlayer(static_cast<int>(slot), "P" + std::to_string(slot), row.players[slot]);
    }
    const std::string text = Text(row.category);
    EXPECT_EQ(text.substr(text.find("] ") + 2), row.text);
  }
  EXPECT_EQ(FormatSeconds(-1), "00:00:00");
}

}  // namespace
}  // namespace rotacasts
