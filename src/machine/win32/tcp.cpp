#include "machine/tcp.h"

#include "internet.h"  // before the other headers of the system

#include "com/com_support.h"

namespace rotacasts::host {
namespace {

/// Closes its socket and leaves the error of the call before alone.
struct ClosedSocket {
  ~ClosedSocket() {
    const int problem = ::WSAGetLastError();
    ::closesocket(socket);
    ::WSASetLastError(problem);
  }
  const SOCKET socket;
};

}  // namespace

// The port can be bound twice where both programs allow it: so this one does not.
void RequireFree(const std::string& address) {
  const ListenAddress listen(address);
  const ClosedSocket closed{::socket(listen.Get()->sa_family, SOCK_STREAM, 0)};
  const BOOL yes = TRUE;
  const int size = listen.IsIPv6() ? sizeof(sockaddr_in6) : sizeof(sockaddr_in);
  if (closed.socket == INVALID_SOCKET ||
      ::setsockopt(closed.socket, SOL_SOCKET, SO_EXCLUSIVEADDRUSE,
                   reinterpret_cast<const char*>(&yes), sizeof yes) != 0 ||
      ::bind(closed.socket, listen.Get(), size) != 0) {
    throw NotServed(address);
  }
}

// A port that another program has for itself is also answered with WSAEACCES, so it is waited for.
RuntimeError NotServed(const std::string& address) {
  return {static_cast<std::int32_t>(ErrorNumber::DeviceIoError),
          "the page cannot be served at " + address + " (" +
              win32::DescribeResult(::WSAGetLastError()) + "); give --web another address or port"};
}

void CutOff(std::intptr_t socket) {
  ::shutdown(static_cast<SOCKET>(socket), SD_BOTH);
}

}  // namespace rotacasts::host
