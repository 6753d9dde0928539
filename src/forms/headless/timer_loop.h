// Timers for programs without a window system.
#pragma once

#include <chrono>
#include <cstdint>
#include <functional>
#include <map>
#include <optional>

namespace rotacasts::headless {

/// Runs callbacks at intervals. The owner waits until NextDue() and then calls RunDue(). A minute
/// can be shortened, so that a long run can be watched.
class TimerLoop {
 public:
  using Clock = std::chrono::steady_clock;
  using Id = std::int64_t;

  explicit TimerLoop(std::chrono::nanoseconds minute = std::chrono::minutes(1)) : minute_(minute) {}

  /// Starts or restarts the timer. `milliseconds`, at least 1, is scaled to the length of a minute.
  void Start(Id id, std::int32_t milliseconds, std::function<void()> callback,
             Clock::time_point now = Clock::now());
  void Stop(Id id) { timers_.erase(id); }

  /// When the next timer is due; nullopt if none is running.
  std::optional<Clock::time_point> NextDue() const;
  /// Runs every timer that is due, the longest due first; returns how many ran. Whole
  /// periods missed meanwhile are dropped, and the next one ends when it would have. A callback may
  /// start and stop any timer.
  int RunDue(Clock::time_point now = Clock::now());

 private:
  struct Entry {
    Clock::time_point due;
    Clock::duration interval;
    std::function<void()> callback;
  };

  std::chrono::nanoseconds minute_;
  std::map<Id, Entry> timers_;
};

}  // namespace rotacasts::headless
