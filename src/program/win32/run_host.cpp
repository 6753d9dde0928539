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

/// The frame that Ctrl-C closes. The system calls CloseFrame on a separate thread.
std::atomic<HWND> frameToClose = nullptr;

BOOL WINAPI CloseFrame(DWORD) {
  return ::PostMessageW(frameToClose, WM_CLOSE, 0, 0);
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

void RunHost(HostProfiles& profiles, const HostOptions& options, std::ostream& out) {
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
  frame.onConsoleLine = [&](const std::string& line) { return console.Execute(line); };
  console.Start();
  PostConsoleLines(frame.Window(), FrameWindow::kConsoleLine);
  frameToClose = frame.Window();
  ::SetConsoleCtrlHandler(CloseFrame, TRUE);
  RunMessageLoop(frame);
  ::SetConsoleCtrlHandler(CloseFrame, FALSE);
  frame.onConsoleLine = nullptr;
  host.Unload();
}

}  // namespace rotacasts::host
