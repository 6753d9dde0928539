#include "machine/tcp.h"

#include <cerrno>
#include <cstring>

#include "internet.h"
#include "machine/linux/local_socket.h"

namespace rotacasts::host {

void RequireFree(const std::string& address) {
  const ListenAddress listen(address);
  const SocketDescriptor socket(::socket(listen.Get()->sa_family, SOCK_STREAM | SOCK_CLOEXEC, 0));
  const int yes = 1;
  const socklen_t size = listen.IsIPv6() ? sizeof(sockaddr_in6) : sizeof(sockaddr_in);
  if (!socket.IsOpen() ||
      ::setsockopt(socket.Get(), SOL_SOCKET, SO_REUSEADDR, &yes, sizeof yes) != 0 ||
      ::bind(socket.Get(), listen.Get(), size) != 0) {
    throw NotServed(address);
  }
}

RuntimeError NotServed(const std::string& address) {
  const int problem = errno;
  const bool isForbidden = problem == EACCES || problem == EPERM;
  const ErrorNumber number =
      isForbidden ? ErrorNumber::PermissionDenied : ErrorNumber::DeviceIoError;
  return {static_cast<std::int32_t>(number), "the page cannot be served at " + address + " (" +
                                                 std::strerror(problem) +
                                                 "); give --web another address or port"};
}

void CutOff(std::intptr_t socket) {
  ::shutdown(static_cast<int>(socket), SHUT_RDWR);
}

}  // namespace rotacasts::host
