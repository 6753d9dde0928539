// Saying once what is wrong, and that it is over.
#pragma once

#include <chrono>
#include <cstdint>
#include <map>
#include <ostream>
#include <string>
#include <vector>

#include "base/runtime_error.h"

namespace rotacasts::host {

/// An error in a person's words: its description, and where the description is only the run-time's
/// own, the number and the plugin's procedure.
std::string WordsOf(const RuntimeError& error, const std::string& procedure);
/// The words with the label in front, unless they name it themselves.
std::string Named(const std::string& label, const std::string& words);

/// Tells of an error that comes back with every tick when it begins and when it ends.
class Troubles {
 public:
  using Clock = std::chrono::steady_clock;

  explicit Troubles(std::ostream& out) : out_(out) {}

  /// Told at once, for what does not come back by itself.
  void Once(const std::string& words) { out_ << words << "\n" << std::flush; }
  /// Met in a tick of the profile: told unless the last tick met it too.
  void Met(std::int32_t profile, const std::string& words, Clock::time_point now = Clock::now());
  /// A tick of the profile is over: what it has not met has ended, which is told with how long it
  /// lasted and how often it was met; the same words are the answer.
  std::vector<std::string> TickEnded(std::int32_t profile, const std::string& label,
                                     Clock::time_point now = Clock::now());
  /// Whether the error is one that goes on, so that there is nothing new to record.
  bool IsOld(std::int32_t profile, const std::string& words) const;

 private:
  struct Trouble {
    Clock::time_point since;
    int ticks = 0;  // that have met it
    bool isInThisTick = true;
  };

  std::ostream& out_;
  std::map<std::int32_t, std::map<std::string, Trouble>> open_;  // by profile and words
};

}  // namespace rotacasts::host
