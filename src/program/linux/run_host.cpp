#include "program/run_host.h"

#include <iostream>
#include <memory>
#include <optional>
#include <utility>

#include "console/completion.h"
#include "console/console.h"
#include "console/console_server.h"
#include "host/headless_plugin.h"
#include "machine/linux/console_lines.h"
#include "machine/linux/program_starter.h"
#include "machine/linux/tcp.h"
#include "web/web_site.h"

namespace rotacasts::host {

namespace {

/// Reports a failed chat program as an error of its profile. The plugin reports a datagram's error.
void TellOfChat(const HostProfiles& profiles, Troubles& troubles, const SentText& sent) {
  const auto profile = profiles.All().find(sent.profile);
  if (profile == profiles.All().end() || profile->second.say.empty()) return;
  const Work work{sent.profile, Work::Kind::Chat};
  const std::string label = profile->second.Label();
  if (sent.outcome == SentText::Outcome::Failed) {
    const std::string words = label + ": " + sent.reason;
    const bool isNew = !troubles.IsReported(work, words);
    troubles.ReportStarted(work, words);
    if (isNew) profiles.Record("Say", words);
  }
  if (const auto ended = troubles.ReportEnded(work, label)) profiles.Record("Say", *ended);
}

std::vector<std::int32_t> IndexesOf(const HostProfiles& profiles) {
  std::vector<std::int32_t> indexes;
  for (const auto& [index, profile] : profiles.All()) indexes.push_back(index);
  return indexes;
}

/// Redirects a stream to another buffer while this object exists.
class Redirection {
 public:
  Redirection(std::ostream& stream, std::streambuf& buffer)
      : stream_(stream), before_(stream.rdbuf(&buffer)) {}
  ~Redirection() { stream_.rdbuf(before_); }
  Redirection(const Redirection&) = delete;
  Redirection& operator=(const Redirection&) = delete;

 private:
  std::ostream& stream_;
  std::streambuf* const before_;
};

constexpr std::chrono::seconds kPageRetry{2};

constexpr const char* kGoesOnAlone =
    "the console's input has ended; the host goes on, and \"rotacasts-host console\" reaches it "
    "(SIGTERM ends it, SIGHUP reloads)\n";

/// The page. While its address is taken or not there yet, as when the machine starts, it is tried
/// again from time to time.
class ServedPage {
 public:
  /// Errors: 5, 53 or 70 if it can never be served there.
  ServedPage(EventLoop& loop, ServerHost& host, const std::string& address, std::ostream& out)
      : loop_(loop), host_(host), address_(address), out_(out) {
    loop_.AddDeadline([this] { return next_; }, [this] { Try(); });
    Try();
  }

 private:
  void Try() {
    next_.reset();
    try {
      RequireFree(address_);
      site_.emplace(loop_, host_, address_, out_);
    } catch (const RuntimeError& error) {
      if (!error.Is(ErrorNumber::DeviceIoError)) throw;
      next_ = EventLoop::Clock::now() + kPageRetry;
      if (std::exchange(isTold_, true)) return;
      out_ << error.description << ", or wait: it is tried again and again\n" << std::flush;
    }
  }

  EventLoop& loop_;
  ServerHost& host_;
  const std::string address_;
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
    out << "\"rotacasts-host console\" cannot be used: " << error.description << "\n";
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

HostRun::HostRun() : parts_(std::make_unique<Parts>()) {}
HostRun::~HostRun() = default;

void HostRun::Run(HostProfiles& profiles, const HostOptions& options, std::ostream& out) {
  EventLoop& loop = parts_->loop;
  Troubles troubles(out);
  ProgramStarter programs(loop);
  Chat& chat = profiles.Components().GetChat();
  chat.SetRunner(&programs);
  chat.onEnd = [&](const SentText& sent) { TellOfChat(profiles, troubles, sent); };
  HeadlessPlugin plugin(profiles, troubles, options.minute);
  HeadlessSite site;
  ServerHost host(profiles, plugin, site, options);
  std::optional<ServedPage> page;
  if (!options.web.empty()) page.emplace(loop, host, options.web, out);
  Console console(host, out);
  loop.AddDeadline([&plugin] { return plugin.NextDue(); }, [&plugin] { plugin.RunDue(); });
  GameProcesses& servers = profiles.Components().Processes();
  loop.AtTurnBegin([&servers] { servers.BeginTurn(); });
  loop.AtTurnEnd([&servers] { servers.EndTurn(); });
  loop.onError = [&troubles](const std::string& words) {
    troubles.ReportStarted({0, Work::Kind::Host}, "the host: " + words + "; it goes on");
  };
  loop.onReload = [&console] { console.Reload(); };
  const auto others = ServeOtherConsoles(loop, host, out);
  console.Start();
  const LineEditor::Person person{
      [&](const std::string& line) {
        const bool goesOn = console.Execute(line) != Console::Outcome::Quit;
        if (!goesOn) loop.Stop();
        return goesOn;
      },
      [&out] { out << kGoesOnAlone << std::flush; },
      [&profiles](const std::string& before) { return Completions(before, IndexesOf(profiles)); }};
  const ConsoleLines lines(loop, parts_->output, person);
  loop.Run();
  chat.onEnd = nullptr;
  chat.SetRunner(nullptr);
}

}  // namespace rotacasts::host
