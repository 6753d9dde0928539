// What a message of a profile would say at this moment.
#pragma once

#include <memory>
#include <string>

#include "broadcast/live_texts.h"
#include "host/host_profiles.h"

namespace rotacasts::host {

/// Reads game servers with the plugin's own readers; needs no plugin at work and writes nothing.
class Preview final : MemorySource, ErrorHandler {
 public:
  explicit Preview(HostProfiles& profiles);

  /// What is to be known of a profile's game server now.
  struct Game {
    enum class State { Unreachable, Idle, Running };
    State state = State::Unreachable;
    std::string problem;  // why it is unreachable
  };
  Game GameOf(const ProfileSettings& profile);

  /// A message's text at this moment.
  struct Text {
    std::string says;     // empty: it would be skipped
    std::string problem;  // why a placeholder cannot be read; a fallback may be said all the same
    /// For a table: the text, and in parentheses what is to be known of it.
    std::string Shown() const;
  };
  Text TextOf(const ProfileSettings& profile, const Game& game, const std::string& message);

 private:
  // What the readers ask for, and whom they tell of an error.
  MemoryComponent& Memory() const override { return *memory_; }
  void ReportError(const Failure& failure) override { problem_ = failure.error.description; }

  void Describe(const ProfileSettings& profile);

  HostProfiles& profiles_;
  const std::unique_ptr<MemoryComponent> memory_;
  std::string problem_;   // the last error that a reader has told of
  ProfileTables tables_;  // of the one profile that is looked at, whatever its own index
  GameReader game_{*this, tables_, *this};
  InfoTexts infoTexts_{*this, tables_, *this};
  LiveTexts liveTexts_{game_, infoTexts_};
};

}  // namespace rotacasts::host
