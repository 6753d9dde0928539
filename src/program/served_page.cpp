#include "program/served_page.h"

#include <utility>

#include "machine/tcp.h"
#include "siblings/plain_words.h"

namespace rotacasts::host {
namespace {

constexpr std::chrono::seconds kPageRetry{2};

}  // namespace

ServedPage::ServedPage(EventLoop& loop, ServerHost& host, const HostOptions& options,
                       std::ostream& out)
    : loop_(loop), host_(host), options_(options), out_(out) {
  if (options_.web.empty()) return;
  loop_.AddDeadline([this] { return next_; }, [this] { Try(); });
  Try();
}

void ServedPage::Try() {
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

}  // namespace rotacasts::host
