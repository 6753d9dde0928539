// The memory component of the stand-alone host: real reads, real sends.
#pragma once

#include "host/components/game_processes.h"
#include "host/machine/chat_socket.h"
#include "platform/components.h"

namespace rotacasts::host {

/// Process handles are those of `processes`; a message target is a UDP port of 127.0.0.1. Texts in
/// a game's memory are Windows-1252, a chat message is one UTF-8 datagram, Base64 packs UTF-8.
class HostMemoryComponent final : public MemoryComponent {
 public:
  explicit HostMemoryComponent(GameProcesses& processes) : processes_(processes) {}

  std::int32_t ReadLong(std::int32_t& processHandle, std::int32_t address) override;
  std::string ReadStr(std::int32_t& processHandle, std::int32_t address) override;
  void AddMsg(std::int16_t& profileIndex, std::int32_t& messageTarget, std::string& text,
              bool& isAffiliate, const std::string& kind, std::int16_t mode) override;
  void AddMsgB(std::int16_t& profileIndex, std::int32_t& messageTarget, std::string& text,
               bool& isAffiliate, const std::string& kind, std::int16_t mode,
               std::string& gameCode) override;
  std::string Enc64(const std::string& text) override;
  /// Error 5 for a text that is no Base64 or packs no UTF-8.
  std::string Dec64(const std::string& text) override;

 private:
  void Send(std::int16_t profileIndex, std::int32_t messageTarget, const std::string& text);

  GameProcesses& processes_;
  ChatSocket socket_;
};

}  // namespace rotacasts::host
