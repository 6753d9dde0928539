// The command line's options for the page: where it is served and who may sign in.
#pragma once

#include <CLI/CLI.hpp>
#include <functional>
#include <ostream>

#include "host/host_options.h"

namespace rotacasts::host {

/// Adds the option that says where the page is served to a command that runs the host.
void AddPageOptions(CLI::App& run, HostOptions& options);

/// Adds the page's commands and options to the program and its command "run". `addFolder` gives a
/// command the option that sets options.folder. Everything passed by reference must outlive the
/// parsing.
void AddWebCommands(CLI::App& program, CLI::App& run, HostOptions& options, std::ostream& out,
                    const std::function<void(CLI::App&)>& addFolder);

}  // namespace rotacasts::host
