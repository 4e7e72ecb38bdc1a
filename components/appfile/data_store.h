// Copyright 2026 The Veltmark authors.
//
// DataStore holds an application's data records in memory, column by
// column, loaded from its SQLite data file (table `records`, one column per
// variable, see docs/formats.md). Numeric variables are doubles with a null
// mask, text variables live in one text arena; the combined date-time of
// every record (variables 1 and 2) is computed once at load.
//
// Refresh brings the columns up to date with the file: when only records
// were appended since the last load, only those are read; when records
// were changed or removed (the file's edit generation moved, or the record
// numbers no longer continue what is held), everything is reloaded.
//
// Records are numbered 1..RecordCount() in `recno` order; variables
// 1..VariableCount() in template order. Errors are rz::Error naming the
// file: 53 missing, 70 not readable, 75 not a data file of this kind or
// its columns do not match the variables given. Not thread-safe.

#ifndef RZ_APPFILE_DATA_STORE_H_
#define RZ_APPFILE_DATA_STORE_H_

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "core/variant.h"

namespace rz {

class RecordColumns;

class DataStore {
 public:
  // Opens the data file at `path` for variables whose numeric flags are
  // `numeric` (entry k-1 for variable k; variables 1 and 2 are text) and
  // loads every record.
  static std::unique_ptr<DataStore> Open(const std::string& path,
                                         std::vector<bool> numeric);
  virtual ~DataStore() = default;

  // Re-reads what changed in the file since the last load (see above);
  // returns true when the records changed.
  virtual bool Refresh() = 0;

  virtual int32_t RecordCount() const = 0;
  virtual int VariableCount() const = 0;
  virtual bool IsNumeric(int variable) const = 0;

  // Cells of record `record` (1-based) and variable `variable` (1-based).
  // REQUIRES: both in range (callers check; out of range is a programming
  // error).
  virtual bool IsNull(int32_t record, int variable) const = 0;
  virtual double Number(int32_t record, int variable) const = 0;  // numeric
  virtual std::string_view Text(int32_t record,
                                int variable) const = 0;  // text
  // The record's date-time from its date and time texts.
  virtual double DateTime(int32_t record) const = 0;
  // True when the date-times never decrease from record to record (then
  // range lookups may search instead of scan).
  virtual bool InTimeOrder() const = 0;

  // The columns themselves, for passes over many records (filtering,
  // grouping, statistics). Valid until the next Refresh that returns true.
  virtual const RecordColumns& Columns() const = 0;

  // The cell as the application-file component returns it: variable 0 the
  // date-time as a Date; numeric variables a Double or Null; text
  // variables a String, Null for a missing value.
  virtual Variant Value(int32_t record, int variable) const = 0;

  // The distinct values of a variable over all records, without missing
  // values and blank texts: numbers ascending, then texts (trimmed)
  // ascending without regard to case, each once.
  virtual std::vector<Variant> DistinctValues(int variable) const = 0;

  // The last change of the data file (the later of the file and its WAL),
  // as a local date-time day count.
  virtual double FileDateTime() const = 0;
};

}  // namespace rz

#endif  // RZ_APPFILE_DATA_STORE_H_
