// The player table scan and the info texts, read from a game's memory as the simulator writes it.
// The simulator has its own copy of the counters' offsets.

#include "stats/info_texts.h"

#include <array>
#include <bit>
#include <numeric>

#include "base/text.h"
#include "simulator/game_image.h"
#include "support/fake_host.h"

namespace rotacasts {
namespace {

using Players = std::vector<PlayerStats>;

struct Announcement {
  const char* category;
  const char* gameTypes;
  const char* text;
};
constexpr const char* kEvery = "012345678";
// For two players: P0's counters are 1, 2, 3, ... in order; each of P1's is higher by a hundred.
// clang-format off
constexpr Announcement kAnnouncements[] = {
    {"HighScorer",            kEvery,  "[Highest Scorer] P1: 118 Exp Pts"},
    {"LowScorer",             kEvery,  "[Lowest Scorer] P0: 18 Exp Pts"},
    {"MostKills",             kEvery,  "[Most Kills] P1: 103 Kills"},
    {"LeastKills",            kEvery,  "[Least Kills] P0: 3 Kills"},
    {"MostDeaths",            kEvery,  "[Most Deaths] P1: 104 Deaths"},
    {"LeastDeaths",           kEvery,  "[Least Deaths] P0: 4 Deaths"},
    {"MostHeadshots",         kEvery,  "[Most Headshots] P1: 113 Headshots"},
    {"MostMedicSaves",        kEvery,  "[Most Medic Saves] P1: 109 Medic Saves"},
    {"MostMurders",           kEvery,  "[Most Murders] P1: 102 Murders"},
    {"MostRevives",           kEvery,  "[Most Revives] P1: 110 Revives"},
    {"MostSuicides",          kEvery,  "[Most Suicides] P1: 101 Suicides"},
    {"BestHeadshotKillRatio", kEvery,  "[Best Headshot/Kill %] P0: 433.33 %"},
    {"BestKillDeathRatio",    kEvery,  "[Best Kill/Death Ratio] P1: 0.99 Ratio"},
    {"WorstKillDeathRatio",   kEvery,  "[Worst Kill/Death Ratio] P0: 0.75 Ratio"},
    {"BestGametypeStat1",     "0128",  "[Highest Scorer] P1: 118 Exp Pts"},
    {"BestGametypeStat1",     "34",    "[Most Zone Time] P1: 00:01:45"},
    {"BestGametypeStat1",     "56",    "[Most Targets] P1: 108 Targets"},
    {"BestGametypeStat1",     "7",     "[Most Flags Captured] P1: 106 Flags"},
    {"BestGametypeStat2",     "012",   "[Most Kills] P1: 103 Kills"},
    {"BestGametypeStat2",     "34",    "[Most Zone Att Kills] P1: 114 Kills"},
    {"BestGametypeStat2",     "56",    "[Most Zone Att Kills] P1: 117 Kills"},
    {"BestGametypeStat2",     "7",     "[Most Flags Saved] P1: 107 Flags"},
    {"BestGametypeStat2",     "8",     "[Most Flags Captured] P1: 106 Flags"},
    {"BestGametypeStat3",     "0",     "[Best Kill/Death Ratio] P1: 0.99 Ratio"},
    {"BestGametypeStat3",     "1",     "[Most PSP's] P1: 111 Takeovers"},
    {"BestGametypeStat3",     "2",     "[Most Medic Saves] P1: 109 Medic Saves"},
    {"BestGametypeStat3",     "34",    "[Most Zone Def Kills] P1: 115 Kills"},
    {"BestGametypeStat3",     "56",    "[Most Zone Def Kills] P1: 116 Kills"},
    {"BestGametypeStat3",     "78",    "[Most Flags Carrier Kills] P1: 112 Kills"},
};
// clang-format on

/// The game's memory that the fakes read.
class FakeGameMemory final : public simulator::GameMemory {
 public:
  explicit FakeGameMemory(FakeHost& host) : host_(host) {}
  void Reserve(std::int32_t, std::uint32_t) override {}
  void WriteLong(std::int32_t address, std::int32_t value) override {
    host_.longs[address] = value;
  }
  void WriteText(std::int32_t address, std::string_view bytes) override {
    host_.texts[address] = FromWindows1252(bytes);
  }

