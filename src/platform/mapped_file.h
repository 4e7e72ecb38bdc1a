// Copyright 2026 The Veltmark authors.
//
// MappedFile maps a whole file read-only into memory, so a reader can walk
// a file of any size as one text without reading it into memory: pages
// come from the system's file cache as they are touched. ReleaseBefore
// gives back the pages a reader has passed (they are read again from the
// file if touched), so memory does not grow with the file. An empty file
// gives an empty text.
//
// Errors: the open or map raises FileReadError's errors naming the path.
// The file must not be cut short while it is mapped (reading past its new
// end would end the process); the files mapped here are inputs nothing
// else writes. Not thread-safe.

#ifndef RZ_PLATFORM_MAPPED_FILE_H_
#define RZ_PLATFORM_MAPPED_FILE_H_

#include <cstddef>
#include <string>
#include <string_view>

namespace rz {

class MappedFile {
 public:
  explicit MappedFile(std::string_view path);
  ~MappedFile();
  MappedFile(const MappedFile&) = delete;
  MappedFile& operator=(const MappedFile&) = delete;

  std::string_view Bytes() const { return {data_, size_}; }
  // Gives back the whole pages before byte `offset`.
  void ReleaseBefore(size_t offset);

 private:
  const char* data_ = nullptr;
  size_t size_ = 0;
};

}  // namespace rz

#endif  // RZ_PLATFORM_MAPPED_FILE_H_
