// The programs themselves: a simulated game server, the host that serves it, and the end of either.

#include <gtest/gtest.h>

#include <set>
#include <thread>

#include "support/child_process.h"
#include "support/fake_host.h"
#include "support/host_folder.h"

namespace rotacasts {
namespace {

using testing::ChildProcess;
using testing::MessageFileBytes;

/// The program prints these texts, in this order.
void Expect(ChildProcess& process, const std::vector<std::string>& texts) {
  for (const std::string& text : texts) EXPECT_TRUE(process.ReadUntil(text)) << text;
}

/// A simulator, and where it listens.
struct Server : ChildProcess {
  explicit Server(const std::string& code, const std::string& program = SIMULATOR_PROGRAM,
                  const std::string& at = "0")
      : ChildProcess({program, "--game-code", code, "--seed", "3", "--step", "20", "--port", at}) {
    const std::string line = ReadUntil("chat on").value_or("chat on :0");
    port = line.substr(line.rfind(':') + 1);
  }
  std::string Name() const { return std::to_string(Id()); }
  std::string port;
};

class EndToEnd : public ::testing::Test {
 protected:
  ChildProcess Start(const std::string& command = "run") const {
    std::vector<std::string> words = {ROTACASTS_HOST_PROGRAM, command};
    words.insert(words.end(), {"--host-folder", folder.Path()});
    if (command == "run") words.insert(words.end(), {"--minute", "50ms"});
    return ChildProcess(words);
  }
  testing::HostFolder folder;
};

TEST_F(EndToEnd, MessagesReachTheServersUntilOneDies) {
  Server joint("JO");
  Server hawk("DFBHD");
  const std::string messages =
      MessageFileBytes({"Grüße €", "{ShowNextMap}", "{ShowMostKills}", "", "{ShowLeastDeaths}"});
  folder.AddProfile(1, "DFBHD", hawk.Name(), hawk.port, messages);
  folder.AddProfile(2, "JO", joint.Name(), joint.port, messages);
  // Cut to 32 bits, this would be the id of a process that there is.
  const std::string far = std::to_string(joint.Id() + (std::int64_t{1} << 32));
  folder.AddProfile(3, "JO", far, joint.port, messages);
  ChildProcess host = Start();
  Expect(host, {"profile 3 (srv3): the game server has ended (process " + far + ")"});
  for (Server* server : {&joint, &hawk}) {
    Expect(*server, {"Grüße €", "[Next Map] ", "[Most Kills] ", "[Least Deaths] ", "Grüße €"});
  }
  host.WriteLine("status\nsay 1 {ShowNextMap}\nsent 1\nplaceholders 1");
  Expect(host, {"1        srv1    DFBHD  running", "said: [Next Map] ",
                "1        sent     [Next Map] ", "{ShowBestHeadshotKillRatio}  ["});
  const std::string ended = "the game server has ended (process " + joint.Name() + ")";
  EXPECT_EQ(joint.Wait(SIGKILL), -SIGKILL);
  Expect(host, {"profile 2 (srv2): " + ended});
  Expect(hawk, {"Grüße €"});  // the other profile keeps going
  host.WriteLine("unload\nmessages 1\nquit");
  Expect(host, {"1         {ShowNextMap}      [Next Map] "});
  EXPECT_EQ(host.Wait(), 0);
  EXPECT_EQ(hawk.Wait(SIGTERM), 0);
  EXPECT_NE(folder.Read("logs/errors.log").find("tmrRT"), std::string::npos);
  EXPECT_EQ(folder.Read("profiles/srv2/settings/Rotacasts.ini"), messages);
}

TEST_F(EndToEnd, OfTheServersOfOneProgramEachProfileKeepsItsOwn) {
  const std::string name = "server-of-" + std::to_string(::getpid());
  std::filesystem::copy_file(SIMULATOR_PROGRAM, folder.File(name));
  auto first = std::make_unique<Server>("JO_2", folder.File(name));
  Server other("JO_2", folder.File(name));
  const std::string port = first->port;
  folder.AddProfile(1, "JO_2", name, port, MessageFileBytes({"Hello", "{ShowNextMap}"}));
  folder.AddProfile(2, "JO_2", name, other.port, MessageFileBytes({"Other"}));
  ChildProcess host = Start();
  Expect(*first, {"Hello"});
  Expect(other, {"Other"});
  first.reset();
  Expect(host, {"profile 1 (srv1): the game server has ended",
                "profile 1 (srv1): a program " + name +
                    " is running, but none receives at the Target port " + port});
  Server second("JO_2", folder.File(name), port);
  Expect(second, {"Hello"});
  Expect(host, {"profile 1 (srv1): all is well again after "});
  EXPECT_EQ(host.Wait(SIGTERM), 0);
}

TEST_F(EndToEnd, NothingThatIsPrintedOrAskedHoldsTheHostUp) {
  Server server("JO");
  folder.AddProfile(1, "JO", server.Name(), server.port, MessageFileBytes({"Hello"}));
  ChildProcess host = Start();
  for (int i = 0; i < 300; ++i) host.WriteLine("help");  // far more than a pipe holds, and unread
  host.EndInput("messages 1\nadd 1 x");                  // the last line needs no line feed
  Expect(server, {"x", "x", "x"});
  Expect(host, {" lines were not shown, for nobody was reading"});
  folder.AddProfile(2, "JO", "1", "4002");
  ::kill(static_cast<pid_t>(host.Id()), SIGHUP);
  Expect(host, {"added: profile 2"});
  host.CloseOutput();
  ::kill(static_cast<pid_t>(host.Id()), SIGHUP);  // it prints to nobody
  Expect(server, {"Hello", "Hello"});
  EXPECT_EQ(host.Wait(SIGTERM), 0);
}

TEST_F(EndToEnd, ATerminalHasAPromptThatCompletesCommands) {
  folder.AddProfile(1, "JO", "1", "4001");
  ChildProcess host({"/usr/bin/script", "-qfec",
                     std::string(ROTACASTS_HOST_PROGRAM) + " run --host-folder " + folder.Path(),
                     "/dev/null"});
  Expect(host, {"profiles started: 1"});
  host.WriteLine("addX\b 1 Grüße aus");
  Expect(host, {"added at position 0"});
  host.WriteLine("mes\t1");
  Expect(host, {"rotacasts> messages 1", "0         Grüße aus  Grüße aus"});
  host.WriteLine("quit");
  EXPECT_EQ(host.Wait(), 0);
}

TEST_F(EndToEnd, OneHostWorksInAFolderUntilItsEnd) {
  folder.AddProfile(1, "JO", "no-such-program", "4001", MessageFileBytes({"a"}));
  for (int life = 0; life < 2; ++life) {
    ChildProcess first = Start();
    Expect(first, {"profiles started: 1"});
    ChildProcess second = Start();
    ASSERT_TRUE(second.ReadUntil(folder.Path() + " has a host at work, process " +
                                 std::to_string(first.Id()) + " since "));
    EXPECT_EQ(second.Wait(), 3);
    for (const auto& [command, says] :
         {std::pair("check", "profiles checked: 1"), {"preview", "0         a        a"}}) {
      ChildProcess beside = Start(command);
      Expect(beside, {says});
    }
    first.Wait(SIGKILL);
  }
}

TEST_F(EndToEnd, WhatAnEditorSavesWhileTheListIsChangedIsNotLost) {
  const std::string file = "profiles/srv1/settings/Rotacasts.ini";
  folder.AddProfile(1, "JO", "no-such-program", "4001", MessageFileBytes({"a"}));
  ChildProcess host = Start();
  Expect(host, {"profiles started: 1"});
  for (int version = 1; version <= 60; ++version) {
    const std::string end = "end-" + std::to_string(version);  // no verb, and answered as none
    host.WriteLine("add 1 x\nenable 1 0\ndelete 1 201\ninterval 1 5\n" + end);
    std::this_thread::sleep_for(std::chrono::microseconds(version * 7919 % 9000));
    const std::string messages = MessageFileBytes(std::vector<std::string>(200, end));
    const bool inPlace = version % 2 == 0;
    folder.Write(inPlace ? file : "saved", messages);
    if (!inPlace) std::filesystem::rename(folder.File("saved"), folder.File(file));
    Expect(host, {end});
    const std::string lines = messages.substr(0, messages.find("[Options]"));
    ASSERT_TRUE(folder.Read(file).starts_with(lines)) << version << "\n" << folder.Read(file);
  }
}

TEST_F(EndToEnd, PreviewTouchesNoFileAndNeitherABadProfileNorAMessageCommandsIt) {
  Server server("DFX2");
  folder.AddProfile(1, "JO", "1", "4001", "\xFF\xFE[");
  folder.AddProfile(2, "JO", "1", "4002");
  folder.AddProfile(3, "DFX2", server.Name(), server.port,
                    MessageFileBytes({"{\x1B[2J}\u009D31m\tGrüße", "{ShowNextMap}"}));
  folder.AddProfile(4, "JO", "1", "\x1B]");
  const auto files = [&] {
    const std::filesystem::recursive_directory_iterator all(folder.Path());
    return std::set<std::filesystem::path>(begin(all), end(all));
  };
  const auto before = files();
  using Texts = std::vector<const char*>;
  for (const auto& [command, says] :
       {std::pair("preview",
                  Texts{"srv1/settings/Rotacasts.ini is a UTF-16 file",
                        "profile 2 (srv2) has no messages", "{?[2J}?31m?Grüße", "[Next Map] "}),
        {"check", {"?]"}}}) {
    ChildProcess host = Start(command);
    std::string output;
    while (const auto line = host.ReadLine()) output += *line + "\n";
    for (const char* text : says) EXPECT_NE(output.find(text), output.npos) << text << output;
    EXPECT_EQ(output.find('\x1B'), output.npos);
    EXPECT_EQ(host.Wait(), 1);
  }
  EXPECT_EQ(files(), before);
}

TEST_F(EndToEnd, AWrongCallSaysWhatIsWrong) {
  const auto run = [](std::vector<std::string> words, const std::string& says, int status = 2) {
    words.insert(words.begin(), ROTACASTS_HOST_PROGRAM);
    ChildProcess host(words);
    Expect(host, {says});
    EXPECT_EQ(host.Wait(), status) << says;
  };
  const std::string place = folder.Path();
  run({"run", "--host-folder", "/nowhere/at/all"}, "make it, or name another folder");
  run({"run", "--host-folder", place}, folder.File("profiles") + ": No such file");
  run({"run", "--host-folder", place}, "has no usable profile");
  run({"check", "--host-folder", "/nowhere/at/all"}, "/nowhere/at/all/profiles: No such file", 1);
  run({"run", "--host-folder", place, "--minute", "soon"}, "--minute");
  run({"run", "--bogus"}, "rotacasts-host run: \"--bogus\" is not known here");
  run({"fly"}, "rotacasts-host: \"fly\" is not known here");
  run({"preview", "--host-folder", place, "--profile", "4"}, "there is no profile 4", 1);
  run({"check", "--help"}, "Exit status: 0 done; 1 check has a warning", 0);
  EXPECT_TRUE(std::filesystem::is_empty(place));
}

}  // namespace
}  // namespace rotacasts
