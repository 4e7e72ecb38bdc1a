// Copyright 2026 The Veltmark authors.
//
// RecordColumns is the in-memory form of a data file's records, one column
// per variable: a numeric column holds doubles, a text column one text
// arena with the end offset of every record's text (no string per cell),
// and both a null mask (one bit per record, set for SQL NULL). A text
// column may instead be coded: a list of its distinct texts (its entries,
// in the same arena-and-ends form) and every record's entry number, the
// form the column cache keeps texts that repeat in; a null cell's entry is
// the empty text. Beside the
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
//
// Columns may also arrive later: made with a ColumnLoader, RecordColumns
// holds the date-times from the start and asks the loader for a variable's
// column the first time Column() is called for it (the column cache, which
// reads only what a view uses). Appends then reach the columns already
// loaded; a loader delivers the whole column, appended records included.

#ifndef RZ_APPFILE_RECORD_COLUMNS_H_
#define RZ_APPFILE_RECORD_COLUMNS_H_

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>
#include <vector>

#include "core/text.h"

namespace rz {

class SqliteStatement;

// The memory of a column's values: large blocks (4 MiB and more) come
// straight from the kernel, zeroed, in huge pages where the system offers
// them, so that filling a column of millions of records does not take a
// page fault every 4 KiB; smaller ones from the heap.
void* AllocateColumnMemory(size_t bytes);
void FreeColumnMemory(void* memory, size_t bytes);

template <typename T>
struct ColumnAllocator {
  using value_type = T;
  ColumnAllocator() = default;
  template <typename U>
  ColumnAllocator(const ColumnAllocator<U>&) {}  // NOLINT: rebinding
  T* allocate(size_t count) {
    return static_cast<T*>(AllocateColumnMemory(count * sizeof(T)));
  }
  void deallocate(T* values, size_t count) {
    FreeColumnMemory(values, count * sizeof(T));
  }
  bool operator==(const ColumnAllocator&) const = default;
};

// A list of record indexes (a selection, an order); a long one lives in
// huge pages like a column.
using RecordList = std::vector<int32_t, ColumnAllocator<int32_t>>;

// Values of one kind, one or more per record: held in a vector, or
// borrowed from memory another object keeps alive (the column cache's
// mapping of its file) until the first change copies them. Copies share
// borrowed memory and copy held values.
template <typename T>
class ColumnBuffer {
 public:
  ColumnBuffer() = default;
  ColumnBuffer(const T* data, size_t size, std::shared_ptr<const void> keep)
      : data_(data), size_(size), keep_(std::move(keep)) {}
  ColumnBuffer(const ColumnBuffer& other)
      : held_(other.held_),
        data_(other.keep_ ? other.data_ : held_.data()),
        size_(other.size_),
        keep_(other.keep_) {}
  ColumnBuffer& operator=(const ColumnBuffer& other) {
    if (this != &other) *this = ColumnBuffer(other);
    return *this;
  }
  // A vector keeps its storage when moved, so data_ stays valid.
  ColumnBuffer(ColumnBuffer&&) noexcept = default;
  ColumnBuffer& operator=(ColumnBuffer&&) noexcept = default;

  const T* data() const { return data_; }
  size_t size() const { return size_; }
  size_t capacity() const { return keep_ ? size_ : held_.capacity(); }
  const T& operator[](size_t index) const { return data_[index]; }

  void push_back(const T& value) {
    Hold();
    held_.push_back(value);
    Repoint();
  }
  void append(const T* values, size_t count) {
    Hold();
    held_.insert(held_.end(), values, values + count);
    Repoint();
  }
  T& back() {
    Hold();
    return held_.back();
  }
  // Room for `count` values; borrowed values are copied once, into that
  // room.
  void reserve(size_t count) {
    if (keep_) {
      std::vector<T, ColumnAllocator<T>> held;
      held.reserve(std::max(count, size_));
      held.assign(data_, data_ + size_);
      held_ = std::move(held);
      keep_.reset();
    } else {
      held_.reserve(count);
    }
    Repoint();
  }

 private:
  void Hold() {
    if (keep_) reserve(size_ + size_ / 8 + 64);
  }
  void Repoint() {
    data_ = held_.data();
    size_ = held_.size();
  }

