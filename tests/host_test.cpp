// The stand-alone host at work: reading processes, the simulator's memory, the console.

#include <poll.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

#include <csignal>
#include <cstring>
#include <set>
#include <sstream>

#include "base/conversions.h"
#include "game/address_table.h"
#include "host/components/host_platform.h"
#include "host/components/ini_text.h"
#include "host/console.h"
#include "host/linux/headless_plugin.h"
#include "host/machine/linux/program_starter.h"
#include "host/terminal.h"
#include "simulator/game_life.h"
#include "support/fake_host.h"
#include "support/full_disk.h"
#include "support/host_files.h"

namespace rotacasts::host {
namespace {

using testing::ErrorOf;
using testing::HostFilesTest;
using testing::HostFolder;
using testing::MessageFileBytes;

/// Two pages at an address that 32 bits hold; the second one is taken away again.
class LowPage {
 public:
  explicit LowPage(std::uintptr_t address = 0x30000000) {
    void* const wanted = reinterpret_cast<void*>(address);
    bytes_ = static_cast<char*>(::mmap(wanted, 2 * kPage, PROT_READ | PROT_WRITE,
                                       MAP_PRIVATE | MAP_ANONYMOUS | MAP_FIXED_NOREPLACE, -1, 0));
    ::munmap(bytes_ + kPage, kPage);
  }
  ~LowPage() { ::munmap(bytes_, kPage); }
  char* At(std::size_t offset) { return bytes_ + offset; }
  static std::int32_t Address(std::size_t offset) {
    return 0x30000000 + static_cast<std::int32_t>(offset);
  }
  static constexpr std::size_t kPage = 4096;

