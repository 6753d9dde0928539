#include "machine/linux/event_loop.h"

#include <poll.h>
#include <sys/signalfd.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <cstring>
#include <utility>

#include "base/runtime_error.h"

namespace rotacasts::host {

/// Blocks the signals that the loop handles and reads them from a descriptor. The destructor
/// restores what was set before.
struct EventLoop::Signals {
  Signals() {
    sigset_t taken;
    sigemptyset(&taken);
    for (const int signal : {SIGINT, SIGTERM, SIGHUP}) sigaddset(&taken, signal);
    sigprocmask(SIG_BLOCK, &taken, &maskBefore);
    descriptor = ::signalfd(-1, &taken, SFD_CLOEXEC | SFD_NONBLOCK);
    pipeBefore = ::signal(SIGPIPE, SIG_IGN);
  }
  ~Signals() {
    while (Next() != 0) {  // a pending one would end the program as soon as it is unblocked
    }
    ::close(descriptor);
    ::signal(SIGPIPE, pipeBefore);
    sigprocmask(SIG_SETMASK, &maskBefore, nullptr);
  }
  Signals(const Signals&) = delete;
  Signals& operator=(const Signals&) = delete;

  /// The next signal that has arrived; 0 if there is none.
  int Next() const {
    signalfd_siginfo signal{};
    const ssize_t count = ::read(descriptor, &signal, sizeof signal);
    return count == sizeof signal ? static_cast<int>(signal.ssi_signo) : 0;
  }

  int descriptor;
  sigset_t maskBefore;
  void (*pipeBefore)(int);
};

namespace {

/// The time left from now; null for ever.
const timespec* Until(std::optional<EventLoop::Clock::time_point> time, timespec& wait) {
  if (!time) return nullptr;
  using Duration = EventLoop::Clock::duration;
  const Duration left = std::max(*time - EventLoop::Clock::now(), Duration::zero());
  const auto seconds = std::chrono::duration_cast<std::chrono::seconds>(left);
  wait.tv_sec = static_cast<time_t>(seconds.count());
  wait.tv_nsec = static_cast<long>(std::chrono::nanoseconds(left - seconds).count());
  return &wait;
}

}  // namespace

const short EventLoop::kReadable = POLLIN;

EventLoop::EventLoop() : signals_(std::make_unique<Signals>()) {}
EventLoop::~EventLoop() = default;

void EventLoop::Watch(int descriptor, short events, std::function<void(short)> onReady) {
  watches_[descriptor] = {events, std::move(onReady), ++lastNumber_};
}

void EventLoop::AddDeadline(std::function<std::optional<Clock::time_point>()> next,
                            std::function<void()> run) {
  deadlines_.push_back({std::move(next), std::move(run)});
}

std::optional<EventLoop::Clock::time_point> EventLoop::FirstDeadline() const {
  std::optional<Clock::time_point> first;
  for (const Deadline& deadline : deadlines_) {
    const auto next = deadline.next();
    if (next && (!first || *next < *first)) first = next;
  }
  return first;
}

bool EventLoop::TakeSignals() {
  for (int signal = signals_->Next(); signal != 0; signal = signals_->Next()) {
    if (signal != SIGHUP) return false;
    if (onReload) onReload();
  }
  return true;
}

void EventLoop::RunTurn() {
  std::vector<pollfd> sources = {{signals_->descriptor, POLLIN, 0}};
  std::vector<std::int64_t> numbers = {0};
  for (const auto& [descriptor, watch] : watches_) {
    sources.push_back({descriptor, watch.events, 0});
    numbers.push_back(watch.number);
  }
  timespec wait{};
  if (::ppoll(sources.data(), sources.size(), Until(FirstDeadline(), wait), nullptr) < 0) {
    if (errno == EINTR) return;
    throw RuntimeError(ErrorNumber::DeviceIoError,
                       std::string("cannot wait (") + std::strerror(errno) + ")");
  }
  for (const auto& hook : turnBegins_) hook();
  if (sources[0].revents != 0 && !TakeSignals()) return Stop();
  for (std::size_t i = 1; i < sources.size() && !isStopped_; ++i) {
    const auto found = watches_.find(sources[i].fd);
    if (sources[i].revents == 0 || found == watches_.end()) continue;
    if (found->second.number != numbers[i]) continue;  // replaced by a later Watch
    const auto onReady = found->second.onReady;        // survives an Unwatch by the callback
    onReady(sources[i].revents);
  }
  for (const Deadline& deadline : deadlines_) {
    if (isStopped_) return;
    const auto next = deadline.next();
    if (next && *next <= Clock::now()) deadline.run();
  }
  for (const auto& hook : turnEnds_) hook();
}

void EventLoop::Run() {
  isStopped_ = false;
  while (!isStopped_) RunTurn();
}

}  // namespace rotacasts::host
