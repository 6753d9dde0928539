#include "host/machine/linux/event_loop.h"

#include <poll.h>
#include <sys/signalfd.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <csignal>

namespace rotacasts::host {
namespace {

using headless::TimerLoop;

/// Turns the signals that end a program into something to wait for.
class EndSignals {
 public:
  EndSignals() {
    sigset_t signals;
    sigemptyset(&signals);
    sigaddset(&signals, SIGINT);
    sigaddset(&signals, SIGTERM);
    sigprocmask(SIG_BLOCK, &signals, &before_);
    descriptor_ = ::signalfd(-1, &signals, SFD_CLOEXEC | SFD_NONBLOCK);
  }
  ~EndSignals() {
    signalfd_siginfo taken;  // one left pending would end the program once it is let through again
    while (::read(descriptor_, &taken, sizeof taken) > 0) {
    }
    ::close(descriptor_);
    sigprocmask(SIG_SETMASK, &before_, nullptr);
  }
  int Descriptor() const { return descriptor_; }

 private:
  sigset_t before_;
  int descriptor_;
};

/// Takes complete lines out of what has been read; the rest waits for its line feed, or for the end
/// of the input.
class LineBuffer {
 public:
  /// False at the end of the input.
  bool Fill() {
    char buffer[4096];
    const ssize_t count = ::read(STDIN_FILENO, buffer, sizeof buffer);
    if (count < 0 && errno == EINTR) return true;
    if (count == 0 && !text_.empty()) text_ += '\n';
    if (count <= 0) return false;
    text_.append(buffer, static_cast<std::size_t>(count));
    return true;
  }
  bool Take(std::string& line) {
    const auto end = text_.find('\n');
    if (end == text_.npos) return false;
    line = text_.substr(0, end);
    text_.erase(0, end + 1);
    if (line.ends_with('\r')) line.pop_back();
    return true;
  }

 private:
  std::string text_;
};

/// How long to wait for the next timer; null for ever.
const timespec* Until(const TimerLoop& timers, timespec& wait) {
  const auto due = timers.NextDue();
  if (!due) return nullptr;
  const auto left = std::max(*due - TimerLoop::Clock::now(), TimerLoop::Clock::duration::zero());
  const auto seconds = std::chrono::duration_cast<std::chrono::seconds>(left);
  wait.tv_sec = static_cast<time_t>(seconds.count());
  wait.tv_nsec = static_cast<long>(std::chrono::nanoseconds(left - seconds).count());
  return &wait;
}

}  // namespace

void RunEventLoop(TimerLoop& timers, const std::function<bool(const std::string&)>& onLine) {
  const EndSignals endSignals;
  LineBuffer input;
  pollfd sources[] = {{endSignals.Descriptor(), POLLIN, 0}, {STDIN_FILENO, POLLIN, 0}};
  for (;;) {
    timespec wait{};
    const int ready = ::ppoll(sources, std::size(sources), Until(timers, wait), nullptr);
    if (ready < 0 && errno != EINTR) return;
    if (ready > 0 && sources[0].revents != 0) return;
    if (ready > 0 && sources[1].revents != 0) {
      if (!input.Fill()) sources[1].fd = -1;
      for (std::string line; input.Take(line);) {
        if (!onLine(line)) return;
      }
    }
    timers.RunDue();
  }
}

}  // namespace rotacasts::host
