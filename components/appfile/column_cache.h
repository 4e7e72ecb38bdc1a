// Copyright 2026 The Veltmark authors.
//
// ColumnCache is a copy of a data file's records in the column form
// RecordColumns holds, kept beside the data file ("line4.rzc" beside
// "line4.rzd") so that a new process reads the few columns a view uses
// instead of every record of the data file. It is derived, never the
// record of truth: hosts write only the data file, and a cache that is
// missing, foreign, truncated, damaged or made from another state of the
// data file is not used (docs/formats.md, "The column cache").
//
// The file is written once, whole, through a temporary file and a rename,
// and never changed in place: a reader maps the file into memory when it
// opens it, and the columns it reads borrow that mapping (no copy; pages
// come from the system's file cache as they are touched), so a cache
// replaced by another process while a view runs stays what it was for that
// reader. Every section carries a checksum that is checked when it is
// read; the structure a reader relies on (sizes, text offsets, entry
// numbers of coded texts) is checked too, so a file made to pass the
// checksums still cannot make a reader read outside its columns. Beside
// the columns the cache keeps the first and last records' cells
// (EdgeRecord), and texts that repeat are kept coded (Kind).
//
// Write returns false when the cache cannot be written (a read-only
// folder, a full disk): a cache is an optimisation and its absence is
// never an error. Open returns nullptr for a file that is missing or not a
// cache of this layout. ReadDateTimes and ReadColumn return nullopt for a
// section that fails its checks. Not thread-safe.

#ifndef RZ_APPFILE_COLUMN_CACHE_H_
#define RZ_APPFILE_COLUMN_CACHE_H_

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "appfile/data_file_stamp.h"
#include "appfile/record_columns.h"

namespace rz {

// A cell of a record as the cache keeps it apart from the columns (the
// first and the last record: see ColumnCache::EdgeRecord).
struct CachedCell {
  bool is_null = true;
  double number = 0;  // numeric variables
  std::string text;   // text variables
  bool operator==(const CachedCell&) const = default;
};

class ColumnCache {
 public:
  // What a cache records about the data file it was made from.
  struct Origin {
    DataFileStamp stamp;
    std::optional<int64_t> edit_generation;  // none: the file has no meta
    // RecordFingerprint of the last record held: a file removed and made
    // again in the same clock tick may get the same inode, size and time,
    // but hardly the same last record as well.
    uint64_t last_record_fingerprint = 0;
  };

  // The cache path of a data file: its extension ".rzd" replaced by
  // ".rzc" (".rzc" added when it has another one).
  static std::string PathFor(const std::string& data_path);

  // Writes every column of `columns` (loading those not loaded) with
  // `origin` to `path`, replacing what is there, readable by those who may
  // read `data_path` (its read and write permission bits); false when it
  // could not (nothing is left behind then).
  static bool Write(const std::string& path, const RecordColumns& columns,
                    const Origin& origin, const std::string& data_path);

  // How a variable's column is kept: numbers; texts as every record's
  // text and its end; or, for texts that repeat, coded: the distinct texts
  // (entries) and every record's entry number (RecordColumn's coded form).
  enum class Kind : uint8_t { kText = 0, kNumber = 1, kCodedText = 2 };
  // The most entries a coded column has.
  static constexpr size_t kMaxEntries = size_t{1} << 18;
  // Whether a text column of `records` records with `entries` distinct
  // texts is kept coded: when its entries are few enough that codes save
  // room.
  static bool KeepsCoded(size_t records, size_t entries) {
    return entries <= kMaxEntries && entries * 4 <= records;
  }
  // The text arena section of a coded column: the number of entries, their
  // ends, then their texts.
  static std::string EntrySectionBytes(const std::vector<size_t>& ends,
                                       std::string_view arena);

  // Where each section sits in the list WriteSections takes: the
  // date-times, the first and last records' cells, then three per
  // variable (its null words; its numbers, text ends or codes; its text
  // arena or entries).
  static constexpr size_t kDateTimeSection = 0;
  static constexpr size_t kEdgeSection = 1;
  static size_t SectionCount(size_t variables);
  // REQUIRES: 1 <= variable; 0 <= part < 3.
  static size_t SectionIndex(int variable, int part);
  // The bytes of the edge section for the cells of the first and the last
  // record of variables with the numeric flags `numeric`.
  static std::string EdgeSectionBytes(const std::vector<bool>& numeric,
                                      const std::vector<CachedCell>& first,
                                      const std::vector<CachedCell>& last);

