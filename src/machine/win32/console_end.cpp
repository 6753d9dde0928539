#include "machine/win32/console_end.h"

#include <utility>

#include "com/windows_api.h"

namespace rotacasts::host {
namespace {

constexpr DWORD kLongestEnd = 10000;  // milliseconds; the system itself may wait for less

/// The system keeps calling the handler until the process is gone, so this outlives everything.
std::function<void()>& End() {
  static auto* const end = new std::function<void()>;
  return *end;
}

/// Once this has returned for anything but Ctrl-C and Ctrl-Break, the system ends the process, so
/// it waits for the program to end in due order, which ends this thread too.
BOOL WINAPI Handle(DWORD event) {
  End()();
  if (event != CTRL_C_EVENT && event != CTRL_BREAK_EVENT) ::Sleep(kLongestEnd);
  return TRUE;
}

}  // namespace

// The handler stays: taking it away would wait for it, if it is at work.
ConsoleEnd::ConsoleEnd(std::function<void()> end) {
  End() = std::move(end);
  ::SetConsoleCtrlHandler(Handle, TRUE);
}

}  // namespace rotacasts::host
