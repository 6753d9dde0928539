#include "machine/win32/program_end.h"

#include <utility>

#include "machine/win32/lock.h"

namespace rotacasts::host {
namespace {

constexpr DWORD kLongestEnd = 10000;  // milliseconds; the system itself may wait for less

struct End {
  win32::Lock lock;
  std::function<void()> handler;
  bool isAsked = false;
  bool staysAtLogoff = false;
};

/// The system keeps calling the handler until the process is gone, so this outlives everything.
End& TheEnd() {
  static auto* const end = new End;
  return *end;
}

/// Once this has returned for anything but Ctrl-C and Ctrl-Break, the system ends the process, so
/// it waits for the program to end in due order, which ends this thread too.
BOOL WINAPI Handle(DWORD event) {
  if (event == CTRL_LOGOFF_EVENT && TheEnd().staysAtLogoff) return TRUE;
  AskToEnd();
  if (event != CTRL_C_EVENT && event != CTRL_BREAK_EVENT) ::Sleep(kLongestEnd);
  return TRUE;
}

}  // namespace

// The handler stays: taking it away would wait for it, if it is at work.
ProgramEndHandler::ProgramEndHandler(std::function<void()> end) {
  const win32::Lock::Held held(TheEnd().lock);
  TheEnd().handler = std::move(end);
  if (TheEnd().isAsked) TheEnd().handler();
  ::SetConsoleCtrlHandler(Handle, TRUE);
}

void StayAtLogoff() {
  TheEnd().staysAtLogoff = true;
}

void AskToEnd() {
  const win32::Lock::Held held(TheEnd().lock);
  TheEnd().isAsked = true;
  if (TheEnd().handler) TheEnd().handler();
}

}  // namespace rotacasts::host
