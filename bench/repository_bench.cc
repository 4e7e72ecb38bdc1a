// Copyright 2026 The Veltmark authors.
//
// Filling the result store is the other floor of a detail run (after
// formatting): every output cell goes through Repository::SetValue. The
// case writes 1,000,000 records of 12 fields (two date-time numbers, six
// measurements, four short texts) record by record, as a run does. The
// baseline keeps the same values the plainest way: one
// std::vector<Variant> per record, pushed back into a vector of records.

#include <benchmark/benchmark.h>

#include <random>
#include <string>
#include <vector>

#include "core/variant.h"
#include "ratio_reporter.h"
#include "repository/result_repository.h"

namespace {

constexpr int32_t kRecords = 1000000;
constexpr int32_t kFields = 12;
constexpr int32_t kPatternRecords = 1024;

// kPatternRecords records of values, reused in turn.
std::vector<rz::Variant> Pattern() {
  std::mt19937_64 random(42);
  std::normal_distribution<double> measurement(250.0, 40.0);
  const char* const texts[] = {"OK",      "Lot 17",       "Line 4",
                               "Shift B", "Operator Ann", "Rework"};
  std::vector<rz::Variant> values;
  values.reserve(kPatternRecords * kFields);
  for (int32_t r = 0; r < kPatternRecords; ++r) {
    const double date_time = 45000.0 + r / 1440.0;
    values.emplace_back(date_time);
    values.emplace_back(date_time);
    for (int32_t f = 0; f < 6; ++f) values.emplace_back(measurement(random));
    for (int32_t f = 0; f < 4; ++f) {
      values.emplace_back(texts[random() % std::size(texts)]);
    }
  }
  return values;
}

const rz::Variant& ValueAt(const std::vector<rz::Variant>& pattern,
                           int32_t record, int32_t field) {
  const size_t row = static_cast<size_t>(record % kPatternRecords);
  return pattern[row * kFields + static_cast<size_t>(field)];
}

void FillBaseline(benchmark::State& state) {
  const std::vector<rz::Variant> pattern = Pattern();
  for (auto _ : state) {
    std::vector<std::vector<rz::Variant>> records;
    for (int32_t r = 0; r < kRecords; ++r) {
      std::vector<rz::Variant> record;
      record.reserve(kFields);
      for (int32_t f = 0; f < kFields; ++f) {
        record.push_back(ValueAt(pattern, r, f));
      }
      records.push_back(std::move(record));
    }
    benchmark::DoNotOptimize(records.data());
  }
}
BENCHMARK(FillBaseline)
    ->Name("fill_1m_x_12/baseline")
    ->Unit(benchmark::kMillisecond);

void FillCandidate(benchmark::State& state) {
  const std::vector<rz::Variant> pattern = Pattern();
  for (auto _ : state) {
    rz::ResultRepository repository;
    for (int32_t f = 1; f <= kFields; ++f) {
      repository.Fields().Add("F" + std::to_string(f), 4, 10, 2, 0);
    }
    for (int32_t r = 1; r <= kRecords; ++r) {
      for (int32_t f = 1; f <= kFields; ++f) {
        repository.SetValue(r, f, ValueAt(pattern, r - 1, f - 1));
      }
    }
    benchmark::DoNotOptimize(repository.RecordCount());
  }
}
BENCHMARK(FillCandidate)
    ->Name("fill_1m_x_12/candidate")
    ->Unit(benchmark::kMillisecond);

}  // namespace

int main(int argc, char** argv) { return rz::RunWithRatios(argc, argv); }
