// rotacasts-bench: measures everything, each thing against a named opponent in the same run.

#include <iostream>

#include "duel.h"

int main(int argc, char** argv) {
  using namespace rotacasts::bench;
  std::vector<Duel> duels = ProcessDuels();
  for (Duel& duel : IniDuels()) duels.push_back(std::move(duel));
  std::cerr << "running " << duels.size() << " pairs in turns, about a minute " << std::flush;
  std::vector<Result> results = RunDuels(duels, argc, argv);
  std::cerr << "running hosts with 1 and with 200 profiles for 100 ticks\n";
  for (Result& result : MeasureHostLoad()) results.push_back(std::move(result));
  std::cerr << "asking a host with 200 profiles for its page's answers\n";
  for (Result& result : MeasureWeb()) results.push_back(std::move(result));
  PrintTable(results);
}
