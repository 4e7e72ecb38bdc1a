// Copyright 2026 The Veltmark authors.
//
// DataWriter creates a new data file: the `records` table for the given
// variables, the edit-generation bookkeeping and the WAL journal mode (see
// docs/formats.md). Records are appended inside one transaction; Commit
// ends it. The file is written at the path given, which the caller makes a
// temporary name and renames into place after Commit; the destructor of an
// uncommitted writer rolls back and removes the file.
//
// Given a ColumnCacheBuilder, the writer also hands it every record it
// stores, cell by cell as the data file holds them.
//
// Errors are rz::Error naming the path (70/75/76); a value of the wrong
// kind for its variable (text for a numeric one) raises error 13 naming the
// value and the variable.

#ifndef RZ_APPFILE_DATA_WRITER_H_
#define RZ_APPFILE_DATA_WRITER_H_

#include <memory>
#include <string>
#include <vector>

#include "core/variant.h"

namespace rz {

class ColumnCacheBuilder;

class DataWriter {
 public:
  // Creates the file at `path` (which must not exist) for variables whose
  // numeric flags are `numeric`; `cache` (not owned, may be null) outlives
  // the writer.
  static std::unique_ptr<DataWriter> Create(
      const std::string& path, std::vector<bool> numeric,
      ColumnCacheBuilder* cache = nullptr);
  virtual ~DataWriter() = default;

  // Appends one record; `values[k-1]` is variable k (missing trailing
  // values are Null). Numeric variables take numbers (a numeric text is
  // read as its number), Null or Empty; text variables take any scalar as
  // its text, Null for none.
  virtual void Append(const std::vector<Variant>& values) = 0;
  // Commits the records and closes the file.
  virtual void Commit() = 0;
};

}  // namespace rz

#endif  // RZ_APPFILE_DATA_WRITER_H_
