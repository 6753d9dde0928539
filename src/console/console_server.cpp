#include "console/console_server.h"

#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <cerrno>

#include "console/console_protocol.h"
#include "machine/descriptor_shares.h"

namespace rotacasts::host {
namespace {

/// How long to listen no more when the system has no descriptor left.
constexpr std::chrono::milliseconds kPause{500};

}  // namespace

ConsoleServer::ConsoleServer(EventLoop& loop, ServerHost& host)
    : loop_(loop),
      host_(host),
      path_(host.Profiles().Folder() + "/" + kConsoleSocket),
      listening_(ListenInFolder(host.Profiles().Folder(), kConsoleSocket)) {
  loop_.AddDeadline([this] { return listensAgain_; }, [this] { Listen(); });
  Listen();
}

ConsoleServer::~ConsoleServer() {
  for (const auto& [descriptor, connection] : connections_) loop_.Unwatch(descriptor);
  loop_.Unwatch(listening_.Get());
  ::unlink(path_.c_str());
}

void ConsoleServer::Listen() {
  listensAgain_.reset();
  loop_.Watch(listening_.Get(), POLLIN, [this](short) { Accept(); });
}

void ConsoleServer::Accept() {
  SocketDescriptor socket = AcceptNext(listening_);
  if (!socket.IsOpen()) {  // the socket stays ready, and the loop would not wait any more
    loop_.Unwatch(listening_.Get());
    listensAgain_ = EventLoop::Clock::now() + kPause;
    return;
  }
  if (connections_.size() >= OwnDescriptorShares().consoles) {
    const std::string busy = std::string("the host is busy with other consoles\n") + kRefused;
    (void)!::send(socket.Get(), busy.data(), busy.size(), 0);
    return;
  }
  const int descriptor = socket.Get();
  connections_.emplace(descriptor, Connection{std::move(socket), {}, {}});
  loop_.Watch(descriptor, POLLIN, [this, descriptor](short) { Serve(descriptor); });
}

void ConsoleServer::Serve(int descriptor) {
  Connection& connection = connections_.at(descriptor);
  // A command waits until the answer before it is read.
  bool isOpen = !connection.answer.empty() || Receive(connection);
  if (isOpen && connection.answer.empty()) AnswerNext(connection);
  isOpen = isOpen && Send(connection) && !(connection.isEnding && connection.answer.empty());
  if (!isOpen) {
    loop_.Unwatch(descriptor);
    connections_.erase(descriptor);
    return;
  }
  const bool hasMore = connection.received.find('\n') != std::string::npos;
  const bool isWriting = !connection.answer.empty() || hasMore;
  loop_.Watch(descriptor, isWriting ? POLLOUT : POLLIN,
              [this, descriptor](short) { Serve(descriptor); });
}

bool ConsoleServer::Receive(Connection& connection) {
  if (connection.received.find('\n') != std::string::npos) return true;
  char bytes[4096];
  const ssize_t count = ::recv(connection.socket.Get(), bytes, sizeof bytes, 0);
  if (count < 0) return errno == EAGAIN || errno == EINTR;
  connection.received.append(bytes, static_cast<std::size_t>(count));
  return count > 0 && connection.received.size() <= kLongestCommand;
}

void ConsoleServer::AnswerNext(Connection& connection) {
  const std::size_t end = connection.received.find('\n');
  if (end == std::string::npos) return;
  const std::string line = connection.received.substr(0, end);
  connection.received.erase(0, end + 1);
  ConsoleAnswer answer = AnswerCommand(host_, line);
  connection.answer = std::move(answer.bytes);
  connection.isEnding = answer.isLast;
}

bool ConsoleServer::Send(Connection& connection) {
  while (!connection.answer.empty()) {
    const ssize_t count =
        ::send(connection.socket.Get(), connection.answer.data(), connection.answer.size(), 0);
    if (count < 0 && errno == EINTR) continue;
    if (count < 0) return errno == EAGAIN;
    connection.answer.erase(0, static_cast<std::size_t>(count));
  }
  return true;
}

}  // namespace rotacasts::host
