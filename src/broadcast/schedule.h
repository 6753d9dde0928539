// When a profile's next message is due, and which one it is.
#pragma once

#include <cstdint>
#include <string>

namespace rotacasts {

/// The ticks until a message is due, the tick that sends it included: 1 if the next one does.
/// `interval` is the settings window's text. Errors: 6, 13 if that is no whole number of minutes.
std::int32_t TicksUntilDue(const std::string& interval, std::int32_t elapsedTicks);

/// The position that comes next in a list of `count` messages, from 0: behind its end the first
/// one.
inline std::int32_t NextPosition(std::int32_t nextMessage, std::int32_t count) {
  return nextMessage > count - 1 ? 0 : nextMessage;
}

}  // namespace rotacasts
