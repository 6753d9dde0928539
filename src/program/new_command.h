// The command that sets a profile up.
#pragma once

#include <CLI/CLI.hpp>
#include <functional>
#include <ostream>

#include "host/host_options.h"

namespace rotacasts::host {

/// Adds the command "new" to the program. On a terminal it asks for what its options leave out.
/// `addFolder` gives a command the option that sets options.folder. The references must outlive the
/// parsing.
void AddNewCommand(CLI::App& program, const HostOptions& options, std::ostream& out,
                   const std::function<void(CLI::App&)>& addFolder);

}  // namespace rotacasts::host
