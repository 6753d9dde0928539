// Measurements in pairs: a job done by Rotacasts and by a named opponent in the same run.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "results.h"

namespace rotacasts::bench {

/// One job. Each side does it once a call.
struct Duel {
  std::string job;
  std::string opponent;  // who, in a few words
  std::string target;    // the ratio that is aimed at; empty for none
  std::function<void()> ours;
  std::function<void()> theirs;
};

/// Runs every duel, the two sides in random turns, and compares their median times.
std::vector<Result> RunDuels(const std::vector<Duel>& duels, int argc, char** argv);

// What is measured.
std::vector<Duel> ProcessDuels();
std::vector<Duel> IniDuels();
std::vector<Result> MeasureHostLoad();
std::vector<Result> MeasureWeb();

}  // namespace rotacasts::bench
