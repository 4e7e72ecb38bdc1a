// Copyright 2026 The Veltmark authors.

#include "appfile/data_file_stamp.h"

#include <sys/stat.h>

namespace rz {
namespace {

FileIdentity IdentityOf(const std::string& path) {
  FileIdentity identity;
  struct stat info {};
  if (stat(path.c_str(), &info) != 0) return identity;
  identity.exists = true;
  identity.device = static_cast<uint64_t>(info.st_dev);
  identity.inode = static_cast<uint64_t>(info.st_ino);
  identity.size = static_cast<int64_t>(info.st_size);
  identity.modified_ns =
      static_cast<int64_t>(info.st_mtim.tv_sec) * 1000000000 +
      info.st_mtim.tv_nsec;
  return identity;
}

}  // namespace

DataFileStamp TakeDataFileStamp(const std::string& path) {
  DataFileStamp stamp{IdentityOf(path), IdentityOf(path + "-wal")};
  if (stamp.wal.size == 0) stamp.wal = FileIdentity{};
  return stamp;
}

}  // namespace rz
