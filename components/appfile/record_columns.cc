// Copyright 2026 The Veltmark authors.

#include "appfile/record_columns.h"

#include <sqlite3.h>
#include <sys/mman.h>

#include <algorithm>
#include <bit>
#include <cmath>
#include <limits>
#include <new>

#include "appfile/sqlite_util.h"
#include "core/date_time.h"
#include "core/error.h"
#include "core/text.h"

namespace rz {

size_t NullMask::NextSet(size_t begin, size_t end) const {
  size_t index = begin;
  while (index < end) {
    const uint64_t bits = words_[index / 64] >> (index % 64);
    if (bits != 0) {
      return std::min(end, index + static_cast<size_t>(std::countr_zero(bits)));
    }
    index = (index / 64 + 1) * 64;  // the start of the next word
  }
  return end;
}

namespace {

constexpr double kNoDateTime = std::numeric_limits<double>::quiet_NaN();
constexpr double kSecondsPerDay = 86400;

bool IsDigit(char c) { return c >= '0' && c <= '9'; }

int64_t Digits(std::string_view text, size_t first, size_t count) {
  int64_t value = 0;
  for (size_t i = first; i < first + count; ++i)
    value = value * 10 + (text[i] - '0');
  return value;
}

bool AllDigits(std::string_view text, std::initializer_list<size_t> positions) {
  for (size_t position : positions) {
    if (!IsDigit(text[position])) return false;
  }
  return true;
}

// The day number of a date text; throws Error::Overflow when it builds no
// date. "yyyy-mm-dd" (any separators) is read directly, everything else by
// the lenient record-text rule.
double DayNumber(std::string_view date) {
  if (date.size() == 10 && AllDigits(date, {0, 1, 2, 3, 5, 6, 8, 9})) {
    return DateSerial(Digits(date, 0, 4), Digits(date, 5, 2),
                      Digits(date, 8, 2));
  }
  return DateTimeFromRecordText(date, "");
}

// The time of day of a time text as a fraction of a day; throws
// Error::Overflow for absurd field values.
double TimeOfDay(std::string_view time) {
  if (time.size() == 8 && AllDigits(time, {0, 1, 3, 4, 6, 7})) {
    const int64_t seconds = Digits(time, 0, 2) * 3600 +
                            Digits(time, 3, 2) * 60 + Digits(time, 6, 2);
    return static_cast<double>(seconds) / kSecondsPerDay;
  }
  return ParseTimeOfDay(time);
}

// A numeric variable's cell that SQLite holds as text (a data file made by
// hand): blank text is no value, anything else its leading number.
bool ReadNumericText(sqlite3_stmt* statement, int column, double* value) {
  const auto* bytes = sqlite3_column_text(statement, column);
  const std::string_view text(
      reinterpret_cast<const char*>(bytes),
      static_cast<size_t>(sqlite3_column_bytes(statement, column)));
  if (TrimSpaces(text).empty()) return false;
  try {
    *value = LeadingNumber(text);
  } catch (const Error&) {
    return false;  // Beyond the double range: no usable number.
  }
  return true;
}

}  // namespace

double RecordDateTime(std::string_view date, std::string_view time) {
  try {
    return DayNumber(TrimSpaces(date)) + TimeOfDay(TrimSpaces(time));
  } catch (const Error&) {
    return kNoDateTime;
  }
}

// --- Column memory ---

namespace {

constexpr size_t kMappedBlock = size_t{2} << 20;
constexpr size_t kHugePage = size_t{2} << 20;

size_t MappedSize(size_t bytes) {
  return (bytes + kHugePage - 1) / kHugePage * kHugePage;
}

}  // namespace

void* AllocateColumnMemory(size_t bytes) {
  if (bytes < kMappedBlock) return ::operator new(bytes);
  void* memory = mmap(nullptr, MappedSize(bytes), PROT_READ | PROT_WRITE,
                      MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
  if (memory == MAP_FAILED) throw std::bad_alloc();
  madvise(memory, MappedSize(bytes), MADV_HUGEPAGE);  // a hint
  return memory;
}

void FreeColumnMemory(void* memory, size_t bytes) {
  if (bytes < kMappedBlock) {
    ::operator delete(memory);
  } else {
    munmap(memory, MappedSize(bytes));
  }
}

// --- RecordColumn ---

RecordColumn::RecordColumn(NullMask nulls, ColumnBuffer<double> numbers)
    : numeric_(true), nulls_(std::move(nulls)), numbers_(std::move(numbers)) {}

RecordColumn::RecordColumn(NullMask nulls, ColumnBuffer<size_t> ends,
                           ColumnBuffer<char> arena)
    : numeric_(false),
      nulls_(std::move(nulls)),
      arena_(std::move(arena)),
      ends_(std::move(ends)) {}

RecordColumn::RecordColumn(NullMask nulls, ColumnBuffer<uint32_t> codes,
                           ColumnBuffer<size_t> entry_ends,
                           ColumnBuffer<char> entry_arena)
    : numeric_(false),
      coded_(true),
      nulls_(std::move(nulls)),
      arena_(std::move(entry_arena)),
      ends_(std::move(entry_ends)),
      codes_(std::move(codes)) {}

void RecordColumn::AppendCell(SqliteStatement& statement, int column) {
  sqlite3_stmt* const raw = statement.Handle();
  const int type = sqlite3_column_type(raw, column);
  if (type == SQLITE_NULL) {
    AppendNull();
  } else if (!numeric_) {
    const auto* text = sqlite3_column_text(raw, column);
    AppendText(std::string_view(
        reinterpret_cast<const char*>(text),
        static_cast<size_t>(sqlite3_column_bytes(raw, column))));
  } else if (type != SQLITE_TEXT) {
    AppendNumber(sqlite3_column_double(raw, column));
  } else {
    double value = 0;
    if (ReadNumericText(raw, column, &value)) {
      AppendNumber(value);
    } else {
      AppendNull();
    }
  }
}

void RecordColumn::Reserve(size_t records) {
  nulls_.Reserve(records);
  if (numeric_) {
    numbers_.reserve(records);
  } else if (coded_) {
    codes_.reserve(records);
  } else {
    ends_.reserve(records);
  }
}

void RecordColumn::AppendNull() {
  nulls_.Append(true);
  if (numeric_) {
    numbers_.push_back(0);
  } else if (coded_) {
    codes_.push_back(EntryOf(""));
  } else {
    ends_.push_back(arena_.size());
  }
}

void RecordColumn::AppendNumber(double value) {
  nulls_.Append(false);
  numbers_.push_back(value);
}

void RecordColumn::AppendText(std::string_view text) {
  nulls_.Append(false);
  if (coded_) {
    codes_.push_back(EntryOf(text));
    return;
  }
  arena_.append(text.data(), text.size());
  ends_.push_back(arena_.size());
}

uint32_t RecordColumn::EntryOf(std::string_view text) {
  if (entry_ids_.empty()) {
    for (size_t j = 0; j < ends_.size(); ++j) {
      entry_ids_.emplace(std::string(Piece(j)), static_cast<uint32_t>(j));
    }
  }
  const auto found = entry_ids_.find(text);
  if (found != entry_ids_.end()) return found->second;
  const auto entry = static_cast<uint32_t>(ends_.size());
  arena_.append(text.data(), text.size());
  ends_.push_back(arena_.size());
  entry_ids_.emplace(std::string(text), entry);
  return entry;
}

const RecordList& RecordColumn::FoldedCodes() const {
  const size_t count = nulls_.Size();
  folded_codes_.reserve(count);
  if (coded_) {
    // Each entry is folded once; the records take their entry's code.
    for (size_t j = entry_folds_.size(); j < ends_.size(); ++j) {
      entry_folds_.push_back(FoldedCodeOfStored(Piece(j)));
    }
    for (size_t i = folded_codes_.size(); i < count; ++i) {
      folded_codes_.push_back(entry_folds_[codes_[i]]);
    }
    return folded_codes_;
  }
  for (size_t i = folded_codes_.size(); i < count; ++i) {
    const std::string_view stored = IsNull(i) ? std::string_view() : Text(i);
    folded_codes_.push_back(FoldedCodeOfStored(stored));
  }
  return folded_codes_;
}

const std::vector<char>& RecordColumn::BlankEntries() const {
  for (size_t j = blank_entries_.size(); j < ends_.size(); ++j) {
    blank_entries_.push_back(TrimSpaces(Piece(j)).empty() ? 1 : 0);
  }
  return blank_entries_;
}

int32_t RecordColumn::FoldedCodeOfStored(std::string_view stored) const {
  auto found = stored_ids_.find(stored);
  if (found == stored_ids_.end()) {
    const std::string folded = UpperCase(TrimSpaces(stored));
    const auto [id, added] =
        folded_ids_.emplace(folded, static_cast<int32_t>(folded_ids_.size()));
    if (added) folded_texts_.push_back(folded);
    found = stored_ids_.emplace(std::string(stored), id->second).first;
  }
  return found->second;
}

int32_t RecordColumn::FoldedCodeOf(std::string_view text) const {
  const auto found = folded_ids_.find(UpperCase(text));
  return found == folded_ids_.end() ? -1 : found->second;
}

void RecordColumn::Append(const RecordColumn& other, size_t other_count) {
  if (other_count == 0) return;
  // One copy of what is held (or borrowed) into room for all of it.
  const size_t count = nulls_.Size() + other_count;
  nulls_.Reserve(count);
  if (numeric_) {
    numbers_.reserve(count);
  } else if (coded_) {
    codes_.reserve(count);
  } else {
    ends_.reserve(count);
    arena_.reserve(arena_.size() + other.TextBytes(other_count));
  }
  for (size_t i = 0; i < other_count; ++i) {
    if (other.IsNull(i)) {
      AppendNull();
    } else if (numeric_) {
      AppendNumber(other.Number(i));
    } else {
      AppendText(other.Text(i));
    }
  }
}

size_t RecordColumn::TextBytes(size_t count) const {
  if (!coded_) return count == 0 ? 0 : ends_[count - 1];
  size_t bytes = 0;
  for (size_t i = 0; i < count; ++i) bytes += Text(i).size();
  return bytes;
}

void RecordColumn::LeaveRoomToGrow() {
  const size_t wanted = arena_.size() + arena_.size() / 8 + 4096;
  if (!numeric_ && !coded_ && arena_.capacity() < wanted) {
    arena_.reserve(wanted);
  }
}

// --- RecordColumns ---

RecordColumns::RecordColumns(const std::vector<bool>& numeric)
    : pending_(numeric.size(), 0) {
  columns_.reserve(numeric.size());
  for (bool is_numeric : numeric) columns_.emplace_back(is_numeric);
}

RecordColumns::RecordColumns(const std::vector<bool>& numeric,
                             ColumnBuffer<double> date_times,
                             int64_t last_record_number, ColumnLoader* loader)
    : RecordColumns(numeric) {
  std::fill(pending_.begin(), pending_.end(), 1);
  loader_ = loader;
  for (size_t i = 0; i < date_times.size() && in_time_order_; ++i) {
    in_time_order_ = !std::isnan(date_times[i]) &&
                     (i == 0 || date_times[i - 1] <= date_times[i]);
  }
  date_times_ = std::move(date_times);
  last_record_number_ = last_record_number;
}

void RecordColumns::LoadPending(size_t index) const {
  RecordColumn column = loader_->LoadColumn(static_cast<int>(index + 1));
  columns_[index] = std::move(column);
  pending_[index] = 0;
}

void RecordColumns::Reserve(size_t records) {
  for (size_t k = 0; k < columns_.size(); ++k) {
    if (!pending_[k]) columns_[k].Reserve(records);
  }
  date_times_.reserve(records);
}

void RecordColumns::ReadRows(SqliteStatement& statement) {
  sqlite3_stmt* const raw = statement.Handle();
  const int count = VariableCount();
  while (statement.Step()) {
    last_record_number_ = sqlite3_column_int64(raw, 0);
    for (int k = 1; k <= count; ++k) {
      columns_[static_cast<size_t>(k - 1)].AppendCell(statement, k);
    }
    AddDateTime(ComputeDateTime(date_times_.size()));
  }
}

double RecordColumns::ComputeDateTime(size_t index) {
  if (columns_.size() < 2 || columns_[0].Numeric() || columns_[1].Numeric()) {
    return kNoDateTime;
  }
  const std::string_view date = TrimSpaces(columns_[0].Text(index));
  const std::string_view time = TrimSpaces(columns_[1].Text(index));
  try {
    if (date != cached_date_text_ || cached_date_text_.empty()) {
      cached_day_ = DayNumber(date);
      cached_date_text_.assign(date);
    }
    return cached_day_ + TimeOfDay(time);
  } catch (const Error&) {
    return kNoDateTime;
  }
}

void RecordColumns::AddDateTime(double date_time) {
  const size_t count = date_times_.size();
  if (std::isnan(date_time) ||
      (count > 0 && !(date_times_[count - 1] <= date_time))) {
    in_time_order_ = false;
  }
  date_times_.push_back(date_time);
}

void RecordColumns::Append(const RecordColumns& other) {
  const size_t count = other.RecordCount();
  if (count == 0) return;
  for (size_t k = 0; k < columns_.size(); ++k) {
    if (!pending_[k]) columns_[k].Append(other.columns_[k], count);
  }
  for (size_t i = 0; i < count; ++i) AddDateTime(other.date_times_[i]);
  last_record_number_ = other.last_record_number_;
}

void RecordColumns::LeaveRoomToGrow() {
  for (size_t k = 0; k < columns_.size(); ++k) {
    if (!pending_[k]) columns_[k].LeaveRoomToGrow();
  }
}

}  // namespace rz
