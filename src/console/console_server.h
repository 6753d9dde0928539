// The console of a running host, for whoever may use its folder's socket.
#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <string>

#include "host/server_host.h"
#include "machine/linux/event_loop.h"
#include "machine/linux/local_socket.h"

namespace rotacasts::host {

/// Answers commands that arrive through the socket in the host folder. Several may be connected at
/// a time; none that does not read its answers, and none that sends nonsense, keeps the host from
/// its work. The references must outlive it.
class ConsoleServer {
 public:
  /// Errors: those of ListenInFolder.
  ConsoleServer(EventLoop& loop, ServerHost& host);
  /// Removes the socket.
  ~ConsoleServer();
  ConsoleServer(const ConsoleServer&) = delete;
  ConsoleServer& operator=(const ConsoleServer&) = delete;

 private:
  struct Connection {
    SocketDescriptor socket;
    std::string received;  // no whole line yet
    std::string answer;    // not sent yet
    bool isEnding = false;
  };

  void Listen();
  void Accept();
  void Serve(int descriptor);
  /// False at the connection's end.
  static bool Receive(Connection& connection);
  void AnswerNext(Connection& connection);
  static bool Send(Connection& connection);

  EventLoop& loop_;
  ServerHost& host_;
  const std::string path_;
  SocketDescriptor listening_;
  std::map<int, Connection> connections_;                     // by descriptor
  std::optional<EventLoop::Clock::time_point> listensAgain_;  // while no descriptor is left
};

}  // namespace rotacasts::host
