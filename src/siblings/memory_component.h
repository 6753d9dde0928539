// The memory component of the stand-alone host: real reads, real sends.
#pragma once

#include "platform/components.h"
#include "siblings/chat.h"
#include "siblings/game_processes.h"

namespace rotacasts::host {

/// Process handles are those of `processes`, whose servers answer as `whenAway` says while they are
/// away; what a message target is, `chat` knows. Texts in a game's memory are Windows-1252, Base64
/// packs UTF-8. Both outlive the component.
class HostMemoryComponent final : public MemoryComponent {
 public:
  HostMemoryComponent(GameProcesses& processes, Chat& chat, WhenAway whenAway)
      : processes_(processes), chat_(chat), whenAway_(whenAway) {}

  std::int32_t ReadLong(std::int32_t& processHandle, std::int32_t address) override;
  std::string ReadStr(std::int32_t& processHandle, std::int32_t address) override;
  void AddMsg(std::int16_t& profileIndex, std::int32_t& messageTarget, std::string& text,
              bool& isAffiliate, const std::string& kind, std::int16_t mode) override;
  void AddMsgB(std::int16_t& profileIndex, std::int32_t& messageTarget, std::string& text,
               bool& isAffiliate, const std::string& kind, std::int16_t mode,
               std::string& gameCode) override;
  std::string Enc64(const std::string& text) override;
  /// Errors: 5 if the text is not Base64 or does not encode UTF-8.
  std::string Dec64(const std::string& text) override;

 private:
  GameProcesses& processes_;
  Chat& chat_;
  const WhenAway whenAway_;
};

}  // namespace rotacasts::host
