#include "host/preview.h"

#include "broadcast/placeholders.h"
#include "host/troubles.h"
#include "plugin/profiles.h"

namespace rotacasts::host {
namespace {

constexpr std::int32_t kLookedAt = 0;  // the profile's index in the tables

}  // namespace

Preview::Preview(HostProfiles& profiles)
    : profiles_(profiles), memory_(profiles.Components().CreateMemory(WhenAway::IsError)) {
  tables_.Profiles.Resize(kLookedAt);
  tables_.MemoryMaps.Resize(kLookedAt);
}

void Preview::Describe(const ProfileSettings& profile) {
  problem_.clear();
  ProfileRecord& record = tables_.Profiles(kLookedAt);
  const HostValue data(profiles_.DataOf(profile));
  FillRecord(record, ProfileData(data));
  game_.SetMemory(kLookedAt, record.IsAffiliate);
}

Preview::Game Preview::GameOf(const ProfileSettings& profile) try {
  Describe(profile);
  const bool isRunning = game_.IsGameRunning(kLookedAt);
  return {isRunning ? Game::State::Running : Game::State::Idle, {}};
} catch (const RuntimeError& error) {
  return {Game::State::Unreachable, DescribeError(profile.Label(), error, "GameOf")};
}

Preview::Text Preview::TextOf(const ProfileSettings& profile, const Game& game,
                              const std::string& message) {
  if (IsPlaceholder(message) && game.state == Game::State::Unreachable) {
    return {{}, game.problem, true};
  }
  Describe(profile);
  Text text;
  text.says = AsPosted(liveTexts_.TextOf(kLookedAt, profile.gameCode, message));
  text.problem = problem_;
  return text;
}

std::string Preview::Text::Shown() const {
  if (isForNoServer) return "(cannot tell: no game server)";
  if (problem.empty()) return says.empty() ? "(nothing: it is skipped)" : says;
  return says.empty() ? "(cannot tell: " + problem + ")" : says + " (" + problem + ")";
}

}  // namespace rotacasts::host
