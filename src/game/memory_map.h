// Where each game build keeps its values: the one table of fixed addresses.
#pragma once

#include <cstdint>
#include <span>
#include <string_view>

namespace rotacasts {

/// The game code whose profiles are served by the DFBHD readers and by AddMsg; compared whole and
/// case-sensitively wherever the system branches on the game.
inline constexpr std::string_view kDfbhd = "DFBHD";

/// A named place in a game server's process memory.
struct Location {
  std::string_view name;
  std::int32_t address;
};

/// A profile's memory map: the locations of its game build, or none for an unknown build.
class MemoryMap {
 public:
  MemoryMap() = default;
  /// The rows are the address table's own and outlive the map.
  explicit MemoryMap(std::span<const Location> locations) : locations_(locations) {}

  bool Holds(std::string_view name) const { return Find(name) != nullptr; }
  /// The address of a location. Error 5, naming the location, when the map does not hold it.
  std::int32_t Address(std::string_view name) const;
  bool IsEmpty() const { return locations_.empty(); }
  std::span<const Location> All() const { return locations_; }

 private:
  const Location* Find(std::string_view name) const;

  std::span<const Location> locations_;
};

/// The map of a game build. The affiliate flags win over the game code; an unknown code gives an
/// empty map.
MemoryMap MemoryMapFor(bool isAffiliate, bool isAffiliate2, std::string_view gameCode);

/// The endings of an affiliate server's game code.
inline constexpr std::string_view kAffiliateEnding = "_AFF";
inline constexpr std::string_view kAffiliate2Ending = "_AFF2";

/// Location names, as the readers look them up.
namespace location {
inline constexpr std::string_view kGameState = "GameState";
inline constexpr std::string_view kMapNames = "MapNameAdd";
inline constexpr std::string_view kMapPointer = "MapPointer";
inline constexpr std::string_view kTotalMaps = "TotalMaps";
inline constexpr std::string_view kPlayerStats = "PlyrStats";
inline constexpr std::string_view kServerDedicated = "SerDedi";
inline constexpr std::string_view kBlueScore = "BlueScore";
inline constexpr std::string_view kRedScore = "RedScore";
inline constexpr std::string_view kMaxPlayers = "MaxPlayers";
inline constexpr std::string_view kCurrentPlayers = "CurPlayers";
inline constexpr std::string_view kGameType = "GameType";
}  // namespace location

}  // namespace rotacasts
