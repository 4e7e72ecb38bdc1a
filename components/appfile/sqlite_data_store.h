// Copyright 2026 The Veltmark authors.
//
// SqliteDataStore is the DataStore of an SQLite data file (see
// data_file_schema.h for the tables). DataStore::Open creates one.
//
// Loading: one read-only connection (no mutex: a store is used from one
// thread). Where SQLite cannot make or use the data file's -shm index (a
// folder the user may read but not write), the file is opened as an
// immutable file when its -wal journal is missing or empty, since the file
// then holds every record; a -wal holding pages then raises 70 naming the
// file, because reading without it would silently lose records. One
// "SELECT recno, v1..vn FROM records ORDER BY recno" pass into
// RecordColumns, inside one read transaction so the edit generation and the
// records belong to the same state of the file. The connection is closed
// after each load; nothing is held open between refreshes.
//
// The column cache (column_cache.h): on open, a cache made from the same
// file (inode) at the same edit generation, whose last record the file
// still holds unchanged, is used instead of reading the file: only the
// date-times are read at once, each variable's column when it is first
// asked for, and the records appended since the cache was made are read
// from the data file. A data file without `meta` uses a cache only when its
// stamp has not changed at all. Any other cache is ignored; after reading the
// whole data file the store writes a new one (a folder that cannot be written
// means no cache). A column whose cache section turns out damaged is read from
// the data file instead, and the cache removed so the next open makes it again.
// Value() of the first or last cached record answers from the cache's copy of
// those records while their column is not read.
//
// Refresh: the size, modification time and identity (device, inode) of the
// file and of its WAL file are compared with those of the last load; when
// they are the same nothing is read (an empty WAL file counts as none: a
// read-only connection leaves one behind). Otherwise, when the file has a
// `meta` table, its edit generation is the same and the file is the same file,
// only the records after the last record number held are read and
// appended. Anything else (the generation moved, the file was replaced, or
// the file has no `meta` table, as a data file made by hand) reloads
// everything. A failed refresh leaves the records held as they were.
//
// Cells whose numeric variable holds text in the file (made by hand) read
// as the text's leading number, blank text as no value.
//
// Errors (rz::Error naming the file): 53 missing, 70 not readable, 75 not an
// SQLite database, no `records` table, or columns other than v1..vn for the
// n variables given ("the data file has K variables, the template N"), or
// changed while a damaged cache column was read again from it.

#ifndef RZ_APPFILE_SQLITE_DATA_STORE_H_
#define RZ_APPFILE_SQLITE_DATA_STORE_H_

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "appfile/column_cache.h"
#include "appfile/data_file_stamp.h"
#include "appfile/data_store.h"
#include "appfile/record_columns.h"

namespace rz {

class SqliteDb;

class SqliteDataStore final : public DataStore, private ColumnLoader {
 public:
  // Opens and loads the data file; see DataStore::Open.
  static std::unique_ptr<SqliteDataStore> Open(const std::string& path,
                                               std::vector<bool> numeric);

  bool Refresh() override;

  int32_t RecordCount() const override;
  int VariableCount() const override;
  bool IsNumeric(int variable) const override;
  bool IsNull(int32_t record, int variable) const override;
  double Number(int32_t record, int variable) const override;
  std::string_view Text(int32_t record, int variable) const override;
  double DateTime(int32_t record) const override;
  bool InTimeOrder() const override;
  const RecordColumns& Columns() const override { return *columns_; }
  Variant Value(int32_t record, int variable) const override;
  std::vector<Variant> DistinctValues(int variable) const override;
  double FileDateTime() const override;

  // How many complete loads and how many records were read since Open
  // (the first load included); for tests of the refresh rules.
  int FullLoadCount() const { return full_loads_; }
  int64_t RecordsRead() const { return records_read_; }
  // True while the records come from the column cache; for tests.
  bool UsesCache() const { return cache_ != nullptr; }

 private:
  using Snapshot = DataFileStamp;

  SqliteDataStore(const std::string& path, std::vector<bool> numeric);

  void CheckReadable() const;
  std::unique_ptr<SqliteDb> Connect() const;
  bool WalHoldsPages() const;
  void CheckColumns(SqliteDb& db) const;
  std::optional<int64_t> ReadEditGeneration(SqliteDb& db) const;
  // "SELECT recno, v1, ..., vn FROM records"
  std::string SelectSql() const;
  std::unique_ptr<RecordColumns> ReadRecords(SqliteDb& db,
                                             std::optional<int64_t> after);
  // True when the file holds the cache's last record as the cache has it.
  bool HoldsLastCachedRecord(SqliteDb& db, const ColumnCache& cache);
  // Reads every record; on success replaces what is held.
  void LoadAll(SqliteDb& db, const Snapshot& snapshot);
  // Reads the records after the last one held; true when there were any.
  bool LoadAppended(SqliteDb& db, const Snapshot& snapshot);

  // Takes the records from the column cache when it was made from this
  // file; false when there is no such cache.
  bool OpenFromCache(const Snapshot& snapshot);
  void WriteCache();
  // ColumnLoader: the cached column with the records appended since.
  RecordColumn LoadColumn(int variable) override;
  // A column of the records the cache holds, read from the data file.
  RecordColumn ReadCachedRecordsAgain(int variable);
  // The cell of the first or last record the cache holds (a view's record
  // bounds read only those), asked while the column is not read yet;
  // nullptr for another record. REQUIRES: cache_, variable valid.
  const CachedCell* EdgeCell(int32_t record, int variable) const;

  size_t Index(int32_t record) const { return static_cast<size_t>(record - 1); }

  std::string path_;
  std::vector<bool> numeric_;
  std::string cache_path_;
  std::unique_ptr<RecordColumns> columns_;
  // While the records come from the cache: the cache, and every column of
  // the records after those it holds (read from the data file).
  std::unique_ptr<ColumnCache> cache_;
  std::unique_ptr<RecordColumns> tail_;
  std::optional<int64_t> edit_generation_;  // none: the file has no meta
  Snapshot snapshot_;
  int full_loads_ = 0;
  int64_t records_read_ = 0;
};

}  // namespace rz

#endif  // RZ_APPFILE_SQLITE_DATA_STORE_H_
