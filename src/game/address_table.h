// Where each game build keeps its values: the one table of fixed addresses.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "services/memory_map.h"

namespace rotacasts {

/// The game code whose profiles are served by the DFBHD readers and by AddMsg; compared whole and
/// case-sensitively wherever the system branches on the game.
inline constexpr std::string_view kDfbhd = "DFBHD";

/// The map of a game build. The affiliate flags win over the game code; an unknown code gives an
/// empty map.
MemoryMap MemoryMapFor(bool isAffiliate, bool isAffiliate2, std::string_view gameCode);

/// Every game code that a profile can have: each game's own, then with the affiliate endings.
std::vector<std::string> GameCodes();

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
