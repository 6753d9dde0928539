// A pipe through which other programs reach the console of a running host.
#pragma once

#include <functional>
#include <ostream>
#include <string>

#include "com/unique_handle.h"
#include "console/console_protocol.h"

namespace rotacasts::host {

/// Answers the commands that arrive for the host in a folder from now on: `ask` is called with
/// each, on threads of the pipe, and an empty answer ends the connection. Only the process's user
/// and administrators can connect, from this machine. The threads end with the process. Errors: 57
/// if the system has no pipe left.
void ServeConsolePipe(const std::string& hostFolder,
                      std::function<ConsoleAnswer(const std::string& line)> ask);

/// The same for a host that goes on without it: then `out` gets the reason.
void ServeOtherConsoles(const std::string& hostFolder, std::ostream& out,
                        std::function<ConsoleAnswer(const std::string& line)> ask);

/// A shell's way to the console of a running host.
class PipeToConsole {
 public:
  /// Connects. `out` outlives this. Errors: 5, with the way out, if no host runs in the folder, it
  /// is another user's, or it serves as many consoles as it can.
  PipeToConsole(const std::string& hostFolder, std::ostream& out);

  /// Asks, and prints the answer. False if the host has ended the connection.
  bool Ask(const std::string& line);
  bool WasRefused() const { return printer_.WasRefused(); }

 private:
  win32::UniqueHandle pipe_;
  AnswerPrinter printer_;
};

}  // namespace rotacasts::host
