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
using testing::HostFolder;
using testing::MessageFileBytes;

/// A simulator, and where it listens.
struct Server {
  explicit Server(const std::string& code, const std::string& program = SIMULATOR_PROGRAM)
      : process({program, "--game-code", code, "--seed", "3", "--step", "20"}) {
    const std::string line = process.ReadUntil("chat on").value_or("chat on :0");
    port = line.substr(line.rfind(':') + 1);
  }
  std::string Id() const { return std::to_string(process.Id()); }
  ChildProcess process;
  std::string port;
};

ChildProcess StartHost(const HostFolder& folder) {
  return ChildProcess(
      {ROTACASTS_HOST_PROGRAM, "run", "--host-folder", folder.Path(), "--minute", "50ms"});
}

TEST(EndToEnd, MessagesReachTheServersUntilOneDies) {
  HostFolder folder;
  Server joint("JO");
  Server hawk("DFBHD");
  const std::string messages =
      MessageFileBytes({"Grüße €", "{ShowNextMap}", "{ShowMostKills}", "", "{ShowLeastDeaths}"});
  folder.AddProfile(1, "DFBHD", hawk.Id(), hawk.port, messages);
  folder.AddProfile(2, "JO", joint.Id(), joint.port, messages);
  // Cut to 32 bits, this would be the id of a process that there is.
  const std::string far = std::to_string(joint.process.Id() + (std::int64_t{1} << 32));
  folder.AddProfile(3, "JO", far, joint.port, messages);
  ChildProcess host = StartHost(folder);
  EXPECT_TRUE(host.ReadUntil("profile 3 (srv3): the game server has ended (process " + far + ")"));
  for (Server* server : {&joint, &hawk}) {
    for (const char* text :
         {"Grüße €", "[Next Map] ", "[Most Kills] ", "[Least Deaths] ", "Grüße €"}) {
      EXPECT_TRUE(server->process.ReadUntil(text)) << text;
    }
  }
  host.WriteLine("status\nsay 1 {ShowNextMap}\nsent 1\nplaceholders 1");
  EXPECT_TRUE(host.ReadUntil("1        srv1    DFBHD  running"));
  EXPECT_TRUE(host.ReadUntil("said: [Next Map] "));
  EXPECT_TRUE(host.ReadUntil("1        sent     [Next Map] "));
  EXPECT_TRUE(host.ReadUntil("{ShowBestHeadshotKillRatio}  ["));
  const std::string id = joint.Id();
  EXPECT_EQ(joint.process.Wait(SIGKILL), -SIGKILL);
  EXPECT_TRUE(host.ReadUntil("profile 2 (srv2): the game server has ended (process " + id + ")"));
  EXPECT_TRUE(hawk.process.ReadUntil("Grüße €"));  // the other profile keeps going
  host.WriteLine("unload\nmessages 1");
  EXPECT_TRUE(host.ReadUntil("1         {ShowNextMap}      [Next Map] "));
  host.WriteLine("quit");
  EXPECT_EQ(host.Wait(), 0);
  EXPECT_EQ(hawk.process.Wait(SIGTERM), 0);
  EXPECT_NE(folder.Read("logs/errors.log").find("tmrRT"), std::string::npos);
  EXPECT_EQ(folder.Read("profiles/srv2/settings/Rotacasts.ini"), messages);
}

TEST(EndToEnd, OfTheServersOfOneProgramEachProfileKeepsItsOwn) {
  HostFolder folder;
  const std::string name = "server-of-" + std::to_string(::getpid());
  const std::string program = folder.File(name);
  std::filesystem::copy_file(SIMULATOR_PROGRAM, program);
  auto first = std::make_unique<Server>("JO_2", program);
  Server other("JO_2", program);
  const std::string port = first->port;
  folder.AddProfile(1, "JO_2", name, port, MessageFileBytes({"Hello", "{ShowNextMap}"}));
  folder.AddProfile(2, "JO_2", name, other.port, MessageFileBytes({"Other"}));
  ChildProcess host = StartHost(folder);
  EXPECT_TRUE(first->process.ReadUntil("Hello"));
  EXPECT_TRUE(other.process.ReadUntil("Other"));
  first.reset();
  EXPECT_TRUE(host.ReadUntil("profile 1 (srv1): the game server has ended"));
  EXPECT_TRUE(host.ReadUntil("profile 1 (srv1): a program " + name +
                             " is running, but none receives at the Target port " + port));
  ChildProcess second({program, "--game-code", "JO_2", "--port", port});
  EXPECT_TRUE(second.ReadUntil("Hello"));
  EXPECT_TRUE(host.ReadUntil("profile 1 (srv1): all is well again after "));
  EXPECT_EQ(host.Wait(SIGTERM), 0);
}

