// The memory map, the game state and the next map.

#include "game/address_table.h"
#include "game/game_reader.h"

#include "support/fake_host.h"

namespace rotacasts {
namespace {

using testing::ErrorOf;
using testing::PluginTest;

TEST(MemoryMap, IsTheRowOfTheGameBuild) {
  struct Row {
    const char* code;
    bool affiliate;
    bool affiliate2;
    int gameState;
    int playerStats;
  };
  for (const Row& row : std::initializer_list<Row>{
           {"DFBHD", false, false, 0x009E4748, 0x009ED600},
           {"JO", false, false, 0x00C87598, 0x024C0CC4},
           {"JO_2", false, false, 0x011EEDB0, 0x02A27180},
           {"DFX2", false, false, 0x00C805D0, 0x024BA258},
           {"JO_AFF", true, false, 0x011E1408, 0x02A197F4},
           {"DFBHD_AFF2", false, true, 0x00C63CB0, 0x0249D938},
           {"DFBHD", true, true, 0x011E1408, 0x02A197F4}}) {  // the first flag wins
    const MemoryMap map = MemoryMapFor(row.affiliate, row.affiliate2, row.code);
    EXPECT_EQ(map.Address("GameState"), row.gameState) << row.code;
    EXPECT_EQ(map.Address("PlyrStats"), row.playerStats) << row.code;
    const bool isDfbhdRow = row.gameState == 0x009E4748;
    EXPECT_EQ(map.All().size(), isDfbhdRow ? 10U : 11U);
    EXPECT_EQ(map.Holds("TotalMaps"), !isDfbhdRow);
  }
  for (const char* code : {"dfbhd", "DFBHD ", "", "JO_3", "JO_AFF"}) {
    EXPECT_TRUE(MemoryMapFor(false, false, code).IsEmpty()) << code;
  }
  EXPECT_EQ(ErrorOf([] { MemoryMapFor(false, false, kDfbhd).Address("TotalMaps"); }), 5);
}

class GameReaderTest : public PluginTest {
 protected:
  GameReader& Game() { return State().game; }
  void SetUpProfile(const std::string& code) {
    State().profiles.SetProfileData(1, Data(1, code));
    host.calls.clear();
  }
  void ExpectReported(const char* text, bool withBox) {
    ASSERT_EQ(host.logged.size(), 1U);
    EXPECT_EQ(host.logged[0].find(text), 0U) << host.logged[0];
    EXPECT_EQ(host.boxes.size(), withBox ? 1U : 0U);
    host.logged.clear();
    host.boxes.clear();
  }
};

TEST_F(GameReaderTest, OnlyTwoStatesAreRunning) {
  EXPECT_FALSE(Game().HasMemoryMap(1));
  SetUpProfile("JO");
  EXPECT_TRUE(Game().HasMemoryMap(1));
  EXPECT_FALSE(Game().HasMemoryMap(-1));
  for (const int state : {-2, 0, 1, 2, 3, 4, 5}) {
    host.longs[0x00C87598] = state;
    EXPECT_EQ(Game().IsGameRunning(1), state == 2 || state == 3) << state;
  }
  host.longs.clear();
  EXPECT_EQ(ErrorOf([&] { Game().IsGameRunning(1); }), 57);
  SetUpProfile("???");
  EXPECT_FALSE(Game().HasMemoryMap(1));
}

TEST_F(GameReaderTest, TheNextMapWrapsBehindTheLastAndNowhereElse) {
  struct Row {
    int count;
    int current;
    int next;
  };
  constexpr int kRotation = 0x5000;
  constexpr int kMaps = 0x900000;
  for (const Row& row : std::initializer_list<Row>{
           {5, 4, 0}, {5, 2, 3}, {0, -1, 0}, {5, 7, 8}, {1, 0, 0}, {-3, -4, 0}}) {
    SetUpProfile("DFBHD");
    host.longs = {
        {0x009ED5F8, kRotation}, {kRotation + 8, row.count}, {kRotation + 12, row.current}};
    host.texts = {{0x00A3F897 + row.next * 1840, " Öde "}};
    EXPECT_EQ(Game().GetNextMap(1), "[Next Map]  Öde ");
    SetUpProfile("JO");
    host.longs = {{0x00C86FDC, kRotation},
                  {kRotation + 4, row.count},
                  {kRotation + 12, row.current},
                  {kRotation + 20 + row.next * 8, 12},
                  {0x02551118, kMaps}};
    host.texts = {{kMaps + 56052, "Rio"}};
    EXPECT_EQ(Game().GetNextMapJO(1), "[Next Map] Rio");
  }
  EXPECT_EQ(host.calls,
            (std::vector<std::string>{"ReadLong(101, 0x00C86FDC)", "ReadLong(101, 0x00005004)",
                                      "ReadLong(101, 0x0000500C)", "ReadLong(101, 0x00005014)",
                                      "ReadLong(101, 0x02551118)", "ReadStr(101, 0x0090DAF4)"}));
}

TEST_F(GameReaderTest, EveryFailedReadGivesTheFallbackText) {
  for (const bool dfbhd : {true, false}) {
    const int reads = dfbhd ? 4 : 6;
    for (int call = 1; call <= reads; ++call) {
      SetUpProfile(dfbhd ? "DFBHD" : "JO");
      host.longs = {{0x009ED5F8, 0x5000}, {0x5008, 2},      {0x500C, 0},    {0x00C86FDC, 0x5000},
                    {0x5004, 2},          {0x5000 + 28, 1}, {0x02551118, 0}};
      host.failAtCall = call;
      host.fired = false;
      EXPECT_EQ(dfbhd ? Game().GetNextMap(1) : Game().GetNextMapJO(1), dfbhd ? "" : "Unknown!!!");
      EXPECT_TRUE(host.fired) << call;
      ExpectReported(dfbhd ? "GetNextMap: 57" : "GetNextMapJO: 57", dfbhd);
    }
  }
}

TEST_F(GameReaderTest, ArithmeticBeyondThirtyTwoBitsIsAnOverflow) {
  constexpr int kTop = 2147483647;
  SetUpProfile("JO");
  host.longs = {{0x00C86FDC, kTop - 3}};
  EXPECT_EQ(Game().GetNextMapJO(1), "Unknown!!!");
  ExpectReported("GetNextMapJO: 6", false);
  SetUpProfile("DFBHD");
  for (const int current : {kTop, kTop / 1840}) {
    host.longs = {{0x009ED5F8, 0x5000}, {0x5008, 0}, {0x500C, current}};
    EXPECT_EQ(Game().GetNextMap(1), "");
    ExpectReported("GetNextMap: 6", true);
  }
}

TEST_F(GameReaderTest, AMapWithoutTheLocationGivesTheFallbackText) {
  SetUpProfile("???");
  EXPECT_EQ(Game().GetNextMapJO(1), "Unknown!!!");
  ExpectReported("GetNextMapJO: 5", false);
  EXPECT_EQ(Game().GetNextMap(1), "");
  ExpectReported("GetNextMap: 5", true);
}

}  // namespace
}  // namespace rotacasts
