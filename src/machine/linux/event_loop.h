// The only place where the host waits: for descriptors, deadlines and signals.
#pragma once

#include <chrono>
#include <cstdint>
#include <functional>
#include <list>
#include <map>
#include <memory>
#include <optional>
#include <vector>

#include "machine/turn_loop.h"

struct pollfd;

namespace rotacasts::host {

/// A part of the program joins with a descriptor or a deadline; a library that has an event loop
/// (one descriptor and one timeout) joins with both. Callbacks may watch and unwatch any
/// descriptor. SIGHUP asks to reload, SIGINT and SIGTERM to end.
class EventLoop final : public TurnLoop {
 public:
  static const short kReadable;  // POLLIN

  /// Blocks the signals until a loop handles them. They stay blocked after its end, so that none of
  /// them can end a program that is ending by itself.
  static void BlockSignals();

  /// While the object exists, SIGINT, SIGTERM, SIGHUP, SIGTSTP and SIGWINCH wait until Run handles
  /// them, and SIGPIPE is ignored, so that a write without a reader just fails. Only one loop may
  /// exist at a time.
  EventLoop();
  ~EventLoop() override;
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

  /// Called for SIGTSTP, before the program stops and after it goes on.
  std::function<void(bool isStopping)> onStop;
  /// Called when the terminal has another size.
  std::function<void()> onResize;

 private:
  struct WatchEntry {
    short events;
    std::function<void(short)> onReady;
    std::int64_t number;  // distinguishes it from a later watch of the same descriptor
  };
  struct Signals;

  void Wait(std::optional<Clock::time_point> latest) override;
  void HandleReady() override;
  void Sleep(std::chrono::milliseconds time) override;
  /// False if the program should end.
  bool TakeSignals();

  std::unique_ptr<Signals> signals_;
  std::map<int, WatchEntry> watches_;
  std::int64_t lastNumber_ = 0;
  std::vector<pollfd> sources_;        // of this turn; the first one is of the signals
  std::vector<std::int64_t> numbers_;  // the watches that they belong to
};

}  // namespace rotacasts::host
