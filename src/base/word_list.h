// Joining texts and splitting them into words.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace rotacasts {

/// The texts with `separator` between each two.
std::string Join(const std::vector<std::string>& texts, std::string_view separator);
/// The words between blanks and other white space.
std::vector<std::string> SplitWords(std::string_view text);

}  // namespace rotacasts
