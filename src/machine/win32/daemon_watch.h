// Waiting for the sockets of the page's server.
#pragma once

#include <functional>
#include <optional>

#include "internet.h"
#include "machine/microhttpd.h"
#include "machine/win32/event_loop.h"

namespace rotacasts::host {

/// Has the loop call `run` in each turn in which the server may have something to do. An event of
/// the system tells when a socket becomes ready, and only then: one that stays ready is looked for
/// after each run.
class DaemonWatch {
 public:
  /// What to start the server with; nobody else may listen at its address.
  static constexpr unsigned kFlags = 0;
  static constexpr MHD_OptionItem kOptions[] = {{MHD_OPTION_LISTENING_ADDRESS_REUSE, 0, nullptr},
                                                {MHD_OPTION_END, 0, nullptr}};

  /// Both must outlive this.
  DaemonWatch(EventLoop& loop, MHD_Daemon* daemon, std::function<void()> run);
  ~DaemonWatch();
  DaemonWatch(const DaemonWatch&) = delete;
  DaemonWatch& operator=(const DaemonWatch&) = delete;

  /// Call it after each run of the server.
  void HasRun();
  /// When the server must run again although nothing has told so.
  std::optional<EventLoop::Clock::time_point> Next() const { return next_; }

 private:
  EventLoop& loop_;
  MHD_Daemon* const daemon_;
  const win32::UniqueHandle event_;
  std::optional<EventLoop::Clock::time_point> next_;
};

}  // namespace rotacasts::host
