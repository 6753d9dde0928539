// The profile tables: setting up and stopping profiles.

#include <limits>

#include "support/fake_host.h"

namespace rotacasts {
namespace {

class ProfilesTest : public PluginTest {
 protected:
  void SetUpProfile(std::int32_t index, const std::string& code = "JO") {
    SetProfileData(index, Data(index, code));
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
  SetUpProfile(700);
  SetUpProfile(3, "DFX2");
  EXPECT_EQ(tables.ElapsedTicks.UpperBound(), 700);
  EXPECT_EQ(tables.NextMessage(3), 5);
  EXPECT_EQ(tables.MemoryMaps(3).Address("GameState"), 0x00C805D0);  // replaced
  EXPECT_EQ(ErrorOf([&] { tables.Profiles(701); }), 9);
  SetUpProfile(std::numeric_limits<std::int32_t>::max());  // takes no memory
  EXPECT_TRUE(host.boxes.empty());
  SetUpProfile(-1);
  EXPECT_EQ(TakeErrors(), Texts{"SetProfileData: 9"});
}

TEST_F(ProfilesTest, FillsTheRecordAndTheAffiliateFlags) {
  using Row = std::tuple<const char*, bool, bool>;
  for (const auto& [code, affiliate, affiliate2] :
       {Row{"DFBHD_AFF", true, false}, Row{"DFX2_AFF2", false, true}, Row{"jo_aff", false, false},
        Row{"AFF", false, false}}) {
    SetUpProfile(1, code);
    const ProfileRecord& record = State().tables.Profiles(1);
    EXPECT_EQ(record.IsAffiliate, affiliate) << code;
    EXPECT_EQ(record.IsAffiliate2, affiliate2) << code;
  }
  HostValue::Array data(8);
  for (std::size_t i = 0; i < data.size(); ++i) data[i] = static_cast<std::int32_t>(i);
  SetProfileData(1, data);
  const ProfileRecord& r = State().tables.Profiles(1);
  EXPECT_EQ(r.Data0 + r.GameCode + r.Data3 + r.Data4 + r.Data5 + r.ProfileFolder, "013457");
  EXPECT_EQ(r.ProcessHandle, 2);
  EXPECT_EQ(r.MessageTarget, 6);
}

TEST_F(ProfilesTest, BadDataIsReportedAndKeepsWhatWasFilledBefore) {
  SetProfileData(1, Data(1, "JO_2", {{pdat::kMessageTarget, "port"}}));
  EXPECT_EQ(State().tables.Profiles(1).GameCode, "JO_2");
  EXPECT_EQ(State().tables.Profiles(1).ProfileFolder, "");
  SetProfileData(1, "no array");
  SetProfileData(1, HostValue::Array(7, HostValue(1)));
  SetUpProfile(1);
  SetProfileData(1, Data(1, "JO", {{pdat::kProfileFolder, ".."}}));
  EXPECT_EQ(TakeErrors(), (Texts{"SetProfileData: 13", "SetProfileData: 13", "SetProfileData: 9",
                                 "SetProfileData: 76"}));
  EXPECT_EQ(State().tables.MessageFiles(1), "");  // not the file of the old folder
}

TEST_F(ProfilesTest, DisablingStopsAProfileAndPassesOverWhatIsNotThere) {
  SetUpProfile(2);
  Plugin().DisableProfile(2);
  EXPECT_EQ(State().window.IfLoaded(), nullptr);  // this creates none
  Load(2);
  SetUpProfile(65538);  // timers have no such index; in 16 bits it would be 2
  for (const int index : {65538, 2}) {
    EXPECT_TRUE(timers.NextDue());
    State().tables.NextMessage(index) = State().tables.ElapsedTicks(index) = 4;
    Plugin().DisableProfile(index);
    EXPECT_FALSE(State().game.HasMemoryMap(index));
    EXPECT_EQ(State().tables.MessageFiles(index), "");
    EXPECT_EQ(State().tables.NextMessage(index) + State().tables.ElapsedTicks(index), 0);
    EXPECT_EQ(State().tables.Profiles(index).GameCode, "JO");
  }
  EXPECT_FALSE(timers.NextDue());
  for (const int index : {2, 70000, -5}) Plugin().DisableProfile(index);
  Load(2);
  EXPECT_TRUE(timers.NextDue());
  EXPECT_TRUE(host.logged.empty());
}

}  // namespace
}  // namespace rotacasts
