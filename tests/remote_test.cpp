// The remote commands and the administration log.

#include "store/remote_commands.h"

#include "base/text.h"
#include "siblings/ini_text.h"
#include "support/fake_host.h"

namespace rotacasts {
namespace {

class RemoteTest : public PluginTest {
 protected:
  RemoteTest() { host.folders = {"C:\\Host", "C:\\Host\\profiles\\srv2"}; }
  void Start(const Texts& messages, bool inWindow = true) {
    host.MessageFile(2) = MessageFileBytes(messages, "0", "3");
    Load(inWindow ? 1 : 2);
    Load(inWindow ? 2 : 1);
    host.calls.clear();
  }
  static HostValue Pdat() { return Data(2, "JO"); }
  static constexpr RemoteCall kChanges[] = {
      &clsPlugin::AddMessageRem,      &clsPlugin::EnableRTRem,      &clsPlugin::ChangeIntervalRem,
      &clsPlugin::MoveMessageDownRem, &clsPlugin::MoveMessageUpRem, &clsPlugin::DeleteMessageRem};
  /// The lines of the host-wide log since the last call.
  Texts TakeLog() {
    Texts lines;
    std::string log = std::exchange(host.files["C:\\Host\\adminlogs\\2010-03-07.txt"], "");
    for (auto end = log.find("\r\n"); end != log.npos; end = log.find("\r\n")) {
      lines.push_back(log.substr(0, end));
      log.erase(0, end + 2);
    }
    return lines;
  }
};

TEST_F(RemoteTest, ListsMessagesAndOptions) {
  using Row = std::tuple<std::string, const char*>;
  for (const auto& [file, reply] :
       {Row{MessageFileBytes({}, "0", "3"), "|0|3"}, Row{"", "|0|"},
        Row{MessageFileBytes({"a", "b"}, "1", "7"), "<a>|<b>|1|7"},
        Row{MessageFileBytes({"Grüß|"}, "", ""), "<Grüß|>|0|"},
        Row{MessageFileBytes({"a", "", "b"}, "x", " 5 "), "<a>|<>|<b>|x| 5 "}}) {
    host.MessageFile(2) = file;
    EXPECT_EQ(Plugin().GetMessagesRem(2, Pdat()), reply);
  }
  EXPECT_EQ(State().tables.Profiles(2).GameCode, "JO");  // the listing sets the profile up
  host.files.erase(PathOf(2));
  EXPECT_EQ(Plugin().GetMessagesRem(2, Pdat(), "not read"), "|0|");
  EXPECT_TRUE(TakeLog().empty());
}

TEST_F(RemoteTest, AFailingListingQuotesTheFileOrFailsTheCall) {
  Start({"a"});
  host.MessageFile(2).insert(0, "\r\n\r\n");
  host.failAtCall = 1;
  EXPECT_EQ(Plugin().GetMessagesRem(2, Pdat()), "");
  EXPECT_NE(host.logged.at(0).find(" [" + PathOf(2) + ", \r\n\r\n[Messages]\r\n1=a\r\n"),
            std::string::npos)
      << host.logged[0];
  host.MessageFile(2) = MessageFileBytes({"unsplittable"});
  EXPECT_EQ(Plugin().GetMessagesRem(2, Pdat()), "");
  EXPECT_NE(host.boxes.back().find("Error Line: 3\r\nError 13"), std::string::npos);
  host.files.erase(PathOf(2));
  host.failAtCall = 1;
  EXPECT_EQ(ErrorOf([&] { Plugin().GetMessagesRem(2, Pdat()); }), 53);
  EXPECT_EQ(ErrorOf([&] { Plugin().GetMessagesRem(-1, Pdat()); }), 9);
  EXPECT_EQ(TakeErrors(), (Texts{"GetMessagesRem: 57", "GetMessagesRem: 13", "SetProfileData: 9"}));
}

TEST_F(RemoteTest, PositionsMayBeTextsAndEveryChangeIsOneLineInTheLog) {
  Start({"a", "b", "c"});
  EXPECT_EQ(Remote(&clsPlugin::MoveMessageDownRem, "1"), "1");
  EXPECT_EQ(Remote(&clsPlugin::MoveMessageUpRem, "1"), "1");
  EXPECT_EQ(Remote(&clsPlugin::MoveMessageUpRem, "0"), "0");
  EXPECT_EQ(Rows(), (Texts{"a", "b", "c"}));  // refilled by the next operation that changes a text
  EXPECT_EQ(Remote(&clsPlugin::DeleteMessageRem, "1"), "1");
  EXPECT_EQ(Remote(&clsPlugin::AddMessageRem, "<x\r\n9=\ty\x7F>"), "0");
  EXPECT_EQ(Stored(2), (Texts{"c", "b"}));
  EXPECT_EQ(Rows(), Stored(2));
  const std::string head = "[14:05:09][Rotacasts] ";
  EXPECT_EQ(TakeLog(), (Texts{head + "Move Rotacasts Down (Message: b) from admin",
                              head + "Move Rotacasts Up (Message: c) from admin",
                              head + "Delete Rotacasts (Message: a) from admin",
                              head + "Add Rotacast (Message: x  9=\ty ) from admin"}));
  EXPECT_TRUE(host.boxes.empty());
}

TEST_F(RemoteTest, WhatTheControlsRefuseIsReportedForEveryProfile) {
  for (const bool inWindow : {true, false}) {
    Start({}, inWindow);
    for (const auto& [value, number] : {std::pair("3", "EnableRTRem: 380"),
                                        {"x", "EnableRTRem: 13"},
                                        {"99999", "EnableRTRem: 6"}}) {
      EXPECT_EQ(Remote(&clsPlugin::EnableRTRem, value), "");
      EXPECT_EQ(TakeErrors(), Texts{number});
      EXPECT_EQ(State().store.Open(2).ReadOption("Enable"), value);  // stored before it is applied
    }
    EXPECT_EQ(TakeLog(), Texts{});
  }
}

TEST_F(RemoteTest, ErrorsEndAnOperationUnderItsNameWithTheReplyAsItStood) {
  Start({"a", "b"});
  const std::string file = host.MessageFile(2);
  for (const HostValue& bad : {HostValue(HostValue::Missing{}), HostValue(HostValue::Null{}),
                               HostValue(HostValue::Foreign{}), HostValue(HostValue::Array{})}) {
    for (const RemoteCall call : kChanges) EXPECT_EQ(Remote(call, bad), "");
  }
  EXPECT_EQ(host.logged.size(), 24U);
  EXPECT_EQ(TakeErrors()[5], "DeleteMessageRem: 13");
  EXPECT_EQ(Remote(&clsPlugin::AddMessageRem, "<a>", 99), "");
  EXPECT_EQ(host.MessageFile(2), file);
  host.folders.clear();  // there is no folder for the log
  EXPECT_EQ(Remote(&clsPlugin::DeleteMessageRem, 0), "1");
  EXPECT_EQ(TakeErrors(), (Texts{"AddMessageRem: 9", "DeleteMessageRem: 76"}));
  EXPECT_NE(host.boxes.back().find("Error Line: 6"), std::string::npos);
  EXPECT_EQ(Stored(2), Texts{"b"});
}

TEST_F(RemoteTest, TheLogLiesWhereTheFlagSays) {
  Start({});
  const std::string own = "C:\\Host\\profiles\\srv2\\adminlogs\\2010-03-07.txt";
  for (const HostValue& flag :
       {HostValue(false), HostValue(1), HostValue("True-ish"), HostValue()}) {
    Plugin().AddMessageRem(2, Data(2, "JO", {{pdat::kSharedLog, flag}}), "<a>");
    EXPECT_EQ(std::exchange(host.files[own], ""),
              "[14:05:09][Rotacasts] Add Rotacast (Message: a) from admin\r\n");
  }
  EXPECT_FALSE(host.folders.contains("C:\\Host\\adminlogs"));
  host.now = {2011, 12, 31, 0, 0, 7};
  Plugin().AddMessageRem(2, Pdat(), "<a>");
  EXPECT_EQ(host.files["C:\\Host\\adminlogs\\2011-12-31.txt"],
            "[00:00:07][Rotacasts] Add Rotacast (Message: a) from admin\r\n");
}

// The fuzzer tries many more of these.
TEST_F(RemoteTest, NoArgumentForgesALineOrLeavesTheProfile) {
  Start({"a"});
  const std::string other = host.MessageFile(1);
  for (const std::string& text :
       {std::string("a\r\n[Options]\r\nEnable=1"), std::string("a\n2=b"), std::string("=x"),
        std::string("nul\0\x1B[2J\x07", 9), std::string(1 << 20, 'm')}) {
    const HostValue data = Data(2, "JO", {{pdat::kAdministrator, "eve\r\n[00:00:00]" + text}});
    const std::size_t lines = Stored(2).size();
    EXPECT_EQ(Plugin().AddMessageRem(2, data, text), "") << text;  // raw: not encoded
    EXPECT_EQ(Stored(2).size(), lines);
    Plugin().AddMessageRem(2, data, "<" + text + ">");
    for (const RemoteCall call : kChanges) (Plugin().*call)(2, data, text);
    EXPECT_LE(Stored(2).size(), lines + 1);
    EXPECT_EQ(host::IniText(host.MessageFile(2)).Lines("Options").size(), 2U);
    for (const std::string& line : TakeLog()) {
      EXPECT_EQ(line.find("[14:05:09][Rotacasts] "), 0U);
      EXPECT_EQ(line.find_first_of(std::string("\r\n\x1B\x07\0", 5)), line.npos);
    }
  }
  TakeErrors();
  for (const char* folder : {"..", "a\\..\\..\\b", "a/../b", ".. ", "...", "a\nb"}) {
    const HostValue data =
        Data(2, "JO", {{pdat::kProfileFolder, folder}, {pdat::kSharedLog, false}});
    Plugin().AddMessageRem(2, data, "<text>");
    SetProfileData(3, data);
    EXPECT_EQ(TakeErrors(), (Texts{"AddMessageRem: 76", "SetProfileData: 76"})) << folder;
    EXPECT_EQ(State().tables.MessageFiles(3), "") << folder;
  }
  EXPECT_EQ(host.MessageFile(1), other);
}

}  // namespace
}  // namespace rotacasts
