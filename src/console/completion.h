// What Tab offers on a console's line.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace rotacasts::host {

/// What can stand on a line behind `before`, which ends where a word begins: commands, then what
/// the command's usage names: profiles, placeholders, remote operations, the switch's values. Each
/// ends with a blank if more has to follow.
std::vector<std::string> Completions(const std::string& before,
                                     const std::vector<std::int32_t>& profiles);

}  // namespace rotacasts::host
