// The one place where the host waits: for descriptors, for points in time, for signals.
#pragma once

#include <chrono>
#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <vector>

namespace rotacasts::host {

/// Runs everything on one thread, a turn at a time: it waits until something can be done, then does
/// all of it. Whoever wants to be woken joins with a descriptor or with a deadline; a library with
/// an event loop of its own (one descriptor and one timeout) joins with both.
///
/// What is called here must not block, for nothing else runs meanwhile. It may watch and unwatch
/// any descriptor and stop the loop. What it throws leaves Run.
class EventLoop {
 public:
  using Clock = std::chrono::steady_clock;

  /// From here to the end of the object SIGINT, SIGTERM and SIGHUP wait for Run to take them, and
  /// SIGPIPE is ignored: a write to nobody fails, and that is all. One loop at a time.
  EventLoop();
  ~EventLoop();
  EventLoop(const EventLoop&) = delete;
  EventLoop& operator=(const EventLoop&) = delete;

  /// From the next wait on calls `onReady` in each turn that finds the descriptor ready for one of
  /// `events` (POLLIN, POLLOUT), or broken (POLLERR, POLLHUP); with what it is ready for. Watching
  /// it again replaces both. It stays the caller's, who unwatches it before closing it.
  void Watch(int descriptor, short events, std::function<void(short ready)> onReady);
  /// Not a call more, not even one that is due in this turn. One that nobody watches is no error.
  void Unwatch(int descriptor) { watches_.erase(descriptor); }

  /// Before each wait `next` is asked when to wake up at the latest, nothing for never; once that
  /// time has come, `run` is called. Lasts as long as the loop.
  void AddDeadline(std::function<std::optional<Clock::time_point>()> next,
                   std::function<void()> run);

  /// Called at the beginning of every turn, before anything of it is done; in order of their
  /// adding.
  void AtTurnBegin(std::function<void()> hook) { turnBegins_.push_back(std::move(hook)); }
  /// Called at the end of every turn, before the next wait.
  void AtTurnEnd(std::function<void()> hook) { turnEnds_.push_back(std::move(hook)); }

  /// Called for SIGHUP.
  std::function<void()> onReload;

  /// Runs turns until Stop is called, or SIGINT or SIGTERM arrives: then nothing of a turn is done
  /// any more. Error 57 when the system cannot wait.
  void Run();
  void Stop() { isStopped_ = true; }

 private:
  struct WatchEntry {
    short events;
    std::function<void(short)> onReady;
    std::int64_t number;  // tells it from a later one of the same descriptor
  };
  struct Deadline {
    std::function<std::optional<Clock::time_point>()> next;
    std::function<void()> run;
  };
  struct Signals;

  std::optional<Clock::time_point> FirstDeadline() const;
  /// False once the program is to end.
  bool TakeSignals();
  void RunTurn();

  std::unique_ptr<Signals> signals_;
  std::map<int, WatchEntry> watches_;
  std::vector<Deadline> deadlines_;
  std::vector<std::function<void()>> turnBegins_;
  std::vector<std::function<void()>> turnEnds_;
  std::int64_t lastNumber_ = 0;
  bool isStopped_ = false;
};

}  // namespace rotacasts::host
