#include "machine/tcp.h"

#include <algorithm>
#include <cstdint>
#include <optional>

#include "base/text.h"
#include "internet.h"

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
  UseInternet();
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
  auto network = reinterpret_cast<const sockaddr_in6&>(address).sin6_addr;
  if (IN6_IS_ADDR_LOOPBACK(&network)) return "::1";
  if (IN6_IS_ADDR_V4MAPPED(&network)) {  // a client of IPv4
    ::inet_ntop(AF_INET, network.s6_addr + 12, text, sizeof text);
    return text;
  }
  std::fill(network.s6_addr + 8, network.s6_addr + 16, std::uint8_t{0});
  ::inet_ntop(AF_INET6, &network, text, sizeof text);
  return text;
}

std::optional<std::string> ClientAddressIn(const std::string& text) {
  std::string address = text;
  if (address.starts_with('[')) {
    address = address.substr(1, address.find(']') - 1);
  } else if (std::ranges::count(address, ':') == 1) {
    address.resize(address.find(':'));
  }
  sockaddr_in v4{};
  v4.sin_family = AF_INET;
  if (::inet_pton(AF_INET, address.c_str(), &v4.sin_addr) == 1) {
    return ClientAddressOf(reinterpret_cast<const sockaddr&>(v4));
  }
  sockaddr_in6 v6{};
  v6.sin6_family = AF_INET6;
  if (::inet_pton(AF_INET6, address.c_str(), &v6.sin6_addr) != 1) return std::nullopt;
  return ClientAddressOf(reinterpret_cast<const sockaddr&>(v6));
}

}  // namespace rotacasts::host
