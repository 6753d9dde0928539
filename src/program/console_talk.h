// Talking to the host that runs in a folder. One implementation per platform.
#pragma once

#include <string>
#include <vector>

namespace rotacasts::host {

// The exit statuses of a talk that went wrong.
inline constexpr int kRefusedStatus = 1;
inline constexpr int kNoHostStatus = 2;

/// Gives the host the command that the words make or, without any, every line of the input, and
/// prints its answers. Returns the exit status: 0, or 1 if a command was refused, or 2 if the host
/// has ended the connection. Errors: 5, with the way out, if no host can be reached.
int TalkToHost(const std::string& hostFolder, const std::vector<std::string>& words);

}  // namespace rotacasts::host
