#include "duel.h"

#include <benchmark/benchmark.h>

#include <iostream>
#include <map>

namespace rotacasts::bench {
namespace {

/// Keeps the median of every benchmark instead of printing it; prints a dot for progress.
class Medians : public benchmark::BenchmarkReporter {
 public:
  bool ReportContext(const Context&) override { return true; }
  void ReportRuns(const std::vector<Run>& runs) override {
    for (const Run& run : runs) {
      if (run.aggregate_name != "median") continue;
      nanoseconds[run.run_name.function_name] = run.GetAdjustedRealTime();
      std::cerr << "." << std::flush;
    }
  }
  std::map<std::string, double> nanoseconds;
};

void Register(const std::string& name, const std::function<void()>& job) {
  benchmark::RegisterBenchmark(name.c_str(), [job](benchmark::State& state) {
    for ([[maybe_unused]] auto _ : state) job();
  });
}

}  // namespace

std::vector<Result> RunDuels(const std::vector<Duel>& duels, int argc, char** argv) {
  std::string repetitions = "--benchmark_repetitions=9";
  std::string interleave = "--benchmark_enable_random_interleaving=true";
  std::string shortly = "--benchmark_min_time=0.05";
  std::vector<char*> arguments = {argv[0], repetitions.data(), interleave.data(), shortly.data()};
  arguments.insert(arguments.end(), argv + 1, argv + argc);  // the user's arguments win
  int count = static_cast<int>(arguments.size());
  benchmark::Initialize(&count, arguments.data());
  for (const Duel& duel : duels) {
    Register(duel.job + "/ours", duel.ours);
    Register(duel.job + "/theirs", duel.theirs);
  }
  Medians medians;
  benchmark::RunSpecifiedBenchmarks(&medians);
  std::cerr << "\n";
  std::vector<Result> results;
  for (const Duel& duel : duels) {
    if (!medians.nanoseconds.contains(duel.job + "/ours")) continue;  // filtered out
    const double ours = medians.nanoseconds[duel.job + "/ours"];
    const double theirs = medians.nanoseconds[duel.job + "/theirs"];
    results.push_back({duel.job, FormatTime(ours), duel.opponent, FormatTime(theirs), duel.target,
                       ours / theirs});
  }
  return results;
}

}  // namespace rotacasts::bench
