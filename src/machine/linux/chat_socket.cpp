#include "machine/chat_socket.h"

#include <arpa/inet.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <string>

#include "base/runtime_error.h"

namespace rotacasts::host {

struct ChatSocket::Handle {
  Handle() {
    const int yes = 1;
    ::setsockopt(descriptor, IPPROTO_IP, IP_RECVERR, &yes, sizeof yes);
  }
  ~Handle() { ::close(descriptor); }
  Handle(const Handle&) = delete;
  Handle& operator=(const Handle&) = delete;

  /// Takes what became of the datagrams so far. Returns whether one to this port was refused, which
  /// this machine tells at once.
  bool WasRefused(std::uint16_t port) const {
    bool isRefused = false;
    for (;;) {
      sockaddr_in target{};
      char control[256];
      msghdr message{};
      message.msg_name = &target;
      message.msg_namelen = sizeof target;
      message.msg_control = control;
      message.msg_controllen = sizeof control;
      if (::recvmsg(descriptor, &message, MSG_ERRQUEUE | MSG_DONTWAIT) < 0) return isRefused;
      isRefused = isRefused || ntohs(target.sin_port) == port;
    }
  }

  const int descriptor = ::socket(AF_INET, SOCK_DGRAM | SOCK_CLOEXEC, 0);
};

ChatSocket::ChatSocket() : handle_(std::make_unique<Handle>()) {}
ChatSocket::~ChatSocket() = default;

void ChatSocket::Send(std::uint16_t port, std::string_view bytes) {
  sockaddr_in target{};
  target.sin_family = AF_INET;
  target.sin_port = htons(port);
  target.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
  const auto send = [&] {
    return ::sendto(handle_->descriptor, bytes.data(), bytes.size(), 0,
                    reinterpret_cast<const sockaddr*>(&target), sizeof target);
  };
  ssize_t sent = send();
  if (sent < 0 && errno == ECONNREFUSED) {  // an earlier one was; this one has not gone out yet
    handle_->WasRefused(port);
    sent = send();
  }
  const std::string place = "port " + std::to_string(port);
  if (sent != static_cast<ssize_t>(bytes.size())) {
    throw RuntimeError(static_cast<std::int32_t>(ErrorNumber::DeviceIoError),
                       "cannot send to " + place + " (" + std::strerror(errno) + ")");
  }
  if (!handle_->WasRefused(port)) return;
  throw RuntimeError(static_cast<std::int32_t>(ErrorNumber::DeviceIoError),
                     "nobody receives at " + place +
                         " of this machine; correct Target, or run this host where the game "
                         "server's network is");
}

}  // namespace rotacasts::host
