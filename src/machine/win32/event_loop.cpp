#include "machine/win32/event_loop.h"

#include <algorithm>
#include <utility>

#include "base/runtime_error.h"

namespace rotacasts::host {
namespace {

/// Milliseconds, rounded up so that the time has come when the wait ends.
DWORD Until(std::optional<TurnLoop::Clock::time_point> time) {
  if (!time) return INFINITE;
  constexpr std::chrono::milliseconds longest{std::chrono::hours(1)};
  const auto left = std::chrono::ceil<std::chrono::milliseconds>(*time - TurnLoop::Clock::now());
  return static_cast<DWORD>(std::clamp(left, std::chrono::milliseconds(0), longest).count());
}

}  // namespace

WorkQueue::WorkQueue() : ready_(::CreateEventW(nullptr, FALSE, FALSE, nullptr)) {}

void WorkQueue::Post(std::function<void()> work) {
  {
    const win32::Lock::Held held(lock_);
    if (isClosed_) return;
    waiting_.push_back(std::move(work));
  }
  ::SetEvent(ready_.Get());
}

bool WorkQueue::Call(const std::function<void()>& work) {
  /// Wakes the caller when the work has been done, or dropped.
  struct Waiting {
    ~Waiting() { ::SetEvent(done.Get()); }
    const win32::UniqueHandle& done;
  };
  const win32::UniqueHandle done(::CreateEventW(nullptr, TRUE, FALSE, nullptr));
  bool isDone = false;
  auto waiting = std::make_shared<Waiting>(done);
  Post([&work, &isDone, waiting = std::move(waiting)] {
    work();
    isDone = true;
  });
  ::WaitForSingleObject(done.Get(), INFINITE);
  return isDone;
}

std::deque<std::function<void()>> WorkQueue::TakeAll() {
  const win32::Lock::Held held(lock_);
  return std::exchange(waiting_, {});
}

void WorkQueue::Close() {
  const win32::Lock::Held held(lock_);
  isClosed_ = true;
}

EventLoop::~EventLoop() {
  queue_->Close();
  queue_->TakeAll();
}

void EventLoop::Wait(std::optional<Clock::time_point> latest) {
  std::vector<HANDLE> events = {queue_->ready_.Get()};
  for (const WatchEntry& watch : watches_) events.push_back(watch.event);
  signalled_ = nullptr;
  const auto count = static_cast<DWORD>(events.size());
  const DWORD first = ::WaitForMultipleObjects(count, events.data(), FALSE, Until(latest));
  if (first == WAIT_FAILED) {
    throw RuntimeError(ErrorNumber::DeviceIoError,
                       "cannot wait (error " + std::to_string(::GetLastError()) + ")");
  }
  if (first < count) signalled_ = events[first];
}

void EventLoop::HandleReady() {
  // Looks at the queue in every turn: its event comes first and would hide the others.
  std::deque<std::function<void()>> ready = queue_->TakeAll();
  for (; !ready.empty() && !IsStopped(); ready.pop_front()) Guard(ready.front());
  const auto found =
      std::find_if(watches_.begin(), watches_.end(),
                   [this](const WatchEntry& watch) { return watch.event == signalled_; });
  if (found == watches_.end() || IsStopped()) return;
  const auto onSignal = found->onSignal;  // survives an Unwatch by the callback
  Guard(onSignal);
}

}  // namespace rotacasts::host
