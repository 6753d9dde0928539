// Where a simulated game server receives its chat. One implementation per platform.
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
  /// Port 0 takes any free one. Error 57 with the reason when the port cannot be had.
  explicit ChatListener(std::uint16_t port);
  ~ChatListener();

  std::uint16_t Port() const;
  /// The next message, or nothing when none comes in time or the program is asked to end.
  std::optional<std::string> Receive(std::chrono::milliseconds within);

 private:
  struct Handle;
  std::unique_ptr<Handle> handle_;
};

}  // namespace rotacasts::simulator
