// A game server's memory: where a build keeps a world's values.
#pragma once

#include <cstdint>
#include <string_view>

#include "game/address_table.h"
#include "simulator/game_life.h"

namespace rotacasts::simulator {

/// Memory at chosen addresses.
class GameMemory {
 public:
  virtual ~GameMemory() = default;
  /// Makes `size` bytes at `address` readable and writable, zeroed. Raises when the place is taken.
  virtual void Reserve(std::int32_t address, std::uint32_t size) = 0;
  virtual void WriteLong(std::int32_t address, std::int32_t value) = 0;
  /// Writes the bytes and a NUL.
  virtual void WriteText(std::int32_t address, std::string_view bytes) = 0;
};

/// Keeps a world in memory as the build of a game code does: its fixed addresses, its map rotation,
/// its player table.
class GameImage {
 public:
  /// Reserves the memory. Error 5 for a game code that no build has.
  GameImage(GameMemory& memory, std::string_view gameCode, const World& world);

  void Write(const World& world);

 private:
  void WriteRotation(const World& world);
  void WritePlayers(const World& world);

  GameMemory& memory_;
  const bool isDfbhd_;
  const MemoryMap map_;
};

}  // namespace rotacasts::simulator
