// Copyright 2026 The Veltmark authors.

#include "appfile/sqlite_util.h"

#include <sqlite3.h>

#include <cctype>
#include <cerrno>
#include <cstring>

#include "platform/file_system.h"

namespace rz {
namespace {

// How long a connection waits for another connection's lock.
constexpr int kBusyTimeoutMs = 5000;

Error CantOpenError(std::string_view path, int system_errno,
                    std::string_view detail) {
  switch (system_errno) {
    case ENOENT: {
      const std::string folder = ParentFolder(path);
      if (!folder.empty() && !FileExists(folder)) {
        return Error::PathNotFound(path);
      }
      return Error::FileNotFound(path);
    }
    case EACCES:
    case EPERM:
    case EROFS:
      return Error::PermissionDenied(path);
    default:
      return Error::BadDataFile(path, detail);
  }
}

// The URI of `path` with SQLite's immutable parameter: every byte outside
// the unreserved set and "/" percent-encoded, so names with "?", "#" or
// "%" reach the file system unchanged.
std::string ImmutableUri(std::string_view path) {
  static constexpr char kHex[] = "0123456789ABCDEF";
  std::string uri = path.starts_with('/') ? "file://" : "file:";
  for (const char ch : path) {
    const auto byte = static_cast<unsigned char>(ch);
    if (std::isalnum(byte) || std::strchr("/-._~", ch) != nullptr) {
      uri += ch;
    } else {
      uri += '%';
      uri += kHex[byte >> 4];
      uri += kHex[byte & 0xf];
    }
  }
  return uri + "?immutable=1";
}

}  // namespace

int SqliteColumnLimit() {
  sqlite3* db = nullptr;
  int limit = 0;
  if (sqlite3_open_v2(":memory:", &db, SQLITE_OPEN_READWRITE, nullptr) ==
      SQLITE_OK) {
    limit = sqlite3_limit(db, SQLITE_LIMIT_COLUMN, -1);
  }
  sqlite3_close(db);
  return limit;
}

void CheckRecordsColumnCount(std::string_view path, size_t variable_count) {
  const int64_t columns = static_cast<int64_t>(variable_count) + 1;
  const int limit = SqliteColumnLimit();
  if (limit > 0 && columns > limit) {
    throw Error::TooManyColumns(path, columns, limit);
  }
}

Error SqliteError(std::string_view path, int code, std::string_view detail) {
  switch (code & 0xff) {
    case SQLITE_CANTOPEN:
      return CantOpenError(path, 0, detail);
    case SQLITE_PERM:
    case SQLITE_AUTH:
    case SQLITE_READONLY:
      return Error::PermissionDenied(path);
    default:
      return Error::BadDataFile(path, detail);
  }
}

SqliteDb::SqliteDb(const std::string& path, int flags, bool immutable)
    : path_(path) {
  const std::string name = immutable ? ImmutableUri(path) : path;
  if (immutable) flags |= SQLITE_OPEN_URI;
  const int code = sqlite3_open_v2(name.c_str(), &db_, flags, nullptr);
  if (code != SQLITE_OK) {
    const int system_errno = db_ ? sqlite3_system_errno(db_) : 0;
    const std::string message = db_ ? sqlite3_errmsg(db_) : "out of memory";
    sqlite3_close(db_);
    db_ = nullptr;
    if ((code & 0xff) == SQLITE_CANTOPEN) {
      throw CantOpenError(path, system_errno, "cannot open: " + message);
    }
    throw SqliteError(path, code, "cannot open: " + message);
  }
  sqlite3_busy_timeout(db_, kBusyTimeoutMs);
}

SqliteDb::~SqliteDb() { sqlite3_close(db_); }

void SqliteDb::Exec(std::string_view sql) {
  const int code = ExecForCode(sql);
  if (code != SQLITE_OK) throw SqliteError(path_, code, sqlite3_errmsg(db_));
}

int SqliteDb::ExecForCode(std::string_view sql) {
  const std::string text(sql);
  return sqlite3_exec(db_, text.c_str(), nullptr, nullptr, nullptr);
}

bool SqliteDb::HasTable(std::string_view name) {
  SqliteStatement statement(
      *this, "SELECT 1 FROM sqlite_master WHERE type = 'table' AND name = ?");
  statement.BindText(1, name);
  return statement.Step();
}

Error SqliteDb::ErrorFor(int code, std::string_view detail) const {
  std::string text(detail);
  text += ": ";
  text += sqlite3_errmsg(db_);
  if ((code & 0xff) == SQLITE_CANTOPEN) {
    return CantOpenError(path_, sqlite3_system_errno(db_), text);
  }
  return SqliteError(path_, code, text);
}

SqliteStatement::SqliteStatement(SqliteDb& db, std::string_view sql) : db_(db) {
  const int code = sqlite3_prepare_v2(
      db.Handle(), sql.data(), static_cast<int>(sql.size()), &stmt_, nullptr);
  if (code != SQLITE_OK) {
    sqlite3_finalize(stmt_);
    stmt_ = nullptr;
    throw db.ErrorFor(code, "cannot read");
  }
}

SqliteStatement::~SqliteStatement() { sqlite3_finalize(stmt_); }

bool SqliteStatement::Step() {
  const int code = sqlite3_step(stmt_);
  if (code == SQLITE_ROW) return true;
  if (code == SQLITE_DONE) return false;
  throw db_.ErrorFor(code, "cannot read");
}

void SqliteStatement::Reset() { sqlite3_reset(stmt_); }

void SqliteStatement::CheckBind(int code) {
  if (code != SQLITE_OK) throw db_.ErrorFor(code, "cannot bind a value");
}

void SqliteStatement::BindNull(int index) {
  CheckBind(sqlite3_bind_null(stmt_, index));
}

void SqliteStatement::BindDouble(int index, double value) {
  CheckBind(sqlite3_bind_double(stmt_, index, value));
}

void SqliteStatement::BindInt64(int index, int64_t value) {
  CheckBind(sqlite3_bind_int64(stmt_, index, value));
}

void SqliteStatement::BindTextKept(int index, std::string_view text) {
  CheckBind(sqlite3_bind_text64(stmt_, index, text.data(), text.size(),
                                SQLITE_STATIC, SQLITE_UTF8));
}

void SqliteStatement::BindText(int index, std::string_view text) {
  CheckBind(sqlite3_bind_text64(stmt_, index, text.data(), text.size(),
                                SQLITE_TRANSIENT, SQLITE_UTF8));
}

int SqliteStatement::ColumnCount() const { return sqlite3_column_count(stmt_); }

int SqliteStatement::ColumnType(int column) const {
  return sqlite3_column_type(stmt_, column);
}

double SqliteStatement::ColumnDouble(int column) const {
  return sqlite3_column_double(stmt_, column);
}

int64_t SqliteStatement::ColumnInt64(int column) const {
  return sqlite3_column_int64(stmt_, column);
}

std::string_view SqliteStatement::ColumnText(int column) const {
  const unsigned char* text = sqlite3_column_text(stmt_, column);
  if (text == nullptr) return {};
  const int size = sqlite3_column_bytes(stmt_, column);
  return std::string_view(reinterpret_cast<const char*>(text),
                          static_cast<size_t>(size));
}

}  // namespace rz
