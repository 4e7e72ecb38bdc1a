// Copyright 2026 The Veltmark authors.
//
// RecordColumns is the in-memory form of a data file's records, one column
// per variable: a numeric column holds doubles, a text column one text
// arena with the end offset of every record's text (no string per cell),
// and both a null mask (one bit per record, set for SQL NULL). Beside the
// columns it keeps every record's date-time, built from the date and time
// texts of variables 1 and 2 when they are text columns, and whether those
// date-times never decrease.
//
// A record whose date text builds no date (empty, or a year outside
// 100..9999) has no date-time: DateTime() is NaN for it and the columns are
// then not in time order.
//
// ReadRows appends what a query "SELECT recno, v1, ..., vn ..." returns;
// Append adds another RecordColumns of the same layout. Indexes are 0-based
// here; the data store translates its 1-based record numbers.

#ifndef RZ_APPFILE_RECORD_COLUMNS_H_
#define RZ_APPFILE_RECORD_COLUMNS_H_

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace rz {

class SqliteStatement;

// One bit per record.
class NullMask {
 public:
  void Append(bool is_null) {
    if (size_ % 64 == 0) words_.push_back(0);
    if (is_null) words_.back() |= uint64_t{1} << (size_ % 64);
    ++size_;
  }
  bool Get(size_t index) const {
    return (words_[index / 64] >> (index % 64)) & 1;
  }
  // The first set bit in [begin, end), or `end` when there is none; reads
  // a word at a time.
  size_t NextSet(size_t begin, size_t end) const;
  void Reserve(size_t count) { words_.reserve(count / 64 + 1); }

 private:
  std::vector<uint64_t> words_;
  size_t size_ = 0;
};

class RecordColumn {
 public:
  explicit RecordColumn(bool numeric) : numeric_(numeric) {}

  bool Numeric() const { return numeric_; }
  void Reserve(size_t records);

  void AppendNull();
  void AppendNumber(double value);         // numeric columns
  void AppendText(std::string_view text);  // text columns

  bool IsNull(size_t index) const { return nulls_.Get(index); }
  double Number(size_t index) const { return numbers_[index]; }
  // Numeric columns: every record's number in a row (0 for a null cell),
  // and the first null cell in [begin, end) (`end` when none), for loops
  // over a run of records.
  const double* Numbers() const { return numbers_.data(); }
  size_t NextNull(size_t begin, size_t end) const {
    return nulls_.NextSet(begin, end);
  }
  std::string_view Text(size_t index) const {
    const size_t begin = index == 0 ? 0 : ends_[index - 1];
    return std::string_view(arena_).substr(begin, ends_[index] - begin);
  }

  // Appends the records of `other`, a column of the same kind.
  void Append(const RecordColumn& other, size_t other_count);
  // See RecordColumns::LeaveRoomToGrow.
  void LeaveRoomToGrow();

 private:
  bool numeric_;
  NullMask nulls_;
  std::vector<double> numbers_;  // numeric: the value (0 for NULL)
  std::string arena_;            // text: every record's text in a row
  std::vector<size_t> ends_;     // text: where each record's text ends
};

class RecordColumns {
 public:
  // `numeric[k-1]` tells whether variable k is numeric.
  explicit RecordColumns(const std::vector<bool>& numeric);

  // Room for `records` records in every column.
  void Reserve(size_t records);
  // Appends every row the statement returns: column 0 the record number,
  // columns 1..n the variables. Raises the statement's errors.
  void ReadRows(SqliteStatement& statement);
  // Appends the records of `other` (same layout).
  void Append(const RecordColumns& other);
  // Makes sure every text arena has room for about an eighth more text,
  // so that the next appends do not copy it.
  void LeaveRoomToGrow();

  size_t RecordCount() const { return date_times_.size(); }
  int VariableCount() const { return static_cast<int>(columns_.size()); }
  // REQUIRES: 1 <= variable <= VariableCount().
  const RecordColumn& Column(int variable) const {
    return columns_[static_cast<size_t>(variable - 1)];
  }
  double DateTime(size_t index) const { return date_times_[index]; }
  bool InTimeOrder() const { return in_time_order_; }
  // The record number (recno) of the last record; 0 when there is none.
  int64_t LastRecordNumber() const { return last_record_number_; }

 private:
  void AddDateTime(double date_time);
  double ComputeDateTime(size_t index);

  std::vector<RecordColumn> columns_;
  std::vector<double> date_times_;
  bool in_time_order_ = true;
  int64_t last_record_number_ = 0;
  // Records come in date order, so most records repeat the date text of
  // the record before; its day number is kept.
  std::string cached_date_text_;
  double cached_day_ = 0;
};

// The date-time of a record from its date and time texts, as
// DateTimeFromRecordText builds it after trimming both; the common fixed
// forms "yyyy-mm-dd" and "hh:mm:ss" are read directly. NaN when the date
// builds no date.
double RecordDateTime(std::string_view date, std::string_view time);

// Removes spaces at both ends without copying.
std::string_view TrimSpaces(std::string_view text);

}  // namespace rz

#endif  // RZ_APPFILE_RECORD_COLUMNS_H_
