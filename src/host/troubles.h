// Reports an error once when it starts and once when it ends.
#pragma once

#include <chrono>
#include <compare>
#include <cstdint>
#include <functional>
#include <map>
#include <optional>
#include <ostream>
#include <set>
#include <string>

#include "base/runtime_error.h"

namespace rotacasts::host {

/// An error of a profile in words for people, which begin with the profile's label. A description
/// that says no more than the error's number is extended by that and the plugin's procedure.
std::string DescribeError(const std::string& label, const RuntimeError& error,
                          const std::string& procedure);

/// What a profile does again and again, and what can therefore fail again and again.
struct Work {
  std::int32_t profile = 0;
  enum class Kind { Tick, Chat, Host };
  Kind kind = Kind::Tick;

  auto operator<=>(const Work&) const = default;  // NOLINT(modernize-use-nullptr): sees a 0 in it
};

/// Reports an error of recurring work once when it starts and once when it ends, not on every run.
class Troubles {
 public:
  using Clock = std::chrono::steady_clock;

  explicit Troubles(std::ostream& out) : out_(out) {}

  /// Prints at once; for errors that do not recur.
  void Print(const std::string& words) { out_ << words << "\n" << std::flush; }
  /// Reports an error of the current run, unless it was reported since all was well. `part` names
  /// what failed; the meaning is the caller's.
  void ReportStarted(const Work& work, const std::string& words,
                     Clock::time_point now = Clock::now(), std::int32_t part = 0);
  /// Whether a run has done without an error what had failed. A run that did not try it proves
  /// nothing.
  using HasSucceeded = std::function<bool(std::int32_t part)>;
  /// Ends a run. If every part that had failed has now succeeded, prints and returns that all is
  /// well again, for how long it was not and how many runs failed. Returns nullopt otherwise.
  /// Without a function a run tries every part.
  std::optional<std::string> ReportEnded(const Work& work, const std::string& label,
                                         Clock::time_point now = Clock::now(),
                                         const HasSucceeded& hasSucceeded = {});
  /// Forgets what was wrong, so that it is reported again if it still is.
  void Forget(const Work& work) { open_.erase(work); }
  /// Ends a run that tried nothing, so whatever was wrong may still be.
  void EndUntried(const Work& work);
  /// The latest words about work whose last run that tried something failed; empty if it did not.
  std::string WordsOn(const Work& work) const;
  /// Whether these words were printed since the last run without errors, so that there is nothing
  /// new to record.
  bool IsReported(const Work& work, const std::string& words) const;

 private:
  struct Trouble {
    Clock::time_point since;
    int runs = 0;  // the number that failed
    std::set<std::string> printed;
    std::string latest;
    std::map<std::int32_t, bool> parts = {};  // that failed; true: in this run
    bool isInThisRun = false;
  };

  std::ostream& out_;
  std::map<Work, Trouble> open_;
};

}  // namespace rotacasts::host
