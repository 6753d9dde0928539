#include "machine/win32/daemon_watch.h"

#include "base/runtime_error.h"

namespace rotacasts::host {
namespace {

/// How long a socket without room for more is left alone. The system tells of room only after a
/// send that found none, and not after one that found too little.
constexpr std::chrono::milliseconds kRoomLook{50};

}  // namespace

// A connection takes the event over from the socket that listens.
DaemonWatch::DaemonWatch(EventLoop& loop, MHD_Daemon* daemon, std::function<void()> run)
    : loop_(loop), daemon_(daemon), event_(::CreateEventW(nullptr, FALSE, FALSE, nullptr)) {
  const auto* info = Microhttpd::Get().get_daemon_info(daemon_, MHD_DAEMON_INFO_LISTEN_FD);
  if (!event_ || ::WSAEventSelect(info->listen_fd, event_.Get(),
                                  FD_ACCEPT | FD_READ | FD_WRITE | FD_CLOSE) != 0) {
    throw RuntimeError(ErrorNumber::DeviceIoError, "the page's sockets cannot be waited for");
  }
  loop_.Watch(event_.Get(), std::move(run));
  HasRun();
}

DaemonWatch::~DaemonWatch() {
  loop_.Unwatch(event_.Get());
}

void DaemonWatch::HasRun() {
  fd_set reads;
  fd_set writes;
  fd_set errors;
  FD_ZERO(&reads);
  FD_ZERO(&writes);
  FD_ZERO(&errors);
  MHD_socket highest = 0;
  next_.reset();
  const auto now = EventLoop::Clock::now();
  if (Microhttpd::Get().get_fdset2(daemon_, &reads, &writes, &errors, &highest, FD_SETSIZE) !=
      MHD_YES) {
    next_ = now + kRoomLook;
    return;
  }
  const bool someWait = writes.fd_count > 0;
  timeval none{};
  if (::select(0, &reads, &writes, &errors, &none) > 0) {
    next_ = now;
  } else if (someWait) {
    next_ = now + kRoomLook;
  }
}

}  // namespace rotacasts::host
