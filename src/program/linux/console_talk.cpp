#include "program/console_talk.h"

#include <iostream>
#include <optional>

#include "base/word_list.h"
#include "console/completion.h"
#include "console/console_client.h"
#include "host/profile_settings.h"
#include "terminal/linux/console_lines.h"

namespace rotacasts::host {
namespace {

std::vector<std::int32_t> IndexesIn(const std::string& hostFolder) {
  std::vector<std::int32_t> indexes;
  for (const ProfileSettings& profile : LoadProfiles(hostFolder).profiles) {
    indexes.push_back(profile.index);
  }
  return indexes;
}

/// Asks for what is typed, or for every line of the input.
LineEditor::Person Asker(ConsoleClient& client, const std::string& hostFolder) {
  return {[&client](const std::string& line) {
            if (IsLeaving(line)) {
              client.EndWhenAnswered();
              return false;
            }
            client.Ask(line);
            return true;
          },
          [&client] { client.EndWhenAnswered(); },
          [hostFolder](const std::string& before) {
            return Completions(before, IndexesIn(hostFolder));
          }};
}

}  // namespace

int TalkToHost(const std::string& hostFolder, const std::vector<std::string>& words) {
  EventLoop loop;
  ConsoleOutput output(loop);
  std::ostream out(&output);
  ConsoleClient client(loop, hostFolder, out);
  std::optional<ConsoleLines> lines;
  if (words.empty()) {
    lines.emplace(loop, output, Asker(client, hostFolder));
  } else {
    client.Ask(Join(words, " "));
    client.EndWhenAnswered();
  }
  loop.Run();
  if (client.IsLost()) return kNoHostStatus;
  return client.WasRefused() ? kRefusedStatus : 0;
}

}  // namespace rotacasts::host