TEST(EndToEnd, NothingThatIsPrintedOrAskedHoldsTheHostUp) {
  HostFolder folder;
  Server server("JO");
  folder.AddProfile(1, "JO", server.Id(), server.port, MessageFileBytes({"Hello"}));
  ChildProcess host = StartHost(folder);
  for (int i = 0; i < 300; ++i) host.WriteLine("help");  // far more than a pipe holds, and unread
  host.EndInput("messages 1\nadd 1 x");                  // the last line needs no line feed
  for (int i = 0; i < 3; ++i) EXPECT_TRUE(server.process.ReadUntil("x"));
  EXPECT_TRUE(host.ReadUntil(" lines were not shown, for nobody was reading"));
  folder.AddProfile(2, "JO", "1", "4002");
  ::kill(static_cast<pid_t>(host.Id()), SIGHUP);
  EXPECT_TRUE(host.ReadUntil("added: profile 2"));
  host.CloseOutput();
  ::kill(static_cast<pid_t>(host.Id()), SIGHUP);  // it prints to nobody
  EXPECT_TRUE(server.process.ReadUntil("Hello"));
  EXPECT_TRUE(server.process.ReadUntil("Hello"));
  EXPECT_EQ(host.Wait(SIGTERM), 0);
}

TEST(EndToEnd, ATerminalHasAPromptThatCompletesCommands) {
  HostFolder folder;
  folder.AddProfile(1, "JO", "1", "4001");
  ChildProcess host({"/usr/bin/script", "-qfec",
                     std::string(ROTACASTS_HOST_PROGRAM) + " run --host-folder " + folder.Path(),
                     "/dev/null"});
  EXPECT_TRUE(host.ReadUntil("profiles started: 1"));
  host.WriteLine("addX\b 1 Grüße aus");
  EXPECT_TRUE(host.ReadUntil("added at position 0"));
  host.WriteLine("mes\t1");
  EXPECT_TRUE(host.ReadUntil("rotacasts> messages 1"));
  EXPECT_TRUE(host.ReadUntil("0         Grüße aus  Grüße aus"));
  host.WriteLine("quit");
  EXPECT_EQ(host.Wait(), 0);
}

TEST(EndToEnd, OneHostWorksInAFolderUntilItsEnd) {
  HostFolder folder;
  folder.AddProfile(1, "JO", "no-such-program", "4001", MessageFileBytes({"a"}));
  for (int life = 0; life < 2; ++life) {
    ChildProcess first = StartHost(folder);
    EXPECT_TRUE(first.ReadUntil("profiles started: 1"));
    ChildProcess second = StartHost(folder);
    EXPECT_TRUE(second.ReadUntil(folder.Path() + " has a host at work, process " +
                                 std::to_string(first.Id()) + " since "));
    EXPECT_EQ(second.Wait(), 3);
    for (const auto& [command, says] :
         {std::pair("check", "profiles checked: 1"), {"preview", "0         a        a"}}) {
      ChildProcess beside({ROTACASTS_HOST_PROGRAM, command, "--host-folder", folder.Path()});
      EXPECT_TRUE(beside.ReadUntil(says)) << command;
    }
    first.Wait(SIGKILL);
  }
}

