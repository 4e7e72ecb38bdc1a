// Copyright 2026 The Veltmark authors.
//
// ApplicationWriter writes a new application so that a failure at any
// point leaves nothing half-written: the records go into a data file under
// a temporary name beside the target; Commit ends them, writes the template
// under a temporary name too, and only then moves both into place. An
// application already at the target is set aside first and put back when a
// later step fails. Destroying a writer that was not committed removes its
// temporaries and leaves the target as it was. The column cache of the new
// data file is made as the records are written (ColumnCacheBuilder) and
// put beside it last; a cache that cannot be made is left to the first
// reader.
//
// Errors are rz::Error naming the path concerned (70/75/76 for files,
// 13 from the data writer for a value of the wrong kind). Not thread-safe.

#ifndef RZ_APPFILE_APPLICATION_WRITER_H_
#define RZ_APPFILE_APPLICATION_WRITER_H_

#include <cstdint>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "appfile/column_cache_builder.h"
#include "appfile/data_writer.h"
#include "core/variant.h"

namespace rz {

class ApplicationWriter {
 public:
  // Starts the application whose template is `template_path` and data
  // `data_path` for variables with these numeric flags: creates the
  // temporary data file (file errors when the folder cannot be written).
  ApplicationWriter(std::string template_path, std::string data_path,
                    std::vector<bool> numeric);
  ~ApplicationWriter();
  ApplicationWriter(const ApplicationWriter&) = delete;
  ApplicationWriter& operator=(const ApplicationWriter&) = delete;

  // Appends one record (values[k-1] is variable k).
  void Append(const std::vector<Variant>& values);
  int32_t RecordCount() const { return records_; }

  // Commits the records, writes `template_text` (UTF-8; stored as
  // Windows-1252) and moves the data and the template into place. On
  // failure everything is undone and the error raised. Call once.
  void Commit(const std::string& template_text);

  // The temporary data file while the writer is open (for tests).
  const std::string& TemporaryDataPath() const { return data_temp_; }

 private:
  void SetAsideExisting();
  void PutBackExisting();
  void RemoveTemporaries();
  // Writes the column cache beside the data file in place.
  void FinishCache();

  std::string template_path_;
  std::string data_path_;
  std::string data_temp_;
  std::string template_temp_;
  std::unique_ptr<ColumnCacheBuilder> cache_;  // outlives data_
  std::unique_ptr<DataWriter> data_;
  int32_t records_ = 0;
  bool committed_ = false;
  // Files of an existing application moved aside: (original, aside).
  std::vector<std::pair<std::string, std::string>> set_aside_;
};

}  // namespace rz

#endif  // RZ_APPFILE_APPLICATION_WRITER_H_
