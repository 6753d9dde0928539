// What the writer of a message probably did not intend.
#pragma once

#include <string>
#include <vector>

namespace rotacasts::host {

/// Hints about a message (UTF-8), in words that follow it, each with what to do: a placeholder that
/// is none, a letter that the game cannot show, a text that is too long for the settings window.
std::vector<std::string> HintsOn(const std::string& message);

}  // namespace rotacasts::host
