// The memory map, the game state and the next map.

#include <array>

#include "game/game_builds.h"
#include "game/game_reader.h"

#include "support/fake_host.h"

namespace rotacasts {
namespace {

struct AddressRow {
  const char* location;
  int addresses[6];  // 0: the build has no such location
};
// A second copy on purpose: a test that took them from the program would agree with it even if they
// were wrong.
// clang-format off
constexpr AddressRow kAddresses[] = {
    //              JO_AFF      DFBHD_AFF2  DFBHD       JO          JO_2        DFX2
    {"GameState",  {0x011E1408, 0x00C63CB0, 0x009E4748, 0x00C87598, 0x011EEDB0, 0x00C805D0}},
    {"MapNameAdd", {0x01166384, 0x0252F5E4, 0x00A3F897, 0x02551118, 0x01173D80, 0x0254F6CC}},
    {"MapPointer", {0x01166174, 0x00C63C6C, 0x009ED5F8, 0x00C86FDC, 0x01173B74, 0x00C8058C}},
    {"TotalMaps",  {0x01166388, 0x0252F5E8, 0,          0x0255111C, 0x01173D84, 0x0254F6D0}},
    {"PlyrStats",  {0x02A197F4, 0x0249D938, 0x009ED600, 0x024C0CC4, 0x02A27180, 0x024BA258}},
    {"SerDedi",    {0x00D29D70, 0x0252EF84, 0x00A34484, 0x02550AB8, 0x00D50094, 0x024BAEC4}},
    {"BlueScore",  {0x00C9FA5C, 0x0249E604, 0x009E084C, 0x00C87D1C, 0x00CC75B4, 0x024BAF24}},
    {"RedScore",   {0x00C9FA60, 0x0249E608, 0x009E0934, 0x00C87E70, 0x00CC75B8, 0x024BAF28}},
    {"MaxPlayers", {0x00D29D64, 0x0252EF78, 0x00A03430, 0x00C8761C, 0x00D50088, 0x00C80BCC}},
    {"CurPlayers", {0x0117952C, 0x00B3A198, 0x009DDA2C, 0x00B5DA1C, 0x011EBF94, 0x00B5715C}},
    {"GameType",   {0x02A1D8A8, 0x024C2378, 0x00A0342C, 0x024E3EF0, 0x02A2B250, 0x024DD4A0}},
};
// clang-format on

TEST(MemoryMap, IsTheRowOfTheGameBuild) {
  const char* codes[] = {"JO_AFF", "DFBHD_AFF2", "DFBHD", "JO", "JO_2", "DFX2"};
  for (std::size_t build = 0; build < std::size(codes); ++build) {
    const MemoryMap map = MemoryMapFor(build == 0, build == 1, codes[build]);
    std::size_t locations = 0;
    for (const AddressRow& row : kAddresses) {
      const int address = row.addresses[build];
      EXPECT_EQ(map.Holds(row.location), address != 0) << codes[build] << " " << row.location;
      if (address == 0) continue;
      EXPECT_EQ(map.Address(row.location), address) << codes[build] << " " << row.location;
      ++locations;
    }
    EXPECT_EQ(map.All().size(), locations) << codes[build];
  }
  EXPECT_EQ(MemoryMapFor(true, true, "DFBHD").Address("GameState"), 0x011E1408);  // the first flag
  for (const char* code : {"dfbhd", "DFBHD ", "", "JO_3", "JO_AFF"}) {
    EXPECT_TRUE(MemoryMapFor(false, false, code).IsEmpty()) << code;
  }
  EXPECT_EQ(ErrorOf([] { MemoryMapFor(false, false, "DFBHD").Address("TotalMaps"); }), 5);
}

class GameReaderTest : public PluginTest {
 protected:
  GameReader& Game() { return State().game; }
  void SetUpProfile(const std::string& code) {
    SetProfileData(1, Data(1, code));
    host.calls.clear();
  }
  void ExpectReported(const char* text, bool withBox) {
    EXPECT_EQ(TakeErrors(), Texts{text});
    EXPECT_EQ(TakeBoxes().size(), withBox ? 1U : 0U);
  }
};

TEST_F(GameReaderTest, OnlyTwoStatesAreRunning) {
  EXPECT_FALSE(Game().HasMemoryMap(1));
  Game().SetMemory(1, false);  // before there is a profile
  ExpectReported("SetMemory: 9", true);
  SetUpProfile("JO");
  for (const int state : {-2, 0, 1, 2, 3, 4, 5}) {
    host.longs[0x00C87598] = state;
    EXPECT_EQ(Game().IsGameRunning(1), state == 2 || state == 3) << state;
  }
  host.longs.clear();
  EXPECT_EQ(ErrorOf([&] { Game().IsGameRunning(1); }), 57);
}

TEST_F(GameReaderTest, TheNextMapWrapsBehindTheLastAndNowhereElse) {
  constexpr int kRotation = 0x5000;
  constexpr int kMaps = 0x900000;
  for (const auto& [count, current, next] : std::vector<std::array<int, 3>>{
           {5, 4, 0}, {5, 2, 3}, {0, -1, 0}, {5, 7, 8}, {1, 0, 0}, {-3, -4, 0}}) {
    SetUpProfile("DFBHD");
    host.longs = {{0x009ED5F8, kRotation}, {kRotation + 8, count}, {kRotation + 12, current}};
    host.texts = {{0x00A3F897 + next * 1840, " Öde "}};
    EXPECT_EQ(Game().GetNextMap(1), "[Next Map]  Öde ");
    SetUpProfile("JO");
    host.longs = {{0x00C86FDC, kRotation},
                  {kRotation + 4, count},
                  {kRotation + 12, current},
                  {kRotation + 20 + next * 8, 12},
                  {0x02551118, kMaps}};
    host.texts = {{kMaps + 56052, "Rio"}};
    EXPECT_EQ(Game().GetNextMapJO(1), "[Next Map] Rio");
  }
}

TEST_F(GameReaderTest, WhatCannotBeReadGivesTheFallbackText) {
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
  SetUpProfile("???");  // no map has the location
  EXPECT_EQ(Game().GetNextMapJO(1), "Unknown!!!");
  ExpectReported("GetNextMapJO: 5", false);
  EXPECT_EQ(Game().GetNextMap(1), "");
  ExpectReported("GetNextMap: 5", true);
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

}  // namespace
}  // namespace rotacasts
