// Copyright 2026 The Veltmark authors.
//
// BuildSummaryPass groups the records a filter selected into the groups of
// a sort/summary pass:
//   - by a variable (a sort key of kind 3, or a summary key k > 0): one
//     group per distinct value, the no-value group first (null cells and
//     blank texts), then numbers ascending, or texts trimmed and compared
//     without regard to case;
//   - by a time key (summary keys -9 .. 0): one group per interval of the
//     IntervalGrid that holds at least one record, in time order, with the
//     empty intervals between the first and the last group when
//     `null_intervals` is on; records without a date-time belong to no
//     interval;
//   - with no key: one group over every selected record (none when nothing
//     was selected).
// Inside each group the records keep their record order, which the
// statistics need (first and last value, moving range, time between
// events).
//
// Errors, all raised before any work: error 5 for a sort key whose kind
// is not 3, for more than one sort key or summary key, for a summary key
// below -9, and from IntervalGrid::For for a setting the time key cannot
// use (naming "Interval" or "ShiftDuration"); error 9 for a key variable
// outside the columns; error 5 when the empty intervals would exceed
// kMaxSummaryGroups groups.
//
// The result owns its index arrays; it refers to the columns by index
// only, so it stays valid while the columns are not reloaded.

#ifndef RZ_APPFILE_SUMMARY_PASS_H_
#define RZ_APPFILE_SUMMARY_PASS_H_

#include <array>
#include <cstdint>
#include <span>
#include <vector>

#include "appfile/record_columns.h"
#include "appfile/summary_intervals.h"

namespace rz {

class RecordColumns;

// Groups beyond this many (empty intervals of a fine grid over a long
// period) raise error 5 instead of exhausting memory.
inline constexpr size_t kMaxSummaryGroups = 10'000'000;

// What SortFile was asked for.
struct PassRequest {
  bool summarize = false;
  // Detail mode: (variable, kind) of each sort key.
  std::vector<std::array<int16_t, 2>> sort_keys;
  // Summary mode: the summary keys.
  std::vector<int32_t> summary_keys;
  SummarySettings settings;
  bool null_intervals = false;
};

struct SummaryPassGroup {
  // The group's records are order[begin, end) of its pass; begin == end
  // for an empty interval.
  int32_t begin = 0;
  int32_t end = 0;
  // Time keys: the interval's start in seconds (SecondsFromSerial).
  int64_t interval_start = 0;
};

struct SummaryPass {
  // 0-based indexes of the records the filter selected, in record order.
  RecordList selected;
  // The records of the groups, group after group; empty when they are
  // the selected records as they stand (records in time order grouped by
  // time, or no key), which Order() then gives.
  RecordList order;
  bool order_is_selected = false;
  std::vector<SummaryPassGroup> groups;
  // True when the groups are intervals of a time key.
  bool time_keyed = false;

  const RecordList& Order() const {
    return order_is_selected ? selected : order;
  }
  // The records of group `index` (0-based).
  std::span<const int32_t> RecordsOf(size_t index) const {
    const SummaryPassGroup& group = groups[index];
    return std::span<const int32_t>(Order()).subspan(
        static_cast<size_t>(group.begin),
        static_cast<size_t>(group.end - group.begin));
  }
};

// Checks `request` against the columns; raises the errors listed above.
// Cheap: SortFile calls it before it selects any record.
void CheckPassRequest(const RecordColumns& columns, const PassRequest& request);

// Groups `selected` (0-based record indexes in record order) as
// `request` asks. Calls CheckPassRequest first.
SummaryPass BuildSummaryPass(const RecordColumns& columns, RecordList selected,
                             const PassRequest& request);

}  // namespace rz

#endif  // RZ_APPFILE_SUMMARY_PASS_H_
