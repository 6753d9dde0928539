// What was measured, and the table that shows it.
#pragma once

#include <string>
#include <vector>

namespace rotacasts::bench {

/// One line of the table. What has no opponent has no ratio either: 0.
struct Result {
  std::string job;
  std::string ours;
  std::string opponent;  // who, in a few words
  std::string theirs;
  std::string target;  // the ratio that is aimed at; empty for none
  double ratio = 0;
};

/// A number as printf has it.
std::string Format(const char* format, double number);
std::string FormatTime(double nanoseconds);

double MedianOf(std::vector<double> numbers);

/// A Markdown table with the ratio in its last column.
void PrintTable(const std::vector<Result>& results);

}  // namespace rotacasts::bench
