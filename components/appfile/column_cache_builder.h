// Copyright 2026 The Veltmark authors.
//
// ColumnCacheBuilder makes the column cache of a new data file while its
// records are written, so that the new application has its cache without
// being read again, and without holding its records: whatever the record
// count, the builder keeps a buffer per section of the cache and the cells
// of one record.
//
// The writer of the data file gives every record's cells as the data file
// stores them: Set... once for each variable, then EndRecord once the
// record is stored (a record whose cells were set but not ended is
// forgotten when the next one is set). Each section's bytes go through its
// buffer into a spool file; Finish, called once the data file is in place
// and its stamp can be taken, copies them into the cache file (through a
// temporary name and a rename) and removes the spool. The cache written is
// byte for byte the one ColumnCache::Write makes from the same records
// read back from the data file, and is checked like any cache when opened.
//
// A cache is an optimisation: when the spool cannot be written (a full
// disk, a folder that refuses it) the builder gives up quietly, Finish
// returns false, and the first reader of the data file makes the cache.
// The destructor removes the spool. Not thread-safe.

#ifndef RZ_APPFILE_COLUMN_CACHE_BUILDER_H_
#define RZ_APPFILE_COLUMN_CACHE_BUILDER_H_

#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>
#include <vector>

#include "appfile/column_cache.h"
#include "appfile/data_file_stamp.h"

namespace rz {

class ColumnCacheBuilder {
 public:
  // Spools to `spool_path` (created; must not exist) for variables with
  // the numeric flags `numeric`.
  ColumnCacheBuilder(std::string spool_path, std::vector<bool> numeric);
  ~ColumnCacheBuilder();
  ColumnCacheBuilder(const ColumnCacheBuilder&) = delete;
  ColumnCacheBuilder& operator=(const ColumnCacheBuilder&) = delete;

  // The cell of variable `variable` (1-based) of the record being written.
  void SetNull(int variable);
  void SetNumber(int variable, double number);        // numeric variables
  void SetText(int variable, std::string_view text);  // text variables
  // The record whose cells were set is stored in the data file.
  void EndRecord();

  size_t RecordCount() const { return records_; }
  // False once a spool write failed (or the spool could not be made).
  bool Usable() const { return spool_fd_ >= 0; }

  // Writes the cache of the records ended so far to `path`, made from the
  // data file at `data_path` whose state `stamp` describes (a new file:
  // edit generation 0, records numbered from 1). False when nothing
  // usable was written (no records, or the builder gave up).
  bool Finish(const std::string& path, const DataFileStamp& stamp,
              const std::string& data_path);

 private:
  // One section of the cache: its bytes not yet spooled, and where the
  // spooled ones are.
  struct Section {
    std::string buffer;
    std::vector<std::pair<uint64_t, uint64_t>> chunks;  // (offset, bytes)
    uint64_t bytes = 0;
    CacheChecksummer checksum;
  };
  // The running state of a variable's column.
  struct ColumnState {
    uint64_t null_word = 0;  // the nulls of the records since the last 64
    uint64_t text_end = 0;   // the text arena's length so far
    // Text columns are spooled both ways, as texts and as codes, until it
    // is known which way the cache keeps them (ColumnCache::KeepsCoded):
    // the entries so far, unless there were too many.
    bool too_many_entries = false;
    std::unordered_map<std::string, uint32_t, TextHash, std::equal_to<>>
        entry_ids;
    std::vector<size_t> entry_ends;
    std::string entry_arena;
    uint32_t last_code = UINT32_MAX;  // the entry of the record before
  };

  void Put(Section& section, const void* data, size_t bytes);
  void PutCode(size_t index, const CachedCell& cell);
  void Spool(Section& section);
  void GiveUp();
  double RecordDateTimeOfCells() const;
  bool CopySection(const Section& section, int fd, uint64_t offset) const;

  std::string spool_path_;
  std::vector<bool> numeric_;
  int spool_fd_ = -1;
  uint64_t spool_bytes_ = 0;
  size_t buffer_limit_ = 0;
  std::vector<CachedCell> cells_;        // the record being written
  std::vector<CachedCell> first_cells_;  // the first record's
  std::vector<Section> sections_;        // as ColumnCache::SectionIndex
  std::vector<Section> code_sections_;   // text columns: the codes
  std::vector<ColumnState> states_;
  size_t records_ = 0;
  bool cells_pending_ = false;  // cells set since the last EndRecord
};

}  // namespace rz

#endif  // RZ_APPFILE_COLUMN_CACHE_BUILDER_H_
