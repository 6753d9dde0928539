// Showing, hiding and unloading the settings window.

#include "plugin/embedding.h"

#include "support/fake_host.h"

namespace rotacasts {
namespace {

using testing::ErrorOf;
using testing::PluginTest;

using EmbeddingTest = PluginTest;

TEST_F(EmbeddingTest, PlacesFillsShowsAndStarts) {
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

TEST_F(EmbeddingTest, AnotherLoadOrAHideKeepsTheTimerTheWindowAndTheCounters) {
  Plugin().HideInterface();  // makes the window if needed
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

TEST_F(EmbeddingTest, UnloadingStopsEveryProfileAndALaterLoadStartsOnlyItsOwn) {
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

TEST_F(EmbeddingTest, ErrorsAreReportedUnderTheRightNameAndStartNothing) {
  HostValue::Array data = *Data(2, "JO").AsArray();
  data.resize(12);
  Plugin().LoadInterface(2, 77, data);
  Load(40000);  // beyond the timer array's 16 bits
  EXPECT_TRUE(Window().IsVisible());
  EXPECT_FALSE(timers.NextDue());
  data.clear();
  Plugin().LoadInterface(5, 77, data);  // bad data is its own report and does not end the load
  EXPECT_EQ(TakeErrors(), (std::vector<std::string>{"LoadInterface: 9", "LoadInterface: 6",
                                                    "SetProfileData: 9", "LoadInterface: 9"}));
}

TEST_F(EmbeddingTest, ALoadWhileAMessageBoxIsOpenEndsSilentlyWithoutStarting) {
  Load(1);
  toolkit.onMessageBox = [&](const std::string&, const std::string&) { Load(2); };
  State().reporter.Notify(Outcome::Success, "open");
  EXPECT_TRUE(host.logged.empty());
  EXPECT_FALSE(Window().Timers().Elements().contains(2));
  EXPECT_EQ(State().tables.currentWindowProfile, 2);  // what came before showing has happened
}

TEST_F(EmbeddingTest, AWindowThatItsParentDestroyedIsMadeAnew) {
  Load(2);
  const auto lost = State().window.IfLoaded();
  lost->ViewDestroyed();
  EXPECT_EQ(State().window.IfLoaded(), nullptr);
  EXPECT_FALSE(timers.NextDue());
  Load(2);
  EXPECT_NE(State().window.IfLoaded(), lost);
  EXPECT_TRUE(timers.NextDue());
  EXPECT_TRUE(host.boxes.empty());
}

}  // namespace
}  // namespace rotacasts
