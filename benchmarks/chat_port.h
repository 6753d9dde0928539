// The port to which the measured hosts post their chat.
#pragma once

#include <arpa/inet.h>
#include <sys/socket.h>
#include <unistd.h>

#include <cstdint>

namespace rotacasts::bench {

/// A datagram socket on a free port of the loopback address, with room for many messages.
class ChatPort {
 public:
  ChatPort() {
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    socklen_t size = sizeof address;
    const int room = 1 << 24;
    ::setsockopt(socket_, SOL_SOCKET, SO_RCVBUF, &room, sizeof room);
    ::bind(socket_, reinterpret_cast<sockaddr*>(&address), size);
    ::getsockname(socket_, reinterpret_cast<sockaddr*>(&address), &size);
    port = ntohs(address.sin_port);
  }
  ~ChatPort() { ::close(socket_); }
  ChatPort(const ChatPort&) = delete;
  ChatPort& operator=(const ChatPort&) = delete;

  int Socket() const { return socket_; }
  std::uint16_t port = 0;

 private:
  const int socket_ = ::socket(AF_INET, SOCK_DGRAM | SOCK_CLOEXEC, 0);
};

}  // namespace rotacasts::bench
