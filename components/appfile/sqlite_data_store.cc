// Copyright 2026 The Veltmark authors.

#include "appfile/sqlite_data_store.h"

#include <sqlite3.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cmath>
#include <ctime>
#include <limits>
#include <string_view>
#include <unordered_set>
#include <utility>

#include "appfile/data_file_schema.h"
#include "appfile/sqlite_util.h"
#include "core/date_time.h"
#include "core/error.h"
#include "core/text.h"

namespace rz {
namespace {

using data_file::VariableColumn;

// Above this a record-number span is no use as a size hint.
constexpr int64_t kMaxReserveHint = int64_t{1} << 27;

// Records appended since the cache was made are read from the data file on
// every open; past this many (or an eighth of the cache) the cache is made
// again.
constexpr size_t kMaxCacheTail = 65536;

// A local date-time day count, to the second, of a time in nanoseconds
// since the epoch.
double LocalDayCount(int64_t nanoseconds) {
  const time_t seconds = static_cast<time_t>(nanoseconds / 1000000000);
  tm local{};
  localtime_r(&seconds, &local);
  return DateSerial(local.tm_year + 1900, local.tm_mon + 1, local.tm_mday) +
         TimeSerial(local.tm_hour, local.tm_min, local.tm_sec);
}

// An optional single integer a query returns.
std::optional<int64_t> QueryInteger(SqliteDb& db, const std::string& sql) {
  SqliteStatement statement(db, sql);
  if (!statement.Step() || statement.ColumnType(0) == SQLITE_NULL) {
    return std::nullopt;
  }
  return statement.ColumnInt64(0);
}

// The failures of a read-only connection that cannot make or use the -shm
// index of a WAL file (its folder or the index cannot be written).
bool IsIndexFailure(int code) {
  const int primary = code & 0xff;
  return primary == SQLITE_READONLY || primary == SQLITE_CANTOPEN;
}

}  // namespace

std::unique_ptr<DataStore> DataStore::Open(const std::string& path,
                                           std::vector<bool> numeric) {
  return SqliteDataStore::Open(path, std::move(numeric));
}

std::unique_ptr<SqliteDataStore> SqliteDataStore::Open(
    const std::string& path, std::vector<bool> numeric) {
  std::unique_ptr<SqliteDataStore> store(
      new SqliteDataStore(path, std::move(numeric)));
  const Snapshot snapshot = TakeDataFileStamp(path);
  store->CheckReadable();
  if (store->OpenFromCache(snapshot)) return store;
  std::unique_ptr<SqliteDb> db = store->Connect();
  db->Exec("BEGIN");
  store->LoadAll(*db, snapshot);
  db->Exec("COMMIT");
  db.reset();
  store->WriteCache();
  return store;
}

SqliteDataStore::SqliteDataStore(const std::string& path,
                                 std::vector<bool> numeric)
    : path_(path),
      numeric_(std::move(numeric)),
      cache_path_(ColumnCache::PathFor(path)),
      columns_(std::make_unique<RecordColumns>(numeric_)) {}

bool SqliteDataStore::Refresh() {
  const Snapshot snapshot = TakeDataFileStamp(path_);
  if (snapshot == snapshot_) return false;
  std::unique_ptr<SqliteDb> db = Connect();
  db->Exec("BEGIN");
  if (!edit_generation_ || !snapshot.file.SameFileAs(snapshot_.file) ||
      ReadEditGeneration(*db) != edit_generation_) {
    LoadAll(*db, snapshot);
    db->Exec("COMMIT");
    db.reset();
    WriteCache();
    return true;
  }
  const bool changed = LoadAppended(*db, snapshot);
  db->Exec("COMMIT");
  return changed;
}

bool SqliteDataStore::OpenFromCache(const Snapshot& snapshot) {
  std::unique_ptr<ColumnCache> cache = ColumnCache::Open(cache_path_, numeric_);
  if (!cache) return false;
  const ColumnCache::Origin& origin = cache->origin();
  if (!origin.stamp.file.SameFileAs(snapshot.file)) return false;
  auto tail = std::make_unique<RecordColumns>(numeric_);
  if (!origin.edit_generation) {
    // Made by hand: nothing tells appends from edits.
    if (origin.stamp != snapshot) return false;
  } else {
    // Only appends keep the cached records valid: the same file at the
    // same edit generation, its last cached record unchanged.
    std::unique_ptr<SqliteDb> db = Connect();
    db->Exec("BEGIN");
    CheckColumns(*db);
    if (ReadEditGeneration(*db) != origin.edit_generation ||
        !HoldsLastCachedRecord(*db, *cache)) {
      return false;
    }
    tail = ReadRecords(*db, cache->LastRecordNumber());
    db->Exec("COMMIT");
  }
  std::optional<ColumnBuffer<double>> date_times = cache->ReadDateTimes();
  if (!date_times) return false;
  if (cache->RecordCount() + tail->RecordCount() >
      static_cast<size_t>(std::numeric_limits<int32_t>::max())) {
    throw Error::BadDataFile(path_, "the data file has too many records");
  }
  columns_ = std::make_unique<RecordColumns>(numeric_, std::move(*date_times),
                                             cache->LastRecordNumber(),
                                             static_cast<ColumnLoader*>(this));
  columns_->Append(*tail);
  edit_generation_ = origin.edit_generation;
  snapshot_ = snapshot;
  const size_t held = cache->RecordCount();
  cache_ = std::move(cache);
  tail_ = std::move(tail);
  if (tail_->RecordCount() > std::max(kMaxCacheTail, held / 8)) WriteCache();
  return true;
}

void SqliteDataStore::WriteCache() {
  if (columns_->RecordCount() == 0) return;  // nothing worth caching
  const uint64_t last =
      RecordFingerprint(*columns_, columns_->RecordCount() - 1);
  ColumnCache::Write(cache_path_, *columns_,
                     {snapshot_, edit_generation_, last}, path_);
}

RecordColumn SqliteDataStore::LoadColumn(int variable) {
  std::optional<RecordColumn> column = cache_->ReadColumn(variable);
  if (!column) column = ReadCachedRecordsAgain(variable);
  column->Append(tail_->Column(variable), tail_->RecordCount());
  return std::move(*column);
}

RecordColumn SqliteDataStore::ReadCachedRecordsAgain(int variable) {
  // The next open makes the cache again from the data file.
  unlink(cache_path_.c_str());
  std::unique_ptr<SqliteDb> db = Connect();
  db->Exec("BEGIN");
  const Error changed =
      Error::BadDataFile(path_, "the data file was changed while it was read");
  if (ReadEditGeneration(*db) != edit_generation_) throw changed;
  SqliteStatement statement(
      *db, "SELECT " + VariableColumn(variable) +
               " FROM records WHERE recno <= ? ORDER BY recno");
  statement.BindInt64(1, cache_->LastRecordNumber());
  RecordColumn column(numeric_[static_cast<size_t>(variable - 1)]);
  size_t count = 0;
  while (statement.Step()) {
    column.AppendCell(statement, 0);
    ++count;
  }
  db->Exec("COMMIT");
  records_read_ += static_cast<int64_t>(count);
  if (count != cache_->RecordCount()) throw changed;
  return column;
}

void SqliteDataStore::CheckReadable() const {
  struct stat info {};
  if (stat(path_.c_str(), &info) != 0) {
    if (errno == EACCES) throw Error::PermissionDenied(path_);
    throw Error::FileNotFound(path_);
  }
  if (S_ISDIR(info.st_mode)) {
    throw Error::BadDataFile(path_, "a folder is not a data file");
  }
  if (access(path_.c_str(), R_OK) != 0) throw Error::PermissionDenied(path_);
}

std::unique_ptr<SqliteDb> SqliteDataStore::Connect() const {
  CheckReadable();
  constexpr int kFlags = SQLITE_OPEN_READONLY | SQLITE_OPEN_NOMUTEX;
  auto db = std::make_unique<SqliteDb>(path_, kFlags);
  // Reading a WAL file needs its -shm index, which SQLite makes beside it:
  // the first read tells whether that works here.
  const int code = db->ExecForCode("SELECT count(*) FROM sqlite_master");
  if (code == SQLITE_OK) return db;
  if (!IsIndexFailure(code)) throw db->ErrorFor(code, "cannot read");
  db.reset();
  // A journal with pages holds records the file itself does not: reading
  // the file alone would lose them without a word.
  if (WalHoldsPages()) {
    throw Error::PermissionDeniedFor(
        path_, "its journal " + path_ +
                   "-wal holds records that can be read only with an index "
                   "file (-shm) this user cannot create or open; open the "
                   "application once as a user who can write its folder");
  }
  // Everything is in the file itself: read it as a file nothing changes.
  return std::make_unique<SqliteDb>(path_, kFlags, /*immutable=*/true);
}

bool SqliteDataStore::WalHoldsPages() const {
  struct stat wal {};
  return stat((path_ + "-wal").c_str(), &wal) == 0 && wal.st_size > 0;
}

void SqliteDataStore::CheckColumns(SqliteDb& db) const {
  if (!db.HasTable(data_file::kRecordsTable)) {
    throw Error::BadDataFile(path_, "the data file has no records table");
  }
  SqliteStatement info(db, "PRAGMA table_info(records)");
  bool has_record_number = false;
  std::vector<std::string> variables;
  while (info.Step()) {
    const std::string_view name = info.ColumnText(1);
    if (EqualsIgnoreCase(name, data_file::kRecordNumberColumn)) {
      has_record_number = true;
    } else {
      variables.emplace_back(LowerCase(name));
    }
  }
  if (!has_record_number) {
    throw Error::BadDataFile(path_, "the records table has no recno column");
  }
  if (variables.size() != numeric_.size()) {
    throw Error::BadDataFile(path_, "the data file has " +
                                        std::to_string(variables.size()) +
                                        " variables, the template " +
                                        std::to_string(numeric_.size()));
  }
  for (size_t k = 1; k <= numeric_.size(); ++k) {
    const std::string name = VariableColumn(static_cast<int>(k));
    if (std::find(variables.begin(), variables.end(), name) ==
        variables.end()) {
      throw Error::BadDataFile(path_,
                               "the records table has no column " + name);
    }
  }
}

std::optional<int64_t> SqliteDataStore::ReadEditGeneration(SqliteDb& db) const {
  if (!db.HasTable(data_file::kMetaTable)) return std::nullopt;
  return QueryInteger(db, "SELECT value FROM meta WHERE key = '" +
                              std::string(data_file::kEditGenerationKey) + "'");
}

std::string SqliteDataStore::SelectSql() const {
  std::string sql = "SELECT recno";
  for (size_t k = 1; k <= numeric_.size(); ++k) {
    sql += ", " + VariableColumn(static_cast<int>(k));
  }
  return sql + " FROM records";
}

std::unique_ptr<RecordColumns> SqliteDataStore::ReadRecords(
    SqliteDb& db, std::optional<int64_t> after) {
  auto columns = std::make_unique<RecordColumns>(numeric_);
  if (!after) {
    const std::optional<int64_t> last =
        QueryInteger(db, "SELECT max(recno) FROM records");
    // Room for appends too: growing a column copies all of it, which
    // would make the first refresh after a load as slow as the load.
    if (last && *last > 0 && *last < kMaxReserveHint) {
      columns->Reserve(static_cast<size_t>(*last + *last / 8 + 1024));
    }
  }
  std::string sql = SelectSql();
  if (after) sql += " WHERE recno > ?";
  sql += " ORDER BY recno";
  SqliteStatement statement(db, sql);
  if (after) statement.BindInt64(1, *after);
  columns->ReadRows(statement);
  records_read_ += static_cast<int64_t>(columns->RecordCount());
  return columns;
}

bool SqliteDataStore::HoldsLastCachedRecord(SqliteDb& db,
                                            const ColumnCache& cache) {
  RecordColumns last(numeric_);
  SqliteStatement statement(db, SelectSql() + " WHERE recno = ?");
  statement.BindInt64(1, cache.LastRecordNumber());
  last.ReadRows(statement);
  return last.RecordCount() == 1 &&
         RecordFingerprint(last, 0) == cache.origin().last_record_fingerprint;
}

void SqliteDataStore::LoadAll(SqliteDb& db, const Snapshot& snapshot) {
  CheckColumns(db);
  const std::optional<int64_t> generation = ReadEditGeneration(db);
  std::unique_ptr<RecordColumns> columns = ReadRecords(db, std::nullopt);
  columns->LeaveRoomToGrow();
  if (columns->RecordCount() >
      static_cast<size_t>(std::numeric_limits<int32_t>::max())) {
    throw Error::BadDataFile(path_, "the data file has too many records");
  }
  columns_ = std::move(columns);
  cache_.reset();
  tail_.reset();
  edit_generation_ = generation;
  snapshot_ = snapshot;
  ++full_loads_;
}

bool SqliteDataStore::LoadAppended(SqliteDb& db, const Snapshot& snapshot) {
  std::optional<int64_t> after;
  if (columns_->RecordCount() > 0) after = columns_->LastRecordNumber();
  std::unique_ptr<RecordColumns> added = ReadRecords(db, after);
  const size_t total = columns_->RecordCount() + added->RecordCount();
  if (total > static_cast<size_t>(std::numeric_limits<int32_t>::max())) {
    throw Error::BadDataFile(path_, "the data file has too many records");
  }
  columns_->Append(*added);
  if (tail_) tail_->Append(*added);
  snapshot_ = snapshot;
  return added->RecordCount() > 0;
}

int32_t SqliteDataStore::RecordCount() const {
  return static_cast<int32_t>(columns_->RecordCount());
}

int SqliteDataStore::VariableCount() const {
  return static_cast<int>(numeric_.size());
}

bool SqliteDataStore::IsNumeric(int variable) const {
  return numeric_[static_cast<size_t>(variable - 1)];
}

bool SqliteDataStore::IsNull(int32_t record, int variable) const {
  return columns_->Column(variable).IsNull(Index(record));
}

double SqliteDataStore::Number(int32_t record, int variable) const {
  return columns_->Column(variable).Number(Index(record));
}

std::string_view SqliteDataStore::Text(int32_t record, int variable) const {
  return columns_->Column(variable).Text(Index(record));
}

double SqliteDataStore::DateTime(int32_t record) const {
  return columns_->DateTime(Index(record));
}

bool SqliteDataStore::InTimeOrder() const { return columns_->InTimeOrder(); }

Variant SqliteDataStore::Value(int32_t record, int variable) const {
  if (variable == 0) {
    const double date_time = DateTime(record);
    return std::isnan(date_time) ? Variant::Null() : Variant::Date(date_time);
  }
  const CachedCell* const cell =
      cache_ && variable >= 1 && variable <= VariableCount() &&
              !columns_->IsLoaded(variable)
          ? EdgeCell(record, variable)
          : nullptr;
  if (cell != nullptr) {
    if (cell->is_null) return Variant::Null();
    if (IsNumeric(variable)) return Variant(cell->number);
    return Variant(cell->text);
  }
  if (IsNull(record, variable)) return Variant::Null();
  if (IsNumeric(variable)) return Variant(Number(record, variable));
  return Variant(Text(record, variable));
}

const CachedCell* SqliteDataStore::EdgeCell(int32_t record,
                                            int variable) const {
  const int32_t held = static_cast<int32_t>(cache_->RecordCount());
  if (record != 1 && record != held) return nullptr;
  const std::vector<CachedCell>* cells = cache_->EdgeRecord(record == held);
  if (cells == nullptr) return nullptr;
  return &(*cells)[static_cast<size_t>(variable - 1)];
}

std::vector<Variant> SqliteDataStore::DistinctValues(int variable) const {
  if (variable < 1 || variable > VariableCount()) {
    throw Error::SubscriptOutOfRange("variable " + std::to_string(variable));
  }
  const RecordColumn& column = columns_->Column(variable);
  const size_t count = columns_->RecordCount();
  std::vector<Variant> values;
  if (column.Numeric()) {
    std::vector<double> numbers;
    for (size_t i = 0; i < count; ++i) {
      if (!column.IsNull(i)) numbers.push_back(column.Number(i));
    }
    std::sort(numbers.begin(), numbers.end());
    numbers.erase(std::unique(numbers.begin(), numbers.end()), numbers.end());
    values.assign(numbers.begin(), numbers.end());
    return values;
  }
  // Exact duplicates go first (cheap), then texts that differ only in case
  // keep the spelling met first.
  std::unordered_set<std::string_view> seen;
  std::vector<std::string_view> texts;
  for (size_t i = 0; i < count; ++i) {
    if (column.IsNull(i)) continue;
    const std::string_view text = TrimSpaces(column.Text(i));
    if (!text.empty() && seen.insert(text).second) texts.push_back(text);
  }
  std::stable_sort(texts.begin(), texts.end(),
                   [](std::string_view a, std::string_view b) {
                     return CompareIgnoreCase(a, b) < 0;
                   });
  texts.erase(std::unique(texts.begin(), texts.end(),
                          [](std::string_view a, std::string_view b) {
                            return CompareIgnoreCase(a, b) == 0;
                          }),
              texts.end());
  values.assign(texts.begin(), texts.end());
  return values;
}

double SqliteDataStore::FileDateTime() const {
  Snapshot now = TakeDataFileStamp(path_);
  if (!now.file.exists) now = snapshot_;
  int64_t latest = now.file.modified_ns;
  if (now.wal.exists) latest = std::max(latest, now.wal.modified_ns);
  return LocalDayCount(latest);
}

}  // namespace rz