 private:
  FakeHost& host_;
};

class StatsTest : public PluginTest {
 protected:
  /// Sets up profile 1 on a server of the build. Its first slot is empty; the players P0, P1, ...
  /// are in the others.
  void SetUpServer(const std::string& code, const Players& players, int gameType = 0) {
    isDfbhd_ = code == "DFBHD";
    SetProfileData(1, Data(1, code));
    simulator::World world{2, gameType, {std::nullopt}, {"Öde", "Rio", "Bay"}, 1};
    for (const PlayerStats& stats : players) {
      world.slots.push_back({{"P" + std::to_string(world.slots.size() - 1), stats}});
    }
    host.longs.clear();
    host.texts.clear();
    FakeGameMemory memory(host);
    simulator::GameImage(memory, code, world).Write(world);
    host.calls.clear();
  }
  std::string Text(const std::string& category) {
    InfoTexts texts(State().services, State().tables, State().reporter);
    return isDfbhd_ ? texts.GetStat(1, category) : texts.GetStat2(1, category);
  }
  bool isDfbhd_ = false;
};

// For a "JO" server.
constexpr int kCurrentPlayers = 0x00B5DA1C;
constexpr int kLastSlot = 0x00C8761C;

TEST_F(StatsTest, TheScanReadsNamedSlotsInOrder) {
  SetUpServer("JO", {{.Kills = 3}});
  host.texts[0x10100028 + 100584] = "Zoë";
  EXPECT_EQ(Text("MostKills"), "[Most Kills] Zoë: 3 Kills");
  Texts expected = {"ReadLong(101, 0x00B5DA1C)", "ReadLong(101, 0x00C8761C)",
                    "ReadLong(101, 0x024E3EF0)", "ReadLong(101, 0x024C0CC4)",
                    "ReadStr(101, 0x10100028)",                                // slot 0 is empty
                    "ReadLong(101, 0x024C0CC4)", "ReadStr(101, 0x10118910)"};  // slot 1: + 100624
  ASSERT_EQ(host.calls.size(), expected.size() + 18);
  EXPECT_EQ(Texts(host.calls.begin(), host.calls.begin() + 7), expected);
  EXPECT_EQ(host.calls[7], "ReadLong(101, 0x10118948)");   // suicides: + 100584 + 80 + 16
  EXPECT_EQ(host.calls[24], "ReadLong(101, 0x101189A4)");  // score: + 100772
}

TEST_F(StatsTest, EveryBuildAnnouncesEveryCategorysCounterAndTheNextMap) {
  Players players;
  for (const int first : {1, 101}) {
    std::array<std::int32_t, sizeof(PlayerStats) / 4> counters{};
    std::iota(counters.begin(), counters.end(), first);
    players.push_back(std::bit_cast<PlayerStats>(counters));
  }
  for (const char* code : {"DFBHD", "JO", "JO_2", "DFX2", "JO_AFF", "DFX2_AFF2"}) {
    for (const Announcement& row : kAnnouncements) {
      for (const char gameType : std::string(row.gameTypes)) {
        SetUpServer(code, players, gameType - '0');
        EXPECT_EQ(Text(row.category), row.text) << code << " " << row.category << " " << gameType;
      }
    }
    EXPECT_EQ(isDfbhd_ ? State().game.GetNextMap(1) : State().game.GetNextMapJO(1),
              "[Next Map] Bay")
        << code;
    EXPECT_TRUE(State().game.IsGameRunning(1)) << code;
  }
}

TEST_F(StatsTest, TheScanVisitsTheSlotsUpToTheLimitInclusive) {
  for (const auto& [lastSlot, players, visited] : std::vector<std::array<int, 3>>{
           {32, 1, 33}, {1, 1, 2}, {-1, 5, 0}, {32, 0, 0}, {32, -1, 0}}) {
    SetUpServer("JO", {{.Kills = 9}});
    host.longs[kLastSlot] = lastSlot;
    host.longs[kCurrentPlayers] = players;
    EXPECT_EQ(Text("MostKills").empty(), visited == 0);
    EXPECT_EQ(
        std::ranges::count_if(host.calls, [](const auto& c) { return c.starts_with("ReadStr"); }),
        visited);
  }
}

TEST_F(StatsTest, AnAbsurdLimitEndsInAnOverflow) {
  SetUpServer("DFBHD", {{.Kills = 7, .Deaths = 2}, {.Kills = -1, .Deaths = 1000}});
  host.longs[0x00A03430] = 2147483647;
  EXPECT_EQ(Text("BestKillDeathRatio"), "");
  EXPECT_LE(host.calls.size(), 2992U * 2 + 43);
  SetUpServer("JO", {{}});
  host.longs[kLastSlot] = 2147483647;
  EXPECT_EQ(Text("MostKills"), "");
  EXPECT_EQ(host.logged, (Texts{"GetStat: 6 Overflow [BestKillDeathRatio - 0]",  // no minus zero
                                "GetStat2: 6 Overflow"}));
  EXPECT_EQ(host.boxes.size(), 2U);
}

TEST_F(StatsTest, AServerThatDiesBetweenAnyTwoReadsAnnouncesNothing) {
  for (int call = 1;; ++call) {
    SetUpServer("JO", {{.Kills = 7}});
    host.failAtCall = call;
    const std::string text = Text("MostKills");
    if (host.failAtCall != 0) break;
    EXPECT_EQ(text, "") << call;
    EXPECT_EQ(TakeErrors(), Texts{"GetStat2: 57"});
  }
  EXPECT_EQ(host.boxes.size(), 25U);  // three numbers, two slots, eighteen counters
}

TEST_F(StatsTest, WordsTheBestOfThePlayersTheFirstOfEqualOnes) {
  struct Row {
    const char* category;
    Players players;
    const char* text;
    int gameType = 0;
  };
  const Players killer = {{.Kills = 4, .FlagsCaptured = 4}};
  const char* const best = "BestKillDeathRatio";
  const char* const headshots = "BestHeadshotKillRatio";
  const char* const worst = "WorstKillDeathRatio";
  for (const Row& row : std::initializer_list<Row>{
           {"LowScorer", {{.Score = 10}, {.Score = -5}, {.Score = -5}}, "P1: -5 Exp Pts"},
           {"LeastDeaths", {{}}, "P0: 0 Deaths"},
           {"LeastDeaths", {{.Deaths = 4}, {.Deaths = 2}, {.Deaths = 2}}, "P1: 2 Deaths"},
           {"MostKills", {{.Kills = 3}, {.Kills = 9}, {.Kills = 9}}, "P1: 9 Kills"},
           {"MostSuicides", {{}}, ""},
           {best, {{.Kills = 1, .Deaths = 201}}, ""},  // rounds to 0
           // 1 of 8 is 12.5 hundredths and 3 of 8 is 37.5: halves go to the even digit.
           {best, {{.Kills = 1, .Deaths = 8}}, "P0: 0.12 Ratio"},
           {best, {{.Kills = 3, .Deaths = 8}}, "P0: 0.38 Ratio"},
           {best, {{.Kills = 1, .Deaths = 3}, {.Kills = 333, .Deaths = 1000}}, "P0: 0.33 Ratio"},
           {best, {{.Kills = 2, .Deaths = -1}, {.Kills = 1, .Deaths = 5}}, "P1: 0.20 Ratio"},
           {worst, {{}}, ""},
           {worst,
            {{.Kills = 3}, {.Kills = 1, .Deaths = 2}, {.Kills = 2, .Deaths = 4}},
            "P1: 0.50 Ratio"},
           {headshots, {{.Headshots = 1}, {.Kills = 3, .Headshots = 1}}, "P0: 100.00 %"},
           {"BestGametypeStat1", {{.ZoneTime = 3725}}, "P0: 01:02:05", 4},
           {"BestGametypeStat1", {{.ZoneTime = 360000}}, "P0: 100:00:00", 4},
           {"BestGametypeStat2", killer, "", 9},
           {"BestGametypeStat2", killer, "", -1},
           {"MostAssists", killer, ""},
           {"mostkills", killer, ""}}) {
    SetUpServer("JO", row.players, row.gameType);
    const std::string text = Text(row.category);
    EXPECT_EQ(text.substr(text.empty() ? 0 : text.find("] ") + 2), row.text) << row.category;
  }
  EXPECT_TRUE(host.logged.empty());
  EXPECT_EQ(FormatSeconds(-1), "00:00:00");
}

}  // namespace
}  // namespace rotacasts