  std::vector<T, ColumnAllocator<T>> held_;
  const T* data_ = nullptr;
  size_t size_ = 0;
  std::shared_ptr<const void> keep_;  // set while borrowing
};

// Hashes texts so that a map keyed by std::string is searched with a
// string_view, without a copy.
struct TextHash {
  using is_transparent = void;
  size_t operator()(std::string_view text) const {
    return std::hash<std::string_view>()(text);
  }
};

// One bit per record.
class NullMask {
 public:
  NullMask() = default;
  // A mask of `size` records with the bits in `words` (64 a word, the
  // first record in the lowest bit). REQUIRES: words.size() == size / 64 +
  // (size % 64 != 0).
  NullMask(ColumnBuffer<uint64_t> words, size_t size)
      : words_(std::move(words)), size_(size) {}

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
  const uint64_t* Words() const { return words_.data(); }
  size_t Size() const { return size_; }

 private:
  ColumnBuffer<uint64_t> words_;
  size_t size_ = 0;
};

class RecordColumn {
 public:
  explicit RecordColumn(bool numeric) : numeric_(numeric) {}
  // A numeric column from its parts. REQUIRES: numbers.size() ==
  // nulls.Size().
  RecordColumn(NullMask nulls, ColumnBuffer<double> numbers);
  // A text column from its parts. REQUIRES: ends.size() == nulls.Size(),
  // ends never decrease, the last end is arena.size().
  RecordColumn(NullMask nulls, ColumnBuffer<size_t> ends,
               ColumnBuffer<char> arena);
  // A coded text column from its parts: `entry_ends` and `entry_arena`
  // hold the entries as above. REQUIRES: codes.size() == nulls.Size(),
  // every code < entry_ends.size(), a null cell's code names an empty
  // entry, no two entries are equal.
  RecordColumn(NullMask nulls, ColumnBuffer<uint32_t> codes,
               ColumnBuffer<size_t> entry_ends, ColumnBuffer<char> entry_arena);

  bool Numeric() const { return numeric_; }
  void Reserve(size_t records);

  void AppendNull();
  void AppendNumber(double value);         // numeric columns
  void AppendText(std::string_view text);  // text columns
  // Appends the cell `column` of the statement's current row, a number
  // read from text where a numeric variable holds text (see ReadRows).
  void AppendCell(SqliteStatement& statement, int column);

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
    return Piece(coded_ ? codes_[index] : index);
  }

  // Coded columns: the entry of a record, an entry's text, and for each
  // entry whether it is blank (empty or spaces; worked out on first use
  // and for entries added since).
  uint32_t Entry(size_t index) const { return codes_[index]; }
  std::string_view EntryText(uint32_t entry) const { return Piece(entry); }
  const std::vector<char>& BlankEntries() const;

  // The parts, for the column cache. A coded column's ends and arena are
  // those of its entries.
  const NullMask& Nulls() const { return nulls_; }
  bool Coded() const { return coded_; }
  const size_t* TextEnds() const { return ends_.data(); }
  std::string_view TextArena() const {
    return std::string_view(arena_.data(), arena_.size());
  }

  // Text columns: a number for every record that two records share
  // exactly when their texts are equal trimmed and without regard to case
  // (a null cell counts as blank text), for passes that compare many
  // records with one text. Worked out on first use and for records
  // appended since, then kept.
  const RecordList& FoldedCodes() const;
  // The number of `text` (already trimmed) among FoldedCodes(); -1 when no
  // record holds it. REQUIRES: FoldedCodes() called since the last append.
  int32_t FoldedCodeOf(std::string_view text) const;
  // The folded (trimmed, upper-cased) text of each code, by code.
  // REQUIRES: FoldedCodes() called since the last append.
  const std::vector<std::string>& FoldedTexts() const { return folded_texts_; }

  // Appends the records of `other`, a column of the same kind.
  void Append(const RecordColumn& other, size_t other_count);
  // See RecordColumns::LeaveRoomToGrow.
  void LeaveRoomToGrow();

