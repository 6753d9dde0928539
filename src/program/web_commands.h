// The command line's part in the page: where it is served, and who may sign in. One implementation
// per platform.
#pragma once

#include <CLI/CLI.hpp>
#include <functional>
#include <ostream>

#include "host/host_options.h"

namespace rotacasts::host {

/// Adds what there is of it to the program and to its command "run". `addFolder` gives a command
/// the option that fills in options.folder. All of it outlives the parsing.
void AddWebCommands(CLI::App& program, CLI::App& run, HostOptions& options, std::ostream& out,
                    const std::function<void(CLI::App&)>& addFolder);

}  // namespace rotacasts::host
