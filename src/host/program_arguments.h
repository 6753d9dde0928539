// The command line as texts. One implementation per platform.
#pragma once

#include <string>
#include <vector>

namespace rotacasts::host {

/// What follows the program's name, in UTF-8, the last argument first, as the parser takes it. From
/// then on the program prints UTF-8.
std::vector<std::string> ProgramArguments(int argc, char** argv);

}  // namespace rotacasts::host
