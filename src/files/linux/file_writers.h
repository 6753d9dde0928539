// Whether another program is writing a file.
#pragma once

#include <chrono>

#include "files/linux/descriptor.h"

namespace rotacasts::host {

enum class Writers {
  None,
  Some,
  Unknown,  // this user may not ask: the file is another user's, or the file system does not tell
};

/// Whether another program has the file, which is open for reading, open for writing. Asks for a
/// lease, which the system grants to the file's owner and to root; without one it looks through the
/// processes that this user may look into, and None is then not among the answers.
Writers WritersOf(const Descriptor& file);

/// How long a file must have been left alone before nobody is taken to be writing it where the
/// writers are Unknown.
inline constexpr std::chrono::milliseconds kQuiet{500};

/// The time until a file with this status has been left alone for that long; at most kQuiet. `now`
/// is by the file system's clock.
std::chrono::nanoseconds TimeUntilQuiet(const struct stat& status, const timespec& now);

}  // namespace rotacasts::host
