// The two options of a message file: what the settings window accepts, and shows where there is
// nothing usable.
#pragma once

#include <cstddef>

namespace rotacasts {

/// A number in section "Options" of a message file.
struct Option {
  const char* key;
  int lowest;  // inclusive, as is the highest
  int highest;
  const char* fallback;  // shown for a missing value and for one out of range
  const char* initial;   // of a profile that has no message file yet
};

/// Whether the profile's messages are broadcast.
inline constexpr Option kEnable = {"Enable", 0, 1, "0", "1"};
/// Minutes between two messages.
inline constexpr Option kInterval = {"Interval", 0, 30, "3", "3"};

/// Characters of a message that the settings window adds at most, and that its list shows.
inline constexpr std::size_t kMessageCharacters = 60;

}  // namespace rotacasts
