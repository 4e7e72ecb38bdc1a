// Copyright 2026 The Veltmark authors.

#include "platform/folder_lock.h"

#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

#include <cerrno>
#include <thread>

#include "core/error.h"

namespace rz {
namespace {

constexpr std::chrono::milliseconds kRetryPause{10};

int OpenFolder(const std::string& folder) {
  const std::string path = folder.empty() ? "." : folder;
  return ::open(path.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
}

int FlockOperation(LockMode mode) {
  return mode == LockMode::kShared ? LOCK_SH : LOCK_EX;
}

// One attempt without waiting; true when the lock was taken.
bool TryLock(int fd, LockMode mode) {
  while (::flock(fd, FlockOperation(mode) | LOCK_NB) != 0) {
    if (errno != EINTR) return false;
  }
  return true;
}

}  // namespace

FolderLock::FolderLock(FolderLock&& other) noexcept : fd_(other.fd_) {
  other.fd_ = -1;
}

FolderLock& FolderLock::operator=(FolderLock&& other) noexcept {
  if (this != &other) {
    Release();
    fd_ = other.fd_;
    other.fd_ = -1;
  }
  return *this;
}

FolderLock FolderLock::Acquire(const std::string& folder, LockMode mode,
                               std::chrono::milliseconds timeout) {
  const int fd = OpenFolder(folder);
  if (fd < 0) return FolderLock();
  FolderLock lock(fd);
  const auto deadline = std::chrono::steady_clock::now() + timeout;
  while (!TryLock(fd, mode)) {
    if (std::chrono::steady_clock::now() >= deadline) {
      throw Error::PermissionDeniedFor(
          folder.empty() ? "." : folder,
          "the application is in use by another program");
    }
    std::this_thread::sleep_for(kRetryPause);
  }
  return lock;
}

bool FolderLock::IsFree(const std::string& folder) {
  const int fd = OpenFolder(folder);
  if (fd < 0) return false;
  const bool free = TryLock(fd, LockMode::kExclusive);
  ::close(fd);  // drops the lock just taken
  return free;
}

void FolderLock::Release() {
  if (fd_ < 0) return;
  ::close(fd_);  // closing the only descriptor releases the lock
  fd_ = -1;
}

}  // namespace rz
