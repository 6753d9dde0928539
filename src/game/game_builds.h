// The game builds that are served: one table, a row a build.
#pragma once

#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "services/memory_map.h"

namespace rotacasts {

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

/// The endings of an affiliate server's game code.
inline constexpr std::string_view kAffiliateEnding = "_AFF";
inline constexpr std::string_view kAffiliate2Ending = "_AFF2";

/// How a game keeps its players and maps, and which operation posts its chat. Affiliate servers
/// belong to the common family, whatever their game.
enum class Family { Dfbhd, Common };

/// The family of a profile's game code, compared whole and case-sensitively.
Family FamilyOf(std::string_view gameCode);

/// The memory map of a profile's game build. The affiliate flags win over the game code; an unknown
/// code gives an empty map.
MemoryMap MemoryMapFor(bool isAffiliate, bool isAffiliate2, std::string_view gameCode);

/// The builds' names as the plugin's descriptor lists them.
std::vector<std::string> GameTitles();
/// Every game code that a profile can have: each game's own, then with the affiliate endings.
std::vector<std::string> GameCodes();

}  // namespace rotacasts
