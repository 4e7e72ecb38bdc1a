// Copyright 2026 The Veltmark authors.
//
// The example application "line4": a filling and capping line measured
// every 5 to 15 minutes, around the clock in three 8-hour shifts from
// 06:00 with one operator each. GenerateSample builds it in memory:
//   - variables: Date, Time, Line, Operator, nine measurements (Fill
//     Weight, Fill Level, Cap Torque, Diameter, Temperature, Pressure,
//     Thickness, Viscosity, Speed; type N with units, some with fixed
//     limits, some calculated, Viscosity with blank specification limits,
//     run-rule letters) and Comments;
//   - rules A (a point beyond a control limit), B (seven points on one side
//     of the centre) and C (a trend of seven), secured function "EXPORT",
//     look-back 500 records, shifts of 8 hours from 06:00;
//   - records from 2026-01-05 06:00 on, strictly increasing in time, with
//     slow drift, a difference from shift to shift, tool wear on Diameter
//     (reset at each tool change), a few stops of the line lasting hours,
//     about 0.4 % missing measurements and occasional comments.
// The records depend only on the count and the seed: the random numbers
// come from std::mt19937_64 through conversions written here (uniform and
// Box-Muller normal), which give the same values with every standard
// library. Nothing throws (beyond std::bad_alloc).

#ifndef RZ_APPS_RZSELECT_SAMPLE_DATA_H_
#define RZ_APPS_RZSELECT_SAMPLE_DATA_H_

#include <cstdint>
#include <random>
#include <string_view>

#include "rzselect/new_application.h"

namespace rz {

// About three weeks of records at the line's pace.
inline constexpr int32_t kDefaultSampleRecords = 3000;
inline constexpr uint64_t kDefaultSampleSeed = 1;
// The name of the example application's files: line4.rzt, line4.rzd.
inline constexpr std::string_view kSampleName = "line4";

// Random numbers that are the same on every platform for a given seed.
class SampleRandom {
 public:
  explicit SampleRandom(uint64_t seed) : engine_(seed) {}

  // Uniform in [0, 1), from the top 53 bits of one draw.
  double Uniform();
  // A whole number in [low, high].
  int64_t UniformInt(int64_t low, int64_t high);
  // Standard normal by the Box-Muller transform (pairs; the second of a
  // pair is kept for the next call).
  double Normal();
  // True with probability `p`.
  bool Chance(double p) { return Uniform() < p; }

 private:
  std::mt19937_64 engine_;
  bool has_spare_ = false;
  double spare_ = 0;
};

// The example application with `records` records (at least 1), held in
// memory.
NewApplication GenerateSample(int32_t records, uint64_t seed);

// The same application with the records made one at a time as its
// record_source is asked (the same records as GenerateSample's).
NewApplication StreamSample(int32_t records, uint64_t seed);

}  // namespace rz

#endif  // RZ_APPS_RZSELECT_SAMPLE_DATA_H_
