#include <benchmark/benchmark.h>

#include <cstdio>
#include <map>
#include <string>
#include <utility>
#include <vector>

namespace {

// Prints the usual table, and after it each benchmark's time as a multiple of the one that is
// called "baseline" in its group. A group is what stands before the slash of a name.
class RatioReporter : public benchmark::ConsoleReporter {
 public:
  void ReportRuns(const std::vector<Run>& runs) override {
    ConsoleReporter::ReportRuns(runs);
    for (const Run& run : runs) {
      // Of repeated runs only the median counts.
      if (run.error_occurred || (run.repetitions > 1 && run.aggregate_name != "median")) continue;
      times_.emplace_back(run.run_name.function_name, run.GetAdjustedRealTime());
    }
  }

  void Finalize() override {
    ConsoleReporter::Finalize();
    std::map<std::string, double> baselines;
    for (const auto& [name, time] : times_) {
      const size_t slash = name.find('/');
      if (name.substr(slash + 1) == "baseline") baselines[name.substr(0, slash)] = time;
    }
    std::printf("\n%-40s %10s\n", "Compared with the group's baseline", "ratio");
    for (const auto& [name, time] : times_) {
      const auto baseline = baselines.find(name.substr(0, name.find('/')));
      if (baseline == baselines.end() || name.ends_with("/baseline")) continue;
      std::printf("%-40s %10.2f\n", name.c_str(), time / baseline->second);
    }
  }

 private:
  std::vector<std::pair<std::string, double>> times_;
};

}  // namespace

int main(int argc, char** argv) {
  benchmark::Initialize(&argc, argv);
  if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 2;
  RatioReporter reporter;
  benchmark::RunSpecifiedBenchmarks(&reporter);
  benchmark::Shutdown();
  return 0;
}