 private:
  // Text piece `index` of the arena: a record's text, or a coded column's
  // entry.
  std::string_view Piece(size_t index) const {
    const size_t begin = index == 0 ? 0 : ends_[index - 1];
    return std::string_view(arena_.data() + begin, ends_[index] - begin);
  }
  // Coded columns: the entry of `text`, added when it is new.
  uint32_t EntryOf(std::string_view text);
  // The bytes of the texts of the first `count` records.
  size_t TextBytes(size_t count) const;
  // The folded code of a stored text (see FoldedCodes), made when new.
  int32_t FoldedCodeOfStored(std::string_view stored) const;

  bool numeric_;
  bool coded_ = false;
  NullMask nulls_;
  ColumnBuffer<double> numbers_;  // numeric: the value (0 for NULL)
  ColumnBuffer<char> arena_;      // text: every record's text (or entry)
  ColumnBuffer<size_t> ends_;     // text: where each text ends
  ColumnBuffer<uint32_t> codes_;  // coded text: each record's entry

  // FoldedCodes: the codes, the code of each folded text, and the code of
  // each text as it is stored (most records repeat a few texts).
  using CodeMap =
      std::unordered_map<std::string, int32_t, TextHash, std::equal_to<>>;
  mutable RecordList folded_codes_;
  mutable std::vector<std::string> folded_texts_;
  mutable CodeMap folded_ids_;
  mutable CodeMap stored_ids_;
  mutable std::vector<int32_t> entry_folds_;  // coded: by entry
  mutable std::vector<char> blank_entries_;   // coded: by entry
  // Coded columns: the entry of each text, made at the first append.
  std::unordered_map<std::string, uint32_t, TextHash, std::equal_to<>>
      entry_ids_;
};

// Delivers a variable's whole column to RecordColumns when it is first
// asked for. May throw; the column then stays unloaded.
class ColumnLoader {
 public:
  virtual ~ColumnLoader() = default;
  virtual RecordColumn LoadColumn(int variable) = 0;
};

class RecordColumns {
 public:
  // `numeric[k-1]` tells whether variable k is numeric.
  explicit RecordColumns(const std::vector<bool>& numeric);
  // Records whose date-times are known and whose columns `loader` (not
  // owned, outliving this) delivers when first asked for.
  RecordColumns(const std::vector<bool>& numeric,
                ColumnBuffer<double> date_times, int64_t last_record_number,
                ColumnLoader* loader);

  // Room for `records` records in every column.
  void Reserve(size_t records);
  // Appends every row the statement returns: column 0 the record number,
  // columns 1..n the variables. Raises the statement's errors.
  void ReadRows(SqliteStatement& statement);
  // Appends the records of `other` (same layout, every column loaded) to
  // the columns loaded here; a column not loaded yet gets them from its
  // loader.
  void Append(const RecordColumns& other);
  // Makes sure every text arena has room for about an eighth more text,
  // so that the next appends do not copy it.
  void LeaveRoomToGrow();

  size_t RecordCount() const { return date_times_.size(); }
  int VariableCount() const { return static_cast<int>(columns_.size()); }
  // REQUIRES: 1 <= variable <= VariableCount().
  const RecordColumn& Column(int variable) const {
    const size_t index = static_cast<size_t>(variable - 1);
    if (pending_[index]) LoadPending(index);
    return columns_[index];
  }
  bool IsLoaded(int variable) const {
    return !pending_[static_cast<size_t>(variable - 1)];
  }
  const ColumnBuffer<double>& DateTimes() const { return date_times_; }
  double DateTime(size_t index) const { return date_times_[index]; }
  bool InTimeOrder() const { return in_time_order_; }
  // The record number (recno) of the last record; 0 when there is none.
  int64_t LastRecordNumber() const { return last_record_number_; }

 private:
  void AddDateTime(double date_time);
  double ComputeDateTime(size_t index);
  void LoadPending(size_t index) const;

  // Loading on first use changes what a const caller sees only in time.
  mutable std::vector<RecordColumn> columns_;
  mutable std::vector<char> pending_;  // 1: not loaded yet
  ColumnLoader* loader_ = nullptr;
  ColumnBuffer<double> date_times_;
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

}  // namespace rz

#endif  // RZ_APPFILE_RECORD_COLUMNS_H_
