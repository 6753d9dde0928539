// What the plugin keeps for each profile, in memory only.
#pragma once

#include <cstdint>
#include <map>
#include <string>

#include "services/memory_map.h"
#include "services/table.h"

namespace rotacasts {

/// What the plugin keeps of a profile's data array.
struct ProfileRecord {
  std::string Data5;
  std::string GameCode;
  std::int32_t ProcessHandle = 0;
  std::string Data0;
  std::string Data3;
  std::string Data4;
  std::int32_t MessageTarget = 0;
  std::string ProfileFolder;
  bool IsAffiliate = false;   // the game code ends in _AFF
  bool IsAffiliate2 = false;  // the game code ends in _AFF2
  bool operator==(const ProfileRecord&) const = default;
};

/// Counts what has happened to a profile. During a component call or a message box the host and the
/// timers go on, because both run a message loop. Work that waited there compares these counts with
/// those from its start.
struct ProfileEvents {
  std::uint32_t stops = 0;  // by DisableProfile, or with every other profile by UnLoadInterface
  std::uint32_t loads = 0;  // by LoadInterface, or by GetMessagesRem with other data
  std::uint32_t ticks = 0;
  bool operator==(const ProfileEvents&) const = default;
};

/// The per-profile tables, indexed by profile index, and the current window profile. Errors: 9
/// beyond a table's bounds.
struct ProfileTables {
  Table<ProfileRecord> Profiles;
  /// Full paths of the message files; empty if the profile is not set up.
  Table<std::string> MessageFiles;
  Table<MemoryMap> MemoryMaps;
  /// Position of the next message in the message list, from 0.
  Table<std::int32_t> NextMessage;
  /// Timer ticks counted since the last send.
  Table<std::int32_t> ElapsedTicks;

  /// By profile index. Unlike the tables it has no bounds and is never reset.
  std::map<std::int32_t, ProfileEvents> Events;

  /// The profile that the settings window shows and edits; 0 before the first one.
  std::int32_t currentWindowProfile = 0;
};

}  // namespace rotacasts
