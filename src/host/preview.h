// What a profile's message would say now.
#pragma once

#include <memory>
#include <string>

#include "broadcast/live_texts.h"
#include "host/host_profiles.h"
#include "siblings/plain_words.h"

namespace rotacasts::host {

/// Reads game servers with the plugin's readers. Needs no running plugin and writes nothing.
class Preview final : MemorySource, ErrorHandler {
 public:
  explicit Preview(HostProfiles& profiles);

  /// The state of a profile's game server.
  struct Game {
    enum class State { Unreachable, Idle, Running };
    State state = State::Unreachable;
    std::string problem;  // why it is unreachable; names the profile
  };
  Game GameOf(const ProfileSettings& profile);

  /// A message's text at this moment.
  struct Text {
    std::string says;     // empty if the message would be skipped
    std::string problem;  // why a placeholder cannot be read; `says` may still hold a fallback
    bool isForNoServer = false;  // the problem is that of the game server
    /// For a table below or above which the game server's problem stands: the text, and another
    /// problem in parentheses.
    std::string Shown() const;
  };
  Text TextOf(const ProfileSettings& profile, const Game& game, const std::string& message);

 private:
  // What the readers read from, and where they report errors.
  MemoryComponent& Memory() const override { return *memory_; }
  void ReportError(const Failure& failure) override { problem_ = PlainWords(failure.error); }

  void Describe(const ProfileSettings& profile);

  HostProfiles& profiles_;
  const std::unique_ptr<MemoryComponent> memory_;
  std::string problem_;   // the last error that a reader reported
  ProfileTables tables_;  // of the one profile being previewed, whatever its own index
  GameReader game_{*this, tables_, *this};
  InfoTexts infoTexts_{*this, tables_, *this};
  LiveTexts liveTexts_{game_, infoTexts_};
};

}  // namespace rotacasts::host
