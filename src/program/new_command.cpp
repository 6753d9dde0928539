#include "program/new_command.h"

#include <iostream>
#include <memory>

#include "base/text.h"
#include "base/word_list.h"
#include "game/game_builds.h"
#include "host/new_profile.h"
#include "terminal/terminal.h"

namespace rotacasts::host {
namespace {

std::string Ask(std::ostream& out, const std::string& question) {
  out << question << ": " << std::flush;
  std::string answer;
  std::getline(std::cin, answer);
  return std::string(TrimSpaces(answer));
}

void AskForTheRest(NewProfile& profile, std::ostream& out) {
  if (profile.gameCode.empty()) {
    profile.gameCode = Ask(out, "Game code (" + Join(GameCodes(), ", ") + ")");
  }
  if (profile.process.empty()) profile.process = Ask(out, "The server's program name");
  if (profile.target == 0) {
    profile.target = WholeNumber(Ask(out, "The port of its chat")).value_or(0);
  }
}

void SayWhatIsNext(const std::string& folder, const MadeProfile& made, std::ostream& out) {
  for (const std::string& file : made.files) out << "made " << file << "\n";
  const std::string option = " --host-folder " + folder;
  out << "It is profile " << made.index << ". Put your messages into its Rotacasts.ini, then\n"
      << "  rotacasts-host check" << option << "     is anything wrong?\n"
      << "  rotacasts-host preview" << option << "   what would players read now?\n"
      << "  rotacasts-host run" << option << "       post them\n"
      << "A host that runs there already takes the profile in with \"reload\".\n";
}

void MakeNew(const std::string& folder, NewProfile& profile, std::ostream& out) {
  if (IsOnTerminal()) AskForTheRest(profile, out);
  SayWhatIsNext(folder, MakeProfile(folder, profile), out);
}

}  // namespace

void AddNewCommand(CLI::App& program, const HostOptions& options, std::ostream& out,
                   const std::function<void(CLI::App&)>& addFolder) {
  CLI::App* command = program.add_subcommand("new", "Set up a profile for a game server");
  const auto profile = std::make_shared<NewProfile>();
  command->add_option("NAME", profile->name, "of the profile's folder")->required();
  addFolder(*command);
  command->add_option("--game-code", profile->gameCode, "which game it is, such as JO");
  command->add_option("--process", profile->process, "the server's program name or process id");
  command->add_option("--target", profile->target, "the port of its chat on this machine");
  command->callback([&options, &out, profile] { MakeNew(options.folder, *profile, out); });
}

}  // namespace rotacasts::host
