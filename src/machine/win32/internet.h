// The system's declarations of internet addresses and sockets.
#pragma once

// clang-format off
#include <winsock2.h>
#include <ws2tcpip.h>
// clang-format on

namespace rotacasts::host {

/// Call it before any of them is used.
inline void UseInternet() {
  static const int started = [] {
    WSADATA data;
    return ::WSAStartup(MAKEWORD(2, 2), &data);
  }();
  static_cast<void>(started);
}

}  // namespace rotacasts::host
