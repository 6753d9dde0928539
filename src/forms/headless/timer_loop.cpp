#include "forms/headless/timer_loop.h"

#include <algorithm>
#include <utility>
#include <vector>

namespace rotacasts::headless {

void TimerLoop::Start(Id id, std::int32_t milliseconds, std::function<void()> callback,
                      Clock::time_point now) {
  constexpr double kMillisecondsPerMinute = 60000;
  const auto interval = std::chrono::duration_cast<Clock::duration>(
      std::chrono::duration<double, std::nano>(minute_) * (milliseconds / kMillisecondsPerMinute));
  const auto atLeast = std::max(interval, Clock::duration(std::chrono::microseconds(1)));
  timers_[id] = {now + atLeast, atLeast, std::move(callback)};
}

std::optional<TimerLoop::Clock::time_point> TimerLoop::NextDue() const {
  const auto first =
      std::min_element(timers_.begin(), timers_.end(),
                       [](const auto& a, const auto& b) { return a.second.due < b.second.due; });
  if (first == timers_.end()) return std::nullopt;
  return first->second.due;
}

int TimerLoop::RunDue(Clock::time_point now) {
  std::vector<std::pair<Clock::time_point, Id>> due;
  for (const auto& [id, entry] : timers_) {
    if (entry.due <= now) due.emplace_back(entry.due, id);
  }
  std::sort(due.begin(), due.end());
  int ran = 0;
  for (const auto& [when, id] : due) {
    const auto found = timers_.find(id);
    if (found == timers_.end() || found->second.due != when) continue;  // stopped or restarted
    Entry& entry = found->second;
    entry.due += ((now - entry.due) / entry.interval + 1) * entry.interval;  // the first after now
    const std::function<void()> callback = entry.callback;  // outlives a Stop from within
    callback();
    ++ran;
  }
  return ran;
}

}  // namespace rotacasts::headless
