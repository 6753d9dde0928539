#include "program/run_host.h"

#include <memory>
#include <utility>

#include "console/console.h"
#include "console/win32/console_pipe.h"
#include "machine/win32/program_end.h"
#include "program/win32/frame_window.h"
#include "program/win32/late_bound_plugin.h"
#include "siblings/win32/sibling_objects.h"
#include "terminal/win32/console_input.h"

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

std::vector<FrameWindow::Row> RowsOf(const HostProfiles& profiles) {
  std::vector<FrameWindow::Row> rows;
  for (const auto& [index, profile] : profiles.All()) {
    rows.push_back(
        {index, std::to_string(index) + "  " + profile.folder + "  (" + profile.gameCode + ")"});
  }
  return rows;
}

/// Asks the window on its own thread. Empty once the window is gone.
ConsoleAnswer Ask(HWND window, const std::string& line) {
  ConsoleQuestion question{line};
  ::SendMessageW(window, FrameWindow::kConsoleQuestion, 0, reinterpret_cast<LPARAM>(&question));
  return std::move(question.answer);
}

bool PostLine(HWND window, std::string line) {
  auto copy = std::make_unique<std::string>(std::move(line));
  if (::PostMessageW(window, FrameWindow::kConsoleLine, 0, reinterpret_cast<LPARAM>(copy.get())) ==
      FALSE) {
    return false;
  }
  static_cast<void>(copy.release());
  return true;
}

void RunWindow(HostProfiles& profiles, const HostOptions& options, std::ostream& out) {
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
  frame.onConsoleQuestion = [&](ConsoleQuestion& question) {
    question.answer = AnswerCommand(host, question.line);
  };
  frame.onSessionEnd = [&] { host.Unload(); };
  console.Start();
  const HWND window = frame.Window();
  ReadConsoleLines([window](std::optional<std::string> line) {
    return line && PostLine(window, *std::move(line));
  });
  ServeOtherConsoles(options.folder, out,
                     [window](const std::string& line) { return Ask(window, line); });
  const ProgramEndHandler endHandler([window] { ::PostMessageW(window, WM_CLOSE, 0, 0); });
  RunMessageLoop(frame);
  frame.onConsoleLine = nullptr;
  frame.onConsoleQuestion = nullptr;
  frame.onSessionEnd = nullptr;
  host.Unload();
}

}  // namespace

HostRunner* const kRunInWindow = RunWindow;

}  // namespace rotacasts::host
