// Runs the host until the user ends it. One implementation per platform.
#pragma once

#include <ostream>

#include "host/host_options.h"
#include "host/host_profiles.h"

namespace rotacasts::host {

/// Creates the plugin, starts every profile and runs the console's commands. The profiles keep
/// running after the end of the console's input.
void RunHost(HostProfiles& profiles, const HostOptions& options, std::ostream& out);

}  // namespace rotacasts::host
