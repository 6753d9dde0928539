// The profile tables: setting up and stopping profiles.

#include <limits>

#include "support/fake_host.h"

namespace rotacasts {
namespace {

using testing::ErrorOf;
using testing::PluginTest;

class ProfilesTest : public PluginTest {
 protected:
  void SetUpProfile(std::int32_t index, const std::string& code = "JO") {
    State().profiles.SetProfileData(index, Data(index, code));
  }
};

TEST_F(ProfilesTest, TablesGrowToTheHighestIndexAndNeverShrink) {
  ProfileTables& tables = State().tables;
  EXPECT_EQ(ErrorOf([&] { tables.Profiles(0); }), 9);
  SetUpProfile(3);
  EXPECT_EQ(tables.Profiles.UpperBound(), 3);
  EXPECT_EQ(tables.MessageFiles(1), "");
  EXPECT_EQ(tables.MessageFiles(3), "C:\\Host\\profiles\\srv3\\settings\\Rotacasts.ini");
  tables.NextMessage(3) = 5;
  tables.ElapsedTicks(3) = 2;
  SetUpProfile(2);
  SetUpProfile(700);
  SetUpProfile(3, "DFX2");
  EXPECT_EQ(tables.ElapsedTicks.UpperBound(), 700);
  EXPECT_EQ(tables.NextMessage(3), 5);
  EXPECT_EQ(tables.ElapsedTicks(3), 2);
  EXPECT_EQ(tables.MemoryMaps(3).Address("GameState"), 0x00C805D0);  // rebuilt
  EXPECT_EQ(ErrorOf([&] { tables.Profiles(701); }), 9);
  EXPECT_TRUE(host.boxes.empty());
}

TEST_F(ProfilesTest, AnIndexOfTwoBillionCostsNothingAndANegativeOneIsReported) {
  SetUpProfile(std::numeric_limits<std::int32_t>::max());
  EXPECT_TRUE(host.boxes.empty());
  SetUpProfile(-1);
  EXPECT_EQ(host.logged, std::vector<std::string>{"SetProfileData: 9 Subscript out of range"});
}

TEST_F(ProfilesTest, FillsTheRecordAndTheAffiliateFlags) {
  struct Row {
    const char* code;
    bool affiliate;
    bool affiliate2;
  };
  for (const Row& row : std::initializer_list<Row>{{"DFBHD_AFF", true, false},
                                                   {"DFX2_AFF2", false, true},
                                                   {"JO", false, false},
                                                   {"jo_aff", false, false},
                                                   {"AFF", false, false},
                                                   {"_AFF", true, false}}) {
    SetUpProfile(1, row.code);
    const ProfileRecord& record = State().tables.Profiles(1);
    EXPECT_EQ(record.GameCode, row.code);
    EXPECT_EQ(record.IsAffiliate, row.affiliate) << row.code;
    EXPECT_EQ(record.IsAffiliate2, row.affiliate2) << row.code;
  }
  Variant::Array data(8);
  for (std::size_t i = 0; i < data.size(); ++i) data[i] = static_cast<std::int32_t>(i);
  State().profiles.SetProfileData(1, data);
  const ProfileRecord& record = State().tables.Profiles(1);
  EXPECT_EQ(record.Data0 + record.GameCode + record.Data3 + record.Data4 + record.Data5, "01345");
  EXPECT_EQ(record.ProcessHandle, 2);
  EXPECT_EQ(record.MessageTarget, 6);
  EXPECT_EQ(record.ProfileFolder, "7");
}

TEST_F(ProfilesTest, BadDataIsReportedAndKeepsWhatWasFilledBefore) {
  Variant::Array data = *Data(1, "JO_2").AsArray();
  data[pdat::kMessageTarget] = "port";
  State().profiles.SetProfileData(1, data);
  EXPECT_EQ(State().tables.Profiles(1).GameCode, "JO_2");
  EXPECT_EQ(State().tables.Profiles(1).ProfileFolder, "");
  EXPECT_EQ(State().tables.MessageFiles(1), "");
  State().profiles.SetProfileData(1, "no array");
  State().profiles.SetProfileData(1, Variant::Array(7, Variant(1)));
  EXPECT_EQ(host.logged, (std::vector<std::string>{"SetProfileData: 13 Type mismatch",
                                                   "SetProfileData: 13 Type mismatch",
                                                   "SetProfileData: 9 Subscript out of range"}));
  SetUpProfile(1);
  data = *Data(1, "JO").AsArray();
  data[pdat::kProfileFolder] = "..";
  State().profiles.SetProfileData(1, data);
  EXPECT_EQ(host.logged.back().find("SetProfileData: 76"), 0U);
  EXPECT_EQ(State().tables.MessageFiles(1), "");  // and not the file of the folder before
}

TEST_F(ProfilesTest, DisablingStopsAProfileAndPassesOverWhatIsNotThere) {
  Load(2);
  State().tables.NextMessage(2) = 4;
  Plugin().DisableProfile(2);
  EXPECT_FALSE(State().game.HasMemoryMap(2));
  EXPECT_EQ(State().tables.MessageFiles(2), "");
  EXPECT_EQ(State().tables.NextMessage(2), 0);
  EXPECT_EQ(State().tables.Profiles(2).GameCode, "JO");
  EXPECT_FALSE(timers.NextDue());
  Plugin().DisableProfile(2);
  Plugin().DisableProfile(99);
  Plugin().DisableProfile(-5);
  Load(2);
  EXPECT_TRUE(timers.NextDue());
  SetUpProfile(65538);  // no timer can have this index; in 16 bits it would be 2
  State().tables.ElapsedTicks(65538) = 1;
  Plugin().DisableProfile(65538);
  EXPECT_EQ(State().tables.MessageFiles(65538), "");
  EXPECT_EQ(State().tables.ElapsedTicks(65538), 0);
  EXPECT_TRUE(timers.NextDue());
  EXPECT_TRUE(host.logged.empty());
}

TEST_F(ProfilesTest, DisablingMakesNoWindow) {
  SetUpProfile(2);
  Plugin().DisableProfile(2);
  EXPECT_EQ(State().window.IfLoaded(), nullptr);
}

}  // namespace
}  // namespace rotacasts
