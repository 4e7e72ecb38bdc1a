// Copyright 2026 The Veltmark authors.

#include "ratio_reporter.h"

#include <benchmark/benchmark.h>

#include <cstdio>
#include <map>
#include <string>

namespace rz {
namespace {

class RatioReporter : public benchmark::ConsoleReporter {
 public:
  void ReportRuns(const std::vector<Run>& runs) override {
    ConsoleReporter::ReportRuns(runs);
    for (const Run& run : runs) {
      if (run.run_type != Run::RT_Iteration || run.iterations == 0) continue;
      times_[run.benchmark_name()] = run.GetAdjustedCPUTime();  // per iteration
    }
  }

  void PrintRatios() const {
    std::printf("\n%-40s %10s\n", "case", "ratio");
    for (const auto& [name, time] : times_) {
      const std::string suffix = "/candidate";
      if (name.size() < suffix.size() ||
          name.compare(name.size() - suffix.size(), suffix.size(), suffix) !=
              0) {
        continue;
      }
      const std::string base = name.substr(0, name.size() - suffix.size());
      auto baseline = times_.find(base + "/baseline");
      if (baseline == times_.end() || baseline->second <= 0) continue;
      std::printf("%-40s %10.3g\n", base.c_str(), time / baseline->second);
    }
  }

 private:
  std::map<std::string, double> times_;
};

}  // namespace

int RunWithRatios(int argc, char** argv) {
  benchmark::Initialize(&argc, argv);
  if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 2;
  RatioReporter reporter;
  benchmark::RunSpecifiedBenchmarks(&reporter);
  reporter.PrintRatios();
  benchmark::Shutdown();
  return 0;
}

}  // namespace rz
