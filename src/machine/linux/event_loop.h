// The only place where the host waits: for descriptors, deadlines and signals.
#pragma once

#include <chrono>
#include <cstdint>
#include <functional>
#include <list>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

struct pollfd;

namespace rotacasts::host {

/// Runs everything on one thread, in turns: waits until something is ready, then handles all of it.
/// A part of the program joins with a descriptor or a deadline; a library that has an event loop
/// (one descriptor and one timeout) joins with both.
///
/// Callbacks must not block, because nothing else runs in the meantime. They may watch and unwatch
/// any descriptor and stop the loop. What they throw goes to onError, and the others run as ever.
class EventLoop {
 public:
  using Clock = std::chrono::steady_clock;
  static const short kReadable;  // POLLIN

  /// Makes its signals wait from now on, for a loop made later. They wait after its
  /// end too, so that none of them can end a program that is ending by itself.
  static void BlockSignals();

  /// While the object exists, SIGINT, SIGTERM, SIGHUP, SIGTSTP and SIGWINCH wait until Run
  /// handles them, and SIGPIPE
  /// is ignored, so that a write without a reader just fails. Only one loop may exist at a time.
  EventLoop();
  ~EventLoop();
  EventLoop(const EventLoop&) = delete;
  EventLoop& operator=(const EventLoop&) = delete;

  /// From the next wait on, calls `onReady` in each turn in which the descriptor is ready for one
  /// of `events` (POLLIN, POLLOUT) or broken (POLLERR, POLLHUP), with what it is ready for. A
  /// second Watch replaces the first. The caller owns the descriptor and must unwatch it before
  /// closing it.
  void Watch(int descriptor, short events, std::function<void(short ready)> onReady);
  /// Stops the calls at once, even one due in this turn. Does nothing if the descriptor is not
  /// watched.
  void Unwatch(int descriptor) { watches_.erase(descriptor); }

  /// Asks `next` before each wait when to wake up at the latest (nullopt for never), and calls
  /// `run` once that time has come. Lasts as long as the loop.
  void AddDeadline(std::function<std::optional<Clock::time_point>()> next,
                   std::function<void()> run);

  /// Called at the beginning of every turn, before anything is handled; in the order of adding.
  void AtTurnBegin(std::function<void()> hook) { turnBegins_.push_back(std::move(hook)); }
  /// Called at the end of every turn, before the next wait.
  void AtTurnEnd(std::function<void()> hook) { turnEnds_.push_back(std::move(hook)); }

  /// Called for SIGHUP.
  std::function<void()> onReload;
  /// Called for SIGTSTP, before the program stops and after it goes on.
  std::function<void(bool isStopping)> onStop;
  /// Called when the terminal has another size.
  std::function<void()> onResize;
  /// Called with words for the person for whatever a callback throws, and if the system cannot
  /// wait, as when it has no memory left. The loop then pauses for a moment and goes on. Without
  /// this function Run throws it.
  std::function<void(const std::string& words)> onError;

  /// Runs turns until Stop is called or SIGINT or SIGTERM arrives; then skips the rest of the turn.
  void Run();
  void Stop() { isStopped_ = true; }

 private:
  struct WatchEntry {
    short events;
    std::function<void(short)> onReady;
    std::int64_t number;  // distinguishes it from a later watch of the same descriptor
  };
  struct Deadline {
    std::function<std::optional<Clock::time_point>()> next;
    std::function<void()> run;
  };
  struct Signals;

  std::optional<Clock::time_point> FirstDeadline() const;
  /// False if the program should end.
  bool TakeSignals();
  /// Calls `work`. What it throws goes to onError, if there is one.
  void Guard(const std::function<void()>& work);
  /// Waits until one of them is ready.
  void Wait(std::vector<pollfd>& sources);
  void RunTurn();

  std::unique_ptr<Signals> signals_;
  std::map<int, WatchEntry> watches_;
  std::list<Deadline> deadlines_;  // a callback may add one
  std::vector<std::function<void()>> turnBegins_;
  std::vector<std::function<void()>> turnEnds_;
  std::int64_t lastNumber_ = 0;
  bool isStopped_ = false;
  bool hasFailed_ = false;  // something in this turn
};

}  // namespace rotacasts::host
