// The broadcast timer: which message is sent when, and what the components are asked.

#include "broadcast/broadcast_timer.h"

#include <cstring>

#include "broadcast/placeholders.h"
#include "support/fake_host.h"

namespace rotacasts {
namespace {

constexpr int kJoState = 0x00C87598;
constexpr int kDfbhdState = 0x009E4748;

class BroadcastTest : public PluginTest {
 protected:
  /// Starts profile 2 with these messages on a running server.
  void Start(const Texts& messages, const std::string& interval = "1",
             const std::string& code = "JO") {
    host.MessageFile(2) = MessageFileBytes(messages, "1", interval);
    Load(2, code);
    host.longs[kJoState] = host.longs[kDfbhdState] = host.longs[0x011E1408] = 2;
    host.calls.clear();
  }
  /// What the next `count` ticks send; "-" for a tick that sends nothing.
  std::string Ticks(int count) {
    std::string texts;
    for (int i = 0; i < count; ++i) {
      host.sent.clear();
      Tick(2);
      EXPECT_LE(host.sent.size(), 1U);
      texts += host.sent.empty() ? "-" : host.sent[0];
    }
    return texts;
  }
  std::int32_t& Elapsed() { return State().tables.ElapsedTicks(2); }
};

TEST_F(BroadcastTest, EveryNthTickSendsTheNextMessageThereIs) {
  using Row = std::tuple<Texts, const char*, int, const char*>;
  for (const auto& [messages, interval, next, sent] :
       {Row{{"A", "B", "C"}, "1", 0, "ABCAB"}, Row{{"A", "B"}, "1", 2, "AB"},
        Row{{"A", "B", "C"}, "1", 5, "AB"},  // the list has become shorter
        Row{{"A"}, "3", 0, "--A--A"}, Row{{"A"}, "0", 0, "AA"}, Row{{"A"}, "-5", 0, "AA"},
        Row{{"A"}, "-2147483648", 0, "AA"}, Row{{"A"}, " 2 ", 0, "-A-A"},
        Row{{"A"}, "1.5", 0, "-A-A"}, Row{{"", "B"}, "1", 0, "-B-B-"},
        Row{{"", "B"}, "3", 0, "-----B"}, Row{{"A", "", "C"}, "1", 1, "CAC"},
        Row{{"  ", "", " "}, "1", 1, "--"}}) {
    Start(messages);
    Window().txtInterval().SetText(interval);
    State().tables.NextMessage(2) = next;
    Elapsed() = 0;
    EXPECT_EQ(Ticks(static_cast<int>(std::strlen(sent))), sent) << interval;
  }
  Start({});
  Elapsed() = 7;
  EXPECT_EQ(Ticks(1), "-");
  EXPECT_EQ(Elapsed(), 0);
}

TEST_F(BroadcastTest, NothingMovesWhileTheGameOrTheSwitchIsOff) {
  Start({"A"}, "3");
  EXPECT_EQ(Ticks(1), "-");
  for (const auto& [state, value] : {std::pair(4, 1), {3, 0}, {3, 2}}) {
    host.longs[kJoState] = state;
    Window().chkAuto().SetValue(static_cast<std::int16_t>(value));
    host.calls.clear();
    EXPECT_EQ(Ticks(4), "----");
    EXPECT_EQ(host.calls.size(), 4U) << "the game is asked after before the switch";
  }
  EXPECT_EQ(Elapsed(), 1);
  Window().chkAuto().SetValue(1);
  EXPECT_EQ(Ticks(2), "-A");
  Start({"A"}, "1", "QUAKE");  // an unknown build sends nothing
  EXPECT_EQ(Ticks(3), "---");
  EXPECT_TRUE(host.calls.empty() && host.boxes.empty());
}

TEST_F(BroadcastTest, OneTickAsksTheComponentsThisInThisOrder) {
  Start({"Welcome", "{ShowNextMap}"}, "1", "JO_AFF");
  host.longs.insert({{0x01166174, 0x5000}, {0x5004, 2}, {0x500C, 0}, {0x501C, 1}});
  host.longs[0x01166384] = 0x900000;
  host.texts[0x900000 + 4584 + 1044] = "Rio ";
  Ticks(2);
  const std::string state = "ReadLong(102, 0x011E1408)";
  const std::string section = "GetIniSection(Messages, " + PathOf(2) + ")";
  EXPECT_EQ(host.calls, (Texts{state, section, "ParseIniKey(1=Welcome, false)",
                               "AddMsgB(2, 4002, Welcome, true, MSG, 3, JO_AFF)", state, section,
                               "ParseIniKey(2={ShowNextMap}, false)", "ReadLong(102, 0x01166174)",
                               "ReadLong(102, 0x00005004)", "ReadLong(102, 0x0000500C)",
                               "ReadLong(102, 0x0000501C)", "ReadLong(102, 0x01166384)",
                               "ReadStr(102, 0x009015FC)",
                               "AddMsgB(2, 4002, [Next Map] Rio, true, MSG, 3, JO_AFF)"}));
}

TEST_F(BroadcastTest, DfbhdHasItsOwnReadersAndItsOwnSend) {
  Start({"Hi", "{ShowNextMap}", "{ShowMostKills}"}, "1", "DFBHD");
  EXPECT_EQ(Ticks(1), "Hi");
  EXPECT_EQ(host.calls.back(), "AddMsg(2, 4002, Hi, false, MSG, 3)");
  EXPECT_EQ(Ticks(1), "Hi");  // neither text can be read
  EXPECT_EQ(TakeErrors(), (Texts{"GetNextMap: 57", "GetStat: 57"}));
}

TEST_F(BroadcastTest, RecordFieldsArePassedByReference) {
  host.writesBack = true;
  for (const char* code : {"JO", "DFBHD"}) {
    Start({"A"}, "1", code);
    Tick(2);
    const ProfileRecord& record = State().tables.Profiles(2);
    EXPECT_EQ(record.ProcessHandle, 999);
    EXPECT_EQ(record.MessageTarget, 888);
    EXPECT_EQ(record.GameCode, std::string(code) == "JO" ? "JO_2" : code);
  }
}

TEST_F(BroadcastTest, OnlyAWholeMessageIsAPlaceholder) {
  const Texts texts = {"{shownextmap}", "Next: {ShowNextMap}", "{Show}", "{ShowAssists}",
                       "{ShowmostKills}"};
  Start(texts);
  for (const std::string& text : texts) EXPECT_EQ(Ticks(1), text);
  Start({" {ShowNextMap}"});
  EXPECT_EQ(Ticks(1), "{ShowNextMap}");  // trimmed only when it is sent
  EXPECT_EQ(AllPlaceholders().size(), 18U);
  for (const std::string& placeholder : AllPlaceholders()) EXPECT_TRUE(IsPlaceholder(placeholder));
}

TEST_F(BroadcastTest, ALiveTextOfSeveralLinesGoesOutAsOne) {
  Start({"{ShowNextMap}"});
  host.longs.insert({{0x00C86FDC, 0x5000}, {0x5004, 1}, {0x500C, 0}, {0x5014, 0}, {0x02551118, 0}});
  host.texts[1044] = "Rio\r\nNorte \r\n ";
  EXPECT_EQ(Ticks(1), "[Next Map] RioNorte");
}

TEST_F(BroadcastTest, AnErrorEndsTheTickWhereItIsAndKeepsTheCounters) {
  Start({"A", "B"}, "2");
  Elapsed() = 1;
  for (int call = 1; call <= 4; ++call) {
    host.failAtCall = call;
    EXPECT_EQ(Ticks(1), "-");
    EXPECT_EQ(TakeErrors(), Texts{"tmrRT: 57"});
    EXPECT_EQ(Elapsed(), 1);
    EXPECT_EQ(State().tables.NextMessage(2), call < 4 ? 0 : 1);
  }
  EXPECT_EQ(Ticks(1), "B");  // due at once, with the message after the failed one
  EXPECT_EQ(host.boxes.size(), 4U);
}

TEST_F(BroadcastTest, AnIntervalThatIsNoNumberIsReportedForTheCurrentWindowProfile) {
  Start({"A"});  // every profile goes by the options of the window
  Load(5);
  host.files["C:\\Host\\settings\\config.ini"] = "[Settings]\r\nReportErrors=1\r\n";
  SetProfileData(5, Data(5, "JO_AFF"));
  host.MessageFile(5) = MessageFileBytes({}, "1", "");
  Window().txtInterval().SetText("");
  EXPECT_EQ(Ticks(1), "-");
  EXPECT_EQ(host.logged.back(), "tmrRT: 13 Type mismatch");
  EXPECT_EQ(host.reports.back().At(4), HostValue(true));  // profile 5's flag, not profile 2's
}

}  // namespace
}  // namespace rotacasts
