// Sending chat to a game server. One implementation per platform.
#pragma once

#include <cstdint>
#include <memory>
#include <string_view>

namespace rotacasts::host {

/// A UDP socket that sends to ports of 127.0.0.1.
class ChatSocket {
 public:
  ChatSocket();
  ~ChatSocket();

  /// Sends one datagram. Errors: 57, with the reason, if the system refuses.
  void Send(std::uint16_t port, std::string_view bytes);

 private:
  struct Handle;
  std::unique_ptr<Handle> handle_;
};

}  // namespace rotacasts::host
