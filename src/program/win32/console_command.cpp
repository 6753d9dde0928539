#include "program/console_command.h"

namespace rotacasts::host {

/// Adds nothing: a host on Windows has its console where it was started.
void AddConsoleCommand(CLI::App&, const HostOptions&, int&, const std::function<void(CLI::App&)>&) {
}

}  // namespace rotacasts::host
