// Copyright 2026 The Veltmark authors.
//
// ConditionFilter is the application's filter: the list of six-field
// conditions compiled once into a predicate over a DataStore's records.
// The rules (docs/formats.md repeats them for users):
//   - brackets group; And binds tighter than Or; the connective "none" on
//     any condition but the first counts as And;
//   - when the list opens with a bracketed group (the run puts the date
//     range there), that group is joined with And to everything after it,
//     evaluated as one bracketed expression: (range) And (rest);
//   - variable 0 is the record's date-time, compared with the literal read
//     as "yyyy-mm-dd hh:mm:ss"; numeric variables compare numerically with
//     the literal's leading number; text variables compare trimmed and
//     without regard to case;
//   - "NULL" and the empty literal mean no value, and so does blank text:
//     `= NULL` holds for records without a value, `<> NULL` for records
//     with one; for a record without a value `<>` any other literal holds
//     and every other comparison fails;
//   - LIKE: `*` or `%` any run, `?` or `_` one character, `#` one digit,
//     `[a-z]`, `[!a-z]`; without regard to case; a number is matched by its
//     shortest text ("10", "10.5").
// Compile raises error 5 "Filter brackets do not balance" for unbalanced
// brackets, error 5 naming the operator for an unknown one, error 9 for a
// variable outside the store, error 13 for a date-time literal that is not
// one. An empty list passes every record.

#ifndef RZ_APPFILE_CONDITION_FILTER_H_
#define RZ_APPFILE_CONDITION_FILTER_H_

#include <cstdint>
#include <memory>
#include <vector>

#include "appfile/record_columns.h"
#include "platform/app_file.h"

namespace rz {

class DataStore;

class ConditionFilter {
 public:
  // Compiles `conditions` for the variables of `store`.
  static std::unique_ptr<ConditionFilter> Compile(
      const std::vector<Condition>& conditions, const DataStore& store);
  virtual ~ConditionFilter() = default;

  // True when record `record` (1-based) of `store` passes.
  virtual bool Matches(const DataStore& store, int32_t record) const = 0;

  // Every record of `store` that passes, as 0-based indexes in record
  // order, into `selected` (replaced). The same records as Matches; when
  // the store is in time order, conditions that bound the date-time and
  // are joined with And to the rest (the run's date range) are answered
  // by binary search instead of a test of every record.
  virtual void Select(const DataStore& store, RecordList* selected) const = 0;
};

// The first and the last record whose date-time lies in [begin, end]
// (texts "yyyy-mm-dd hh:mm:ss"); by binary search when the store is in
// time order, else by a scan. Records between them outside the range are
// left to the filter. Returns false when no record lies in the range.
// Error 13 for a text that is not a date-time.
bool FindDateRange(const DataStore& store, std::string_view begin,
                   std::string_view end, int32_t& first, int32_t& last);

}  // namespace rz

#endif  // RZ_APPFILE_CONDITION_FILTER_H_
