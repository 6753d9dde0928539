// The parts of the stand-alone host that exist only on Windows.

#include <gtest/gtest.h>

#include "machine/win32/console_input.h"
#include "siblings/game_processes.h"
#include "support/fake_host.h"

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
  EXPECT_EQ(testing::ErrorOf([&] { processes.ReadLong(beyond, address); }), 57);
  ::VirtualFree(place, 0, MEM_RELEASE);
}

TEST(ConsoleInput, TheLastLineNeedsNoLineFeed) {
  HANDLE input = nullptr;
  HANDLE writer = nullptr;
  ASSERT_NE(::CreatePipe(&input, &writer, nullptr, 0), FALSE);
  const HANDLE before = ::GetStdHandle(STD_INPUT_HANDLE);
  ::SetStdHandle(STD_INPUT_HANDLE, input);
  const HWND window =
      ::CreateWindowExW(0, L"STATIC", L"", 0, 0, 0, 0, 0, HWND_MESSAGE, nullptr, nullptr, nullptr);
  PostConsoleLines(window, WM_APP);
  const std::string bytes = "status\r\nadd 1 Grüße";
  DWORD count = 0;
  ::WriteFile(writer, bytes.data(), static_cast<DWORD>(bytes.size()), &count, nullptr);
  ::CloseHandle(writer);
  std::vector<std::string> lines;
  for (int tries = 0; lines.size() < 2 && tries < 500; ++tries) {
    for (MSG message; ::PeekMessageW(&message, window, WM_APP, WM_APP, PM_REMOVE) != FALSE;) {
      const std::unique_ptr<std::string> line(reinterpret_cast<std::string*>(message.lParam));
      lines.push_back(*line);
    }
    ::Sleep(10);
  }
  EXPECT_EQ(lines, (std::vector<std::string>{"status", "add 1 Grüße"}));
  ::DestroyWindow(window);
  ::SetStdHandle(STD_INPUT_HANDLE, before);
  ::CloseHandle(input);
}

}  // namespace
}  // namespace rotacasts::host
