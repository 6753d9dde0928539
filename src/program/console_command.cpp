#include "program/console_command.h"

#include "program/console_talk.h"

namespace rotacasts::host {

void AddConsoleCommand(CLI::App& program, const HostOptions& options, int& status,
                       const std::function<void(CLI::App&)>& addFolder) {
  CLI::App* console = program.add_subcommand(
      "console", "Talk to the host that runs in a folder, or give it the command that follows");
  addFolder(*console);
  console->prefix_command();
  console->callback(
      [console, &options, &status] { status = TalkToHost(options.folder, console->remaining()); });
}

}  // namespace rotacasts::host
