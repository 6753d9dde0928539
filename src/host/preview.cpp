#include "host/preview.h"

#include "broadcast/placeholders.h"

namespace rotacasts::host {
namespace {

/// Keeps an error for whoever looks on, instead of recording it.
class QuietUtility final : public HostUtilityComponent {
 public:
  QuietUtility(HostProfiles& profiles, std::string& problem)
      : HostUtilityComponent(profiles.Folder(), profiles.Components().Clock(),
                             profiles.Components().Files()),
        problem_(problem) {}
  void LogError(const std::string&, std::string&, RuntimeError& error, std::int32_t&) override {
    problem_ = error.description;
  }
  bool SendErrorReport(Variant&) override { return false; }

 private:
  std::string& problem_;
};

}  // namespace

/// The host's components, with a utility component that writes nothing.
class Preview::Components final : public ComponentFactory {
 public:
  Components(HostProfiles& profiles, std::string& problem)
      : profiles_(profiles), problem_(problem) {}

  std::unique_ptr<UtilityComponent> CreateUtility() override {
    return std::make_unique<QuietUtility>(profiles_, problem_);
  }
  std::unique_ptr<MemoryComponent> CreateMemory() override {
    return profiles_.Components().CreateMemory();
  }
  std::unique_ptr<FileSystemObject> CreateFileSystem() override {
    return profiles_.Components().CreateFileSystem();
  }

 private:
  HostProfiles& profiles_;
  std::string& problem_;
};

Preview::Preview(HostProfiles& profiles)
    : profiles_(profiles),
      toolkit_(timers_),
      components_(std::make_unique<Components>(profiles, problem_)),
      state_({profiles.Components(), *components_, profiles.Components().Clock(), toolkit_}) {
  state_.Main();
}

void Preview::Describe(const ProfileSettings& profile) {
  problem_.clear();
  state_.profiles.SetProfileData(profile.index, profiles_.DataOf(profile));
}

Preview::Game Preview::GameOf(const ProfileSettings& profile) try {
  Describe(profile);
  const bool isRunning = state_.game.IsGameRunning(profile.index);
  return {isRunning ? Game::State::Running : Game::State::Idle, {}};
} catch (const RuntimeError& error) {
  return {Game::State::Unreachable, error.description};
}

Preview::Text Preview::TextOf(const ProfileSettings& profile, const Game& game,
                              const std::string& message) {
  if (IsPlaceholder(message) && game.state == Game::State::Unreachable) return {{}, game.problem};
  Describe(profile);
  Text text;
  text.says = state_.broadcast.LiveText(profile.index, message);
  text.problem = problem_;
  return text;
}

std::string Preview::Text::Shown() const {
  if (problem.empty()) return says.empty() ? "(nothing: it is skipped)" : says;
  return says.empty() ? "(cannot tell: " + problem + ")" : says + " (" + problem + ")";
}

}  // namespace rotacasts::host
