// Waiting for the sockets of the page's server.
#pragma once

#include <functional>
#include <optional>

#include "machine/linux/event_loop.h"
#include "machine/microhttpd.h"

namespace rotacasts::host {

/// Has the loop call `run` in each turn in which the server has something to do: a descriptor says
/// so.
class DaemonWatch {
 public:
  /// What to start the server with.
  static constexpr unsigned kFlags = MHD_USE_EPOLL;
  static constexpr MHD_OptionItem kOptions[] = {{MHD_OPTION_END, 0, nullptr}};

  /// Both must outlive this.
  DaemonWatch(EventLoop& loop, MHD_Daemon* daemon, std::function<void()> run)
      : loop_(loop),
        descriptor_(Microhttpd::Get().get_daemon_info(daemon, MHD_DAEMON_INFO_EPOLL_FD)->epoll_fd) {
    loop_.Watch(descriptor_, EventLoop::kReadable, [run = std::move(run)](short) { run(); });
  }
  ~DaemonWatch() { loop_.Unwatch(descriptor_); }
  DaemonWatch(const DaemonWatch&) = delete;
  DaemonWatch& operator=(const DaemonWatch&) = delete;

  /// Call it after each run of the server.
  void HasRun() {}
  /// When the server must run again although nothing has told so.
  std::optional<EventLoop::Clock::time_point> Next() const { return std::nullopt; }

 private:
  EventLoop& loop_;
  const int descriptor_;
};

}  // namespace rotacasts::host
