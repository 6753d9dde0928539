#include "program/run_host.h"

#include <iostream>
#include <memory>
#include <optional>

#include "console/completion.h"
#include "console/console.h"
#include "console/console_protocol.h"
#include "console/console_server.h"
#include "machine/linux/program_starter.h"
#include "program/headless_host.h"
#include "program/redirection.h"
#include "program/served_page.h"
#include "siblings/plain_words.h"
#include "terminal/linux/console_lines.h"

namespace rotacasts::host {

namespace {

/// What serves the consoles of other processes; null, with the reason in `out`, if that is
/// impossible.
std::unique_ptr<ConsoleServer> ServeOtherConsoles(EventLoop& loop, ServerHost& host,
                                                  std::ostream& out) {
  try {
    return std::make_unique<ConsoleServer>(loop, host);
  } catch (const RuntimeError& error) {
    out << kNoOtherConsoles << PlainWords(error) << "\n";
    return nullptr;
  }
}

}  // namespace

void HoldSignals() {
  EventLoop::BlockSignals();
}

struct HostRun::Parts {
  EventLoop loop;
  ConsoleOutput output{loop};
  const Redirection redirection{std::cout, output};
};

HostRun::HostRun(Output) : parts_(std::make_unique<Parts>()) {}
HostRun::~HostRun() = default;

void HostRun::Run(HostProfiles& profiles, const HostOptions& options, std::ostream& out) {
  EventLoop& loop = parts_->loop;
  ProgramStarter programs(loop);
  HeadlessHost host(loop, programs, profiles, options, out);
  const ServedPage page(loop, host.Host(), options, out);
  const auto others = ServeOtherConsoles(loop, host.Host(), out);
  host.Start();
  const LineEditor::Person person{
      [&host](const std::string& line) { return host.Execute(line); },
      [&out] { out << kGoesOnAlone << " (SIGTERM ends it, SIGHUP reloads)\n"
                   << std::flush; },
      [&host](const std::string& before) { return Completions(before, host.Indexes()); }};
  const ConsoleLines lines(loop, parts_->output, person);
  loop.Run();
}

HostRunner* const kRunInWindow = nullptr;

}  // namespace rotacasts::host
