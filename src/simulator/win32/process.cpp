#include "simulator/process.h"

#include <atomic>

// clang-format off
#include "com/windows_api.h"
#include <tlhelp32.h>
// clang-format on

namespace rotacasts::simulator {
namespace {

std::atomic<bool> endRequested = false;

BOOL WINAPI RequestEnd(DWORD) {
  endRequested = true;
  return TRUE;
}

DWORD ParentOf(DWORD process) {
  const HANDLE snapshot = ::CreateToolhelp32Snapshot(TH32CS_SNAPPROCESS, 0);
  if (snapshot == INVALID_HANDLE_VALUE) return 0;
  DWORD parent = 0;
  PROCESSENTRY32W entry{};
  entry.dwSize = sizeof entry;
  for (BOOL more = ::Process32FirstW(snapshot, &entry); more != FALSE;
       more = ::Process32NextW(snapshot, &entry)) {
    if (entry.th32ProcessID == process) parent = entry.th32ParentProcessID;
  }
  ::CloseHandle(snapshot);
  return parent;
}

DWORD WINAPI EndAfter(void* parent) {
  ::WaitForSingleObject(parent, INFINITE);
  endRequested = true;
  return 0;
}

}  // namespace

std::int64_t ThisProcess() {
  return ::GetCurrentProcessId();
}

void WatchForEnd() {
  ::SetConsoleCtrlHandler(RequestEnd, TRUE);
}

bool EndRequested() {
  return endRequested;
}

void EndWithParent() {
  const HANDLE parent = ::OpenProcess(SYNCHRONIZE, FALSE, ParentOf(::GetCurrentProcessId()));
  if (parent == nullptr) return;
  const HANDLE waiting = ::CreateThread(nullptr, 0, EndAfter, parent, 0, nullptr);
  if (waiting != nullptr) ::CloseHandle(waiting);
}

void AllowReaders() {}  // a process of the same user may be read

}  // namespace rotacasts::simulator
