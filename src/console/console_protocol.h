// What the console's server and its client say to each other: a command is a line, its answer is
// text that ends with one byte, which says what became of it. The text holds no control characters
// but line feeds.
#pragma once

#include <cstddef>

#include "machine/terminal.h"

namespace rotacasts::host {

/// The socket's name in the host folder.
inline constexpr const char* kConsoleSocket = "host.console";

/// The end of an answer: done, or refused. ASCII's acknowledgement and its opposite.
inline constexpr char kDone = '\x06';
inline constexpr char kRefused = '\x15';

/// The most bytes of one command; a line that is too long is refused by the console itself.
inline constexpr std::size_t kLongestCommand = kLongestLine + 2;

}  // namespace rotacasts::host
