// rotacasts-bench: measures everything against named opponents in the same run.
//   --benchmark_filter=REGEX: only the pairs with matching names; the rest are named "host",
// "page" and "page turns"

#include <benchmark/benchmark.h>

#include <iostream>
#include <regex>

#include "duel.h"

int main(int argc, char** argv) {
  using namespace rotacasts::bench;
  std::vector<Duel> duels = ProcessDuels();
  for (Duel& duel : IniDuels()) duels.push_back(std::move(duel));
  std::cerr << "running pairs in turns, about a minute for all " << duels.size() << " "
            << std::flush;
  std::vector<Result> results = RunDuels(duels, argc, argv);
  const std::string filter = benchmark::GetBenchmarkFilter();
  const auto isAsked = [wanted = std::regex(filter)](const char* name) {
    return std::regex_search(name, wanted);
  };
  if (isAsked("host")) {
    std::cerr << "running hosts with 1 and with 200 profiles for 100 ticks\n";
    for (Result& result : MeasureHostLoad()) results.push_back(std::move(result));
  }
  if (isAsked("page")) {
    std::cerr << "asking a host with 200 profiles for its page's answers\n";
    for (Result& result : MeasureWeb()) results.push_back(std::move(result));
  }
  if (isAsked("page turns")) {
    std::cerr << "changing lists of 1,500 messages that 100 pages show\n";
    for (Result& result : MeasureTurns()) results.push_back(std::move(result));
  }
  PrintTable(results);
}
