// Receives a simulated game server's chat. One implementation per platform.
#pragma once

#include <chrono>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>

namespace rotacasts::simulator {

/// A UDP port of 127.0.0.1.
class ChatListener {
 public:
  /// Port 0 takes any free one. Errors: 57, with the reason, if the port is not available.
  explicit ChatListener(std::uint16_t port);
  ~ChatListener();

  std::uint16_t Port() const;
  /// The next message; nullopt if none arrives in time or the program is asked to end.
  std::optional<std::string> Receive(std::chrono::milliseconds within);

 private:
  struct Handle;
  std::unique_ptr<Handle> handle_;
};

}  // namespace rotacasts::simulator
