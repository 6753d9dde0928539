// The settings window: showing, hiding and unloading it, and filling it from a message file.

#include "support/fake_host.h"

namespace rotacasts {
namespace {

class WindowTest : public PluginTest {
 protected:
  std::string Stored(const char* key) { return State().store.Open(2).ReadOption(key); }
};

TEST_F(WindowTest, ReloadAppliesTheDefaultsAndWritesBothOptionsBack) {
  using Row = std::tuple<const char*, const char*, int, const char*>;
  for (const auto& [enable, interval, value, text] :
       {Row{"1", "30", 1, "30"}, Row{"0", "0", 0, "0"}, Row{"", "", 0, "3"}, Row{"7", "31", 0, "3"},
        Row{"-1", "-1", 0, "3"}, Row{"0.5", "2.5", 0, "2.5"}, Row{"0.6", " 4 ", 1, " 4 "},
        Row{"1.01", "30.01", 0, "3"}}) {
    host.MessageFile(2) = MessageFileBytes({}, enable, interval);
    Load(2);
    EXPECT_EQ(Window().chkAuto().Value(), value) << enable;
    EXPECT_EQ(Window().txtInterval().Text(), text) << interval;
    EXPECT_EQ(Stored("Enable"), std::to_string(value)) << enable;
    EXPECT_EQ(Stored("Interval"), text) << interval;
  }
  EXPECT_TRUE(host.boxes.empty());
}

TEST_F(WindowTest, ANewProfileGetsAMessageFileAndAMissingKeyADefault) {
  Load(2);
  EXPECT_EQ(host.MessageFile(2), "[Options]\r\nEnable=1\r\nInterval=3\r\n");
  host.MessageFile(2) = "[Messages]\r\n1=a\r\n";
  Load(2);
  EXPECT_EQ(host.MessageFile(2), "[Messages]\r\n1=a\r\n[Options]\r\nEnable=0\r\nInterval=3\r\n");
}

TEST_F(WindowTest, AnOptionThatIsNoNumberIsReportedAndStays) {
  host.MessageFile(2) = MessageFileBytes({"a"}, "1", "5");
  Load(2);
  host.MessageFile(2) = MessageFileBytes({"a", "b"}, "0", "abc");
  Load(2);
  EXPECT_EQ(host.logged, Texts{"Form_Reload: 13 Type mismatch"});
  EXPECT_EQ(Rows().size(), 2U);
  EXPECT_EQ(Window().chkAuto().Value(), 0);
  EXPECT_EQ(Window().txtInterval().Text(), "5");
  EXPECT_EQ(Stored("Interval"), "abc");
  host.MessageFile(2) = MessageFileBytes({"a"}, "abc", "9");
  Load(2);
  EXPECT_EQ(Window().txtInterval().Text(), "5");
  EXPECT_EQ(Stored("Enable"), "abc");
}

TEST_F(WindowTest, ChangesOfTheOptionsAreWrittenAtOnce) {
  Load(2);
  Window().chkAuto().UserClicked();
  Window().chkAuto().SetValue(2);  // greyed: nothing is stored
  EXPECT_EQ(Stored("Enable"), "0");
  for (const char* text : {" 15 ", "", "1x"}) {
    Window().txtInterval().UserChangedText(text);
    EXPECT_EQ(Stored("Interval"), "15");
    EXPECT_EQ(Window().txtInterval().Text(), *text == ' ' ? text : "15");
  }
  host.MessageFile(2) = MessageFileBytes({}, "1", "bad");
  Window().txtInterval().UserChangedText("x");  // there is no stored value, but it still ends
  EXPECT_EQ(Window().txtInterval().Text(), "bad");
  EXPECT_TRUE(host.boxes.empty());
}

TEST_F(WindowTest, PlacesFillsShowsAndStarts) {
  Plugin().LoadInterface(0, 77, "not even an array");  // index 0 changes nothing
  EXPECT_EQ(State().window.IfLoaded(), nullptr);
  EXPECT_FALSE(ArrayInit(State().tables.Profiles));
  Load(2);
  const headless::Placement& place = toolkit.PlacementOf(Window().Handle());
  EXPECT_EQ((std::vector<std::int64_t>{place.x, place.y, place.width, place.height, place.parent}),
            (std::vector<std::int64_t>{2, 30, 600, 372, 77}));
  for (const auto& [dotsPerInch, width] : {std::pair(168, 1050), {192, 1200}, {120, 750}}) {
    toolkit.screen = {1440.0 / dotsPerInch, 1440.0 / dotsPerInch};
    Load(2);
    EXPECT_EQ(place.width, width);
  }
  EXPECT_TRUE(Window().IsVisible());
  EXPECT_EQ(Window().Timers().At(2).interval, 60000);
  EXPECT_TRUE(Window().Timers().At(2).enabled);
  EXPECT_FALSE(Window().Timers().At(0).enabled);
  EXPECT_TRUE(host.boxes.empty());
}

TEST_F(WindowTest, AnotherLoadOrAHideKeepsTheTimerTheWindowAndTheCounters) {
  Plugin().HideInterface();  // creates the window if necessary
  EXPECT_FALSE(Window().IsVisible());
  Load(2);
  const auto due = timers.NextDue();
  const auto window = State().window.IfLoaded();
  State().tables.ElapsedTicks(2) = 3;
  Load(5);
  Load(2);
  Plugin().HideInterface("ignored");
  EXPECT_FALSE(Window().IsVisible());
  EXPECT_EQ(timers.NextDue(), due);
  EXPECT_EQ(State().window.IfLoaded(), window);
  EXPECT_EQ(State().tables.ElapsedTicks(2), 3);
  EXPECT_EQ(window->Timers().Elements().size(), 3U);  // 0, 2 and 5
  EXPECT_TRUE(host.boxes.empty());
}

TEST_F(WindowTest, UnloadingStopsEveryProfileAndALaterLoadStartsOnlyItsOwn) {
  Load(2);
  Load(4);
  Plugin().UnLoadInterface("");
  EXPECT_FALSE(timers.NextDue());
  EXPECT_EQ(State().tables.MessageFiles.UpperBound(), 0);
  EXPECT_EQ(ErrorOf([&] { State().tables.NextMessage(2); }), 9);
  EXPECT_EQ(State().tables.Profiles(4).GameCode, "JO");
  EXPECT_EQ(State().tables.currentWindowProfile, 4);
  Load(3);
  EXPECT_EQ(Window().Timers().Elements().size(), 2U);
  EXPECT_EQ(Window().Timers().At(3).enabled, true);
}

TEST_F(WindowTest, ErrorsAreReportedUnderTheRightNameAndStartNothing) {
  HostValue::Array data = *Data(2, "JO").AsArray();
  data.resize(12);
  Plugin().LoadInterface(2, 77, data);
  Load(40000);  // beyond the timer array's 16 bits
  EXPECT_TRUE(Window().IsVisible());
  EXPECT_FALSE(timers.NextDue());
  data.clear();
  Plugin().LoadInterface(5, 77, data);  // bad data is reported but does not end the load
  EXPECT_EQ(TakeErrors(), (Texts{"LoadInterface: 9", "LoadInterface: 6", "SetProfileData: 9",
                                 "LoadInterface: 9"}));
}

TEST_F(WindowTest, ALoadWhileAMessageBoxIsOpenEndsSilentlyWithoutStarting) {
  Load(1);
  toolkit.onMessageBox = [&](const std::string&, const std::string&) { Load(2); };
  State().reporter.Notify(Outcome::Success, "open");
  EXPECT_TRUE(host.logged.empty());
  EXPECT_FALSE(Window().Timers().Elements().contains(2));
  EXPECT_EQ(State().tables.currentWindowProfile, 2);  // the steps before showing have run
}

}  // namespace
}  // namespace rotacasts
