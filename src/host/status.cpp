#include "host/status.h"

#include "base/conversions.h"
#include "host/message_list.h"
#include "host/terminal.h"
#include "host/troubles.h"
#include "store/profile_paths.h"

namespace rotacasts::host {
namespace {

constexpr const char* kNotKnown = "-";

bool IsOn(const std::string& enable) {
  return IsNumeric(enable) && ToDouble(enable) == 1;
}

void TakeOptions(ProfileStatus& status, const MessageList& list) {
  status.isSwitchedOn = IsOn(list.enable);
  status.interval = list.interval;
  if (!status.progress || status.isStopped) return;
  status.isSwitchedOn = status.progress->isSwitchedOn;
  status.interval = status.progress->interval;
  status.isFileAhead = status.isSwitchedOn != IsOn(list.enable) || status.interval != list.interval;
}

std::string NextMessage(const ProfileStatus& status) {
  if (!status.progress) return kNotKnown;
  if (!status.position) return "(no messages)";
  const std::string says = status.text.Shown();
  return std::to_string(*status.position) + ": " +
         (says == status.message ? says : status.message + " -> " + says);
}

std::vector<std::string> Row(const ProfileStatus& status) {
  constexpr const char* kGames[] = {"unreachable", "idle", "running"};
  const std::string game = kGames[static_cast<int>(status.game.state)];
  return {std::to_string(status.profile.index),
          status.profile.folder,
          status.profile.gameCode,
          status.isStopped ? "stopped, game " + game : game,
          status.isSwitchedOn ? "on" : "off",
          status.interval + " min",
          status.progress ? std::to_string(status.progress->elapsedTicks) : kNotKnown,
          status.problem.empty() ? NextMessage(status) : "(cannot be read)"};
}

}  // namespace

ProfileStatus ReadStatus(HostProfiles& profiles, Preview& preview, const ProfileSettings& profile,
                         const std::optional<HostedPlugin::Progress>& progress) {
  ProfileStatus status;
  status.profile = profile;
  status.game = preview.GameOf(profile);
  status.progress = progress;
  status.isStopped = progress && !progress->isStarted;
  try {
    const MessageList list(MessageFilePath(profiles.Folder(), profile.folder));
    TakeOptions(status, list);
    if (!progress || list.messages.empty()) return status;
    const auto next = static_cast<std::size_t>(progress->nextMessage);
    status.position = next < list.messages.size() ? next : 0;
    status.message = list.messages[*status.position].text;
    // What is wrong with the game is said below the table.
    const Preview::Text text = preview.TextOf(profile, status.game, status.message);
    status.text = text.problem == status.game.problem && text.says.empty()
                      ? Preview::Text{{}, "no game server"}
                      : text;
  } catch (const RuntimeError& error) {
    status.problem = error.description;
  }
  return status;
}

void PrintStatus(std::ostream& out, const std::vector<ProfileStatus>& all) {
  TextTable table(
      {"Profile", "Folder", "Code", "Game", "Switch", "Every", "Ticks", "Next message"});
  for (const ProfileStatus& status : all) table.Add(Row(status));
  table.Print(out);
  for (const ProfileStatus& status : all) {
    for (const std::string& problem : {status.game.problem, status.problem}) {
      if (!problem.empty()) out << Named(status.profile.Label(), problem) << "\n";
    }
    if (status.isFileAhead) {
      out << status.profile.Label()
          << ": its message file has another switch or interval; \"reload\" takes them over\n";
    }
  }
}

}  // namespace rotacasts::host
