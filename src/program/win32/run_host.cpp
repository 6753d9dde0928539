#include "program/run_host.h"

#include <iostream>

#include "console/win32/console_pipe.h"
#include "machine/win32/event_loop.h"
#include "machine/win32/program_end.h"
#include "machine/win32/program_starter.h"
#include "program/headless_host.h"
#include "program/redirection.h"
#include "terminal/win32/console_input.h"
#include "terminal/win32/console_output.h"

namespace rotacasts::host {
namespace {

/// Has the loop answer, on its own thread. Empty once the loop is gone.
ConsoleAnswer Ask(WorkQueue& queue, ServerHost& host, const std::string& line) {
  ConsoleAnswer answer;
  queue.Call([&] { answer = AnswerCommand(host, line); });
  return answer;
}

}  // namespace

void HoldSignals() {}

struct HostRun::Parts {
  ConsoleOutput output;
  const Redirection redirection{std::cout, output};
};

HostRun::HostRun(Output output)
    : parts_(output == Output::Console ? std::make_unique<Parts>() : nullptr) {}
HostRun::~HostRun() = default;

void HostRun::Run(HostProfiles& profiles, const HostOptions& options, std::ostream& out) {
  EventLoop loop;
  ProgramStarter programs(loop);
  HeadlessHost host(loop, programs, profiles, options, out);
  const std::shared_ptr<WorkQueue> queue = loop.Queue();
  ServeOtherConsoles(options.folder, out, [queue, &host](const std::string& line) {
    return Ask(*queue, host.Host(), line);
  });
  host.Start();
  ReadConsoleLines([queue, &host, &out](const std::optional<std::string>& line) {
    queue->Post([&host, &out, line] {
      if (line) {
        host.Execute(*line);
      } else {
        out << kGoesOnAlone << "\n" << std::flush;
      }
    });
    return line.has_value();
  });
  const ProgramEndHandler endHandler([queue, &loop] { queue->Post([&loop] { loop.Stop(); }); });
  loop.Run();
}

}  // namespace rotacasts::host
