// The results and the table that shows them.
#pragma once

#include <string>
#include <vector>

namespace rotacasts::bench {

/// One line of the table. Without an opponent the ratio is 0.
struct Result {
  std::string job;
  std::string ours;
  std::string opponent;  // its name
  std::string theirs;
  std::string target;  // the intended ratio; empty for none
  double ratio = 0;
};

/// Formats a number like printf.
std::string Format(const char* format, double number);
std::string FormatTime(double nanoseconds);

double MedianOf(std::vector<double> numbers);

/// Prints a Markdown table with the ratio in the last column.
void PrintTable(const std::vector<Result>& results);

}  // namespace rotacasts::bench
