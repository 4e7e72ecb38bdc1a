// Copyright 2026 The Veltmark authors.

#include "appfile/data_writer.h"

#include <fcntl.h>
#include <sqlite3.h>
#include <unistd.h>

#include <cerrno>
#include <utility>

#include "appfile/column_cache_builder.h"
#include "appfile/data_file_schema.h"
#include "appfile/sqlite_util.h"
#include "core/error.h"
#include "core/text.h"
#include "platform/file_system.h"

namespace rz {
namespace {

using data_file::VariableColumn;

// The schema of a new data file with `numeric.size()` variables: the
// records table, the meta table and the triggers that keep the edit
// generation, so a reader can tell appends (read only the new records) from
// edits (read everything again).
std::string TableSql(const std::vector<bool>& numeric) {
  std::string sql = "CREATE TABLE records(recno INTEGER PRIMARY KEY";
  for (size_t k = 0; k < numeric.size(); ++k) {
    sql += ", " + VariableColumn(static_cast<int>(k + 1));
    sql += numeric[k] ? " REAL" : " TEXT";
  }
  sql += ");\n";
  sql +=
      "CREATE TABLE meta(key TEXT PRIMARY KEY, value);\n"
      "INSERT INTO meta VALUES('edit_generation', 0);\n"
      "INSERT INTO meta VALUES('variable_count', " +
      std::to_string(numeric.size()) + ");\n";
  return sql;
}

// The triggers that keep the edit generation; made after the records are
// written, so the writing does not run them for every record.
std::string TriggerSql() {
  return "CREATE TRIGGER records_updated AFTER UPDATE ON records BEGIN\n"
         "  UPDATE meta SET value = value + 1 WHERE key = 'edit_generation';\n"
         "END;\n"
         "CREATE TRIGGER records_deleted AFTER DELETE ON records BEGIN\n"
         "  UPDATE meta SET value = value + 1 WHERE key = 'edit_generation';\n"
         "END;\n"
         // A record inserted before the last one moves the positions of the
         // records after it: for a reader that is an edit, not an append.
         "CREATE TRIGGER records_inserted_between AFTER INSERT ON records\n"
         "WHEN NEW.recno < (SELECT max(recno) FROM records) BEGIN\n"
         "  UPDATE meta SET value = value + 1 WHERE key = 'edit_generation';\n"
         "END;\n";
}

std::string InsertSql(size_t variable_count) {
  std::string columns;
  std::string marks;
  for (size_t k = 1; k <= variable_count; ++k) {
    if (k > 1) {
      columns += ", ";
      marks += ", ";
    }
    columns += VariableColumn(static_cast<int>(k));
    marks += "?";
  }
  return "INSERT INTO records(" + columns + ") VALUES(" + marks + ")";
}

// Makes the file's content durable; raises the write error naming it.
void SyncFile(const std::string& path) {
  const int fd = ::open(path.c_str(), O_RDONLY | O_CLOEXEC);
  if (fd < 0 || ::fsync(fd) != 0) {
    const int error = errno;
    if (fd >= 0) ::close(fd);
    throw FileWriteError(error, path);
  }
  ::close(fd);
}

void RemoveDataFiles(const std::string& path) {
  for (const char* suffix : {"", "-wal", "-shm", "-journal"}) {
    DeleteFileQuietly(path + suffix);
  }
}

class SqliteDataWriter : public DataWriter {
 public:
  SqliteDataWriter(const std::string& path, std::vector<bool> numeric,
                   ColumnCacheBuilder* cache)
      : path_(path),
        numeric_(std::move(numeric)),
        cache_(cache),
        texts_(numeric_.size()) {
    try {
      db_ = std::make_unique<SqliteDb>(path_, SQLITE_OPEN_READWRITE |
                                                  SQLITE_OPEN_CREATE |
                                                  SQLITE_OPEN_NOMUTEX);
      // A new file that is removed when anything fails needs no journal
      // while it is written; it becomes a WAL file when it is committed.
      db_->Exec("PRAGMA journal_mode = OFF");
      db_->Exec("PRAGMA synchronous = OFF");
      db_->Exec("PRAGMA cache_size = -16384");  // 16 MiB
      db_->Exec("BEGIN");
      db_->Exec(TableSql(numeric_));
      insert_ =
          std::make_unique<SqliteStatement>(*db_, InsertSql(numeric_.size()));
    } catch (...) {
      Discard();
      throw;
    }
  }

