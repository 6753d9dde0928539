// A point in the machine's local time.
#pragma once

#include <string>

namespace rotacasts {

struct LocalTime {
  int year = 0;
  int month = 0;  // 1 to 12
  int day = 0;    // 1 to 31
  int hour = 0;   // 0 to 23
  int minute = 0;
  int second = 0;
};

/// "yyyy-mm-dd".
std::string FormatDate(const LocalTime& time);
/// "hh:mm:ss".
std::string FormatTime(const LocalTime& time);

class LocalClock {
 public:
  virtual ~LocalClock() = default;
  virtual LocalTime Now() const = 0;
};

}  // namespace rotacasts
