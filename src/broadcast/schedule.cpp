#include "broadcast/schedule.h"

#include <algorithm>

#include "base/conversions.h"
#include "base/text.h"

namespace rotacasts {

std::int32_t TicksUntilDue(const std::string& interval, std::int32_t elapsedTicks) {
  const std::int32_t minutes = ToLong(TrimSpaces(interval));
  return minutes <= 1 ? 1 : std::max(1, minutes - elapsedTicks);
}

}  // namespace rotacasts
