#include "program/web_commands.h"

namespace rotacasts::host {

/// Adds nothing: only the native host serves the page.
void AddWebCommands(CLI::App&, CLI::App&, HostOptions&, std::ostream&,
                    const std::function<void(CLI::App&)>&) {}

}  // namespace rotacasts::host
