// A game server's memory: where a build keeps the values of a world.
#pragma once

#include <cstdint>
#include <string_view>

#include "game/game_builds.h"
#include "simulator/game_life.h"

namespace rotacasts::simulator {

/// Memory at chosen addresses.
class GameMemory {
 public:
  virtual ~GameMemory() = default;
  /// Makes `size` bytes at `address` readable, writable and zero. Errors: 7 if the memory is not
  /// available.
  virtual void Reserve(std::int32_t address, std::uint32_t size) = 0;
  virtual void WriteLong(std::int32_t address, std::int32_t value) = 0;
  /// Writes the bytes and a NUL.
  virtual void WriteText(std::int32_t address, std::string_view bytes) = 0;
};

/// Keeps a world in memory like the build of a game code: its fixed addresses, map rotation and
/// player table.
class GameImage {
 public:
  /// Reserves the memory, which must outlive it. Errors: 5 if no build has the game code.
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
