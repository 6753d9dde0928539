#include "program/web_commands.h"

namespace rotacasts::host {

/// The page is the native host's.
void AddWebCommands(CLI::App&, CLI::App&, HostOptions&, std::ostream&,
                    const std::function<void(CLI::App&)>&) {}

}  // namespace rotacasts::host
