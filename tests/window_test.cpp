// The settings window: its layout, and filling it from a message file.

#include <set>

#include "support/fake_host.h"
#include "ui/layout.h"

namespace rotacasts {
namespace {

using testing::MessageFileBytes;
using testing::PathOf;
using testing::PluginTest;

class WindowTest : public PluginTest {
 protected:
  std::string Stored(const char* key) { return State().store.ReadOption(2, key); }
};

TEST_F(WindowTest, EveryControlLiesInsideItsContainerWithATabOfItsOwn) {
  std::set<int> tabs;
  for (const auto& control : Window().Controls()) {
    if (control->TabIndex() < 0) continue;  // made at run time
    EXPECT_TRUE(tabs.insert(control->TabIndex()).second) << control->Name();
    const forms::Rectangle inside = control->Container() != nullptr
                                        ? control->Container()->Bounds()
                                        : forms::Rectangle{0, 0, 11190, 6000};
    const forms::Rectangle& bounds = control->Bounds();
    EXPECT_LE(bounds.left + bounds.width, inside.width) << control->Name();
    EXPECT_LE(bounds.top + bounds.height, inside.height) << control->Name();
  }
  EXPECT_EQ(tabs.size(), 10U);
  const forms::Control& hint = *Window().Find("Label1");
  const forms::Control& list = *Window().Find("lstMessages");
  EXPECT_EQ(hint.Bounds().left + hint.Bounds().width, list.Bounds().left + list.Bounds().width);
  EXPECT_EQ(hint.Container(), list.Container());
  EXPECT_EQ(Window().txtInterval().Text(), "2");
  EXPECT_EQ(Window().txtInterval().MaxLength(), 2U);
  EXPECT_EQ(Window().txtMessage().MaxLength(), 60U);
}

TEST_F(WindowTest, TheMenusAreATreeOfThreeLevels) {
  ASSERT_EQ(Window().Menus().size(), 2U);
  EXPECT_FALSE(Window().Menus()[0]->visible || Window().Menus()[1]->visible);
  EXPECT_EQ(Window().Menu("mnuMain").items.size(), 3U);
  EXPECT_EQ(Window().Menu("mnuMessages").items.size(), 8U);
  EXPECT_EQ(Window().Menu("mnuInsert").items.size(), 18U);
  EXPECT_EQ(Window().Menu("mnuMessages").items[0]->name, "mnuInsert");
  EXPECT_TRUE(Window().Menu("mnuSep2").IsSeparator());
}

TEST_F(WindowTest, ReloadAppliesTheDefaultsAndWritesBothOptionsBack) {
  struct Row {
    const char* enable;
    const char* interval;
    int value;
    const char* text;
  };
  for (const Row& row : std::initializer_list<Row>{{"1", "30", 1, "30"},
                                                   {"0", "0", 0, "0"},
                                                   {"", "", 0, "3"},
                                                   {"7", "31", 0, "3"},
                                                   {"-1", "-1", 0, "3"},
                                                   {"0.5", "2.5", 0, "2.5"},
                                                   {"0.6", " 4 ", 1, " 4 "},
                                                   {"1.01", "30.01", 0, "3"}}) {
    host.MessageFile(2) = MessageFileBytes({}, row.enable, row.interval);
    Load(2);
    EXPECT_EQ(Window().chkAuto().Value(), row.value) << row.enable;
    EXPECT_EQ(Window().txtInterval().Text(), row.text) << row.interval;
    EXPECT_EQ(Stored("Enable"), std::to_string(row.value)) << row.enable;
    EXPECT_EQ(Stored("Interval"), row.text) << row.interval;
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
  EXPECT_EQ(host.logged, std::vector<std::string>{"Form_Reload: 13 Type mismatch"});
  EXPECT_EQ(Rows().size(), 2U);
  EXPECT_EQ(Window().chkAuto().Value(), 0);
  EXPECT_EQ(Window().txtInterval().Text(), "5");
  EXPECT_EQ(Stored("Interval"), "abc");
  host.MessageFile(2) = MessageFileBytes({"a"}, "abc", "9");
  Load(2);
  EXPECT_EQ(Window().txtInterval().Text(), "5");
  EXPECT_EQ(Stored("Enable"), "abc");
}

TEST_F(WindowTest, ShowingAnotherProfileRefillsTheSameWindow) {
  host.MessageFile(2) = MessageFileBytes({"a"}, "1", "5");
  host.MessageFile(3) = MessageFileBytes({"b"}, "0", "9");
  Load(2);
  const auto window = State().window.IfLoaded();
  Load(3);
  EXPECT_EQ(State().window.IfLoaded(), window);
  EXPECT_EQ(Rows(), std::vector<std::string>{"b"});
  EXPECT_EQ(Stored("Interval"), "5");  // what the window showed of profile 2 stays its own
  EXPECT_EQ(Stored("Enable"), "1");
}

TEST_F(WindowTest, ChangesOfTheOptionsAreWrittenAtOnce) {
  Load(2);
  Window().chkAuto().UserClicked();
  EXPECT_EQ(Stored("Enable"), "0");
  Window().chkAuto().SetValue(2);  // greyed: nothing to store
  EXPECT_EQ(Stored("Enable"), "0");
  Window().txtInterval().UserChangedText(" 15 ");
  EXPECT_EQ(Stored("Interval"), "15");
  for (const char* text : {"", "x", "1x"}) {
    Window().txtInterval().UserChangedText(text);
    EXPECT_EQ(Window().txtInterval().Text(), "15") << text;
  }
  EXPECT_EQ(Stored("Interval"), "15");
  host.MessageFile(2) = MessageFileBytes({}, "1", "bad");
  Window().txtInterval().UserChangedText("x");  // nothing better is stored: it ends all the same
  EXPECT_EQ(Window().txtInterval().Text(), "bad");
  EXPECT_TRUE(host.boxes.empty());
}

TEST_F(WindowTest, AFailingWriteOfAnOptionIsReportedUnderTheHandlersName) {
  Load(2);
  host.failAtCall = 1;
  Window().chkAuto().UserClicked();
  host.failAtCall = 1;
  Window().txtInterval().UserChangedText("8");
  ASSERT_EQ(host.logged.size(), 2U);
  EXPECT_EQ(host.logged[0].find("chkAuto_Click: 57"), 0U);
  EXPECT_EQ(host.logged[1].find("txtInterval_Change: 57"), 0U);
}

}  // namespace
}  // namespace rotacasts
