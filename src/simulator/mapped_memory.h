// Memory of this process at a game build's addresses. One implementation per platform.
#pragma once

#include <set>

#include "simulator/game_image.h"

namespace rotacasts::simulator {

class MappedMemory final : public GameMemory {
 public:
  void Reserve(std::int32_t address, std::uint32_t size) override;
  void WriteLong(std::int32_t address, std::int32_t value) override;
  void WriteText(std::int32_t address, std::string_view bytes) override;

 private:
  std::set<std::uintptr_t> pages_;
};

}  // namespace rotacasts::simulator
