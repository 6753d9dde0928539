// The host's console: its commands, what it prints, and which troubles it tells of.

#include "console/console.h"

#include <unistd.h>

#include <regex>
#include <sstream>

#include "console/plain_output.h"
#include "host/headless_plugin.h"
#include "services/memory_map.h"
#include "simulator/chat_listener.h"
#include "simulator/mapped_memory.h"
#include "support/fake_host.h"
#include "support/host_folder.h"

namespace rotacasts::host {
namespace {

TEST(PlainOutput, ShowsControlCharactersAsQuestionMarksAlsoWhereTheyComeInParts) {
  std::ostringstream target;
  PlainOutput out(target);
  for (const char byte : std::string("\u00BF\n\x1B[\u009B\xC2\xC2\x9B-\xC2\n")) {
    out << byte << std::flush;
  }
  EXPECT_EQ(target.str(), "\u00BF\n?[?\xC2?-\xC2\n");
}

TEST(TroublesTest, SaysWhatComesBackOnceAndThatItIsOver) {
  std::ostringstream out;
  Troubles troubles(out);
  Troubles::Clock::time_point now;
  const Texts none, gone = {"A: gone"};
  for (const auto& problems :
       {none, {"A: gone", "A: odd", "A: odd"}, gone, gone, gone, none, none, gone}) {
    out << '|';
    for (const std::string& words : problems) troubles.ReportStarted({1}, words, now);
    troubles.ReportEnded({1}, "A", now);
    troubles.EndUntried({1});
    now += std::chrono::seconds(30);
  }
  troubles.ReportStarted({1, Work::Kind::Chat}, "A: gone", now);
  EXPECT_EQ(out.str(),
            "||A: gone\nA: odd\n||||A: all is well again after 2 min 0 s; ticks that failed: "
            "4\n||A: gone\nA: gone\n");
}

class ConsoleTest : public ::testing::Test {
 protected:
  /// Runs console lines on a host of the folder; returns what was printed since the last call.
  std::string Execute(const std::string& lines) {
    if (!running_) Restart({folder.Path()});
    Console console(running_->host, out_);
    std::istringstream all(lines);
    for (std::string line; std::getline(all, line);) console.Execute(line);
    return std::exchange(out_, std::ostringstream()).str();
  }
  void Restart(const HostOptions& options) {
    running_.reset(new Running{options, out_});
    running_->profiles.PrintSkipped();
    running_->profiles.MakeWhatIsMissing();
    running_->host.LoadEveryProfile();
  }
  /// Runs the profiles' ticks. Needs a minute of a nanosecond.
  void Tick(int count) {
    for (int i = 0; i < count; ++i) running_->plugin.RunDue();
  }
  /// Makes the plugin answer like one in a component, whose state is not accessible.
  void HidePlugin() { running_->plugin.isHidden = true; }
  /// Expects the text to contain these parts, one per line.
  static void ExpectAll(const std::string& text, const std::string& parts) {
    std::istringstream all(parts);
    for (std::string part; std::getline(all, part);) {
      EXPECT_NE(text.find(part), text.npos) << part << " / " << text;
    }
  }
  /// The values in profile 2's message file, one after the other.
  std::string Contents() {
    static const std::regex kNoValue("\\[\\w+\\]\r\n|\\w+=|\r");
    std::string values = std::regex_replace(folder.Read(kFile), kNoValue, "");
    std::ranges::replace(values, '\n', ';');
    return values;
  }
  static constexpr const char* kFile = "profiles/srv2/settings/Rotacasts.ini";
  TestFolder folder;

