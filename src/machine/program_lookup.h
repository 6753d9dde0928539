// Looking a program up without starting it. One implementation per platform.
#pragma once

#include <string>

namespace rotacasts::host {

/// Why the program cannot be started, in words that follow its name; empty if nothing speaks
/// against it. A name without a slash is looked up in PATH. Always empty on Windows.
std::string WhyNotStartable(const std::string& program);

}  // namespace rotacasts::host
