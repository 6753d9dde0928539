// The command line's options for the page: where it is served and who may sign in. One
// implementation per platform.
#pragma once

#include <CLI/CLI.hpp>
#include <functional>
#include <ostream>

#include "host/host_options.h"

namespace rotacasts::host {

/// Adds the page's commands and options to the program and its command "run". `addFolder` gives a
/// command the option that sets options.folder. Everything passed by reference must outlive the
/// parsing.
void AddWebCommands(CLI::App& program, CLI::App& run, HostOptions& options, std::ostream& out,
                    const std::function<void(CLI::App&)>& addFolder);

}  // namespace rotacasts::host
