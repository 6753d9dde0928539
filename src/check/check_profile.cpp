#include "base/word_list.h"
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
  const std::vector<std::string> say = SplitWords(profile.say);
  if (say.empty()) return;
  const std::string problem = WhyNotStartable(say[0]);
  if (problem.empty()) return;
  warn("Say", "Say's program " + say[0] + " " + problem + "; name one that can be started" +
                  (say.size() > 1 ? ", by a path without a blank" : ""));
}

}  // namespace rotacasts::host
