#include "program/service_command.h"

namespace rotacasts::host {

/// Adds nothing: systemd runs the program as it is.
void AddServiceCommand(CLI::App&, HostOptions&, std::ostream&,
                       const std::function<void(CLI::App&)>&, const std::function<int()>&,
                       const std::function<bool(int)>&) {}

}  // namespace rotacasts::host
