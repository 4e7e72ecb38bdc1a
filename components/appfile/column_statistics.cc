// Copyright 2026 The Veltmark authors.

#include "appfile/column_statistics.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <limits>
#include <numbers>
#include <optional>
#include <string>
#include <vector>

#include "core/error.h"

namespace rz {
namespace {

using MaybeNumber = std::optional<double>;

// d2 for moving ranges of two consecutive values: the mean moving range
// divided by it estimates the process sigma.
constexpr double kMovingRangeD2 = 1.128;
constexpr double kSecondsPerDay = 86400;
constexpr double kInfinity = std::numeric_limits<double>::infinity();

enum class LimitMethod { kBlank, kCalculated, kFixed };

LimitMethod MethodOf(const Limit& limit) {
  const std::string_view letter = TrimSpaces(limit.method);
  if (letter == "F" || letter == "f") return LimitMethod::kFixed;
  if (letter == "C" || letter == "c") return LimitMethod::kCalculated;
  return LimitMethod::kBlank;
}

// A number as a statistic: Null when missing, infinite or NaN.
Variant NumberOrNull(MaybeNumber value) {
  if (!value || !std::isfinite(*value)) return Variant::Null();
  return Variant(*value);
}

// a / b; missing when either is missing or b is 0.
MaybeNumber Divide(MaybeNumber a, MaybeNumber b) {
  if (!a || !b || *b == 0) return std::nullopt;
  return *a / *b;
}

MaybeNumber Subtract(MaybeNumber a, MaybeNumber b) {
  if (!a || !b) return std::nullopt;
  return *a - *b;
}

const RecordColumn& ColumnOf(const RecordColumns& columns, int variable) {
  if (variable < 1 || variable > columns.VariableCount()) {
    throw Error::SubscriptOutOfRange("variable " + std::to_string(variable));
  }
  return columns.Column(variable);
}

// What the pass over the values present gathers. The squares are summed
// about `shift` (the first value) so that values far from 0 keep their
// small deviations: the sample variance is then accurate whenever the first
// value lies within a few standard deviations of the mean. Sum is
// count * shift + the shifted sum.
struct Moments {
  int32_t count = 0;
  int32_t first_record = 0;
  int32_t last_record = 0;
  double first = 0;
  double last = 0;
  double sum = 0;
  double shift = 0;
  double shifted_sum = 0;
  double shifted_squares = 0;
  double minimum = 0;
  double maximum = 0;
  double moving_range_sum = 0;  // sum of |x[i] - x[i-1]|
  int32_t outside_fixed = 0;    // values strictly outside the fixed bounds
};

// The fixed spec limits, counted in the first pass so that fixed (or no)
// spec limits need no second one; -inf / +inf for none.
struct FixedBounds {
  double lower = -kInfinity;
  double upper = kInfinity;
};

// How many values ahead the sums ask for memory. A summary record's values
// of one variable are a fresh stretch of the column, which the processor
// does not yet stream in; asking early hides the wait. Prefetching past the
// end is harmless.
constexpr size_t kPrefetchAhead = 256;
constexpr size_t kValuesPerLine = 8;  // a 64-byte cache line

// True when `records` are the consecutive records first, first + 1, ...
// (a summary record of data in time order always is). Written without a
// branch in the loop so that the compiler can check several at a time.
bool Consecutive(std::span<const int32_t> records) {
  const auto first = static_cast<uint32_t>(records.front());
  if (records.back() - records.front() + 1 !=
      static_cast<int64_t>(records.size())) {
    return false;
  }
  uint32_t differences = 0;
  for (size_t i = 0; i < records.size(); ++i) {
    differences |=
        static_cast<uint32_t>(records[i]) ^ (first + static_cast<uint32_t>(i));
  }
  return differences == 0;
}

// The values present of `records`, in order, as runs of contiguous doubles
// so that every loop below reads plain arrays: for consecutive records the
// runs are the column's own array between null cells (nothing is copied);
// otherwise the values are copied into one buffer without a branch (each
// value is written, the end advances only for a value present). `runs` and
// the buffer belong to the calling thread, are reused and only grow; the
// result is valid until the thread's next call.
using ValueRuns = std::vector<std::span<const double>>;

const ValueRuns& RunsOfValues(const RecordColumn& column,
                              std::span<const int32_t> records) {
  thread_local ValueRuns runs;
  thread_local std::vector<double> buffer;
  runs.clear();
  if (records.empty()) return runs;
  const double* numbers = column.Numbers();
  // Ask for the first stretch of the values all at once, so that its waits
  // overlap each other and the check below.
  for (size_t ahead = 0; ahead < kPrefetchAhead; ahead += kValuesPerLine) {
    __builtin_prefetch(numbers + records.front() + ahead);
  }
  if (Consecutive(records)) {
    const auto end = static_cast<size_t>(records.back()) + 1;
    for (auto run = static_cast<size_t>(records.front()); run < end;) {
      const size_t null = column.NextNull(run, end);
      if (null > run) runs.emplace_back(numbers + run, null - run);
      run = null + 1;
    }
    return runs;
  }
  if (buffer.size() < records.size()) buffer.resize(records.size());
  size_t count = 0;
  for (const int32_t index : records) {
    const auto record = static_cast<size_t>(index);
    buffer[count] = numbers[record];
    count += column.IsNull(record) ? 0 : 1;
  }
  if (count > 0) runs.emplace_back(buffer.data(), count);
  return runs;
}

// Two doubles worked on at once: GCC and Clang keep such a value in one
// SIMD register (SSE2 on x86-64, NEON on AArch64), so the loops below do
// two values per step; a comparison gives a mask of -1 (true) or 0 per
// lane. The sums keep two partial results that are combined at the end,
// which changes only the order of the additions.
typedef double DoublePair __attribute__((vector_size(16)));
typedef int64_t MaskPair __attribute__((vector_size(16)));

DoublePair LoadPair(const double* at) {
  DoublePair pair;
  std::memcpy(&pair, at, sizeof pair);
  return pair;
}

DoublePair Both(double value) { return DoublePair{value, value}; }

// |x| of both lanes: the sign bits cleared.
DoublePair Magnitude(DoublePair x) {
  constexpr MaskPair kAllButSign = {INT64_MAX, INT64_MAX};
  return std::bit_cast<DoublePair>(std::bit_cast<MaskPair>(x) & kAllButSign);
}

// Shifted sums and squares, extremes, the sum of moving ranges and the
// number of values outside the fixed bounds, run after run.
class MomentSums {
 public:
  MomentSums(double shift, const FixedBounds& bounds)
      : shift_(Both(shift)),
        lower_(Both(bounds.lower)),
        upper_(Both(bounds.upper)),
        low_(Both(shift)),
        high_(Both(shift)) {}

