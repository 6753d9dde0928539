// Setting up a profile for a game server, ready to be run.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace rotacasts::host {

/// What a person says of a new profile; empty and 0 where it was not said.
struct NewProfile {
  std::string name;  // of its folder below `profiles`
  std::string gameCode;
  std::string process;  // the game server's program name or process id
  std::int32_t target = 0;
};

struct MadeProfile {
  std::int32_t index = 0;          // the lowest that no profile has
  std::vector<std::string> files;  // profile.ini and the message file, in the system's form
};

/// Writes the profile's profile.ini and, if there is none, a message file with two messages to
/// change. Makes the host folder if only that is missing. What is made below it has its owner and
/// access rights, so whoever serves the host folder can use it.
///
/// Errors: 5, with what to give, if something is missing, wrong or there already, in which case
/// nothing was made; 57, 61, 70, 76 for what cannot be written.
MadeProfile MakeProfile(const std::string& hostFolder, const NewProfile& profile);

}  // namespace rotacasts::host
