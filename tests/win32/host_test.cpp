// The parts of the stand-alone host that exist only on Windows.

#include <sstream>

#include <filesystem>
#include <fstream>

#include "com/unique_handle.h"
#include "console/console.h"
#include "console/win32/console_pipe.h"
#include "machine/win32/program_starter.h"
#include "machine/win32/service_manager.h"
#include "program/win32/frame_window.h"
#include "program/win32/late_bound_plugin.h"
#include "siblings/game_processes.h"
#include "support/component_test.h"
#include "support/fake_host.h"
#include "support/host_folder.h"
#include "support/installed_plugin.h"

namespace rotacasts::host {
namespace {

TEST(GameProcesses, ANumberTooLargeForAProcessIsNotCutToAnothersNumber) {
  constexpr std::int32_t address = 0x10000000;  // 64-bit programs are above such addresses
  constexpr std::int32_t value = -123456;
  auto* place = static_cast<std::int32_t*>(::VirtualAlloc(
      reinterpret_cast<void*>(address), sizeof value, MEM_RESERVE | MEM_COMMIT, PAGE_READWRITE));
  ASSERT_NE(place, nullptr);
  *place = value;
  const ProcessId own = ::GetCurrentProcessId();
  GameProcesses processes;
  const std::int32_t self = processes.Register({std::to_string(own), 0, "self"});
  const std::int32_t beyond =
      processes.Register({std::to_string(own + (ProcessId{1} << 32)), 0, "beyond"});
  EXPECT_EQ(processes.ReadLong(self, address), value);
  EXPECT_EQ(ErrorOf([&] { processes.ReadLong(beyond, address); }), 57);
  EXPECT_EQ(processes.ReadLong(beyond, address, WhenAway::ReadsAsZero), 0);
  ::VirtualFree(place, 0, MEM_RELEASE);
}

TEST(FrameWindow, TellsOfTheEndOfTheSessionAndOfNoneThatWasRefused) {
  FrameWindow frame({});
  int ends = 0;
  frame.onSessionEnd = [&] { ++ends; };
  for (const WPARAM ending : {FALSE, TRUE}) {
    ::SendMessageW(frame.Window(), WM_ENDSESSION, ending, 0);
    EXPECT_EQ(ends, static_cast<int>(ending));
  }
}

/// Does to a process what the system does when its console is closed: a thread calls the process's
/// handlers, and when they have returned the process is ended. Answers how it ended.
DWORD StatusAfterItsConsoleIsClosed(HANDLE process) {
  constexpr DWORD kEndedBySystem = 77;
  const FARPROC routine = ::GetProcAddress(::GetModuleHandleW(L"kernel32.dll"), "CtrlRoutine");
  const win32::UniqueHandle thread(::CreateRemoteThread(
      process, nullptr, 0,
      reinterpret_cast<LPTHREAD_START_ROUTINE>(reinterpret_cast<void*>(routine)),
      reinterpret_cast<void*>(DWORD_PTR{CTRL_CLOSE_EVENT}), 0, nullptr));
  ::WaitForSingleObject(thread.Get(), INFINITE);
  DWORD answer = 0;  // the routine's; a thread that ends with its process has that one's status
  ::GetExitCodeThread(thread.Get(), &answer);
  if (answer != 0) ::TerminateProcess(process, kEndedBySystem);
  ::WaitForSingleObject(process, INFINITE);
  DWORD status = 0;
  ::GetExitCodeProcess(process, &status);
  return status;
}

/// Starts rotacasts-host.exe with the arguments.
win32::UniqueHandle StartHost(const std::wstring& arguments) {
  const auto program = OwnFolder() / "..\\..\\bin\\rotacasts-host.exe";
  std::wstring command = L"\"" + program.wstring() + L"\" " + arguments;
  STARTUPINFOW start{};
  start.cb = sizeof start;
  PROCESS_INFORMATION started{};
  ::CreateProcessW(nullptr, command.data(), nullptr, nullptr, FALSE, CREATE_NO_WINDOW, nullptr,
                   nullptr, &start, &started);
  ::CloseHandle(started.hThread);
  return win32::UniqueHandle(started.hProcess);
}

DWORD StatusOf(const std::wstring& arguments) {
  const win32::UniqueHandle process = StartHost(arguments);
  ::WaitForSingleObject(process.Get(), INFINITE);
  DWORD status = STILL_ACTIVE;
  ::GetExitCodeProcess(process.Get(), &status);
  return status;
}

TEST(RunHost, AnswersAnotherConsoleAndEndsInOrderWhenItsOwnIsClosed) {
  Installed();
  const char* const profile = "C:\\Host\\profiles\\srv1\\profile.ini";
  std::ofstream(profile) << "[Profile]\nIndex=1\nGameCode=JO\nProcess=none.exe\nTarget=4001\n";
  for (const std::wstring command : {L"window", L"run"}) {
    const win32::UniqueHandle process = StartHost(command + L" --host-folder C:\\Host");
    const std::wstring console = L"console --host-folder c:\\host ";
    while (StatusOf(console + L"status") == 2) {
      ASSERT_EQ(::WaitForSingleObject(process.Get(), 10), DWORD{WAIT_TIMEOUT}) << command;
    }
    EXPECT_EQ(::FindWindowW(L"rotacasts.host", nullptr) != nullptr, command == L"window");
    EXPECT_EQ(StatusOf(console + L"add 1 From the pipe"), 0U);
    EXPECT_EQ(StatusOf(console + L"delete 1 99"), 1U);
    std::ostringstream out;
    {
      PipeToConsole pipe("C:\\Host", out);
      EXPECT_TRUE(pipe.Ask("messages 1"));
      EXPECT_FALSE(pipe.Ask(std::string(kLongestCommand, 'x')));  // ends this one connection
    }
    EXPECT_NE(out.str().find("From the pipe"), std::string::npos) << out.str();
    EXPECT_EQ(StatusOf(console + L"delete 1 1"), 0U);
    EXPECT_EQ(StatusAfterItsConsoleIsClosed(process.Get()), 0U) << command;
  }
  std::filesystem::remove(profile);
}

TEST(RunHost, AsAServiceStartsStopsAndIsRemoved) {
  Installed();
  const char* const profile = "C:\\Host\\profiles\\srv1\\profile.ini";
  std::ofstream(profile) << "[Profile]\nIndex=1\nGameCode=JO\nProcess=none.exe\nTarget=4001\n";
  const Service service(L"rotacasts-host c--host");
  EXPECT_EQ(StatusOf(L"service start --host-folder C:\\Host"), 2U);
  EXPECT_EQ(service.State(), "not installed");
  for (const wchar_t* step : {L"install", L"install", L"start", L"start"}) {
    EXPECT_EQ(StatusOf(std::wstring(L"service ") + step + L" --host-folder C:\\Host"), 0U);
  }
  EXPECT_EQ(service.State(), "running");
  EXPECT_EQ(StatusOf(L"console --host-folder C:\\Host status"), 0U);
  EXPECT_EQ(StatusOf(L"service stop --host-folder C:\\Host"), 0U);
  EXPECT_EQ(service.State(), "stopped");
  EXPECT_EQ(StatusOf(L"service remove --host-folder C:\\Host"), 0U);
  EXPECT_EQ(service.State(), "not installed");
  std::filesystem::remove(profile);
}

/// What becomes of a program that is started for a chat message.
std::string EndOf(const std::vector<std::string>& command, std::chrono::milliseconds limit) try {
  EventLoop loop;
  ProgramStarter programs(loop, limit);
  std::string problem;
  programs.Start(command, [&](const ProgramEnd& end) {
    problem = end.words;
    loop.Stop();
  });
  loop.Run();
  return problem;
} catch (const RuntimeError& error) {
  return error.description;
}

TEST(ProgramStarter, PassesEveryWordOnAsItIsAndEndsWhatTakesTooLong) {
  constexpr std::chrono::seconds kLong{30};
  const auto bin = OwnFolder() / "..\\..\\bin";
  const std::string host = (bin / "rotacasts-host.exe").string();
  EXPECT_EQ(EndOf({host, "--help"}, kLong), "");
  for (const std::string word :
       {"a b", "say \"hi\"", "ends with \\", "\\\"both\\\\", "100% & more"}) {
    EXPECT_NE(EndOf({host, word}, kLong).find("\"" + word + "\" is not known here"), word.npos)
        << word << ": " << EndOf({host, word}, kLong);
  }
  const std::string endless = (bin / "game-server-sim.exe").string();
  EXPECT_EQ(EndOf({endless, "--game-code", "JO"}, std::chrono::seconds(1)),
            endless + " took longer than 1 s and was ended");
  EXPECT_NE(EndOf({"no-such-program"}, kLong).find("is not there"), std::string::npos);
  std::ofstream("shell.bat") << "@echo off\n";
  EXPECT_NE(EndOf({"shell.bat", "x & calc"}, kLong).find("is a batch file"), std::string::npos);
}

TEST(WorkQueue, AnswersNothingOnceTheLoopIsGone) {
  auto loop = std::make_unique<EventLoop>();
  const std::shared_ptr<WorkQueue> queue = loop->Queue();
  queue->Post([&] { throw RuntimeError(ErrorNumber::InternalError); });
  queue->Post([&] { loop->Stop(); });
  int errors = 0;
  loop->onError = [&](const std::string&) { ++errors; };
  loop->Run();
  EXPECT_EQ(errors, 1);
  loop.reset();
  EXPECT_FALSE(queue->Call([] {}));
}

/// The host as `window` puts it together, with the DLL, its window and real files. The game is a
/// fake.
class HostedPluginTest : public ComponentTest, public PluginSite {
 protected:
  HostedPluginTest() {
    profiles.MakeWhatIsMissing();
    server.LoadEveryProfile();
  }
  ~HostedPluginTest() override { server.Unload(); }
  /// Releases the fake components and makes a profile. Returns the host folder.
  std::string Prepare() {
    plugin.reset();
    installed.CallEntry("DllCanUnloadNow");
    siblings.reset();
    folder.AddProfile(4, "JO", "1", "4004", MessageFileBytes({"a", "b"}, "0", "3"));
    return folder.Path();
  }
  PluginArea Area() const override {
    return {reinterpret_cast<forms::WindowHandle>(frame->Get()), 9000, 7000};
  }
  HostedPlugin::Reply Remote(const char* operation, const char* value) {
    return server.Remote(4, RemoteOperationOf(operation), value);
  }

