#include "base/local_time.h"

#include <cstdio>

namespace rotacasts {

std::string FormatDate(const LocalTime& time) {
  char text[40];
  std::snprintf(text, sizeof text, "%04d-%02d-%02d", time.year, time.month, time.day);
  return text;
}

std::string FormatTime(const LocalTime& time) {
  char text[40];
  std::snprintf(text, sizeof text, "%02d:%02d:%02d", time.hour, time.minute, time.second);
  return text;
}

}  // namespace rotacasts
