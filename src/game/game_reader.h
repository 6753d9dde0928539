// Whether a game is running on a profile's server, and which map comes next.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "services/guard.h"
#include "services/host_services.h"
#include "services/profile_tables.h"

namespace rotacasts {

/// What a next-map text begins with.
inline constexpr std::string_view kNextMapLabel = "[Next Map] ";

/// Reads a profile's game server afresh on every call; keeps nothing.
class GameReader {
 public:
  GameReader(const MemorySource& source, ProfileTables& tables, ErrorHandler& errors)
      : source_(source), tables_(tables), errors_(errors) {}

  /// Replaces the profile's memory map by a new one for its game build: the record's game code and
  /// affiliate flags must be in place. Errors are reported under "SetMemory".
  void SetMemory(std::int32_t profileIndex, bool isAffiliate);

  /// Whether the profile's game build is known. Never raises: any error means no.
  bool HasMemoryMap(std::int32_t profileIndex) const;
  /// Whether the server is running a game. Only for a profile that has a memory map; a failed read
  /// is the caller's error.
  bool IsGameRunning(std::int32_t profileIndex) const;

  /// "[Next Map] " and the name of the map that a "DFBHD" server loads next; after an error, which
  /// is reported, the empty text.
  std::string GetNextMap(std::int32_t profileIndex);
  /// The same for every other build; after an error, reported without a box, "Unknown!!!".
  std::string GetNextMapJO(std::int32_t profileIndex);

 private:
  const MemorySource& source_;
  ProfileTables& tables_;
  ErrorHandler& errors_;
};

}  // namespace rotacasts
