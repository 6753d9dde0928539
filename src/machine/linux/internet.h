// The system's declarations of internet addresses and sockets.
#pragma once

#include <arpa/inet.h>
#include <netdb.h>
#include <sys/socket.h>

namespace rotacasts::host {

/// Call it before any of them is used.
inline void UseInternet() {}

}  // namespace rotacasts::host
