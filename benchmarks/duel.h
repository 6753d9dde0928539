// Measurements in pairs: a job done by Rotacasts and by a named opponent in the same run.
#pragma once

#include <functional>
#include <string>
#include <vector>

namespace rotacasts::bench {

/// One job. Each side does it once a call.
struct Duel {
  std::string job;
  std::string opponent;  // who, in a few words
  std::string target;    // the ratio that is aimed at; empty for none
  std::function<void()> ours;
  std::function<void()> theirs;
};

/// One line of the table.
struct Result {
  std::string job;
  std::string ours;
  std::string opponent;
  std::string theirs;
  std::string target;
  double ratio = 0;
};

/// Runs every duel, the two sides in random turns, and compares their median times.
std::vector<Result> RunDuels(const std::vector<Duel>& duels, int argc, char** argv);

/// A Markdown table with the ratio in its last column.
void PrintTable(const std::vector<Result>& results);

// What is measured.
std::vector<Duel> ProcessDuels();
std::vector<Duel> IniDuels();
std::vector<Result> MeasureHostLoad();

}  // namespace rotacasts::bench
