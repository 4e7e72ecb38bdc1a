// Copyright 2026 The Veltmark authors.
//
// The summary pass is what every summarised view costs after loading.
//
// summary_day / summary_shift: the 1,000,000-record data file (see
// bench_data.h) in memory, summarised by day (347 summary records) and by
// 8-hour shift (about 1,040), with all 23 statistics of the ten numeric
// variables for every summary record. The candidate groups the records
// (BuildSummaryPass, as SortFile does) and computes NumericStatistics for
// each variable of each group, as ColumnStatistics().Item does. The limits
// mix fixed and calculated methods on both sides so that every statistic
// is computed.
//
// The baseline is the least any summary must do: one pass over the same
// in-memory columns that finds each record's group from its date-time and
// adds count, sum and sum of squares of the ten variables.

#include <benchmark/benchmark.h>

#include <cmath>
#include <cstdint>
#include <memory>
#include <numeric>
#include <vector>

#include "appfile/column_statistics.h"
#include "appfile/data_store.h"
#include "appfile/record_columns.h"
#include "appfile/summary_pass.h"
#include "bench_data.h"
#include "ratio_reporter.h"

namespace {

using rz::bench::kNumbers;
using rz::bench::kRecords;

const rz::RecordColumns& Columns() {
  static const std::unique_ptr<rz::DataStore> store =
      rz::DataStore::Open(rz::bench::DataFile(), rz::bench::Numeric());
  return store->Columns();
}

struct Totals {
  double count = 0;
  double sum = 0;
  double sum_of_squares = 0;
};

// `per_day` groups: 1 for days, 3 for 8-hour shifts from midnight.
void Baseline(benchmark::State& state, double per_day) {
  const rz::RecordColumns& columns = Columns();
  std::vector<const rz::RecordColumn*> numbers;
  for (int k = 0; k < kNumbers; ++k) numbers.push_back(&columns.Column(3 + k));
  std::vector<Totals> totals(kNumbers);
  for (auto _ : state) {
    int64_t groups = 0;
    double group = std::nan("");
    for (size_t i = 0; i < columns.RecordCount(); ++i) {
      const double key = std::floor(columns.DateTime(i) * per_day + 1e-9);
      if (key != group) {
        benchmark::DoNotOptimize(totals.data());
        totals.assign(kNumbers, Totals{});
        group = key;
        ++groups;
      }
      for (int k = 0; k < kNumbers; ++k) {
        const rz::RecordColumn& column = *numbers[k];
        if (column.IsNull(i)) continue;
        const double x = column.Number(i);
        Totals& t = totals[k];
        t.count += 1;
        t.sum += x;
        t.sum_of_squares += x * x;
      }
    }
    benchmark::DoNotOptimize(totals.data());
    state.counters["groups"] = static_cast<double>(groups);
  }
}

rz::StatisticLimits MixedLimits() {
  rz::StatisticLimits limits;
  limits.usl = {"F", 330};
  limits.ucl = {"C", 0};
  limits.tgt = {"F", 250};
  limits.lcl = {"C", 0};
  limits.lsl = {"C", 0};
  return limits;
}

void Candidate(benchmark::State& state, int32_t key) {
  const rz::RecordColumns& columns = Columns();
  rz::PassRequest request;
  request.summarize = true;
  request.summary_keys = {key};
  request.settings.shift_hours = 8;
  const rz::StatisticLimits limits = MixedLimits();
  for (auto _ : state) {
    rz::RecordList selected(static_cast<size_t>(kRecords));
    std::iota(selected.begin(), selected.end(), 0);
    const rz::SummaryPass pass =
        rz::BuildSummaryPass(columns, std::move(selected), request);
    for (size_t g = 0; g < pass.groups.size(); ++g) {
      for (int k = 0; k < kNumbers; ++k) {
        rz::ColumnStatistic statistic =
            rz::NumericStatistics(columns, 3 + k, pass.RecordsOf(g), limits);
        benchmark::DoNotOptimize(statistic);
      }
    }
    state.counters["groups"] = static_cast<double>(pass.groups.size());
  }
}

void DayBaseline(benchmark::State& state) { Baseline(state, 1); }
void DayCandidate(benchmark::State& state) { Candidate(state, -5); }
void ShiftBaseline(benchmark::State& state) { Baseline(state, 3); }
void ShiftCandidate(benchmark::State& state) { Candidate(state, -4); }

BENCHMARK(DayBaseline)
    ->Name("summary_day/baseline")
    ->Unit(benchmark::kMillisecond);
BENCHMARK(DayCandidate)
    ->Name("summary_day/candidate")
    ->Unit(benchmark::kMillisecond);
BENCHMARK(ShiftBaseline)
    ->Name("summary_shift/baseline")
    ->Unit(benchmark::kMillisecond);
BENCHMARK(ShiftCandidate)
    ->Name("summary_shift/candidate")
    ->Unit(benchmark::kMillisecond);

}  // namespace

int main(int argc, char** argv) { return rz::RunWithRatios(argc, argv); }
