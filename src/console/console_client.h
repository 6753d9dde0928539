// The shell's way to the console of a running host.
#pragma once

#include <deque>
#include <functional>
#include <ostream>
#include <string>

#include "console/console_protocol.h"
#include "machine/linux/event_loop.h"
#include "machine/linux/local_socket.h"

namespace rotacasts::host {

/// Asks the host that runs in a folder, one command after the other, and prints its answers. The
/// references must outlive it.
class ConsoleClient {
 public:
  /// Connects. Errors: 5, with what to do, if no host runs there or it is another user's.
  ConsoleClient(EventLoop& loop, const std::string& hostFolder, std::ostream& out);
  ~ConsoleClient() { loop_.Unwatch(socket_.Get()); }
  ConsoleClient(const ConsoleClient&) = delete;
  ConsoleClient& operator=(const ConsoleClient&) = delete;

  /// Asks when every earlier command is answered.
  void Ask(std::string line);
  /// Stops the loop when everything is answered.
  void EndWhenAnswered();

  bool WasRefused() const { return printer_.WasRefused(); }
  /// Whether the host has ended the connection, because it ended itself or serves as many consoles
  /// as it can.
  bool IsLost() const { return isLost_; }

 private:
  void AskNext();
  void Handle(short ready);

  EventLoop& loop_;
  std::ostream& out_;
  AnswerPrinter printer_;
  SocketDescriptor socket_;
  std::deque<std::string> waiting_;
  std::string sending_;
  bool isAsking_ = false;
  bool endsWhenAnswered_ = false;
  bool isLost_ = false;
};

}  // namespace rotacasts::host
