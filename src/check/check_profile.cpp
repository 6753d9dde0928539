#include "base/text.h"
#include "check/check.h"
#include "machine/program_lookup.h"

namespace rotacasts::host {

void CheckProfile(const std::string& hostFolder, const ProfileSettings& profile,
                  std::vector<std::string>& warnings) {
  const auto warn = [&](const char* key, const std::string& words) {
    warnings.push_back(PlaceInProfile(hostFolder, profile.folder, key) + ": " + words);
  };
  const std::size_t slash = profile.process.find_last_of("/\\");
  if (slash != profile.process.npos) {
    warn("Process", "Process is \"" + profile.process +
                        "\"; give the program's name alone: " + profile.process.substr(slash + 1));
  }
  const std::string program = profile.say.substr(0, profile.say.find_first_of(" \t"));
  if (program.empty()) return;
  const std::string problem = WhyNotStartable(program);
  if (problem.empty()) return;
  const bool hasBlank = program != profile.say;
  warn("Say", "Say's program " + program + " " + problem + "; name one that can be started" +
                  (hasBlank ? ", by a path without a blank" : ""));
}

}  // namespace rotacasts::host
