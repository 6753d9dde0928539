#include "program/run_host.h"

#include <atomic>

#include "console/console.h"
#include "machine/win32/console_input.h"
#include "program/win32/frame_window.h"
#include "program/win32/late_bound_plugin.h"
#include "siblings/win32/sibling_objects.h"

namespace rotacasts::host {
namespace {

/// Initialises COM on this thread.
class Apartment {
 public:
  Apartment() { ::CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED); }
  ~Apartment() { ::CoUninitialize(); }
  Apartment(const Apartment&) = delete;
  Apartment& operator=(const Apartment&) = delete;
};

constexpr DWORD kLongestEnd = 10000;  // milliseconds; the system itself may wait for less

std::atomic<HWND> frameToClose = nullptr;

/// Closes the frame for Ctrl-C, and when the console is closed. Called on a thread of its own. Once
/// it has returned the system ends the process, so it waits for that to come about in due order,
/// which ends this thread too.
BOOL WINAPI CloseFrame(DWORD event) {
  const BOOL isPosted = ::PostMessageW(frameToClose, WM_CLOSE, 0, 0);
  if (event != CTRL_C_EVENT && event != CTRL_BREAK_EVENT) ::Sleep(kLongestEnd);
  return isPosted;
}

std::vector<FrameWindow::Row> RowsOf(const HostProfiles& profiles) {
  std::vector<FrameWindow::Row> rows;
  for (const auto& [index, profile] : profiles.All()) {
    rows.push_back(
        {index, std::to_string(index) + "  " + profile.folder + "  (" + profile.gameCode + ")"});
  }
  return rows;
}

}  // namespace

void HoldSignals() {}

struct HostRun::Parts {};

HostRun::HostRun() = default;
HostRun::~HostRun() = default;

void HostRun::Run(HostProfiles& profiles, const HostOptions& options, std::ostream& out) {
  const Apartment apartment;
  const auto memory = profiles.Components().CreateMemory();
  const auto utility = profiles.Components().CreateUtility();
  const SiblingRegistration siblings(*memory, *utility);
  FrameWindow frame(RowsOf(profiles));
  LateBoundPlugin plugin(options.folder, profiles.Components().Files());
  if (options.minute != std::chrono::minutes(1)) plugin.ShortenMinute(options.minute);
  ServerHost host(profiles, plugin, frame, options);
  Console console(host, out);
  frame.onChoose = [&](std::int32_t profile) { host.Show(profile); };
  frame.onConsoleLine = [&](const std::string& line) {
    return console.Execute(line) != Console::Outcome::Quit;
  };
  frame.onSessionEnd = [&] { host.Unload(); };
  console.Start();
  PostConsoleLines(frame.Window(), FrameWindow::kConsoleLine);
  frameToClose = frame.Window();
  ::SetConsoleCtrlHandler(CloseFrame, TRUE);
  RunMessageLoop(frame);  // the handler stays: taking it away would wait for it, if it is at work
  frame.onConsoleLine = nullptr;
  frame.onSessionEnd = nullptr;
  host.Unload();
}

}  // namespace rotacasts::host
