#include "console/console_client.h"

#include <poll.h>
#include <sys/socket.h>

#include <cerrno>
#include <chrono>
#include <thread>
#include <utility>

#include "base/runtime_error.h"
#include "console/console_protocol.h"
#include "host/complaint.h"

namespace rotacasts::host {
namespace {

/// Waits a moment for a host that is just starting.
SocketDescriptor ConnectSoon(const std::string& hostFolder) {
  constexpr int kAttempts = 20;
  for (int attempt = 1;; ++attempt) {
    try {
      return ConnectInFolder(hostFolder, kConsoleSocket);
    } catch (const RuntimeError& error) {
      const bool isMissing = error.number == static_cast<std::int32_t>(ErrorNumber::FileNotFound);
      if (!isMissing || attempt == kAttempts) throw;
    }
    std::this_thread::sleep_for(std::chrono::milliseconds(50));
  }
}

SocketDescriptor Connect(const std::string& hostFolder) try {
  return ConnectSoon(hostFolder);
} catch (const RuntimeError& error) {
  if (error.number == static_cast<std::int32_t>(ErrorNumber::FileNotFound)) {
    ComplainOfNoHost(hostFolder);
  }
  if (error.number == static_cast<std::int32_t>(ErrorNumber::PermissionDenied)) {
    throw Complaint("only the user of the host in " + hostFolder +
                    ", and root, may use its console; try it with sudo");
  }
  throw;
}

}  // namespace

ConsoleClient::ConsoleClient(EventLoop& loop, const std::string& hostFolder, std::ostream& out)
    : loop_(loop), out_(out), printer_(out), socket_(Connect(hostFolder)) {
  loop_.Watch(socket_.Get(), POLLIN, [this](short ready) { Handle(ready); });
}

void ConsoleClient::Ask(std::string line) {
  waiting_.push_back(std::move(line));
  if (!isAsking_) AskNext();
}

void ConsoleClient::EndWhenAnswered() {
  endsWhenAnswered_ = true;
  if (!isAsking_) loop_.Stop();
}

void ConsoleClient::AskNext() {
  isAsking_ = !waiting_.empty();
  if (!isAsking_) {
    if (endsWhenAnswered_) loop_.Stop();
    return;
  }
  sending_ = std::move(waiting_.front()) + "\n";
  waiting_.pop_front();
  loop_.Watch(socket_.Get(), POLLIN | POLLOUT, [this](short ready) { Handle(ready); });
}

void ConsoleClient::Handle(short ready) {
  if (!sending_.empty() && (ready & POLLOUT) != 0) {
    const ssize_t sent = ::send(socket_.Get(), sending_.data(), sending_.size(), 0);
    if (sent > 0) sending_.erase(0, static_cast<std::size_t>(sent));
    if (sending_.empty()) {
      loop_.Watch(socket_.Get(), POLLIN, [this](short now) { Handle(now); });
    }
  }
  if ((ready & (POLLIN | POLLHUP | POLLERR)) == 0) return;
  char bytes[4096];
  const ssize_t count = ::recv(socket_.Get(), bytes, sizeof bytes, 0);
  if (count > 0) {
    if (printer_.Print({bytes, static_cast<std::size_t>(count)})) AskNext();
    return;
  }
  if (count < 0 && (errno == EAGAIN || errno == EINTR)) return;
  isLost_ = true;
  out_ << kConnectionEnded << std::flush;
  loop_.Stop();
}

}  // namespace rotacasts::host