 private:
  struct Plugin final : HeadlessPlugin {
    using HeadlessPlugin::HeadlessPlugin;
    std::optional<Progress> ProgressOf(std::int32_t index) const override {
      return isHidden ? std::nullopt : HeadlessPlugin::ProgressOf(index);
    }
    bool isHidden = false;
  };
  struct Running {
    const HostOptions options;
    std::ostream& out;
    HostProfiles profiles{options.folder, out};
    Troubles troubles{out};
    Plugin plugin{profiles, troubles, options.minute};
    HeadlessSite site{};
    ServerHost host{profiles, plugin, site, options};
  };
  std::ostringstream out_;
  std::unique_ptr<Running> running_;
};

TEST_F(ConsoleTest, OneBadProfileLeavesTheOthersGoing) {
  folder.AddProfile(1, "JO", "1", "4001", "[Messages]\r\n1=ok\r\n[Options]\r\nInterval=abc\r\n");
  folder.AddProfile(2, "JO", "no-such-program", "4002",
                    MessageFileBytes({"{ShowNextMap}", "a", ""}));
  folder.AddProfile(3, "JO", "no-such-program", "4003", std::string("\0\0", 2));
  folder.AddProfile(5, "NOPE", "1", "4005");
  folder.AddProfile(6, "JO", "1", "4006");
  folder.Write("profiles/srv6/settings", "a file in the way");
  folder.Write("settings/config.ini", "[Settings]\r\nReportErrors=\r\n");
  const std::string text = Execute("status\nmessages 2\nplaceholders\nadd 3 x");
  EXPECT_NE(text.find("unreachable  -       -"), text.npos) << text;
  EXPECT_EQ(text.find("not added"), text.npos) << text;  // but as "delete" says it
  ExpectAll(text,
            R"(skipped: profile 6 (srv6): its settings folder cannot be made: /
/profiles/srv1/settings/Rotacasts.ini:4: Interval is "abc", which is no number; write 0 to 30
profile 1 (srv1): no report was sent: 
/settings/config.ini: ReportErrors is no number; write 0 or 1
holds NUL bytes; save it as plain ANSI text
GameCode is "NOPE"; give one of DFBHD,
profile 2 (srv2): no program no-such-program is running; start it
1       {ShowNextMap}  (cannot tell: no game server)
3                      (nothing: it is skipped)
Placeholder                  Says now for profile 1 (srv1)
{ShowNextMap}  )");
  EXPECT_EQ(text.find("\n6 "), std::string::npos) << text;
  EXPECT_EQ(folder.Read("profiles/srv3/settings/Rotacasts.ini"), std::string("\0\0", 2));
}

TEST_F(ConsoleTest, CommandsDoWhatTheySayOrSayWhatIsWrong) {
  folder.AddProfile(2, "JO", "1", "4002", MessageFileBytes({"a"}, "0", "7"));
  Execute("");
  folder.AddProfile(2, "DFX2", "1", "4002");
  for (const auto& [lines, says] :
       {std::pair("show", "usage: show PROFILE"),
        {"show 9", "there is no profile 9"},
        {"status", "JO    unreachable  off     7 min  0"},
        {"show 2\nstatus", "DFX2  unreachable  off"},
        {"hide\ndisable 2\nunload\nstatus", "stopped"},
        {"add 2 x", "profile 2 (srv2) is stopped; \"show 2\" starts it"},
        {"remote 2 EnableRTRem 1", "(error 9 in EnableRTRem)"}}) {
    ExpectAll(Execute(lines), says);
  }
  HidePlugin();
  ExpectAll(Execute("show 2\nstatus"), "DFX2  unreachable  off     7 min  -      -");
  ExpectAll(Execute("unload\nstatus"),
            "DFX2  stopped, game unreachable  off     7 min  0      1: a");
  EXPECT_EQ(Execute("\n   "), "");
  EXPECT_EQ(folder.Read("settings/config.ini"), "[Settings]\r\nReportErrors=0\r\n");
}

TEST_F(ConsoleTest, SaysOfAGameThatIsOtherThanItsCodeWhatCannotBeTold) {
  simulator::MappedMemory idleGame;
  idleGame.Reserve(MemoryMapFor(false, false, "JO").Address(location::kGameState), 4);
  folder.AddProfile(1, "JO", std::to_string(::getpid()), "4001",
                    MessageFileBytes({"{ShowMostKills}", "{ShowNextMap}"}));
  const std::string text = Execute("messages 1\nstatus");
  EXPECT_TRUE(text.starts_with("Number")) << text;
  ExpectAll(text, R"((cannot tell: profile 1 (srv1): process
is GameCode the right one?
{ShowNextMap}    Unknown!!! (profile 1
JO    idle)");
}

TEST_F(ConsoleTest, ATroubleIsOverOnlyWhenWhatFailedHasSucceeded) {
  simulator::MappedMemory game;
  const auto state = MemoryMapFor(false, false, "DFX2").Address(location::kGameState);
  game.Reserve(state, 4);
  game.WriteLong(state, 2);  // running
  std::optional<simulator::ChatListener> receiver(0);
  folder.AddProfile(1, "DFX2", std::to_string(::getpid()), std::to_string(receiver->Port()),
                    MessageFileBytes({"a", "{ShowMostKills}", "b"}, "1", "3"));
  Restart({folder.Path(), std::chrono::nanoseconds(1)});
  Execute("");
  Tick(30);
  const std::string first = Execute("sent");
  ExpectAll(first, "has no memory at\nsent     a\nsent     b");
  EXPECT_EQ(first.find("has no memory at"), first.rfind("has no memory at")) << first;
  EXPECT_EQ(first.find("well again"), first.npos) << first;
  receiver.reset();
  Tick(10);
  ExpectAll(Execute("sent"), "nobody receives at port \nnot sent  a");
}

TEST_F(ConsoleTest, ChangesAreDoneToldAndLoggedUnderTheAdministratorsName) {
  const std::string refused = "profile 2 (srv2): the ";
  struct Row {
    std::string line;
    std::string says;
    const char* file = nullptr;  // the messages and options afterwards; null if unchanged
  };
  const Row rows[] = {
      {"add 2  d ", "added as message 4", "a;b;c; d ;1;3;"},
      {"delete 2 4", "deleted:  d ", "a;b;c;1;3;"},
      {"up 2 2", "moved up: b", "b;a;c;1;3;"},
      {"down 2 1", "moved down: b", "a;b;c;1;3;"},
      {"change 2 3 {C}",
       "changed message 3: {C}\nbut it has braces at no placeholder's name and is sent as written; "
       "the console's \"placeholders\" lists them",
       "a;b;{C};1;3;"},
      {"move 2 3 1", "moved to 1: {C}", "{C};a;b;1;3;"},
      {"move 2 1 9", "moved to 3: {C}", "a;b;{C};1;3;"},
      {"change 2 3 c", "changed message 3: c", "a;b;c;1;3;"},
      {"change 2 3 c", "not changed: the message has this text already"},
      {"change 2 3 Ł",
       "not changed: " + refused + "character Ł (U+0141) is not in Windows-1252; use another one"},
      {"move 2 2 2", "not moved: it is message 2 already"},
      {"move 2 4 1", "there is no message 4; \"messages\" lists those there are"},
      {"up 2 1", "not moved: it is the first message"},
      {"down 2 3", "not moved: it is the last message"},
      {"delete 2 4", "there is no message 4; \"messages\" lists those there are"},
      {"down 2 x", "\"x\" is no whole number; usage: down PROFILE NUMBER"},
      {"delete 2 0", "there is no message 0; the first one is 1"},
      {"delete 2 1 1", "\"1\" is too much; usage: delete PROFILE NUMBER"},
      {"enable 2 2", "not switched: give 1 for on, 0 for off"},
      {"interval 2 31", "not changed: an interval is 0 to 30 minutes"},
      {"interval 2 -1", "not changed: an interval is 0 to 30 minutes"},
      {"add 2 " + std::string(65508, 'x'),
       "the message has 65508 bytes, more than the 65507 of one datagram; give a shorter one"},
      {"add 2 ", "usage: add PROFILE TEXT"},
      {"add 2 Ł", "not added: the character Ł (U+0141) is not in Windows-1252; use another one"},
      {"enable 2 0", "profile 2 (srv2) is switched off", "a;b;c;0;3;"},
      {"interval 2 9", "profile 2 (srv2) says a message every 9 minutes", "a;b;c;0;9;"},
      {"remote 2 GetMessagesRem", "\"YQ==|Yg==|Yw==|0|9\""},
      {"remote 2 AddMessageRem ZA==", "\"1\"", "a;b;c;d;0;9;"},
      {"remote 2 AddMessageRem Z", refused + "text is not Base64\n\"\""},
      {"remote 2 AddMessageRem /w==", refused + "Base64 text packs no UTF-8\n\"\""},
      {"remote 2 Fly 1",
       "Fly is no remote operation; there are GetMessagesRem AddMessageRem EnableRTRem "
       "ChangeIntervalRem MoveMessageDownRem MoveMessageUpRem DeleteMessageRem"},
  };
  folder.AddProfile(2, "JO", "1", "4002", MessageFileBytes({"a", "b", "c"}, "1", "3"));
  Restart({folder.Path(), std::chrono::minutes(1), "Zoe", true});
  std::string file = Contents();
  for (const Row& row : rows) {
    if (row.file != nullptr) file = row.file;
    EXPECT_EQ(Execute(row.line), row.says + "\n") << row.line;
    EXPECT_EQ(Contents(), file) << row.line;
  }
  const std::string log = folder.ReadAll("adminlogs");
  EXPECT_EQ(std::ranges::count(log, '\n'), 12);  // the changes, with "?" for letters it lacks
  EXPECT_EQ(log.find("[Rotacasts] Add Rotacast (Message:  d ) from Zoe\r\n"), 10U) << log;
  ExpectAll(log,
            "[Rotacasts] Change Rotacasts (Message: c, New Message: {C}) from Zoe\n"
            "[Rotacasts] Move Rotacasts (Message: {C}, New Position: 1) from Zoe");
  EXPECT_EQ(folder.ReadAll("profiles/srv2/adminlogs"), "");  // which other tests read
}

TEST_F(ConsoleTest, AProfileWhoseTextsFailIsFailingUntilOneGoesOut) {
  folder.AddProfile(2, "JO", "1", "4002", MessageFileBytes({"a"}, "1", "3"));
  const std::string profile = "[Profile]\r\nIndex=2\r\nGameCode=JO\r\nProcess=1\r\n";
  folder.Write("profiles/srv2/profile.ini", profile + "Say=say\r\n");
  const std::string failing =
      "profile 2 (srv2): its texts fail: this host starts no programs; give Target in place of Say";
  ExpectAll(Execute("say 2 a\nstatus"), "failing, game unreachable\n" + failing);
  EXPECT_EQ(Execute("enable 2 0\nstatus").find("fail"), std::string::npos);
  ExpectAll(Execute("enable 2 1\nstatus"), failing);
  const simulator::ChatListener receiver(0);
  folder.Write("profiles/srv2/profile.ini",
               profile + "Target=" + std::to_string(receiver.Port()) + "\r\n");
  EXPECT_EQ(Execute("reload\nsay 2 a\nstatus").find("fail"), std::string::npos);
}

TEST_F(ConsoleTest, WhatCannotBeStoredIsNotDoneAndTheReasonSaid) {
  folder.AddProfile(2, "JO", "1", "4002", MessageFileBytes({"a", "b"}, "1", "3"));
  Execute("");
  std::filesystem::permissions(folder.File(kFile), std::filesystem::perms::owner_read);
  const std::string why =
      "profile 2 (srv2): " + folder.File(kFile) + " is read-only; make it writable and try again\n";
  for (const auto& [line, says] : {std::pair("delete 2 1", "not deleted: " + why),
                                   {"up 2 2", "not moved: " + why},
                                   {"move 2 2 1", "not moved: " + why},
                                   {"change 2 2 c", "not changed: " + why},
                                   {"enable 2 0", "not switched: " + why},
                                   {"interval 2 9", "not changed: " + why},
                                   {"remote 2 ChangeIntervalRem abc", why + "\"\"\n"},
                                   {"remote 2 DeleteMessageRem 0", why + "\"\"\n"},
                                   {"add 2 c", "not added: " + why},
                                   {"remote 2 AddMessageRem Yw==", why + "\"0\"\n"}}) {
    EXPECT_EQ(Execute(line), says);
    EXPECT_EQ(Contents(), "a;b;1;3;") << line;
    ExpectAll(Execute("status"), "on      3 min");
  }
  const std::string log = folder.ReadAll("profiles/srv2/adminlogs");
  EXPECT_EQ(std::ranges::count(log, '\n'), 2) << log;  // of both adds
  ExpectAll(log, "Add Rotacast (Message: c)");
  EXPECT_EQ(folder.ReadAll("profiles/srv2/settings"), folder.Read(kFile));  // and nothing beside
}

TEST_F(ConsoleTest, APositionThatCouldMeanAnotherMessageIsRefused) {
  const std::string end = ", so a number could mean another message; number the keys from 1 in " +
                          folder.File(kFile) + " and try again\n";
  for (const auto& [lines, says] : {std::pair("1=a\r\n3=b\r\n", "2 \"b\" has the key 3"),
                                    {"1=a\r\n1=b\r\n", "2 \"b\" has the key 1"},
                                    {"2=a\r\n1=b\r\n", "1 \"a\" has the key 2"}}) {
    const std::string file = MessageFileBytes({}).insert(12, lines);
    folder.AddProfile(2, "JO", "1", "4002", file);
    for (const char* line : {"up 2 2", "down 2 1", "move 2 2 1", "delete 2 1"}) {
      EXPECT_EQ(Execute(line), std::string("message ") + says + end);
      EXPECT_EQ(folder.Read(kFile), file) << line;
    }
  }
}

TEST_F(ConsoleTest, EachProfileGoesByItsOwnSwitchAndIntervalAndReloadTakesTheFilesOver) {
  const auto add = [&](int index, const char* enable, const char* interval) {
    folder.AddProfile(index, "JO", "1", "4001", MessageFileBytes({"a"}, enable, interval));
  };
  const auto expect = [this](const std::string& one, const std::string& two, bool isOld = false) {
    const std::string text = Execute("status");
    ExpectAll(text, "1        srv1    JO    unreachable  " + one);
    ExpectAll(text, "2        srv2    JO    unreachable  " + two);
    const auto hint = text.find(
        "profile 2 (srv2): its message file has another switch or "
        "interval; \"reload\" takes them over\n");
    EXPECT_EQ(hint != text.npos, isOld);
  };
  add(1, "1", "3");
  add(2, "1", "7");
  expect("on      3 min", "on      7 min");
  Execute("show 2\nenable 1 0");  // a profile that the window does not show
  expect("off     3 min", "on      7 min");
  add(2, "0", "9");
  add(5, "1", "5");
  expect("off     3 min", "on      7 min", true);
  EXPECT_EQ(Execute("reload"), "added: profile 5\nread again; profiles: 3\n");
  expect("off     3 min", "off     9 min");
  ExpectAll(Execute("status"), "5        srv5    JO    unreachable  on      5 min");
  std::filesystem::remove(folder.File("profiles/srv1/profile.ini"));
  folder.AddProfile(2, "NOPE", "1", "4002");  // keeps its old settings
  folder.AddProfile(5, "JO_2", "1", "4005");
  const std::string text = Execute("disable 2\nreload\nstatus");
  ExpectAll(text, "not used: \nGameCode is \"NOPE\"\nJO    stopped\nJO_2  ");
  ExpectAll(text, "changed: profile 5\nremoved: profile 1\nread again; profiles: 2");
}

}  // namespace
}  // namespace rotacasts::host
