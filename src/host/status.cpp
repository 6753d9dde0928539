#include "host/status.h"

#include "base/conversions.h"
#include "broadcast/schedule.h"
#include "host/message_list.h"
#include "services/host_folder.h"
#include "siblings/plain_words.h"

namespace rotacasts::host {
namespace {

bool IsOn(const std::string& enable) {
  return IsNumeric(enable) && ToDouble(enable) == 1;
}

/// The settings that the broadcasts follow, and how the file's differ from them.
void SetSettings(ProfileStatus& status, const MessageList& list) {
  if (!status.progress || status.isStopped) {
    status.isSwitchedOn = IsOn(list.enable);
    status.interval = list.interval;
  } else {
    status.isFileAhead =
        status.isSwitchedOn != IsOn(list.enable) || status.interval != list.interval;
  }
}

void SetNextMessage(ProfileStatus& status, const MessageList& list) {
  status.messages = list.messages.size();
  if (!status.progress || list.messages.empty()) return;
  status.position = static_cast<std::size_t>(
      NextPosition(status.progress->nextMessage, static_cast<std::int32_t>(status.messages)));
  status.message = list.messages[*status.position].text;
  const bool isSaying = !status.isStopped && status.isSwitchedOn &&
                        status.game.state == Preview::Game::State::Running;
  if (isSaying) status.due = status.progress->due;
}

}  // namespace

ProfileStatus ReadStatus(const HostProfiles& profiles, const ProfileSettings& profile,
                         const Preview::Game& game,
                         const std::optional<HostedPlugin::Progress>& progress,
                         const std::string& chatFailure) {
  ProfileStatus status;
  status.profile = profile;
  status.game = game;
  status.progress = progress;
  if (progress) {
    status.isStopped = !progress->isStarted;
    status.isSwitchedOn = progress->isSwitchedOn;
    status.interval = progress->interval;
  }
  try {
    const MessageList list(HostFolder(profiles.Folder()).MessageFile(profile.folder));
    SetSettings(status, list);
    SetNextMessage(status, list);
  } catch (const RuntimeError& error) {
    status.problem = PlainWords(error);
  }
  if (!status.isStopped && status.isSwitchedOn) {
    status.failing = chatFailure;
    if (status.failing.empty() && progress) status.failing = progress->problem;
  }
  return status;
}

}  // namespace rotacasts::host
