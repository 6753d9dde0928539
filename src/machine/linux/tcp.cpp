#include "machine/linux/tcp.h"

#include <arpa/inet.h>
#include <netdb.h>
#include <sys/socket.h>

#include <algorithm>
#include <cerrno>
#include <cstdint>
#include <cstring>
#include <optional>

#include "base/text.h"
#include "machine/linux/local_socket.h"

namespace rotacasts::host {

namespace {

/// Whether it is a port's number. The resolver takes 65536 for 0.
bool IsPort(const std::string& text) {
  const std::optional<std::int32_t> port = WholeNumber(text);
  return port >= 0 && port <= UINT16_MAX;
}

}  // namespace

ListenAddress::ListenAddress(const std::string& text) {
  const std::size_t colon = text.rfind(':');
  std::string host = text.substr(0, std::min(colon, text.size()));
  const std::string port = colon == text.npos ? "" : text.substr(colon + 1);
  if (host == "localhost") host = "127.0.0.1";
  if (host.starts_with('[') && host.ends_with(']')) host = host.substr(1, host.size() - 2);
  addrinfo hints{};
  hints.ai_flags = AI_NUMERICHOST | AI_NUMERICSERV | AI_PASSIVE;
  hints.ai_socktype = SOCK_STREAM;
  addrinfo* found = nullptr;
  if (!host.empty() && IsPort(port) &&
      ::getaddrinfo(host.c_str(), port.c_str(), &hints, &found) == 0) {
    list_.reset(found);
    return;
  }
  throw RuntimeError(static_cast<std::int32_t>(ErrorNumber::InvalidProcedureCall),
                     "\"" + text +
                         "\" is no address to listen at; give one such as 127.0.0.1:8480, with a "
                         "port of at most 65535");
}

void RequireFree(const std::string& address) {
  const ListenAddress listen(address);
  const SocketDescriptor socket(::socket(listen.Get()->sa_family, SOCK_STREAM | SOCK_CLOEXEC, 0));
  const int yes = 1;
  const socklen_t size = listen.IsIPv6() ? sizeof(sockaddr_in6) : sizeof(sockaddr_in);
  if (!socket.IsOpen() ||
      ::setsockopt(socket.Get(), SOL_SOCKET, SO_REUSEADDR, &yes, sizeof yes) != 0 ||
      ::bind(socket.Get(), listen.Get(), size) != 0) {
    throw NotServed(address, errno);
  }
}

RuntimeError NotServed(const std::string& address, int problem) {
  const bool isForbidden = problem == EACCES || problem == EPERM;
  const ErrorNumber number =
      isForbidden ? ErrorNumber::PermissionDenied : ErrorNumber::DeviceIoError;
  return {static_cast<std::int32_t>(number), "the page cannot be served at " + address + " (" +
                                                 std::strerror(problem) +
                                                 "); give --web another address or port"};
}

void ListenAddress::Free::operator()(addrinfo* list) const {
  ::freeaddrinfo(list);
}

const sockaddr* ListenAddress::Get() const {
  return list_->ai_addr;
}

bool ListenAddress::IsIPv6() const {
  return list_->ai_family == AF_INET6;
}

bool ListenAddress::IsLoopback() const {
  return host::IsLoopback(ClientAddressOf(*Get()));
}

bool IsLoopback(const std::string& address) {
  return address == "::1" || address.starts_with("127.");
}

std::string ClientAddressOf(const sockaddr& address) {
  char text[INET6_ADDRSTRLEN] = "";
  if (address.sa_family == AF_INET) {
    const auto& v4 = reinterpret_cast<const sockaddr_in&>(address);
    ::inet_ntop(AF_INET, &v4.sin_addr, text, sizeof text);
    return text;
  }
  in6_addr network = reinterpret_cast<const sockaddr_in6&>(address).sin6_addr;
  if (IN6_IS_ADDR_LOOPBACK(&network)) return "::1";
  std::fill(network.s6_addr + 8, network.s6_addr + 16, std::uint8_t{0});
  ::inet_ntop(AF_INET6, &network, text, sizeof text);
  return text;
}

void CutOff(int connection) {
  ::shutdown(connection, SHUT_RDWR);
}

}  // namespace rotacasts::host
