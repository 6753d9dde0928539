#include "program/console_command.h"

#include <unistd.h>

#include <iostream>
#include <optional>

#include "console/completion.h"
#include "console/console_client.h"
#include "host/profile_settings.h"
#include "machine/linux/console_input.h"
#include "machine/linux/line_editor.h"

namespace rotacasts::host {
namespace {

constexpr int kRefusedStatus = 1;
constexpr int kNoHostStatus = 2;

bool IsLeaving(const std::string& line) {
  return line == "quit" || line == "exit";
}

std::vector<std::int32_t> IndexesIn(const std::string& hostFolder) {
  std::vector<std::int32_t> indexes;
  for (const ProfileSettings& profile : LoadProfiles(hostFolder).profiles) {
    indexes.push_back(profile.index);
  }
  return indexes;
}

/// Asks for what is typed, or for every line of the input.
class Conversation {
 public:
  Conversation(EventLoop& loop, ConsoleOutput& output, ConsoleClient& client,
               const std::string& hostFolder) {
    const LineEditor::Person person{[&client](const std::string& line) {
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
    if (::isatty(STDIN_FILENO) != 0 && ::isatty(STDOUT_FILENO) != 0) {
      editor_.emplace(loop, output, person);
    } else {
      input_.emplace(loop, person.onLine, person.onEnd);
    }
  }

 private:
  std::optional<LineEditor> editor_;
  std::optional<ConsoleInput> input_;
};

/// Returns the exit status.
int Talk(const std::string& hostFolder, const std::vector<std::string>& words) {
  EventLoop loop;
  ConsoleOutput output(loop);
  std::ostream out(&output);
  ConsoleClient client(loop, hostFolder, out);
  std::optional<Conversation> conversation;
  if (words.empty()) {
    conversation.emplace(loop, output, client, hostFolder);
  } else {
    std::string line;
    for (const std::string& word : words) line += (line.empty() ? "" : " ") + word;
    client.Ask(line);
    client.EndWhenAnswered();
  }
  loop.Run();
  if (client.IsLost()) return kNoHostStatus;
  return client.WasRefused() ? kRefusedStatus : 0;
}

}  // namespace

void AddConsoleCommand(CLI::App& program, const HostOptions& options, int& status,
                       const std::function<void(CLI::App&)>& addFolder) {
  CLI::App* console = program.add_subcommand(
      "console", "Talk to the host that runs in a folder, or give it the command that follows");
  addFolder(*console);
  console->prefix_command();
  console->callback(
      [console, &options, &status] { status = Talk(options.folder, console->remaining()); });
}

}  // namespace rotacasts::host
