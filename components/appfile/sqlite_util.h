// Copyright 2026 The Veltmark authors.
//
// A thin RAII layer over the SQLite C interface for the data store and the
// data writer. SqliteDb owns one connection and SqliteStatement one prepared
// statement; both close in their destructors. A statement must not outlive
// its connection.
//
// Every failure raises rz::Error naming the database file: a missing file
// 53, a permission problem 70, a missing folder 76, a file that is not a
// database (or a broken one, or SQL that does not fit it) 75 with SQLite's
// own message as the detail.

#ifndef RZ_APPFILE_SQLITE_UTIL_H_
#define RZ_APPFILE_SQLITE_UTIL_H_

#include <cstdint>
#include <string>
#include <string_view>

#include "core/error.h"

struct sqlite3;
struct sqlite3_stmt;

namespace rz {

// The error for SQLite result `code` on the file at `path`; `detail` says
// what was being done.
Error SqliteError(std::string_view path, int code, std::string_view detail);

// The most columns a table may have in this build of SQLite (2000 unless
// it was built otherwise).
int SqliteColumnLimit();

// Raises error 6 (Error::TooManyColumns) naming the data file at `path`
// when a records table for `variable_count` variables (one column each,
// plus the record number) exceeds SqliteColumnLimit().
void CheckRecordsColumnCount(std::string_view path, size_t variable_count);

class SqliteDb {
 public:
  // Opens `path` with the sqlite3_open_v2 `flags`; raises the error above
  // when SQLite refuses. Waits up to a few seconds for a lock held by
  // another connection before giving up. With `immutable` the file is
  // opened as one that nothing changes while it is open (SQLite's
  // "immutable" URI parameter): no locks, no -shm file, and a -wal file is
  // not read; for reading a file in a folder that cannot be written.
  SqliteDb(const std::string& path, int flags, bool immutable = false);
  ~SqliteDb();
  SqliteDb(const SqliteDb&) = delete;
  SqliteDb& operator=(const SqliteDb&) = delete;

  // Runs one or more statements that return no rows.
  void Exec(std::string_view sql);
  // As Exec, but returns SQLite's result code instead of raising.
  int ExecForCode(std::string_view sql);
  // True when the schema has a table of that name.
  bool HasTable(std::string_view name);

  // The error for `code` on this connection, with SQLite's message.
  Error ErrorFor(int code, std::string_view detail) const;

  sqlite3* Handle() const { return db_; }
  const std::string& Path() const { return path_; }

 private:
  sqlite3* db_ = nullptr;
  std::string path_;
};

class SqliteStatement {
 public:
  SqliteStatement(SqliteDb& db, std::string_view sql);
  ~SqliteStatement();
  SqliteStatement(const SqliteStatement&) = delete;
  SqliteStatement& operator=(const SqliteStatement&) = delete;

  // Advances to the next row: true when there is one, false when done.
  bool Step();
  // Makes the statement ready to run again (bindings are kept).
  void Reset();

  void BindNull(int index);
  void BindDouble(int index, double value);
  void BindInt64(int index, int64_t value);
  void BindText(int index, std::string_view text);
  // BindText without a copy: `text` must stay unchanged until the
  // statement is stepped and reset or bound again.
  void BindTextKept(int index, std::string_view text);

  // The cells of the current row (0-based columns). ColumnType is one of
  // SQLITE_INTEGER, SQLITE_FLOAT, SQLITE_TEXT, SQLITE_BLOB, SQLITE_NULL.
  int ColumnCount() const;
  int ColumnType(int column) const;
  double ColumnDouble(int column) const;
  int64_t ColumnInt64(int column) const;
  // Valid until the next Step, Reset or conversion of the same cell.
  std::string_view ColumnText(int column) const;

  sqlite3_stmt* Handle() const { return stmt_; }

 private:
  void CheckBind(int code);

  SqliteDb& db_;
  sqlite3_stmt* stmt_ = nullptr;
};

}  // namespace rz

#endif  // RZ_APPFILE_SQLITE_UTIL_H_
