// The host at work, until the person at the console has had enough. One implementation per
// platform.
#pragma once

#include <ostream>

#include "host/host_options.h"
#include "host/host_profiles.h"

namespace rotacasts::host {

/// Gets the plugin, starts every profile, and carries out the console's commands, a line each. The
/// end of the console's input leaves the profiles at work.
void RunHost(HostProfiles& profiles, const HostOptions& options, std::ostream& out);

}  // namespace rotacasts::host
