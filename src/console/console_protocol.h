// What the console's server and its client say to each other: a command is a line, its answer is
// text that ends with one byte, which says what became of it. The text holds no control characters
// but line feeds.
#pragma once

#include <cstddef>
#include <ostream>
#include <string>
#include <string_view>

#include "host/server_host.h"

#include "terminal/terminal.h"

namespace rotacasts::host {

/// The socket's name in the host folder.
inline constexpr const char* kConsoleSocket = "host.console";

/// The end of an answer: done, or refused. ASCII's acknowledgement and its opposite.
inline constexpr char kDone = '\x06';
inline constexpr char kRefused = '\x15';

/// The most bytes of one command; a line that is too long is refused by the console itself.
inline constexpr std::size_t kLongestCommand = kLongestLine + 2;

/// The answer to a command, and whether the console leaves after it.
struct ConsoleAnswer {
  std::string bytes;
  bool isLast = false;
};
ConsoleAnswer AnswerCommand(ServerHost& host, const std::string& line);

/// Prints the answers that arrive in pieces.
class AnswerPrinter {
 public:
  explicit AnswerPrinter(std::ostream& out) : out_(out) {}
  /// True if the piece is the last one of its answer.
  bool Print(std::string_view piece);
  /// Whether any command was refused.
  bool WasRefused() const { return wasRefused_; }

 private:
  std::ostream& out_;
  bool wasRefused_ = false;
};

/// Whether a console leaves by this line without asking the host.
bool IsLeaving(std::string_view line);

/// Raises what keeps a console from a folder without a host, with the way out.
[[noreturn]] void ComplainOfNoHost(const std::string& hostFolder);

// What a host without this service says, before the reason, and a console whose host ends.
inline constexpr const char* kNoOtherConsoles = "\"rotacasts-host console\" cannot be used: ";
inline constexpr const char* kConnectionEnded = "the host has ended the connection\n";

}  // namespace rotacasts::host
