#include "console/status_table.h"

#include <string>

#include "console/text_table.h"

namespace rotacasts::host {
namespace {

constexpr const char* kNotKnown = "-";

std::string NextMessage(Preview& preview, const ProfileStatus& status) {
  if (!status.progress) return kNotKnown;
  if (!status.position) return "(no messages)";
  const std::string says = preview.TextOf(status.profile, status.game, status.message).Shown();
  return std::to_string(*status.position + 1) + ": " +
         (says == status.message ? says : status.message + " -> " + says);
}

std::vector<std::string> Row(Preview& preview, const ProfileStatus& status) {
  constexpr const char* kGames[] = {"unreachable", "idle", "running"};
  const std::string game = kGames[static_cast<int>(status.game.state)];
  return {std::to_string(status.profile.index),
          status.profile.folder,
          status.profile.gameCode,
          status.isStopped          ? "stopped, game " + game
          : !status.failing.empty() ? "failing, game " + game
                                    : game,
          status.isSwitchedOn ? "on" : "off",
          status.interval + " min",
          status.progress ? std::to_string(status.progress->elapsedTicks) : kNotKnown,
          status.problem.empty() ? NextMessage(preview, status) : "(cannot be read)"};
}

}  // namespace

void PrintStatus(std::ostream& out, Preview& preview, const std::vector<ProfileStatus>& all) {
  TextTable table(
      {"Profile", "Folder", "Code", "Game", "Switch", "Every", "Ticks", "Next message"});
  for (const ProfileStatus& status : all) table.Add(Row(preview, status));
  table.Print(out);
  for (const ProfileStatus& status : all) {
    if (!status.game.problem.empty()) out << status.game.problem << "\n";
    if (!status.problem.empty()) out << status.profile.Label() << ": " << status.problem << "\n";
    if (!status.failing.empty()) {
      out << status.profile.Label() << ": its texts fail: " << status.failing << "\n";
    }
    if (status.isFileAhead) {
      out << status.profile.Label()
          << ": its message file has another switch or interval; \"reload\" takes them over\n";
    }
  }
}

}  // namespace rotacasts::host
