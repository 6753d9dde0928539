// Whether a game is running on a profile's server, and which map comes next.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "services/guard.h"
#include "services/host_services.h"
#include "services/profile_tables.h"

namespace rotacasts {

/// The beginning of a next-map text.
inline constexpr std::string_view kNextMapLabel = "[Next Map] ";

/// Reads a profile's game server on every call; caches nothing.
class GameReader {
 public:
  GameReader(const MemorySource& source, ProfileTables& tables, ErrorHandler& errors)
      : source_(source), tables_(tables), errors_(errors) {}

  /// Replaces the profile's memory map with the one of its game build. Requires: the record's game
  /// code and affiliate flags are set. Errors are reported under "SetMemory".
  void SetMemory(std::int32_t profileIndex, bool isAffiliate);

  /// Whether the profile's game build is known. Never throws: any error means no.
  bool HasMemoryMap(std::int32_t profileIndex) const;
  /// Whether the server is running a game. Requires: the profile has a memory map. Errors: those of
  /// the read.
  bool IsGameRunning(std::int32_t profileIndex) const;

  /// "[Next Map] " and the name of the map that a "DFBHD" server loads next. Errors are reported;
  /// the text is then empty.
  std::string GetNextMap(std::int32_t profileIndex);
  /// Like GetNextMap, for every other build. Errors are reported without a box; the text is then
  /// "Unknown!!!".
  std::string GetNextMapJO(std::int32_t profileIndex);

 private:
  const MemorySource& source_;
  ProfileTables& tables_;
  ErrorHandler& errors_;
};

}  // namespace rotacasts