 private:
  char* bytes_;
};

TEST(GameProcesses, ReadsNumbersAndTextsUpToTheEndOfTheMap) {
  LowPage page;
  GameProcesses processes;
  const std::int32_t self = processes.Register({std::to_string(::getpid()), 0, "profile 1 (self)"});
  const std::int32_t value = -123456;
  std::memcpy(page.At(8), &value, sizeof value);
  std::memset(page.At(1000), 'x', 300);
  std::memcpy(page.At(LowPage::kPage - 3), "end", 3);
  for (const bool inTurn : {false, true}) {
    if (inTurn) processes.BeginTurn();
    EXPECT_EQ(processes.ReadLong(self, LowPage::Address(8)), value);
    EXPECT_EQ(processes.ReadBytes(self, LowPage::Address(1000)), std::string(255, 'x'));
    EXPECT_EQ(processes.ReadBytes(self, LowPage::Address(1290)), std::string(10, 'x'));
    EXPECT_EQ(processes.ReadBytes(self, LowPage::Address(0)), "");
    EXPECT_EQ(processes.ReadBytes(self, LowPage::Address(LowPage::kPage - 3)), "end");
    for (const std::int32_t address :
         {LowPage::Address(LowPage::kPage), LowPage::Address(LowPage::kPage - 2), 0, -4, -2}) {
      EXPECT_EQ(ErrorOf([&] { processes.ReadLong(self, address); }), 57) << address;
    }
    EXPECT_EQ(ErrorOf([&] { processes.ReadBytes(self, LowPage::Address(LowPage::kPage)); }), 57);
    EXPECT_EQ(ErrorOf([&] { processes.ReadLong(99, 0); }), 57);
  }
}

TEST(GameProcesses, ATurnAnswersFromItsPagesAndNoLaterOneDoes) {
  auto page = std::make_unique<LowPage>();
  std::map<std::int32_t, std::unique_ptr<LowPage>> more;
  GameProcesses processes;
  const std::int32_t self = processes.Register({std::to_string(::getpid()), 0, "profile 1 (self)"});
  const std::int32_t end = LowPage::Address(LowPage::kPage);
  const auto put = [&](const char* text) { std::memcpy(page->At(LowPage::kPage - 3), text, 3); };
  const auto text = [&] { return processes.ReadBytes(self, end - 3); };
  put("one");
  EXPECT_EQ(text(), "one");
  put("two");
  EXPECT_EQ(text(), "two");  // no turn, no pages
  processes.BeginTurn();
  EXPECT_EQ(text(), "two");
  put("new");
  EXPECT_EQ(text(), "two");
  EXPECT_EQ(ErrorOf([&] { processes.ReadLong(self, end); }), 57);
  for (std::size_t i = 1; i <= ReadAhead::kMostPages;
       ++i) {  // a page that cannot be read is not kept
    const std::int32_t next = LowPage::Address(i * LowPage::kPage);
    more[next] = std::make_unique<LowPage>(static_cast<std::uintptr_t>(next));
    std::memcpy(more[next]->At(0), "er", 2);
    EXPECT_EQ(processes.ReadBytes(self, next), "er");
  }
  EXPECT_EQ(text(), "newer");  // others have taken its place
  std::int32_t across = 0;
  std::memcpy(&across, "ewer", 4);
  EXPECT_EQ(processes.ReadLong(self, end - 2), across);
  processes.EndTurn();
  page.reset();
  processes.BeginTurn();
  EXPECT_EQ(ErrorOf([&] { processes.ReadLong(self, LowPage::Address(8)); }), 57);
}

TEST(MemoryComponent, RefusesWhatIsNoPort) {
  SystemClock clock;
  Chat chat(clock);
  GameProcesses processes;
  HostMemoryComponent memory(processes, chat);
  std::int16_t index = 2;
  std::string text = "x";
  bool affiliate = false;
  for (std::int32_t target : {0, -1, 65536}) {
    EXPECT_EQ(ErrorOf([&] { memory.AddMsg(index, target, text, affiliate, "MSG", 3); }), 5);
  }
}

TEST_F(HostFilesTest, ReplacingKeepsPermissionsLinksAndReadersAndLeavesNothingBeside) {
  folder.Write("real.ini", "[S]\r\n");
  const auto status = [this] {
    struct stat found {};
    ::stat(folder.File("real.ini").c_str(), &found);
    return std::vector<unsigned>{found.st_mode & 07777, found.st_uid, found.st_gid};
  };
  [[maybe_unused]] const int given = ::chown(folder.File("real.ini").c_str(), 1234, 2345);
  ::chmod(folder.File("real.ini").c_str(), 02640);
  const std::vector<unsigned> before = status();
  std::filesystem::create_symlink("real.ini", folder.File("a.ini"));
  std::ifstream reader(folder.File("real.ini"));  // sees the old file
  Set("S", "1", "x");
  EXPECT_EQ((std::ostringstream() << reader.rdbuf()).str(), "[S]\r\n");
  EXPECT_EQ(folder.Read("real.ini"), "[S]\r\n1=x\r\n");
  EXPECT_TRUE(std::filesystem::is_symlink(folder.File("a.ini")));
  EXPECT_EQ(status(), before);
  EXPECT_EQ(Count(), 2);
}

TEST_F(HostFilesTest, WhatIsNoFileIsAnErrorAndNoWait) {
  const std::string place = folder.File("a.ini");
  const auto check = [&](const char* kind) {
    EXPECT_EQ(ErrorOf([&] { Set("S", "1", "x"); }), 75) << kind;
    EXPECT_EQ(ErrorOf([&] { machine.Replace(file, "x", nullptr); }), 75) << kind;
    EXPECT_NE(ErrorOf([&] { utility.AppendFile(file, "x"); }), 0) << kind;
    std::filesystem::remove(place);
  };
  std::filesystem::create_directory(place);
  check("folder");
  ::mkfifo(place.c_str(), 0600);
  check("pipe");
  ::mkfifo(folder.File("pipe").c_str(), 0600);
  std::filesystem::create_symlink("pipe", place);
  check("link to a pipe");
}

TEST_F(HostFilesTest, AFullDiskOrAFolderThatMayNotChangeLeavesEverythingAsItWas) {
  folder.Write("a.ini", "[S]\r\n1=a");
  folder.Write("log", "one");
  const auto change = [this](const char* flag) {  // which not every file system and user can
    return std::system(("chattr " + (flag + (" " + folder.Path())) + " 2>&-").c_str()) == 0;
  };
  if (change("+i")) {
    EXPECT_EQ(ErrorOf([&] { Set("S", "1", "x"); }), 70);
    EXPECT_TRUE(change("-i"));
  }
  const testing::FullDisk full(20);
  EXPECT_EQ(ErrorOf([&] { Set("S", "2", std::string(30, 'x')); }), 61);
  EXPECT_EQ(ErrorOf([&] { utility.AppendFile(folder.Path() + "\\log", std::string(30, 'x')); }),
            61);
  EXPECT_EQ(folder.Read("a.ini") + folder.Read("log"), "[S]\r\n1=aone");
  EXPECT_EQ(Count(), 2);
}

TEST(GameLife, EverySeedLivesThroughEveryStateWithAGameTypeThatThereIs) {
  for (const std::uint32_t seed : {0U, 0x7FFFFFFFU, 0x80000000U, 0xFFFFFFFFU}) {
    simulator::GameLife life({.players = 250, .seed = seed, .mapSteps = 20, .pauseSteps = 4});
    std::set<std::int32_t> states;
    for (int step = 0; step < 60; ++step) {
      life.Step();
      states.insert(life.Now().state);
      EXPECT_LT(static_cast<std::size_t>(life.Now().PlayerCount()), life.Now().slots.size());
      EXPECT_TRUE(life.Now().gameType >= 0 && life.Now().gameType < 9) << seed;
    }
    EXPECT_EQ(states, (std::set<std::int32_t>{1, 2, 3, 4})) << seed;
  }
}

TEST(EventLoopTest, ServesDescriptorsDeadlinesAndSignalsInTurns) {
  EventLoop loop;
  std::string said;
  int ends[2];
  ASSERT_EQ(::pipe(ends), 0);
  ASSERT_EQ(::write(ends[1], "x", 1), 1);
  auto due = std::optional(EventLoop::Clock::now());
  loop.AtTurnBegin([&] { said += '('; });
  loop.AtTurnEnd([&] { said += ')'; });
  loop.Watch(ends[0], POLLIN, [&](short) {
    char byte;
    said += ::read(ends[0], &byte, 1) == 1 ? "read " : "end ";
    loop.Unwatch(ends[0]);
    loop.Watch(ends[1], POLLOUT, [&](short ready) {  // begins with the next turn
      said += (ready & POLLOUT) != 0 ? "room " : "broken ";
      loop.Unwatch(ends[1]);
      ::close(ends[0]);
      said += ::write(ends[1], "x", 1) < 0 && errno == EPIPE ? "nobody reads " : "written ";
      ::raise(SIGHUP);
    });
  });
  loop.AddDeadline([&] { return due; },
                   [&] {
                     said += "due ";
                     due.reset();
                   });
  loop.onReload = [&] {
    said += "reload";
    ::raise(SIGTERM);
  };
  loop.Run();
  EXPECT_EQ(said, "(read due )(room nobody reads )(reload");
  ::close(ends[1]);
}

TEST(ChatTest, ProgramsSayTheTextsInOrderAndNoneHoldsTheOthersUp) {
  const HostFolder folder;
  const auto script = [&](const std::string& name, const std::string& lines) {
    folder.Write(name, "#!/bin/sh\n" + lines + "\n");
    std::filesystem::permissions(folder.File(name), std::filesystem::perms::owner_all);
    return folder.File(name);
  };
  EventLoop loop;
  ProgramStarter programs(loop, std::chrono::seconds(1));
  SystemClock clock;
  Chat chat(clock);
  chat.SetRunner(&programs);
  const std::string said = folder.File("said");
  chat.SetProgram(1, script("good", "sleep 0.1; printf '%s|' \"$@\" >>" + said) + " -p  7 ");
  chat.SetProgram(2, script("bad", "echo no such port >&2; exit 3"));
  chat.SetProgram(3, script("slow", "sleep 60 & wait"));
  chat.SetProgram(4, script("warns", "printf 'careful\\nnow' >&2"));
  chat.SetProgram(5, folder.File("none"));
  std::map<std::int32_t, std::string> ends;
  std::string order;
  chat.onEnd = [&](const SentText& sent) {
    order += std::to_string(sent.profile);
    ends[sent.profile] = sent.reason;
    if (order.size() == 6) loop.Stop();
  };
  chat.Post(3, 0, "x");
  chat.Post(1, 0, "$HOME `id` 'ü'");
  chat.Post(1, 0, "second");
  for (const int profile : {2, 4, 5}) chat.Post(profile, 0, "x");
  loop.Run();
  EXPECT_EQ(folder.Read("said"), "-p|7|$HOME `id` 'ü'|-p|7|second|");
  EXPECT_EQ(order.back(), '3') << order;
  EXPECT_EQ(ends[1], "");
  EXPECT_EQ(ends[2], folder.File("bad") + " ended with status 3: no such port");
  EXPECT_EQ(ends[3], folder.File("slow") + " took longer than 1 s and was ended");
  EXPECT_EQ(ends[4], folder.File("warns") + " said: careful now");
  EXPECT_EQ(ends[5], folder.File("none") + " cannot be started (No such file or directory)");
  for (int i = 0; i < 9; ++i) chat.Post(3, 0, "x");
  EXPECT_EQ(ErrorOf([&] { chat.Post(3, 0, "x"); }), 57);  // it does not keep up
}

TEST(PlainOutput, ShowsControlCharactersAsQuestionMarks) {
  for (const auto& [text, shown] : std::vector<std::pair<std::string, std::string>>{
           {"Grüße €\n  a|b\n", "Grüße €\n  a|b\n"},
           {"\x1B[2J\x1B]0;x\x07\t\r", "?[2J?]0;x???"},
           {std::string("\0\x7F", 2), "??"},
           {"\u0080\u009B31m\u009F\u00A0\u00BF", "??31m?\u00A0\u00BF"},
           {"\xC2\xC2\x9B-\xC2\n", "\xC2?-\xC2\n"}}) {
    for (const bool whole : {true, false}) {
      std::ostringstream target;
      PlainOutput out(target);
      if (whole) out << text;
      for (std::size_t i = 0; !whole && i < text.size(); ++i) out << text[i] << std::flush;
      EXPECT_EQ(target.str(), shown);
    }
  }
}

TEST(PreviewTest, SaysOfAGameThatIsOtherThanItsCodeWhatCannotBeTold) {
  const HostFolder folder;
  const std::int32_t state = MemoryMapFor(false, false, "JO").Address(location::kGameState);
  const LowPage idleGame(static_cast<std::uintptr_t>(state) / LowPage::kPage * LowPage::kPage);
  folder.AddProfile(1, "JO", std::to_string(::getpid()), "4001",
                    MessageFileBytes({"{ShowMostKills}", "{ShowNextMap}"}));
  std::ostringstream out;
  HostProfiles profiles(folder.Path(), out);
  Preview preview(profiles);
  const ProfileSettings& profile = profiles.At(1);
  const Preview::Game game = preview.GameOf(profile);
  EXPECT_EQ(game.state, Preview::Game::State::Idle);
  const std::string kills = preview.TextOf(profile, game, "{ShowMostKills}").Shown();
  EXPECT_NE(kills.find("(cannot tell: profile 1 (srv1): process "), kills.npos) << kills;
  EXPECT_NE(kills.find("is GameCode the right one?"), kills.npos) << kills;
  const std::string map = preview.TextOf(profile, game, "{ShowNextMap}").Shown();
  EXPECT_TRUE(map.starts_with("Unknown!!! (profile 1")) << map;
  EXPECT_EQ(out.str(), "");
}

TEST(TroublesTest, SaysWhatComesBackOnceAndThatItIsOver) {
  std::ostringstream out;
  Troubles troubles(out);
  Troubles::Clock::time_point now;
  const auto tick = [&](const std::vector<std::string>& problems) {
    for (const std::string& words : problems) troubles.Met(1, words, now);
    troubles.TickEnded(1, "A", now);
    now += std::chrono::seconds(30);
    return std::exchange(out, std::ostringstream()).str();
  };
  EXPECT_EQ(tick({}), "");
  EXPECT_EQ(tick({"A: gone", "A: odd", "A: odd"}), "A: gone\nA: odd\n");
  for (int i = 0; i < 6; ++i) EXPECT_EQ(tick({"A: gone"}), "");
  troubles.Met(2, "A: gone", now);
  EXPECT_EQ(std::exchange(out, std::ostringstream()).str(), "A: gone\n");  // another profile's
  EXPECT_EQ(tick({}), "A: all is well again after 3 min 30 s; ticks that failed: 7\n");
  EXPECT_EQ(tick({}), "");
  EXPECT_EQ(tick({"A: gone"}), "A: gone\n");
}

class ConsoleTest : public ::testing::Test {
 protected:
  /// Runs console lines on a host of the folder and answers what was printed since.
  std::string Execute(const std::vector<std::string>& lines) {
    if (!running_) Restart({folder.Path()});
    Console console(running_->host, out_);
    for (const std::string& line : lines) console.Execute(line);
    return std::exchange(out_, std::ostringstream()).str();
  }
  template <class Plugin = HeadlessPlugin>
  void Restart(const HostOptions& options) {
    running_ = std::make_unique<Running>(options, out_, std::in_place_type<Plugin>);
    running_->host.LoadEveryProfile();
  }
  /// The values in a profile's message file, one behind the other.
  std::string Contents(int index) {
    std::string values;
    const IniText ini(
        folder.Read("profiles/srv" + std::to_string(index) + "/settings/Rotacasts.ini"));
    for (const char* section : {"Messages", "Options"}) {
      for (const IniText::Line& line : ini.Lines(section)) values.append(line.value) += ';';
    }
    return values;
  }
  /// What was logged below the folder, without the times; takes it.
  std::string TakeLog(const std::string& place) {
    std::string lines;
    if (!std::filesystem::exists(folder.File(place))) return lines;
    for (const auto& entry : std::filesystem::directory_iterator(folder.File(place))) {
      std::istringstream log(folder.Read(place + "/" + entry.path().filename().string()));
      for (std::string line; std::getline(log, line);) lines += line.substr(10) + "\n";
      std::filesystem::remove(entry);
    }
    return lines;
  }
  static void ExpectAll(const std::string& text, const std::vector<std::string>& parts) {
    for (const auto& part : parts) EXPECT_NE(text.find(part), text.npos) << part << " / " << text;
  }
  static std::string Refused(const std::string& why) {
    return "profile 2 (srv2): Invalid procedure call or argument: " + why + "\n\"\"\n";
  }
  HostFolder folder;

