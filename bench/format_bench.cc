// Copyright 2026 The Veltmark authors.
//
// Formatting is the floor of a detail run: every numeric cell goes through
// a compiled mask. The baseline writes the same values with std::to_chars
// at the mask's number of decimals, the least any formatter must do.

#include <benchmark/benchmark.h>

#include <charconv>
#include <random>
#include <string>
#include <vector>

#include "core/format.h"
#include "ratio_reporter.h"

namespace {

std::vector<double> Values() {
  std::mt19937_64 random(42);
  std::normal_distribution<double> measurement(250.0, 40.0);
  std::vector<double> values(100000);
  for (double& value : values) value = measurement(random);
  return values;
}

void NumberMaskBaseline(benchmark::State& state) {
  const std::vector<double> values = Values();
  char buffer[64];
  for (auto _ : state) {
    for (double value : values) {
      auto result = std::to_chars(buffer, buffer + sizeof buffer, value,
                                  std::chars_format::fixed, 2);
      std::string text(buffer, result.ptr);
      benchmark::DoNotOptimize(text);
    }
  }
}
BENCHMARK(NumberMaskBaseline)->Name("number_mask/baseline");

void NumberMaskCandidate(benchmark::State& state) {
  const std::vector<double> values = Values();
  const rz::FormatMask mask = rz::FormatMask::Compile("####0.00");
  for (auto _ : state) {
    for (double value : values) {
      std::string text = mask.Apply(value);
      benchmark::DoNotOptimize(text);
    }
  }
}
BENCHMARK(NumberMaskCandidate)->Name("number_mask/candidate");

}  // namespace

int main(int argc, char** argv) { return rz::RunWithRatios(argc, argv); }
