#include "simulator/game_life.h"

#include <algorithm>
#include <iterator>

namespace rotacasts::simulator {
namespace {

// Game states. The plugin looks for the two running ones; the others are arbitrary.
constexpr std::int32_t kRunning = 2;
constexpr std::int32_t kRunningToo = 3;
constexpr std::int32_t kScoreBoard = 4;
constexpr std::int32_t kLoading = 1;

constexpr std::uint32_t kGameTypes = 9;
constexpr int kMostSlots = 251;

constexpr const char* kNames[] = {"Rex",    "Jäger",   "Ñandú",  "Zoë",      "Sniper",
                                  "Müller", "Øystein", "Maeve",  "Ghost",    "Élan",
                                  "Thörn",  "Viper",   "Straße", "Núria",    "Kestrel",
                                  "Brandt", "Façade",  "Orla",   "Ångström", "Dusk"};
constexpr const char* kMaps[] = {"Harbour at Dawn", "Öde Küste", "Salt Flats",  "Rio Norte",
                                 "Twin Bridges",    "La Forêt",  "Old Refinery"};

struct Objective {
  std::int32_t PlayerStats::*counter;
  int most;  // the largest increase at once
};

constexpr Objective kObjectives[] = {
    {&PlayerStats::ZoneTime, 15},          {&PlayerStats::FlagsCaptured, 1},
    {&PlayerStats::FlagsSaved, 1},         {&PlayerStats::Targets, 1},
    {&PlayerStats::MedicSaves, 1},         {&PlayerStats::Revives, 1},
    {&PlayerStats::PspTakeovers, 1},       {&PlayerStats::FlagCarrierKills, 1},
    {&PlayerStats::ZoneAttackKills, 1},    {&PlayerStats::ZoneDefenceKills, 1},
    {&PlayerStats::TargetDefenceKills, 1}, {&PlayerStats::TargetAttackKills, 1},
};

}  // namespace

std::int32_t World::PlayerCount() const {
  return static_cast<std::int32_t>(
      std::count_if(slots.begin(), slots.end(), [](const auto& slot) { return slot.has_value(); }));
}

GameLife::GameLife(const LifeOptions& options) : options_(options), random_(options.seed) {
  const int slots = std::min(kMostSlots, options_.players + options_.players / 4 + 2);
  world_.slots.resize(static_cast<std::size_t>(slots));
  world_.maps.assign(std::begin(kMaps), std::end(kMaps));
  world_.position = Random(static_cast<int>(world_.maps.size()));
  for (int i = 0; i < options_.players; ++i) Join();
  StartMap();
}

void GameLife::StartMap() {
  stepOfMap_ = 0;
  world_.gameType = static_cast<std::int32_t>(
      (static_cast<std::uint32_t>(world_.position) + options_.seed) % kGameTypes);
  world_.state = world_.position % 2 == 0 ? kRunning : kRunningToo;
  for (auto& slot : world_.slots) {
    if (slot) slot->stats = {};
  }
}

void GameLife::Step() {
  ++stepOfMap_;
  if (stepOfMap_ <= options_.mapSteps) {
    for (int i = 0; i <= options_.players / 4; ++i) Fight();
    if (Random(10) == 0) ComeOrGo();
  } else if (stepOfMap_ <= options_.mapSteps + options_.pauseSteps) {
    const bool early = stepOfMap_ - options_.mapSteps <= options_.pauseSteps / 2;
    world_.state = early ? kScoreBoard : kLoading;
  } else {
    world_.position = (world_.position + 1) % static_cast<std::int32_t>(world_.maps.size());
    StartMap();
  }
}

void GameLife::Fight() {
  PlayerStats& attacker = RandomPlayer().stats;
  PlayerStats& victim = RandomPlayer().stats;
  ++victim.Deaths;
  if (&attacker == &victim) {
    ++victim.Suicides;
    victim.Score -= 5;
  } else if (Random(8) == 0) {
    ++attacker.Murders;
    attacker.Score -= 10;
  } else {
    ++attacker.Kills;
    attacker.Headshots += Random(3) == 0 ? 1 : 0;
    attacker.Score += 10;
  }
  const Objective& objective = kObjectives[Random(static_cast<int>(std::size(kObjectives)))];
  PlayerStats& hero = RandomPlayer().stats;
  hero.*objective.counter += 1 + Random(objective.most);
  hero.Score += 15;
}

void GameLife::ComeOrGo() {
  const std::int32_t present = world_.PlayerCount();
  if (present < options_.players && Random(2) == 0) return Join();
  if (present <= std::max(1, options_.players * 3 / 4)) return;
  const Player& leaving = RandomPlayer();
  const auto slot = std::find_if(world_.slots.begin(), world_.slots.end(),
                                 [&](const auto& other) { return other && &*other == &leaving; });
  slot->reset();
}

void GameLife::Join() {
  std::size_t slot = 0;
  do {
    slot = static_cast<std::size_t>(Random(static_cast<int>(world_.slots.size())));
  } while (world_.slots[slot]);
  const int number = joined_++;
  const int names = static_cast<int>(std::size(kNames));
  std::string name = kNames[number % names];
  if (number >= names) name += " " + std::to_string(number / names + 1);
  world_.slots[slot] = Player{std::move(name), {}};
}

Player& GameLife::RandomPlayer() {
  int nth = Random(world_.PlayerCount());
  for (auto& slot : world_.slots) {
    if (slot && nth-- == 0) return *slot;
  }
  return *world_.slots.front();  // not reached: one of the players is the nth
}

}  // namespace rotacasts::simulator
