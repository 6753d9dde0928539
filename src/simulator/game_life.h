// The life of a simulated game: players fight, come and go, maps change.
#pragma once

#include <cstdint>
#include <optional>
#include <random>
#include <string>
#include <vector>

#include "stats/player_scan.h"

namespace rotacasts::simulator {

struct Player {
  std::string name;  // UTF-8, with characters that Windows-1252 has
  PlayerStats stats;
};

/// Everything about a game that its server keeps in memory.
struct World {
  std::int32_t state = 0;
  std::int32_t gameType = 0;
  /// The slots up to and including the server's player limit; some are empty.
  std::vector<std::optional<Player>> slots;
  std::vector<std::string> maps;  // in the order of the rotation
  std::int32_t position = 0;      // of the current map

  std::int32_t PlayerCount() const;
};

struct LifeOptions {
  int players = 20;  // 1 to 250
  std::uint32_t seed = 1;
  int mapSteps = 200;   // how long a map lasts
  int pauseSteps = 15;  // the break between two maps
};

/// Simulates a game. The same options give the same game.
class GameLife {
 public:
  explicit GameLife(const LifeOptions& options);

  const World& Now() const { return world_; }
  void Step();

 private:
  void StartMap();
  void Fight();
  void ComeOrGo();
  void Join();
  int Random(int below) { return static_cast<int>(random_() % static_cast<std::uint32_t>(below)); }
  Player& RandomPlayer();

  const LifeOptions options_;
  std::mt19937 random_;
  World world_;
  int stepOfMap_ = 0;
  int joined_ = 0;
};

}  // namespace rotacasts::simulator
