// Copyright 2026 The Veltmark authors.
//
// Test helpers for the data store and the filter: writing a data file
// through DataWriter, and running SQL on a data file through a connection
// of its own, as another program (a host appending records, a user
// editing the file) would.

#ifndef RZ_COMPONENTS_APPFILE_DATA_FILE_HELPERS_H_
#define RZ_COMPONENTS_APPFILE_DATA_FILE_HELPERS_H_

#include <sqlite3.h>

#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

#include "appfile/data_writer.h"
#include "core/variant.h"

namespace rz {

using Row = std::vector<Variant>;

inline void WriteDataFile(const std::string& path,
                          const std::vector<bool>& numeric,
                          const std::vector<Row>& rows) {
  std::unique_ptr<DataWriter> writer = DataWriter::Create(path, numeric);
  for (const Row& row : rows) writer->Append(row);
  writer->Commit();
}

// A read-write connection of its own on a data file (created when
// missing).
class OtherConnection {
 public:
  explicit OtherConnection(const std::string& path) {
    if (sqlite3_open_v2(path.c_str(), &db_,
                        SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE,
                        nullptr) != SQLITE_OK) {
      throw std::runtime_error("cannot open " + path);
    }
  }
  ~OtherConnection() { sqlite3_close(db_); }
  OtherConnection(const OtherConnection&) = delete;
  OtherConnection& operator=(const OtherConnection&) = delete;

  void Exec(const std::string& sql) {
    char* message = nullptr;
    if (sqlite3_exec(db_, sql.c_str(), nullptr, nullptr, &message) !=
        SQLITE_OK) {
      std::string text = message ? message : "?";
      sqlite3_free(message);
      throw std::runtime_error(sql + ": " + text);
    }
  }

  // The first column of the first row as text ("" for none or NULL).
  std::string Query(const std::string& sql) {
    sqlite3_stmt* statement = nullptr;
    if (sqlite3_prepare_v2(db_, sql.c_str(), -1, &statement, nullptr) !=
        SQLITE_OK) {
      throw std::runtime_error(sql + ": " + sqlite3_errmsg(db_));
    }
    std::string result;
    if (sqlite3_step(statement) == SQLITE_ROW) {
      const unsigned char* text = sqlite3_column_text(statement, 0);
      if (text) result = reinterpret_cast<const char*>(text);
    }
    sqlite3_finalize(statement);
    return result;
  }

 private:
  sqlite3* db_ = nullptr;
};

// Runs `sql` on the file through a connection that is closed afterwards.
inline void ExecSql(const std::string& path, const std::string& sql) {
  OtherConnection(path).Exec(sql);
}

}  // namespace rz

#endif  // RZ_COMPONENTS_APPFILE_DATA_FILE_HELPERS_H_
