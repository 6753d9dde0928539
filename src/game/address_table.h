// Where each game build keeps its values: the table of fixed addresses.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "services/memory_map.h"

namespace rotacasts {

/// The game code that uses the DFBHD readers and AddMsg. Every branch on the game compares the
/// whole code, case-sensitively.
inline constexpr std::string_view kDfbhd = "DFBHD";

/// The memory map of a game build; empty for an unknown code. The affiliate flags win over the
/// code.
MemoryMap MemoryMapFor(bool isAffiliate, bool isAffiliate2, std::string_view gameCode);

/// Every game code that a profile can have: each game's code, alone and with the affiliate endings.
std::vector<std::string> GameCodes();

/// The endings of an affiliate server's game code.
inline constexpr std::string_view kAffiliateEnding = "_AFF";
inline constexpr std::string_view kAffiliate2Ending = "_AFF2";

/// The names of the locations.
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