  void Add(std::span<const double> x) {
    size_t i = 0;
    // The first value of a run: its moving range reaches back to the last
    // value of the run before.
    if (has_previous_)
      AddOne(x[0], x[0] - previous_);
    else
      AddOne(x[0], 0);
    for (i = 1; i + 2 <= x.size(); i += 2) {
      __builtin_prefetch(x.data() + i + kPrefetchAhead);
      const DoublePair value = LoadPair(&x[i]);
      const DoublePair deviation = value - shift_;
      sums_ += deviation;
      squares_ += deviation * deviation;
      low_ = value < low_ ? value : low_;
      high_ = value > high_ ? value : high_;
      ranges_ += Magnitude(value - LoadPair(&x[i - 1]));
      outside_ -= value > upper_;
      outside_ -= value < lower_;
    }
    for (; i < x.size(); ++i) AddOne(x[i], x[i] - x[i - 1]);
    previous_ = x.back();
    has_previous_ = true;
  }

  void Finish(Moments& m) const {
    m.shifted_sum = sums_[0] + sums_[1];
    m.shifted_squares = squares_[0] + squares_[1];
    m.minimum = std::min(low_[0], low_[1]);
    m.maximum = std::max(high_[0], high_[1]);
    m.moving_range_sum = ranges_[0] + ranges_[1];
    m.outside_fixed = static_cast<int32_t>(outside_[0] + outside_[1]);
  }

 private:
  // One value into lane 0.
  void AddOne(double value, double step) {
    const double deviation = value - shift_[0];
    sums_[0] += deviation;
    squares_[0] += deviation * deviation;
    low_[0] = std::min(low_[0], value);
    high_[0] = std::max(high_[0], value);
    ranges_[0] += std::fabs(step);
    outside_[0] += (value > upper_[0]) | (value < lower_[0]);
  }