 private:
  struct Running {
    template <class Plugin>
    Running(const HostOptions& options, std::ostream& out, std::in_place_type_t<Plugin>)
        : profiles(options.folder, out),
          troubles(out),
          plugin(std::make_unique<Plugin>(profiles, troubles, options.minute)),
          host(profiles, *plugin, site, options) {
      profiles.MakeWhatIsMissing();
    }
    HostProfiles profiles;
    Troubles troubles;
    std::unique_ptr<HeadlessPlugin> plugin;
    HeadlessSite site;
    ServerHost host;
  };
  std::ostringstream out_;
  std::unique_ptr<Running> running_;
};

TEST_F(ConsoleTest, OneBadProfileLeavesTheOthersGoing) {
  folder.AddProfile(1, "JO", "1", "4001", "[Messages]\r\n1=ok\r\n[Options]\r\nInterval=abc\r\n");
  folder.AddProfile(2, "JO", "no-such-program", "4002",
                    MessageFileBytes({"{ShowNextMap}", "plain", ""}));
  folder.AddProfile(3, "JO", "no-such-program", "4003", std::string("\0\0", 2));
  folder.AddProfile(4, "JO", "1", "x");
  folder.AddProfile(5, "NOPE", "1", "4005");
  folder.AddProfile(6, "JO", "1", "4006");
  folder.Write("profiles/srv6/settings", "a file in the way");
  folder.Write("settings/config.ini", "[Settings]\r\nReportErrors=\r\n");
  const std::string text = Execute({"status", "messages 2", "placeholders"});
  ExpectAll(
      text,
      {"skipped: profile 6 (srv6): its settings folder cannot be made: File already exists: ",
       "Target is \"x\"; give its chat port",
       "profile 1 (srv1): Type mismatch (error 13 in Form_Reload)\n"
       "profile 1 (srv1): no report was sent (13: Type mismatch); is ReportErrors in "
       "settings/config.ini 0 or 1?",
       "holds NUL bytes; save it as plain ANSI text", "GameCode is \"NOPE\"; give one of DFBHD, ",
       "profile 2 (srv2): no program no-such-program is running; start it",
       "0         {ShowNextMap}  (cannot tell: no game server)",
       "2                        (nothing: it is skipped)",
       "Placeholder                  Says now for profile 1 (srv1)\n{ShowNextMap}  "});
  EXPECT_EQ(text.find("\n6 "), std::string::npos) << text;
  EXPECT_EQ(folder.Read("profiles/srv3/settings/Rotacasts.ini"), std::string("\0\0", 2));
}

TEST_F(ConsoleTest, CommandsDoWhatTheySayOrSayWhatIsWrong) {
  folder.AddProfile(2, "JO", "1", "4002", MessageFileBytes({"a"}, "0", "7"));
  Execute({});
  folder.AddProfile(2, "DFX2", "1", "4002");
  for (const auto& [lines, says] : std::vector<std::pair<std::vector<std::string>, const char*>>{
           {{"help"}, "disable PROFILE"},
           {{"show"}, "usage: show PROFILE"},
           {{"show 9"}, "there is no profile 9"},
           {{"fly"}, "\"fly\" is no command"},
           {{"status"}, "off     7 min  0"},
           {{"show 2", "status"}, "DFX2  unreachable  off"},
           {{"hide", "disable 2", "unload", "status"}, "stopped"},
           {{"add 2 x"}, "profile 2 (srv2) is stopped; \"show 2\" starts it"},
           {{"remote 2 EnableRTRem 1"}, "(error 9 in EnableRTRem)"}}) {
    const std::string text = Execute(lines);
    EXPECT_NE(text.find(says), std::string::npos) << says << ": " << text;
  }
  EXPECT_EQ(Execute({"", "   "}), "");
  EXPECT_EQ(folder.Read("settings/config.ini"), "[Settings]\r\nReportErrors=0\r\n");
}

TEST_F(ConsoleTest, ChangesAreDoneToldAndLoggedUnderTheAdministratorsName) {
  struct Row {
    std::string line;
    std::string says;
    const char* file = nullptr;  // the messages and options afterwards; null: as before
  };
  const Row rows[] = {
      {"add 2  d ", "added at position 3\n", "a;b;c; d ;1;3;"},
      {"delete 2 3", "deleted:  d \n", "a;b;c;1;3;"},
      {"up 2 1", "moved up: b\n", "b;a;c;1;3;"},
      {"down 2 0", "moved down: b\n", "a;b;c;1;3;"},
      {"up 2 0", "not moved: it is the first message\n"},
      {"down 2 2", "not moved: it is the last message\n"},
      {"delete 2 3", "there is no message at position 3; \"messages\" lists those there are\n"},
      {"down 2 x", "\"x\" is no whole number; usage: down PROFILE POSITION\n"},
      {"delete 2 0 1", "\"1\" is too much; usage: delete PROFILE POSITION\n"},
      {"enable 2 2", "not switched: give 1 for on, 0 for off\n"},
      {"interval 2 31", "not changed: an interval is 0 to 30 minutes\n"},
      {"interval 2 -1", "not changed: an interval is 0 to 30 minutes\n"},
      {"add 2 " + std::string(65508, 'x'),
       "the message has 65508 bytes, more than the 65507 of one datagram; give a "
       "shorter one\n"},
      {"add 2 ", "usage: add PROFILE TEXT\n"},
      {"add 2 Ł",
       "not added: a message is one line of Windows-1252 letters, in a file that "
       "can be written\n"},
      {"enable 2 0", "profile 2 (srv2) is switched off\n", "a;b;c;0;3;"},
      {"interval 2 9", "profile 2 (srv2) says a message every 9 minutes\n", "a;b;c;0;9;"},
      {"remote 2 GetMessagesRem", "\"YQ==|Yg==|Yw==|0|9\"\n"},
      {"remote 2 AddMessageRem ZA==", "\"1\"\n", "a;b;c;d;0;9;"},
      {"remote 2 AddMessageRem Z", Refused("the text is not Base64")},
      {"remote 2 AddMessageRem /w==", Refused("the Base64 text packs no UTF-8")},
      {"remote 2 Fly 1",
       "Fly is no remote operation; there are GetMessagesRem AddMessageRem EnableRTRem "
       "ChangeIntervalRem MoveMessageDownRem MoveMessageUpRem DeleteMessageRem\n"},
  };
  for (const bool shared : {false, true}) {
    folder.AddProfile(2, "JO", "1", "4002", MessageFileBytes({"a", "b", "c"}, "1", "3"));
    Restart({folder.Path(), std::chrono::minutes(1), "Zoe", shared});
    std::string file = Contents(2);
    for (const Row& row : rows) {
      if (row.file != nullptr) file = row.file;
      EXPECT_EQ(Execute({row.line}), row.says) << row.line;
      EXPECT_EQ(Contents(2), file) << row.line;
    }
    const char* const places[] = {"profiles/srv2/adminlogs", "adminlogs"};
    const std::string log = TakeLog(places[shared ? 1 : 0]);
    EXPECT_EQ(std::ranges::count(log, '\n'), 8);  // what was changed, and "?" for a letter it lacks
    EXPECT_TRUE(log.starts_with("[Rotacasts] Add Rotacast (Message:  d ) from Zoe\r\n")) << log;
    EXPECT_EQ(TakeLog(places[shared ? 0 : 1]), "");
  }
}

TEST_F(ConsoleTest, WhatCannotBeStoredIsNotDoneAndTheReasonSaid) {
  folder.AddProfile(2, "JO", "1", "4002", MessageFileBytes({"a", "b"}, "1", "3"));
  Execute({});
  const testing::FullDisk full(10);
  for (const auto& [line, says] : {std::pair("add 2 c", "not added: "),
                                   {"delete 2 0", "not deleted: "},
                                   {"up 2 1", "not moved: "},
                                   {"enable 2 0", "not switched: "},
                                   {"interval 2 9", "not changed: "},
                                   {"remote 2 DeleteMessageRem 0", ""}}) {
    const std::string why =
        "Disk full: " + folder.File("profiles/srv2/settings/Rotacasts.ini") + " (File too large)\n";
    EXPECT_EQ(Execute({line}),
              says + std::string("profile 2 (srv2): ") + why + (*says == '\0' ? "\"\"\n" : ""));
    EXPECT_EQ(Contents(2), "a;b;1;3;") << line;
    EXPECT_NE(Execute({"status"}).find("on      3 min"), std::string::npos) << line;
    EXPECT_EQ(TakeLog("profiles/srv2/adminlogs"), "") << line;
  }
  const std::filesystem::directory_iterator settings(folder.File("profiles/srv2/settings"));
  EXPECT_EQ(std::distance(begin(settings), end(settings)), 1);
}

TEST_F(ConsoleTest, APositionThatCouldMeanAnotherMessageIsRefused) {
  const std::string path = "profiles/srv2/settings/Rotacasts.ini";
  for (const auto& [lines, says] :
       {std::pair("1=a\r\n3=b\r\n", "\"b\" at position 1 has the key 3 instead of 2"),
        {"1=a\r\n1=b\r\n", "\"b\" at position 1 has the key 1 instead of 2"},
        {"2=a\r\n1=b\r\n", "\"a\" at position 0 has the key 2 instead of 1"}}) {
    const std::string file =
        std::string("[Messages]\r\n") + lines + "[Options]\r\nEnable=1\r\nInterval=3\r\n";
    folder.AddProfile(2, "JO", "1", "4002", file);
    for (const char* line : {"up 2 1", "down 2 0", "delete 2 0"}) {
      EXPECT_EQ(Execute({line}), std::string("the message ") + says +
                                     ", so a position could mean another message; number the keys "
                                     "from 1 in " +
                                     folder.File(path) + " and try again\n");
      EXPECT_EQ(folder.Read(path), file) << line;
    }
  }
}

TEST_F(ConsoleTest, EachProfileGoesByItsOwnSwitchAndIntervalAndReloadTakesTheFilesOver) {
  folder.AddProfile(1, "JO", "1", "4001", MessageFileBytes({"a"}, "1", "3"));
  folder.AddProfile(2, "JO", "1", "4002", MessageFileBytes({"b"}, "1", "7"));
  const auto rows = [this] {
    std::istringstream status(Execute({"status"}));
    std::string found;
    for (std::string line; std::getline(status, line);) {
      if (const auto at = line.find("unreachable"); at != line.npos) {
        found += line.substr(0, 1) + line.substr(at + 11, 16) + "|";
      } else if (line.find("reload") != line.npos) {
        found += line + "|";
      }
    }
    return found;
  };
  EXPECT_EQ(rows(), "1  on      3 min |2  on      7 min |");
  Execute({"show 2", "enable 1 0"});  // whatever the window shows
  EXPECT_EQ(rows(), "1  off     3 min |2  on      7 min |");
  folder.AddProfile(2, "JO", "1", "4002", MessageFileBytes({"b"}, "0", "9"));
  folder.AddProfile(5, "JO", "1", "4005", MessageFileBytes({"e"}, "1", "5"));
  EXPECT_EQ(rows(),
            "1  off     3 min |2  on      7 min |"
            "profile 2 (srv2): its message file has another switch or interval; "
            "\"reload\" takes them over|");
  EXPECT_EQ(Execute({"reload"}), "added: profile 5\nread again; profiles: 3\n");
  EXPECT_EQ(rows(), "1  off     3 min |2  off     9 min |5  on      5 min |");
  std::filesystem::remove(folder.File("profiles/srv1/profile.ini"));
  folder.AddProfile(2, "NOPE", "1", "4002");  // goes on as it was
  folder.AddProfile(5, "JO_2", "1", "4005");
  ExpectAll(Execute({"disable 2", "reload", "status"}),
            {"not used: ", "GameCode is \"NOPE\"",
             "changed: profile 5\nremoved: profile 1\nread again; profiles: 2\n", "JO    stopped",
             "JO_2  "});
}

/// A plugin in a component of its own, which tells nothing of itself.
struct OpaquePlugin final : HeadlessPlugin {
  using HeadlessPlugin::HeadlessPlugin;
  std::optional<Progress> ProgressOf(std::int32_t) const override { return std::nullopt; }
};

TEST_F(ConsoleTest, ShowsOfAPluginThatItCannotLookIntoWhatTheFilesSay) {
  folder.AddProfile(2, "DFX2", "no-such-program", "4002", MessageFileBytes({"a", "{ShowNextMap}"}));
  Restart<OpaquePlugin>({folder.Path()});
  ExpectAll(Execute({"status", "unload", "status"}),
            {"DFX2  unreachable  on      1 min  -      -\n",
             "DFX2  stopped, game unreachable  on      1 min  0      0: a\n"});
}

}  // namespace
}  // namespace rotacasts::host