  ~SqliteDataWriter() override {
    if (!committed_) Discard();
  }

  void Append(const std::vector<Variant>& values) override {
    RequireOpen();
    if (values.size() > numeric_.size()) {
      throw Error::SubscriptOutOfRange(
          "a record of " + std::to_string(values.size()) +
          " values for a data file of " + std::to_string(numeric_.size()) +
          " variables");
    }
    for (size_t k = 0; k < numeric_.size(); ++k) {
      const int variable = static_cast<int>(k + 1);
      if (k < values.size()) {
        BindValue(variable, values[k]);
      } else {
        BindNull(variable);
      }
    }
    insert_->Step();
    insert_->Reset();
    if (cache_ != nullptr) cache_->EndRecord();
  }

  void Commit() override {
    RequireOpen();
    insert_.reset();
    db_->Exec(TriggerSql());
    db_->Exec("COMMIT");
    // The journal mode cannot change inside a transaction.
    db_->Exec("PRAGMA journal_mode = WAL");
    // Closing the only connection folds the journal into the file and
    // removes it, so the file can be renamed on its own.
    db_.reset();
    // Written without syncs: one sync now, before anyone renames it.
    SyncFile(path_);
    committed_ = true;
  }

 private:
  void RequireOpen() const {
    if (committed_) {
      throw Error::InvalidArgument("the data file " + path_ +
                                   " is already committed");
    }
  }

  void BindValue(int variable, const Variant& value) {
    if (value.IsEmpty() || value.IsNull()) {
      BindNull(variable);
    } else if (value.IsObject() || value.IsArray()) {
      throw Error::TypeMismatchFor(value.TypeName(), VariableName(variable));
    } else if (!numeric_[static_cast<size_t>(variable - 1)]) {
      BindText(variable, value.ToString());
    } else if (value.IsNumber()) {
      BindDouble(variable, value.ToDouble());
    } else {
      BindNumericText(variable, value.ToString());
    }
  }

  // A text for a numeric variable: blank is no value, a number is taken
  // as that number, anything else is refused.
  void BindNumericText(int variable, const std::string& text) {
    if (Trim(text).empty()) {
      BindNull(variable);
    } else if (IsNumericText(text)) {
      BindDouble(variable, LeadingNumber(text));
    } else {
      throw Error::TypeMismatchFor(text, VariableName(variable));
    }
  }

  // Each binds the cell and gives it to the cache builder.
  void BindNull(int variable) {
    insert_->BindNull(variable);
    if (cache_ != nullptr) cache_->SetNull(variable);
  }
  void BindText(int variable, const std::string& text) {
    // Kept until the next record's binding: SQLite need not copy it.
    std::string& kept = texts_[static_cast<size_t>(variable - 1)];
    kept.assign(text);
    insert_->BindTextKept(variable, kept);
    if (cache_ != nullptr) cache_->SetText(variable, text);
  }
  void BindDouble(int variable, double number) {
    insert_->BindDouble(variable, number);
    if (cache_ != nullptr) cache_->SetNumber(variable, number);
  }

  static std::string VariableName(int variable) {
    return "variable " + std::to_string(variable);
  }

  // Rolls back, closes and removes whatever was written.
  void Discard() noexcept {
    insert_.reset();
    db_.reset();  // Closing with an open transaction rolls it back.
    RemoveDataFiles(path_);
  }

  std::string path_;
  std::vector<bool> numeric_;
  std::unique_ptr<SqliteDb> db_;
  std::unique_ptr<SqliteStatement> insert_;
  ColumnCacheBuilder* cache_;       // not owned; may be null
  std::vector<std::string> texts_;  // the texts bound to insert_
  bool committed_ = false;
};

}  // namespace

std::unique_ptr<DataWriter> DataWriter::Create(const std::string& path,
                                               std::vector<bool> numeric,
                                               ColumnCacheBuilder* cache) {
  if (numeric.empty()) {
    throw Error::InvalidArgument("a data file needs at least one variable");
  }
  if (FileExists(path)) throw Error::BadDataFile(path, "the file exists");
  return std::make_unique<SqliteDataWriter>(path, std::move(numeric), cache);
}

}  // namespace rz