  DoublePair shift_, lower_, upper_;
  DoublePair sums_ = Both(0);
  DoublePair squares_ = Both(0);
  DoublePair low_, high_;
  DoublePair ranges_ = Both(0);
  MaskPair outside_ = {0, 0};
  double previous_ = 0;
  bool has_previous_ = false;
};

// The number of values strictly above `upper` or strictly below `lower`
// (a value on a limit is in).
int64_t CountOutside(const ValueRuns& runs, double lower, double upper) {
  const DoublePair low = Both(lower);
  const DoublePair high = Both(upper);
  MaskPair outside = {0, 0};
  int64_t count = 0;
  for (const std::span<const double> x : runs) {
    size_t i = 0;
    for (; i + 2 <= x.size(); i += 2) {
      const DoublePair value = LoadPair(&x[i]);
      outside -= value > high;
      outside -= value < low;
    }
    for (; i < x.size(); ++i) count += (x[i] > upper) | (x[i] < lower);
  }
  return count + outside[0] + outside[1];
}

// The record (an element of `records`) of the first and of the last value
// present. REQUIRES: at least one value is present.
void FindEndRecords(const RecordColumn& column,
                    std::span<const int32_t> records, Moments& m) {
  size_t first = 0;
  while (column.IsNull(static_cast<size_t>(records[first]))) ++first;
  size_t last = records.size() - 1;
  while (column.IsNull(static_cast<size_t>(records[last]))) --last;
  m.first_record = records[first];
  m.last_record = records[last];
}

Moments MomentsOf(const RecordColumn& column, std::span<const int32_t> records,
                  const ValueRuns& runs, const FixedBounds& bounds = {}) {
  Moments m;
  if (runs.empty()) return m;
  m.first = m.shift = runs.front().front();
  MomentSums sums(m.shift, bounds);
  size_t count = 0;
  for (const std::span<const double> run : runs) {
    sums.Add(run);
    count += run.size();
  }
  sums.Finish(m);
  // Read after the sums, when the end of the records is in the cache.
  m.last = runs.back().back();
  FindEndRecords(column, records, m);
  m.count = static_cast<int32_t>(count);
  m.sum = m.shift * m.count + m.shifted_sum;
  return m;
}

// 1 - Phi(z) for the standard normal law, through erfc so that a far tail
// stays a tiny positive number instead of 1 - 1 = 0.
double UpperTail(double z) { return 0.5 * std::erfc(z / std::numbers::sqrt2); }

// A control limit: the fixed value, or center + direction * 3 * spread when
// calculated (missing when center or spread is), or none.
MaybeNumber LimitValue(const Limit& limit, MaybeNumber center,
                       MaybeNumber spread, double direction) {
  switch (MethodOf(limit)) {
    case LimitMethod::kFixed:
      return limit.value;
    case LimitMethod::kCalculated:
      if (!center || !spread) return std::nullopt;
      return *center + direction * 3 * *spread;
    case LimitMethod::kBlank:
      break;
  }
  return std::nullopt;
}

MaybeNumber TargetValue(const Limit& target, MaybeNumber average) {
  switch (MethodOf(target)) {
    case LimitMethod::kFixed:
      return target.value;
    case LimitMethod::kCalculated:
      return average;
    case LimitMethod::kBlank:
      break;
  }
  return std::nullopt;
}

// A spec limit with its distance outward from the average (USL - Average
// above, Average - LSL below). A calculated limit's distance is 3 SD as
// such, not the difference of two large numbers: values far from 0 keep
// the digits of CR, CPK and COOL.
struct SpecLimit {
  bool fixed = false;
  MaybeNumber value;
  MaybeNumber room;  // missing when the limit or the average is
};

SpecLimit SpecLimitOf(const Limit& limit, MaybeNumber average, MaybeNumber sd,
                      double direction) {
  SpecLimit spec;
  spec.value = LimitValue(limit, average, sd, direction);
  spec.fixed = MethodOf(limit) == LimitMethod::kFixed;
  if (!spec.value || !average) return spec;
  spec.room = spec.fixed ? direction * (*spec.value - *average) : 3 * *sd;
  return spec;
}

// USL - LSL; missing unless both limits are there.
MaybeNumber SpecWidth(const SpecLimit& lower, const SpecLimit& upper) {
  if (lower.fixed && upper.fixed) return *upper.value - *lower.value;
  if (!lower.room || !upper.room) return std::nullopt;
  return *upper.room + *lower.room;
}

// min(USL - Average, Average - LSL), one-sided with one limit.
MaybeNumber NearestRoom(const SpecLimit& lower, const SpecLimit& upper) {
  if (lower.room && upper.room) return std::min(*lower.room, *upper.room);
  return lower.room ? lower.room : upper.room;
}

// The share of a normal law (Average, sigma) beyond the limits present. A
// share too small for a double is the smallest positive double, never 0.
MaybeNumber ExpectedShareOutside(const SpecLimit& lower, const SpecLimit& upper,
                                 MaybeNumber sigma) {
  if (!sigma || *sigma == 0 || (!lower.room && !upper.room)) {
    return std::nullopt;
  }
  double share = 0;
  if (upper.room) share += UpperTail(*upper.room / *sigma);
  if (lower.room) share += UpperTail(*lower.room / *sigma);
  return std::max(share, std::numeric_limits<double>::denorm_min());
}

// The average time in seconds between the first and the last record with a
// value.
MaybeNumber AverageTimeBetweenEvents(const RecordColumns& columns,
                                     const Moments& m) {
  if (m.count < 2) return std::nullopt;
  const double first = columns.DateTime(static_cast<size_t>(m.first_record));
  const double last = columns.DateTime(static_cast<size_t>(m.last_record));
  if (std::isnan(first) || std::isnan(last)) return std::nullopt;
  return (last - first) * kSecondsPerDay / (m.count - 1);
}

FixedBounds FixedBoundsOf(const StatisticLimits& limits) {
  FixedBounds bounds;
  if (MethodOf(limits.lsl) == LimitMethod::kFixed) {
    bounds.lower = limits.lsl.value;
  }
  if (MethodOf(limits.usl) == LimitMethod::kFixed) {
    bounds.upper = limits.usl.value;
  }
  return bounds;
}

// OOOLpct and OOOLppm: Null without values or without a spec limit. Fixed
// limits were counted with the moments; a calculated one needs a second
// look at the values.
void SetShareOutside(const ValueRuns& runs, const Moments& m,
                     const SpecLimit& lower, const SpecLimit& upper,
                     ColumnStatistic& result) {
  if (m.count == 0 || (!lower.value && !upper.value)) return;
  const double low = lower.value.value_or(-kInfinity);
  const double high = upper.value.value_or(kInfinity);
  const bool calculated =
      (lower.value && !lower.fixed) || (upper.value && !upper.fixed);
  double share = static_cast<double>(m.outside_fixed) / m.count;
  if (calculated) {
    // Nothing can be outside when the extremes are in.
    const bool all_in = m.minimum >= low && m.maximum <= high;
    share = all_in
                ? 0
                : static_cast<double>(CountOutside(runs, low, high)) / m.count;
  }
  result[StatisticValue::OOOLpct] = NumberOrNull(share * 100);
  result[StatisticValue::OOOLppm] = NumberOrNull(share * 1e6);
}

// Count, FirstValue and LastValue.
void SetCountAndEnds(const Moments& m, ColumnStatistic& result) {
  using enum StatisticValue;
  result[Count] = Variant(m.count);
  if (m.count == 0) return;
  result[FirstValue] = NumberOrNull(m.first);
  result[LastValue] = NumberOrNull(m.last);
}

// Sum, Average, Minimum, Maximum and Range.
void SetLocationValues(const Moments& m, MaybeNumber average,
                       ColumnStatistic& result) {
  using enum StatisticValue;
  if (m.count == 0) return;
  result[Sum] = NumberOrNull(m.sum);
  result[Average] = NumberOrNull(average);
  result[Minimum] = NumberOrNull(m.minimum);
  result[Maximum] = NumberOrNull(m.maximum);
  result[Range] = NumberOrNull(m.maximum - m.minimum);
}

// The average, the sample standard deviation and the within sigma.
struct Estimates {
  MaybeNumber average;
  MaybeNumber sd;
  MaybeNumber sigma_w;
};

Estimates EstimatesOf(const Moments& m) {
  Estimates e;
  if (m.count > 0) e.average = m.shift + m.shifted_sum / m.count;
  if (m.count > 1) {
    const double squares =
        m.shifted_squares - m.shifted_sum * m.shifted_sum / m.count;
    e.sd = std::sqrt(std::max(squares, 0.0) / (m.count - 1));
    e.sigma_w = m.moving_range_sum / (m.count - 1) / kMovingRangeD2;
  }
  return e;
}

}  // namespace

StatisticLimits LimitsOf(const FieldDefinition& variable) {
  return StatisticLimits{
      .usl = variable.GetLimit(LimitKind::kUsl),
      .ucl = variable.GetLimit(LimitKind::kUcl),
      .tgt = variable.GetLimit(LimitKind::kTgt),
      .lcl = variable.GetLimit(LimitKind::kLcl),
      .lsl = variable.GetLimit(LimitKind::kLsl),
  };
}

ColumnStatistic NumericStatistics(const RecordColumns& columns, int variable,
                                  std::span<const int32_t> records,
                                  const StatisticLimits& limits) {
  const RecordColumn& column = ColumnOf(columns, variable);
  if (!column.Numeric()) return TextStatistics(columns, variable, records);

  const ValueRuns& runs = RunsOfValues(column, records);
  const Moments m = MomentsOf(column, records, runs, FixedBoundsOf(limits));
  const auto [average, sd, sigma_w] = EstimatesOf(m);
  const SpecLimit usl = SpecLimitOf(limits.usl, average, sd, +1);
  const SpecLimit lsl = SpecLimitOf(limits.lsl, average, sd, -1);
  const MaybeNumber tdev = Subtract(average, TargetValue(limits.tgt, average));

  using enum StatisticValue;
  ColumnStatistic result;
  SetCountAndEnds(m, result);
  SetLocationValues(m, average, result);
  result[SD] = NumberOrNull(sd);
  result[CalcUSL] = NumberOrNull(usl.value);
  result[CalcUCL] = NumberOrNull(LimitValue(limits.ucl, average, sigma_w, +1));
  result[CalcLCL] = NumberOrNull(LimitValue(limits.lcl, average, sigma_w, -1));
  result[CalcLSL] = NumberOrNull(lsl.value);
  result[Tdev] = NumberOrNull(tdev);
  result[TZ] = NumberOrNull(Divide(tdev, sigma_w));
  if (sd) result[CV] = NumberOrNull(Divide(100 * *sd, average));
  if (sigma_w) {
    result[CR] = NumberOrNull(Divide(6 * *sigma_w, SpecWidth(lsl, usl)));
    result[CPK] = NumberOrNull(Divide(NearestRoom(lsl, usl), 3 * *sigma_w));
  }
  SetShareOutside(runs, m, lsl, usl, result);
  if (const MaybeNumber expected = ExpectedShareOutside(lsl, usl, sigma_w)) {
    result[COOLpct] = NumberOrNull(*expected * 100);
    result[COOLppm] = NumberOrNull(*expected * 1e6);
  }
  result[AvgTBE] = NumberOrNull(AverageTimeBetweenEvents(columns, m));
  return result;
}

ColumnStatistic TextStatistics(const RecordColumns& columns, int variable,
                               std::span<const int32_t> records) {
  const RecordColumn& column = ColumnOf(columns, variable);
  using enum StatisticValue;
  ColumnStatistic result;
  if (column.Numeric()) {
    SetCountAndEnds(MomentsOf(column, records, RunsOfValues(column, records)),
                    result);
    return result;
  }
  int32_t count = 0;
  std::string_view first, last;
  if (column.Coded()) {
    // Texts that repeat: whether each entry is blank is worked out once.
    const std::vector<char>& blank = column.BlankEntries();
    for (const int32_t index : records) {
      const uint32_t entry = column.Entry(static_cast<size_t>(index));
      if (blank[entry]) continue;
      if (count == 0) first = column.EntryText(entry);
      last = column.EntryText(entry);
      ++count;
    }
  } else {
    for (const int32_t index : records) {
      const std::string_view text = column.Text(static_cast<size_t>(index));
      if (TrimSpaces(text).empty()) continue;  // Null cells read as "".
      if (count == 0) first = text;
      last = text;
      ++count;
    }
  }
  result[Count] = Variant(count);
  if (count > 0) {
    result[FirstValue] = Variant(first);
    result[LastValue] = Variant(last);
  }
  return result;
}

}  // namespace rz
