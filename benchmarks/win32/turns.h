// Times two sides in turns, in one run.
#pragma once

#include <chrono>
#include <functional>
#include <string>
#include <utility>

#include "results.h"

namespace rotacasts::bench {

/// Does a job and returns the nanoseconds that count.
using Turn = std::function<double()>;

template <class Job>
double TimeOf(Job&& job) {
  const auto begin = std::chrono::steady_clock::now();
  job();
  return std::chrono::duration<double, std::nano>(std::chrono::steady_clock::now() - begin).count();
}

/// Lets the sides take turns, starting with the other one in every round, and compares their
/// medians.
inline Result TakeTurns(int rounds, const std::string& job, const std::string& opponent,
                        const std::string& target, const Turn& ours, const Turn& theirs) {
  std::vector<double> times[2];
  const Turn* const sides[] = {&ours, &theirs};
  for (int i = 0; i < 2 * rounds; ++i) {
    const int side = (i + i / 2) % 2;
    times[side].push_back((*sides[side])());
  }
  const double our = MedianOf(std::move(times[0]));
  const double their = MedianOf(std::move(times[1]));
  return {job, FormatTime(our), opponent, FormatTime(their), target, our / their};
}

// The measurements.
std::vector<Result> MeasureLateCalls();
/// The settings window and its memory. Requires: the plugin is registered.
std::vector<Result> MeasureWindow(const std::string& hostFolder);
/// Shows the plugin's window ("plugin") or the bare one ("bare") as the first thing in a process.
/// Prints what MeasureWindow reads from such a process.
void ShowOnce(const std::string& side, const std::string& hostFolder);

}  // namespace rotacasts::bench
