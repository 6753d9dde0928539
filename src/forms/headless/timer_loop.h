// Timers for programs without a window system: what is due when, and running it.
#pragma once

#include <chrono>
#include <cstdint>
#include <functional>
#include <map>
#include <optional>

namespace rotacasts::headless {

/// Runs callbacks at intervals. The owner waits until NextDue() by its own means and then calls
/// RunDue(). A minute can be given another length, so that a long run can be watched.
class TimerLoop {
 public:
  using Clock = std::chrono::steady_clock;
  using Id = std::int64_t;

  explicit TimerLoop(std::chrono::nanoseconds minute = std::chrono::minutes(1)) : minute_(minute) {}

  /// Starts the timer, from now on, or starts it again with another interval (milliseconds, at
  /// least 1, stretched by the length of a minute).
  void Start(Id id, std::int32_t milliseconds, std::function<void()> callback,
             Clock::time_point now = Clock::now());
  void Stop(Id id) { timers_.erase(id); }

  /// When the next timer is due; nothing while none runs.
  std::optional<Clock::time_point> NextDue() const;
  /// Runs every timer that is due, the longest due first; returns how many ran. Periods missed
  /// meanwhile are dropped, not caught up on. A callback may start and stop any timer.
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
