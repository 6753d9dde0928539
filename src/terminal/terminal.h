// Whether somebody sits there. One implementation per platform.
#pragma once

#include <cstddef>

namespace rotacasts::host {

/// The most bytes of a console's line, more than the longest message and its verb. An input passes
/// at most one byte more of a longer line on, so that it can be refused.
inline constexpr std::size_t kLongestLine = std::size_t{128} * 1024;

/// Whether both standard input and output are a terminal: then a person can be asked.
bool IsOnTerminal();

}  // namespace rotacasts::host
