// Copyright 2026 The Veltmark authors.

#include "platform/mapped_file.h"

#include <fcntl.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>

#include "core/error.h"
#include "platform/file_system.h"

namespace rz {

MappedFile::MappedFile(std::string_view path) {
  if (path.empty() || path.find('\0') != std::string_view::npos) {
    throw Error::BadFileName(path);
  }
  const std::string normalized = NormalizePath(path);
  const int fd = ::open(normalized.c_str(), O_RDONLY | O_CLOEXEC);
  if (fd < 0) throw FileReadError(errno, path);
  struct stat info {};
  if (::fstat(fd, &info) != 0) {
    const int error = errno;
    ::close(fd);
    throw FileReadError(error, path);
  }
  if (S_ISDIR(info.st_mode)) {
    ::close(fd);
    throw FileReadError(EISDIR, path);
  }
  size_ = static_cast<size_t>(info.st_size);
  if (size_ > 0) {
    void* memory = ::mmap(nullptr, size_, PROT_READ, MAP_PRIVATE, fd, 0);
    const int error = errno;
    ::close(fd);
    if (memory == MAP_FAILED) throw FileReadError(error, path);
    ::madvise(memory, size_, MADV_SEQUENTIAL);
    data_ = static_cast<const char*>(memory);
  } else {
    ::close(fd);
  }
}

MappedFile::~MappedFile() {
  if (data_ != nullptr) ::munmap(const_cast<char*>(data_), size_);
}

void MappedFile::ReleaseBefore(size_t offset) {
  const size_t page = static_cast<size_t>(::sysconf(_SC_PAGESIZE));
  const size_t end = offset / page * page;
  if (data_ != nullptr && end > 0) {
    ::madvise(const_cast<char*>(data_), end, MADV_DONTNEED);
  }
}

}  // namespace rz
