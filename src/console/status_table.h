// The console's table of profiles.
#pragma once

#include <ostream>
#include <vector>

#include "host/status.h"

namespace rotacasts::host {

/// Prints a line for each profile, with what its next message says now, and their problems below.
void PrintStatus(std::ostream& out, Preview& preview, const std::vector<ProfileStatus>& all);

}  // namespace rotacasts::host
