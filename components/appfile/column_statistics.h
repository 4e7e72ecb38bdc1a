// Copyright 2026 The Veltmark authors.
//
// The statistics of one variable over a set of records: the 23 values of a
// ColumnStatistic (src/platform/app_file.h) computed from the in-memory
// columns of a data file. docs/statistics.md gives every formula, when each
// value is Null, and a worked example.
//
// The records are 0-based indexes into a RecordColumns, in the order the
// statistics see them (record order); the order matters for FirstValue,
// LastValue, the within sigma (mean moving range) and AvgTBE. A null cell is
// no value, and so is a text cell that is empty or only spaces.
//
// Nothing here raises an error for the data: a statistic whose inputs are
// missing, or that would divide by zero or leave the double range, is Null
// (never 0, never inf or NaN). The only error is a variable number outside
// the columns (error 9).
//
// The functions read `records` once, copying the values present into a
// buffer each thread keeps and reuses, and then run tight loops over those
// contiguous values (moments, extremes, moving range, and the share outside
// a calculated spec limit). Beside that buffer, which only grows, they
// allocate nothing but the result. Thread-compatible: the columns are only
// read.

#ifndef RZ_APPFILE_COLUMN_STATISTICS_H_
#define RZ_APPFILE_COLUMN_STATISTICS_H_

#include <cstdint>
#include <span>

#include "appfile/record_columns.h"
#include "platform/app_file.h"
#include "platform/field_definition.h"

namespace rz {

// The limits that the statistics use, taken from a variable's definition.
// A limit's method is "F" (fixed: its value), "C" (calculated from the
// data) or "B" (blank: no limit); the letter is read without regard to case
// or surrounding spaces, and anything else counts as "B".
struct StatisticLimits {
  Limit usl, ucl, tgt, lcl, lsl;
};

// The USL, UCL, TGT, LCL and LSL of `variable`, methods and values as the
// definition holds them.
StatisticLimits LimitsOf(const FieldDefinition& variable);

// The 23 statistics of column `variable` (1-based) of `columns` over
// `records`. Record i's date-time is columns.DateTime(i) (NaN when it has
// none). A text column gives TextStatistics.
// REQUIRES: every index in `records` is below columns.RecordCount().
// Raises error 9 when `variable` is outside 1..columns.VariableCount().
ColumnStatistic NumericStatistics(const RecordColumns& columns, int variable,
                                  std::span<const int32_t> records,
                                  const StatisticLimits& limits);

// Count, FirstValue and LastValue of column `variable` over `records`, every
// other statistic Null. For a text column the values are the stored texts
// unchanged (an empty or all-space text is no value); for a numeric column
// they are Doubles.
// REQUIRES and errors as NumericStatistics.
ColumnStatistic TextStatistics(const RecordColumns& columns, int variable,
                               std::span<const int32_t> records);

}  // namespace rz

#endif  // RZ_APPFILE_COLUMN_STATISTICS_H_
