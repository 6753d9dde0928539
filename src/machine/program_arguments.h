// The command line. One implementation per platform.
#pragma once

#include <filesystem>
#include <string>
#include <vector>

namespace rotacasts::host {

/// The arguments after the program's name, in UTF-8, the last one first as the parser expects. Also
/// makes the console print UTF-8, and a write beyond a file size limit fail instead of ending the
/// program.
std::vector<std::string> ProgramArguments(int argc, char** argv);

/// The path that an argument names.
inline std::filesystem::path PathOf(const std::string& argument) {
  return std::u8string(argument.begin(), argument.end());  // Windows reads a plain one differently
}

}  // namespace rotacasts::host
