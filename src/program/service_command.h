// The command line's way to run a host as a service of the system. One implementation per platform.
#pragma once

#include <CLI/CLI.hpp>
#include <functional>
#include <ostream>

#include "host/host_options.h"

namespace rotacasts::host {

/// Adds the command "service" to the program, on systems whose services a program itself manages.
/// `run` runs the host and returns the exit status, which `isCrash` judges: the service is started
/// again after a crash. `addFolder` gives a command the option that sets options.folder. Everything
/// passed by reference must outlive the parsing.
void AddServiceCommand(CLI::App& program, HostOptions& options, std::ostream& out,
                       const std::function<void(CLI::App&)>& addFolder,
                       const std::function<int()>& run, const std::function<bool(int)>& isCrash);

}  // namespace rotacasts::host
