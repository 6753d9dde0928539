// Reports an error once when it starts and once when it ends.
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

/// An error in words for people: its description. A run-time error's standard description is
/// extended by its number and the plugin's procedure.
std::string WordsOf(const RuntimeError& error, const std::string& procedure);
/// The words with the label in front, unless they contain it.
std::string Named(const std::string& label, const std::string& words);

/// Reports an error of a profile's ticks once when it starts and once when it ends, not on every
/// tick.
class Troubles {
 public:
  using Clock = std::chrono::steady_clock;

  explicit Troubles(std::ostream& out) : out_(out) {}

  /// Prints at once; for errors that do not recur.
  void Once(const std::string& words) { out_ << words << "\n" << std::flush; }
  /// Reports an error of the profile's current tick, unless it was reported since the last tick
  /// without errors.
  void Met(std::int32_t profile, const std::string& words, Clock::time_point now = Clock::now());
  /// Ends a tick of the profile. If it had no error but earlier ones had, prints and returns that
  /// all is well again, for how long it was not and how many ticks failed. Returns nullopt
  /// otherwise.
  std::optional<std::string> TickEnded(std::int32_t profile, const std::string& label,
                                       Clock::time_point now = Clock::now());
  /// A tick of the profile is over that tried nothing, so whatever was wrong may still be.
  void TickTriedNothing(std::int32_t profile);
  /// Whether the error has been told, so that there is nothing new to record.
  bool IsOld(std::int32_t profile, const std::string& words) const;

 private:
  struct Trouble {
    Clock::time_point since;
    int ticks = 0;  // the number that failed
    std::set<std::string> told;
    bool isInThisTick = false;
  };

  std::ostream& out_;
  std::map<std::int32_t, Trouble> open_;
};

}  // namespace rotacasts::host
