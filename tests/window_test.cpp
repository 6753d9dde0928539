// The settings window: its layout, and filling it from a message file.

#include "support/fake_host.h"

namespace rotacasts {
namespace {

using testing::MessageFileBytes;
using testing::PathOf;
using testing::PluginTest;

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

TEST_F(WindowTest, ChangesOfTheOptionsAreWrittenAtOnce) {
  Load(2);
  Window().chkAuto().UserClicked();
  Window().chkAuto().SetValue(2);  // greyed: nothing to store
  EXPECT_EQ(Stored("Enable"), "0");
  for (const char* text : {" 15 ", "", "1x"}) {
    Window().txtInterval().UserChangedText(text);
    EXPECT_EQ(Stored("Interval"), "15");
    EXPECT_EQ(Window().txtInterval().Text(), *text == ' ' ? text : "15");
  }
  host.MessageFile(2) = MessageFileBytes({}, "1", "bad");
  Window().txtInterval().UserChangedText("x");  // nothing better is stored: it ends all the same
  EXPECT_EQ(Window().txtInterval().Text(), "bad");
  EXPECT_TRUE(host.boxes.empty());
}

}  // namespace
}  // namespace rotacasts
