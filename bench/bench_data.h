// Copyright 2026 The Veltmark authors.
//
// The data file the application-file benchmarks share: 1,000,000 records
// 30 seconds apart from 2020-01-01 (about 347 days), each with the date
// and time texts, ten measurements (normal, mean 250, SD 40, three
// decimals, about one in a thousand missing), a line name and an operator.
// It is made once, written to a temporary name and renamed, and kept in the
// build folder (bench-data/load1m.rzd); delete it to make it again.

#ifndef RZ_BENCH_BENCH_DATA_H_
#define RZ_BENCH_BENCH_DATA_H_

#include <random>
#include <string>
#include <vector>

#include "core/variant.h"

namespace rz::bench {

inline constexpr int kRecords = 1000000;
inline constexpr int kNumbers = 10;  // variables 3 .. 12
inline constexpr int kVariables = 2 + kNumbers + 2;
inline constexpr int kSecondsApart = 30;

// The numeric flag of each variable (entry k-1 for variable k).
std::vector<bool> Numeric();

// The values of record `index` (0-based), drawing from `random`.
std::vector<Variant> Record(int index, std::mt19937_64& random);

// The path of the cached data file, made when missing: of kRecords
// records (load1m.rzd), or of `records` records (load<records>.rzd), the
// first records of every size being the same.
std::string DataFile(int records = kRecords);

}  // namespace rz::bench

#endif  // RZ_BENCH_BENCH_DATA_H_
