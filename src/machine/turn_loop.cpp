#include "machine/turn_loop.h"

#include <utility>

#include "base/runtime_error.h"

namespace rotacasts::host {
namespace {

// How long the loop pauses after an error, so that one that comes back does not take all the time.
constexpr std::chrono::milliseconds kPause{100};

}  // namespace

void TurnLoop::AddDeadline(std::function<std::optional<Clock::time_point>()> next,
                           std::function<void()> run) {
  deadlines_.push_back({std::move(next), std::move(run)});
}

std::optional<TurnLoop::Clock::time_point> TurnLoop::FirstDeadline() const {
  std::optional<Clock::time_point> first;
  for (const Deadline& deadline : deadlines_) {
    const auto next = deadline.next();
    if (next && (!first || *next < *first)) first = next;
  }
  return first;
}

void TurnLoop::Guard(const std::function<void()>& work) try { work(); } catch (...) {
  if (!onError) throw;
  hasFailed_ = true;
  try {
    onError(CurrentRuntimeError().description);
  } catch (...) {  // not even the words can be said
  }
}

void TurnLoop::RunTurn() {
  Guard([this] { Wait(FirstDeadline()); });
  for (const auto& hook : turnBegins_) Guard(hook);
  HandleReady();
  for (const Deadline& deadline : deadlines_) {
    if (isStopped_) return;
    Guard([&] {
      const auto next = deadline.next();
      if (next && *next <= Clock::now()) deadline.run();
    });
  }
  for (const auto& hook : turnEnds_) Guard(hook);
}

void TurnLoop::Run() {
  isStopped_ = false;
  while (!isStopped_) {
    RunTurn();
    if (std::exchange(hasFailed_, false)) Sleep(kPause);
  }
}

}  // namespace rotacasts::host
