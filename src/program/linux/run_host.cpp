#include "program/run_host.h"

#include <iostream>
#include <memory>
#include <optional>
#include <utility>

#include "console/completion.h"
#include "console/console.h"
#include "console/console_protocol.h"
#include "console/console_server.h"
#include "machine/linux/program_starter.h"
#include "machine/linux/tcp.h"
#include "program/headless_host.h"
#include "program/redirection.h"
#include "siblings/plain_words.h"
#include "terminal/linux/console_lines.h"
#include "web/web_site.h"

namespace rotacasts::host {

namespace {

constexpr std::chrono::seconds kPageRetry{2};

/// The page. While its address is taken or not there yet, as when the machine starts, it is tried
/// again from time to time.
class ServedPage {
 public:
  /// Errors: 5, 53 or 70 if it can never be served there.
  ServedPage(EventLoop& loop, ServerHost& host, const HostOptions& options, std::ostream& out)
      : loop_(loop), host_(host), options_(options), out_(out) {
    loop_.AddDeadline([this] { return next_; }, [this] { Try(); });
    Try();
  }

 private:
  void Try() {
    next_.reset();
    try {
      RequireFree(options_.web);
      site_.emplace(loop_, host_, options_.web, options_.webHosts, out_);
    } catch (const RuntimeError& error) {
      if (!error.Is(ErrorNumber::DeviceIoError)) throw;
      next_ = EventLoop::Clock::now() + kPageRetry;
      if (std::exchange(isTold_, true)) return;
      out_ << PlainWords(error) << ", or wait: it is tried again and again\n" << std::flush;
    }
  }

  EventLoop& loop_;
  ServerHost& host_;
  const HostOptions& options_;
  std::ostream& out_;
  std::optional<EventLoop::Clock::time_point> next_;
  bool isTold_ = false;
  std::optional<web::WebSite> site_;
};

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
  std::optional<ServedPage> page;
  if (!options.web.empty()) page.emplace(loop, host.Host(), options, out);
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
