// UDP sockets of the system.
#pragma once

// clang-format off
#include <winsock2.h>
#include <ws2tcpip.h>
// clang-format on

#include <cstdint>
#include <string>

namespace rotacasts::win32 {

/// A UDP socket, closed by the destructor.
class UdpSocket {
 public:
  UdpSocket() {
    WSADATA data;
    ::WSAStartup(MAKEWORD(2, 2), &data);
    socket_ = ::socket(AF_INET, SOCK_DGRAM, 0);
  }
  ~UdpSocket() {
    ::closesocket(socket_);
    ::WSACleanup();
  }
  UdpSocket(const UdpSocket&) = delete;
  UdpSocket& operator=(const UdpSocket&) = delete;

  SOCKET Get() const { return socket_; }

 private:
  SOCKET socket_ = INVALID_SOCKET;
};

inline sockaddr_in LoopbackAddress(std::uint16_t port) {
  sockaddr_in address{};
  address.sin_family = AF_INET;
  address.sin_port = ::htons(port);
  address.sin_addr.s_addr = ::htonl(INADDR_LOOPBACK);
  return address;
}

}  // namespace rotacasts::win32
