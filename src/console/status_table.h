// The profiles as the console lists them.
#pragma once

#include <ostream>
#include <vector>

#include "host/status.h"

namespace rotacasts::host {

/// Prints a line a profile, and below them what is wrong.
void PrintStatus(std::ostream& out, const std::vector<ProfileStatus>& all);

}  // namespace rotacasts::host
