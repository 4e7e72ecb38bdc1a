// Copyright 2026 The Veltmark authors.
//
// DataFileStamp identifies one state of a data file on disk: the device,
// inode, size and modification time (nanoseconds) of the file and of its
// -wal journal. Two equal stamps mean nothing was written in between (an
// empty journal counts as none, since a read-only connection leaves one
// behind). The data store compares stamps to skip re-reading an unchanged
// file, and the column cache records the stamp of the file it was made from.

#ifndef RZ_APPFILE_DATA_FILE_STAMP_H_
#define RZ_APPFILE_DATA_FILE_STAMP_H_

#include <cstdint>
#include <string>

namespace rz {

struct FileIdentity {
  bool exists = false;
  uint64_t device = 0;
  uint64_t inode = 0;
  int64_t size = 0;
  int64_t modified_ns = 0;
  bool operator==(const FileIdentity&) const = default;
  // The same file (not only the same content).
  bool SameFileAs(const FileIdentity& other) const {
    return exists && other.exists && device == other.device &&
           inode == other.inode;
  }
};

struct DataFileStamp {
  FileIdentity file;
  FileIdentity wal;
  bool operator==(const DataFileStamp&) const = default;
};

// The stamp of the data file at `path` now (an identity with exists false
// for a file that is missing).
DataFileStamp TakeDataFileStamp(const std::string& path);

}  // namespace rz

#endif  // RZ_APPFILE_DATA_FILE_STAMP_H_
