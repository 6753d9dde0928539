// Measurements in pairs: Rotacasts and a named opponent do the same job in the same run.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "results.h"

namespace rotacasts::bench {

/// One job. A call does it once.
struct Duel {
  std::string job;
  std::string opponent;  // its name
  std::string target;    // the intended ratio; empty for none
  std::function<void()> ours;
  std::function<void()> theirs;
};

/// Runs every duel, with the two sides in random turns, and compares their median times.
std::vector<Result> RunDuels(const std::vector<Duel>& duels, int argc, char** argv);

// The measurements.
std::vector<Duel> ProcessDuels();
std::vector<Duel> IniDuels();
std::vector<Result> MeasureHostLoad();
std::vector<Result> MeasureWeb();
/// The longest turns of the event loop that changes of long lists take.
std::vector<Result> MeasureTurns();

}  // namespace rotacasts::bench
