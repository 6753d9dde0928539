// The console of a running host, for the programs of whoever may use its pipe.
#pragma once

#include <ostream>
#include <string>

#include "com/windows_api.h"
#include "console/console_protocol.h"
#include "machine/win32/unique_handle.h"

namespace rotacasts::host {

/// A command on its way to the thread of the windows, and its answer on the way back.
struct ConsoleQuestion {
  std::string line;
  ConsoleAnswer answer = {};
};

/// Takes the commands that arrive for the host in a folder from now on, and sends each to `window`:
/// as `message`, whose lParam is a ConsoleQuestion* to be answered before it returns. Only the
/// process's user and administrators can connect, from this machine. The threads end with the
/// process. Errors: 57 if the system has no pipe left.
void ServeConsolePipe(const std::string& hostFolder, HWND window, UINT message);

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
