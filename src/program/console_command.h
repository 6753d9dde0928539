// The command line's way to the console of a host that runs already.
#pragma once

#include <CLI/CLI.hpp>
#include <functional>
#include <ostream>

#include "host/host_options.h"

namespace rotacasts::host {

/// Adds the command "console" to the program. `addFolder` gives a command the option that sets
/// options.folder; `status` becomes the program's exit status: 1 if a command was refused. The
/// references must outlive the parsing.
void AddConsoleCommand(CLI::App& program, const HostOptions& options, int& status,
                       const std::function<void(CLI::App&)>& addFolder);

}  // namespace rotacasts::host