  // One section of a cache being written: its length, its checksum and
  // what writes its bytes into the file `fd` at `offset` (false when it
  // could not).
  struct SectionSource {
    uint64_t bytes = 0;
    uint64_t checksum = 0;
    std::function<bool(int fd, uint64_t offset)> write;
  };
  // Writes a cache of `records` records (the last numbered
  // `last_record_number`) from `sections` in the order the file holds
  // them (SectionIndex). The rest as Write.
  static bool WriteSections(const std::string& path,
                            const std::vector<Kind>& kinds, size_t records,
                            int64_t last_record_number, const Origin& origin,
                            const std::string& data_path,
                            const std::vector<SectionSource>& sections);

  // Opens the cache at `path` for variables with the numeric flags
  // `numeric`; nullptr when there is none or it is not a cache of them.
  static std::unique_ptr<ColumnCache> Open(const std::string& path,
                                           const std::vector<bool>& numeric);

  ColumnCache(const ColumnCache&) = delete;
  ColumnCache& operator=(const ColumnCache&) = delete;

  const Origin& origin() const { return origin_; }
  size_t RecordCount() const { return record_count_; }
  int64_t LastRecordNumber() const { return last_record_number_; }

  std::optional<ColumnBuffer<double>> ReadDateTimes() const;
  // The cells of the first (`last` false) or the last record the cache
  // holds, kept apart so that a view's record bounds (the date and time of
  // those two records) do not read whole columns; nullptr when their
  // section fails its checks.
  const std::vector<CachedCell>* EdgeRecord(bool last) const;
  // REQUIRES: 1 <= variable <= the number of variables.
  std::optional<RecordColumn> ReadColumn(int variable) const;

 private:
  struct Section {
    uint64_t offset = 0;
    uint64_t bytes = 0;
    uint64_t checksum = 0;
  };

  explicit ColumnCache(std::vector<bool> numeric);
  bool ReadHeader();
  // The section's bytes in the mapping; nullptr when its checksum fails.
  const char* SectionData(const Section& section) const;
  // The checked bytes `data` of `section` as values the mapping keeps.
  template <typename T>
  ColumnBuffer<T> Borrow(const Section& section, const char* data) const;
  template <typename T>
  ColumnBuffer<T> Borrow(const char* data, size_t count) const;
  std::optional<RecordColumn> ReadCodedColumn(NullMask nulls,
                                              const Section& codes,
                                              const char* code_data,
                                              const Section& entries) const;
  const Section& SectionOf(int variable, int part) const;
  bool ReadEdgeRecords() const;

  std::shared_ptr<const void> mapping_;  // the whole file, read-only
  uint64_t file_size_ = 0;
  std::vector<bool> numeric_;
  std::vector<Kind> kinds_;
  Origin origin_;
  size_t record_count_ = 0;
  int64_t last_record_number_ = 0;
  std::vector<Section> sections_;  // as SectionIndex orders them
  // The edge records, read on first use.
  mutable bool edges_read_ = false;
  mutable bool edges_usable_ = false;
  mutable std::vector<CachedCell> edges_[2];
};

// The checksum of a section: 64-bit, over its bytes and its length.
uint64_t CacheChecksum(const void* data, size_t bytes);

// CacheChecksum of bytes that come in pieces: Add them in order, and
// Value() is CacheChecksum of all of them in a row.
class CacheChecksummer {
 public:
  void Add(const void* data, size_t bytes);
  uint64_t Value() const;

 private:
  static constexpr size_t kBlock = 32;  // four 64-bit lanes
  uint64_t lanes_[4] = {0x243F6A8885A308D3, 0x13198A2E03707344,
                        0xA4093822299F31D0, 0x082EFA98EC4E6C89};
  unsigned char pending_[kBlock] = {};
  size_t pending_bytes_ = 0;
  uint64_t total_bytes_ = 0;
};

// A checksum of a record's cells, given in variable order.
class RecordFingerprinter {
 public:
  void AddNull();
  void AddNumber(double number);
  void AddText(std::string_view text);
  uint64_t Value() const { return value_; }

 private:
  uint64_t value_ = 0;
};

// The fingerprint of every cell of record `index` (0-based) as `columns`
// hold it; loads every column.
uint64_t RecordFingerprint(const RecordColumns& columns, size_t index);

// Writes all `bytes` at `offset` of the file `fd`; false when it could
// not.
bool WriteAllAt(int fd, const void* data, size_t bytes, uint64_t offset);

}  // namespace rz

#endif  // RZ_APPFILE_COLUMN_CACHE_H_
