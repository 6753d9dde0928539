// The only place where the host waits on Windows: for work from other threads and for deadlines.
#pragma once

#include <deque>
#include <functional>
#include <memory>
#include <vector>

#include "com/unique_handle.h"
#include "com/windows_api.h"
#include "machine/turn_loop.h"
#include "machine/win32/lock.h"

namespace rotacasts::host {

/// Work that other threads hand to the loop. Whoever has it may outlive the loop: then what is
/// handed over is dropped.
class WorkQueue {
 public:
  WorkQueue();
  WorkQueue(const WorkQueue&) = delete;
  WorkQueue& operator=(const WorkQueue&) = delete;

  /// Has the loop call `work` in one of its next turns. From any thread.
  void Post(std::function<void()> work);
  /// Has the loop call `work` and waits until it has done so. False if it never will. Not from the
  /// loop's own thread.
  bool Call(const std::function<void()>& work);

 private:
  friend class EventLoop;
  std::deque<std::function<void()>> TakeAll();
  void Close();

  win32::Lock lock_;
  std::deque<std::function<void()>> waiting_;
  bool isClosed_ = false;
  const win32::UniqueHandle ready_;
};

/// Threads wait for what the system can only wait for in many ways (consoles, pipes, programs), and
/// post what has come of it.
class EventLoop final : public TurnLoop {
 public:
  EventLoop() : queue_(std::make_shared<WorkQueue>()) {}
  ~EventLoop() override;
  EventLoop(const EventLoop&) = delete;
  EventLoop& operator=(const EventLoop&) = delete;

  const std::shared_ptr<WorkQueue>& Queue() const { return queue_; }

  /// From the next wait on, calls `onSignal` in each turn in which the event is signalled, which
  /// must reset itself. At most 63 events. The caller owns the event and must unwatch it before
  /// closing it.
  void Watch(HANDLE event, std::function<void()> onSignal) {
    watches_.push_back({event, std::move(onSignal)});
  }
  /// Stops the calls at once. Does nothing if the event is not watched.
  void Unwatch(HANDLE event) {
    std::erase_if(watches_, [event](const WatchEntry& watch) { return watch.event == event; });
  }

 private:
  struct WatchEntry {
    HANDLE event;
    std::function<void()> onSignal;
  };

  void Wait(std::optional<Clock::time_point> latest) override;
  void HandleReady() override;
  void Sleep(std::chrono::milliseconds time) override { ::Sleep(static_cast<DWORD>(time.count())); }

  const std::shared_ptr<WorkQueue> queue_;
  std::vector<WatchEntry> watches_;
  HANDLE signalled_ = nullptr;  // the event that ended the last wait
};

}  // namespace rotacasts::host
