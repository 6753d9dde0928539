// Saying once what is wrong, and that it is over.
#pragma once

#include <chrono>
#include <cstdint>
#include <map>
#include <optional>
#include <ostream>
#include <set>
#include <string>

#include "base/runtime_error.h"

namespace rotacasts::host {

/// An error in a person's words: its description, and where the description is only the run-time's
/// own, the number and the plugin's procedure.
std::string WordsOf(const RuntimeError& error, const std::string& procedure);
/// The words with the label in front, unless they name it themselves.
std::string Named(const std::string& label, const std::string& words);

/// Tells of what is wrong with a profile when it begins, not with every tick, and when it is over.
class Troubles {
 public:
  using Clock = std::chrono::steady_clock;

  explicit Troubles(std::ostream& out) : out_(out) {}

  /// Told at once, for what does not come back by itself.
  void Once(const std::string& words) { out_ << words << "\n" << std::flush; }
  /// Met in a tick of the profile: told unless it has been since a tick last met nothing.
  void Met(std::int32_t profile, const std::string& words, Clock::time_point now = Clock::now());
  /// A tick of the profile is over. If it has met nothing while the last one had, all is well
  /// again: that is told, with how long it was not and how many ticks failed; the same words are
  /// the answer, else nothing.
  std::optional<std::string> TickEnded(std::int32_t profile, const std::string& label,
                                       Clock::time_point now = Clock::now());
  /// Whether the error has been told, so that there is nothing new to record.
  bool IsOld(std::int32_t profile, const std::string& words) const;

 private:
  struct Trouble {
    Clock::time_point since;
    int ticks = 0;  // that have failed
    std::set<std::string> told;
    bool isInThisTick = false;
  };

  std::ostream& out_;
  std::map<std::int32_t, Trouble> open_;  // by profile
};

}  // namespace rotacasts::host
