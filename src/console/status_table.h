// The console's table of profiles.
#pragma once

#include <ostream>
#include <vector>

#include "host/status.h"

namespace rotacasts::host {

/// Prints a line for each profile, and their problems below.
void PrintStatus(std::ostream& out, const std::vector<ProfileStatus>& all);

}  // namespace rotacasts::host
