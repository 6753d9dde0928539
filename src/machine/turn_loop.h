// The host's one thread: what runs in turns, and when.
#pragma once

#include <chrono>
#include <functional>
#include <list>
#include <optional>
#include <string>
#include <vector>

namespace rotacasts::host {

/// Runs everything on one thread, in turns: waits until something is ready or a deadline has come,
/// then handles all of it. What can become ready is the system's own, so each system has an
/// EventLoop that is one of these.
///
/// Callbacks must not block, because nothing else runs in the meantime. They may stop the loop.
/// What they throw goes to onError, and the others run as ever.
class TurnLoop {
 public:
  using Clock = std::chrono::steady_clock;

  virtual ~TurnLoop() = default;

  /// Asks `next` before each wait when to wake up at the latest (nullopt for never), and calls
  /// `run` once that time has come. Lasts as long as the loop.
  void AddDeadline(std::function<std::optional<Clock::time_point>()> next,
                   std::function<void()> run);

  /// Called at the beginning of every turn, before anything is handled; in the order of adding.
  void AtTurnBegin(std::function<void()> hook) { turnBegins_.push_back(std::move(hook)); }
  /// Called at the end of every turn, before the next wait.
  void AtTurnEnd(std::function<void()> hook) { turnEnds_.push_back(std::move(hook)); }

  /// Called if the system asks the program to read its files again.
  std::function<void()> onReload;
  /// Called with words for the person for whatever a callback throws, and if the system cannot
  /// wait, as when it has no memory left. The loop then pauses for a moment and goes on. Without
  /// this function Run throws it.
  std::function<void(const std::string& words)> onError;

  /// Runs turns until Stop is called or the system asks the program to end; then skips the rest of
  /// the turn.
  void Run();
  void Stop() { isStopped_ = true; }

 protected:
  /// Waits until something is ready, at the latest until this time; nullopt for ever. Errors: 57 if
  /// the system cannot wait.
  virtual void Wait(std::optional<Clock::time_point> latest) = 0;
  /// Handles what is ready, each under Guard, until the loop is stopped.
  virtual void HandleReady() = 0;
  /// Does nothing for this time, whatever becomes ready.
  virtual void Sleep(std::chrono::milliseconds time) = 0;

  bool IsStopped() const { return isStopped_; }
  /// Calls `work`. What it throws goes to onError, if there is one.
  void Guard(const std::function<void()>& work);

 private:
  struct Deadline {
    std::function<std::optional<Clock::time_point>()> next;
    std::function<void()> run;
  };

  std::optional<Clock::time_point> FirstDeadline() const;
  void RunTurn();

  std::list<Deadline> deadlines_;  // a callback may add one
  std::vector<std::function<void()>> turnBegins_;
  std::vector<std::function<void()>> turnEnds_;
  bool isStopped_ = false;
  bool hasFailed_ = false;  // something in this turn
};

}  // namespace rotacasts::host
