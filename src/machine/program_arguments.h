// The command line as texts. One implementation per platform.
#pragma once

#include <filesystem>
#include <string>
#include <vector>

namespace rotacasts::host {

/// What follows the program's name, in UTF-8, the last argument first, as the parser takes it. From
/// then on the program prints UTF-8, and a file that may not grow is an error and not its end.
std::vector<std::string> ProgramArguments(int argc, char** argv);

/// The path that an argument names.
inline std::filesystem::path PathOf(const std::string& argument) {
  return std::u8string(argument.begin(), argument.end());  // a plain text may be read otherwise
}

}  // namespace rotacasts::host
