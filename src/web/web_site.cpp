#include "web/web_site.h"

#include "base/runtime_error.h"
#include "machine/tcp.h"

namespace rotacasts::host::web {
namespace {

/// The time between two reads of a tenth of the rows, while somebody looks at the page.
constexpr std::chrono::milliseconds kBeat{100};

std::string UrlOf(const std::string& address, std::uint16_t port) {
  return "http://" + address.substr(0, address.rfind(':')) + ":" + std::to_string(port) + "/";
}

}  // namespace

WebSite::WebSite(EventLoop& loop, ServerHost& host, const std::string& address,
                 std::vector<std::string> names, std::ostream& out)
    : api_(loop, host, sessions_, std::move(names), out),
      server_(loop, address,
              [this](const std::shared_ptr<Exchange>& exchange) { api_.Handle(exchange); }) {
  api_.onChange = [this] { server_.Pump(); };
  loop.AddDeadline(
      [this]() -> std::optional<Clock::time_point> {
        if (server_.EventSources() == 0) return std::nullopt;
        return nextBeat_;
      },
      [this] {
        nextBeat_ = Clock::now() + kBeat;
        api_.Refresh();
        server_.Pump();
      });
  out << "the page: " << UrlOf(address, server_.Port()) << "\n";
  if (!ListenAddress(address).IsLoopback()) {
    out << "warning: whoever is on the way to the page can read passwords, because it is not "
           "encrypted; serve it at 127.0.0.1, behind a proxy with TLS\n";
  }
  try {
    if (Admins(host.Profiles().Folder()).All().empty()) {
      out << "nobody may sign in yet; \"rotacasts-host admin set NAME --host-folder DIR\" lets "
             "somebody\n";
    }
  } catch (const RuntimeError&) {  // told when somebody asks for the page
  }
  out << std::flush;
}

}  // namespace rotacasts::host::web
