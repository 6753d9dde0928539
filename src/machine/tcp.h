// TCP addresses and connections of the page's server.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>

#include "base/runtime_error.h"

struct addrinfo;
struct sockaddr;

namespace rotacasts::host {

/// The address that a server listens at.
class ListenAddress {
 public:
  /// Reads "ADDRESS:PORT": a numeric address, one of IPv6 in brackets, or "localhost". Errors: 5 if
  /// it is none.
  explicit ListenAddress(const std::string& text);

  /// Lasts as long as this object.
  const sockaddr* Get() const;
  bool IsIPv6() const;
  /// Whether only programs of this machine can connect.
  bool IsLoopback() const;

 private:
  struct Free {
    void operator()(addrinfo* list) const;
  };
  std::unique_ptr<addrinfo, Free> list_;
};

/// Errors: 57 if the address is not there or is taken at this moment, 70 if this user may not
/// listen at it, 5 if it is none; each in words for the person.
void RequireFree(const std::string& address);

/// Why the page cannot be served at an address, from the system's error of a moment ago.
RuntimeError NotServed(const std::string& address);

/// The client's address without the port. A network of IPv6 counts as one client, this machine
/// excepted.
std::string ClientAddressOf(const sockaddr& address);

/// The same for the address in a text, with or without a port: "1.2.3.4:5", "[2001:db8::1]:5";
/// nullopt if it has none.
std::optional<std::string> ClientAddressIn(const std::string& text);

/// Whether a client at this address is on this machine.
bool IsLoopback(const std::string& address);

/// Ends a connection in both directions; its socket, a number of the system's, stays open.
void CutOff(std::intptr_t socket);

}  // namespace rotacasts::host