TEST(EndToEnd, WhatAnEditorSavesWhileTheListIsChangedIsNotLost) {
  HostFolder folder;
  const std::string file = "profiles/srv1/settings/Rotacasts.ini";
  folder.AddProfile(1, "JO", "no-such-program", "4001", MessageFileBytes({"a"}));
  ChildProcess host = StartHost(folder);
  EXPECT_TRUE(host.ReadUntil("profiles started: 1"));
  for (int version = 1; version <= 60; ++version) {
    const std::string end = "end-" + std::to_string(version);  // no verb, and answered as none
    host.WriteLine("add 1 x\nenable 1 0\ndelete 1 201\ninterval 1 5\n" + end);
    std::this_thread::sleep_for(std::chrono::microseconds(version * 7919 % 9000));
    std::vector<std::string> texts;
    for (int i = 0; i < 200; ++i)
      texts.push_back(std::to_string(version) + ", " + std::to_string(i));
    const std::string messages = MessageFileBytes(texts);
    if (version % 2 == 0) {
      folder.Write(file, messages);
    } else {
      folder.Write("saved", messages);
      std::filesystem::rename(folder.File("saved"), folder.File(file));
    }
    EXPECT_TRUE(host.ReadUntil(end));
    const std::string lines = messages.substr(0, messages.find("[Options]"));
    ASSERT_TRUE(folder.Read(file).starts_with(lines)) << version << "\n" << folder.Read(file);
  }
  host.WriteLine("quit");
  EXPECT_EQ(host.Wait(), 0);
}

TEST(EndToEnd, PreviewTouchesNoFileAndNeitherABadProfileNorAMessageCommandsIt) {
  HostFolder folder;
  Server server("DFX2");
  folder.AddProfile(1, "JO", "1", "4001", "\xFF\xFE[");
  folder.AddProfile(2, "JO", "1", "4002");
  folder.AddProfile(3, "DFX2", server.Id(), server.port,
                    MessageFileBytes({"{\x1B[2J}\u009D31m\tGrüße", "{ShowNextMap}"}));
  folder.AddProfile(4, "JO", "1", "\x1B]");
  const auto files = [&] {
    const std::filesystem::recursive_directory_iterator all(folder.Path());
    return std::set<std::filesystem::path>(begin(all), end(all));
  };
  const auto before = files();
  for (const auto& [command, says] :
       {std::pair("preview",
                  std::vector<const char*>{"srv1/settings/Rotacasts.ini is a UTF-16 file",
                                           "profile 2 (srv2) has no messages", "{?[2J}?31m?Grüße",
                                           "[Next Map] "}),
        {"check", {"?]"}}}) {
    ChildProcess host({ROTACASTS_HOST_PROGRAM, command, "--host-folder", folder.Path()});
    std::string output;
    while (const auto line = host.ReadLine()) output += *line + "\n";
    for (const char* text : says) EXPECT_NE(output.find(text), output.npos) << text << output;
    EXPECT_EQ(output.find('\x1B'), output.npos);
    EXPECT_EQ(host.Wait(), 1);
  }
  EXPECT_EQ(files(), before);
}

TEST(EndToEnd, AWrongCallSaysWhatIsWrong) {
  const auto run = [](std::vector<std::string> words, const std::string& says, int status = 2) {
    words.insert(words.begin(), ROTACASTS_HOST_PROGRAM);
    ChildProcess host(words);
    EXPECT_TRUE(host.ReadUntil(says)) << says;
    EXPECT_EQ(host.Wait(), status) << says;
  };
  HostFolder empty;
  run({"run", "--host-folder", "/nowhere/at/all"}, "make it, or name another folder");
  run({"run", "--host-folder", empty.Path()}, empty.File("profiles") + ": No such file");
  run({"run", "--host-folder", empty.Path()}, "has no usable profile");
  EXPECT_TRUE(std::filesystem::is_empty(empty.Path()));
  run({"check", "--host-folder", "/nowhere/at/all"}, "/nowhere/at/all/profiles: No such file", 1);
  run({"run", "--host-folder", empty.Path(), "--minute", "soon"}, "--minute");
  run({"run", "--bogus"}, "rotacasts-host run: \"--bogus\" is not known here");
  run({"fly"}, "rotacasts-host: \"fly\" is not known here");
  run({"preview", "--host-folder", empty.Path(), "--profile", "4"}, "there is no profile 4", 1);
  run({"check", "--help"}, "Exit status: 0 done; 1 check has a warning", 0);
}

}  // namespace
}  // namespace rotacasts
