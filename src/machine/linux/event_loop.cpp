#include "machine/linux/event_loop.h"

#include <poll.h>
#include <sys/signalfd.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <cstring>
#include <thread>
#include <utility>

#include "base/runtime_error.h"

namespace rotacasts::host {
namespace {

/// The signals that the loop handles.
sigset_t Handled() {
  sigset_t signals;
  sigemptyset(&signals);
  for (const int signal : {SIGINT, SIGTERM, SIGHUP, SIGTSTP, SIGWINCH}) sigaddset(&signals, signal);
  return signals;
}

}  // namespace

/// Blocks the signals that the loop handles and reads them from a descriptor. The destructor
/// restores what was set before.
struct EventLoop::Signals {
  Signals() {
    const sigset_t taken = Handled();
    sigprocmask(SIG_BLOCK, &taken, &maskBefore);
    descriptor = ::signalfd(-1, &taken, SFD_CLOEXEC | SFD_NONBLOCK);
    if (descriptor < 0) {
      const int problem = errno;
      sigprocmask(SIG_SETMASK, &maskBefore, nullptr);
      throw RuntimeError(ErrorNumber::DeviceIoError,
                         std::string("cannot take signals (") + std::strerror(problem) + ")");
    }
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

void EventLoop::BlockSignals() {
  const sigset_t taken = Handled();
  sigprocmask(SIG_BLOCK, &taken, nullptr);
}

EventLoop::EventLoop() : signals_(std::make_unique<Signals>()) {}
EventLoop::~EventLoop() = default;

void EventLoop::Watch(int descriptor, short events, std::function<void(short)> onReady) {
  watches_[descriptor] = {events, std::move(onReady), ++lastNumber_};
}

bool EventLoop::TakeSignals() {
  for (int signal = signals_->Next(); signal != 0; signal = signals_->Next()) {
    switch (signal) {
      case SIGHUP:
        if (onReload) Guard(onReload);
        break;
      case SIGTSTP:
        if (onStop) Guard([this] { onStop(true); });
        ::raise(SIGSTOP);
        if (onStop) Guard([this] { onStop(false); });
        break;
      case SIGWINCH:
        if (onResize) Guard(onResize);
        break;
      default:
        return false;
    }
  }
  return true;
}

void EventLoop::Wait(std::optional<Clock::time_point> latest) {
  sources_ = {{signals_->descriptor, POLLIN, 0}};
  numbers_ = {0};
  for (const auto& [descriptor, watch] : watches_) {
    sources_.push_back({descriptor, watch.events, 0});
    numbers_.push_back(watch.number);
  }
  timespec wait{};
  if (::ppoll(sources_.data(), sources_.size(), Until(latest, wait), nullptr) >= 0) return;
  const int problem = errno;
  for (pollfd& source : sources_) source.revents = 0;
  if (problem == EINTR) return;
  sources_[0].revents = POLLIN;  // a signal may have come; looking for one does not wait
  throw RuntimeError(ErrorNumber::DeviceIoError,
                     std::string("cannot wait (") + std::strerror(problem) + ")");
}

void EventLoop::HandleReady() {
  if (sources_.at(0).revents != 0 && !TakeSignals()) return Stop();
  for (std::size_t i = 1; i < sources_.size() && !IsStopped(); ++i) {
    const auto found = watches_.find(sources_[i].fd);
    if (sources_[i].revents == 0 || found == watches_.end()) continue;
    if (found->second.number != numbers_[i]) continue;  // replaced by a later Watch
    const auto onReady = found->second.onReady;         // survives an Unwatch by the callback
    Guard([&] { onReady(sources_[i].revents); });
  }
}

void EventLoop::Sleep(std::chrono::milliseconds time) {
  std::this_thread::sleep_for(time);
}

}  // namespace rotacasts::host
