#include "host/status.h"

#include "base/conversions.h"
#include "broadcast/schedule.h"
#include "host/message_list.h"
#include "services/host_folder.h"

namespace rotacasts::host {
namespace {

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

}  // namespace

ProfileStatus ReadStatus(HostProfiles& profiles, Preview& preview, const ProfileSettings& profile,
                         const std::optional<HostedPlugin::Progress>& progress) {
  ProfileStatus status;
  status.profile = profile;
  status.game = preview.GameOf(profile);
  status.progress = progress;
  status.isStopped = progress && !progress->isStarted;
  try {
    const MessageList list(HostFolder(profiles.Folder()).MessageFile(profile.folder));
    TakeOptions(status, list);
    if (!progress || list.messages.empty()) return status;
    status.position = static_cast<std::size_t>(
        NextPosition(progress->nextMessage, static_cast<std::int32_t>(list.messages.size())));
    status.message = list.messages[*status.position].text;
    status.text = preview.TextOf(profile, status.game, status.message);
  } catch (const RuntimeError& error) {
    status.problem = error.description;
  }
  return status;
}

}  // namespace rotacasts::host
