#include "results.h"

#include <algorithm>
#include <cstdio>
#include <iostream>

#include "console/text_table.h"

namespace rotacasts::bench {

std::string Format(const char* format, double number) {
  char text[40];
  std::snprintf(text, sizeof text, format, number);
  return text;
}

std::string FormatTime(double nanoseconds) {
  if (nanoseconds < 1e2) return Format("%.1f ns", nanoseconds);
  if (nanoseconds < 1e4) return Format("%.0f ns", nanoseconds);
  if (nanoseconds < 1e7) return Format("%.1f us", nanoseconds / 1e3);
  return Format("%.1f ms", nanoseconds / 1e6);
}

double MedianOf(std::vector<double> numbers) {
  const auto middle = numbers.begin() + static_cast<std::ptrdiff_t>(numbers.size() / 2);
  std::nth_element(numbers.begin(), middle, numbers.end());
  return *middle;
}

void PrintTable(const std::vector<Result>& results) {
  host::TextTable table({"| What", "| Rotacasts", "| Opponent", "|", "| Target", "| Ratio |"});
  table.Add({"|---", "|---", "|---", "|---", "|---", "|---|"});
  for (const Result& result : results) {
    table.Add({"| " + result.job, "| " + result.ours, "| " + result.opponent, "| " + result.theirs,
               "| " + result.target,
               result.ratio > 0 ? Format("| %.2f |", result.ratio) : "| - |"});
  }
  table.Print(std::cout);
}

}  // namespace rotacasts::bench