  static constexpr const char* kFile = "profiles/srv4/settings/Rotacasts.ini";
  const TestFolder folder{"C:\\Host"};
  std::ostringstream out;
  HostProfiles profiles{Prepare(), out};
  const std::unique_ptr<UtilityComponent> real = profiles.Components().CreateUtility();
  const SiblingRegistration registered{*memory, *real};
  LateBoundPlugin hosted{folder.Path(), profiles.Components().Files()};
  ServerHost server{profiles, hosted, *this, {}};
};

TEST_F(HostedPluginTest, WhatCannotBeStoredChangesNeitherFileNorWindowAndTheReasonIsSaid) {
  host.longs[0x00C87598] = 2;  // a game is running
  const std::string before = folder.Read(kFile);
  std::filesystem::permissions(folder.File(kFile), std::filesystem::perms::owner_read);
  const std::string why = folder.File(kFile) + " is read-only; make it writable and try again\n";
  Console console(server, out);
  for (const auto& [line, says] : {std::pair("enable 4 1", "not switched: " + why),
                                   {"interval 4 0", "not changed: " + why},
                                   {"down 4 1", "not moved: " + why},
                                   {"delete 4 1", "not deleted: " + why},
                                   {"remote 4 AddMessageRem <x>", why + "\"0\"\n"}}) {
    out.str("");
    console.Execute(line);
    EXPECT_EQ(out.str(), says);
    EXPECT_EQ(::SendMessageW(Control("chkAuto"), BM_GETCHECK, 0, 0), BST_UNCHECKED) << line;
    EXPECT_EQ(TextOf("txtInterval"), "3") << line;
    EXPECT_EQ(Rows(), (Texts{"a", "b"})) << line;
  }
  EXPECT_NE(folder.ReadAll("profiles/srv4/adminlogs").find("Add Rotacast (Message: x)"),
            before.npos);
  ::SendMessageW(Form(), WM_TIMER, 4, 0);
  EXPECT_EQ(host.sent, Texts{});
  EXPECT_EQ(folder.Read(kFile), before);
  std::filesystem::permissions(folder.File(kFile), std::filesystem::perms::owner_all);
}

TEST_F(HostedPluginTest, AFirstMessageInAMissingFileIsListed) {
  std::filesystem::remove(folder.File(kFile));
  EXPECT_EQ(Remote("AddMessageRem", "<x>").text, "1");
  EXPECT_EQ(Rows(), Texts{"x"});
}

TEST_F(HostedPluginTest, WhileAnErrorIsShownEveryCallReadsAndWritesTheFile) {
  user.insideBox = [&] {
    folder.Write(kFile, MessageFileBytes({"hand"}, "0", "3"));
    EXPECT_EQ(Remote("GetMessagesRem", "").text, "<hand>|0|3");
    EXPECT_EQ(Remote("AddMessageRem", "<x>").text, "1");
    EXPECT_EQ(folder.Read(kFile), MessageFileBytes({"hand", "x"}, "0", "3"));
  };
  Remote("EnableRTRem", "3");  // written, then refused by the check box
  EXPECT_EQ(folder.Read(kFile), MessageFileBytes({"hand", "x"}, "0", "3"));
}

}  // namespace
}  // namespace rotacasts::host
