// What a message of a profile would say at this moment.
#pragma once

#include <string>

#include "forms/headless/headless_toolkit.h"
#include "host/host_profiles.h"

namespace rotacasts::host {

/// Reads game servers with the plugin's own readers; needs no plugin at work and writes nothing.
class Preview {
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
  class Components;

  void Describe(const ProfileSettings& profile);

  HostProfiles& profiles_;
  std::string problem_;  // the last error that a reader has reported
  headless::TimerLoop timers_;
  headless::HeadlessToolkit toolkit_;
  const std::unique_ptr<ComponentFactory> components_;
  PluginState state_;
};

}  // namespace rotacasts::host
