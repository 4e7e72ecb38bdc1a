// Copyright 2026 The Veltmark authors.
//
// FolderLock is an advisory lock on a folder (flock on the folder itself),
// shared or exclusive, that processes taking part agree on: readers of an
// application hold it shared while they read; replacing an application
// (application_replace.h) holds it exclusive while it switches files. The
// lock needs only read access to the folder, so a folder the user cannot
// write can still be locked. It is released when the object goes or the
// process ends, however it ends (a killed process holds nothing).
//
// Acquire waits up to a timeout for other holders and then raises
// Error::PermissionDeniedFor (70) naming the folder, "in use by another
// program". A folder that cannot be opened (missing, not readable) gives an
// unlocked object and no error: there is nothing in it to protect, and the
// caller's own access reports the real problem. Not thread-safe; a
// process's own locks on different objects conflict with each other like
// those of other processes.

#ifndef RZ_PLATFORM_FOLDER_LOCK_H_
#define RZ_PLATFORM_FOLDER_LOCK_H_

#include <chrono>
#include <string>

namespace rz {

enum class LockMode { kShared, kExclusive };

// How long a command waits for another program's hold on a folder.
inline constexpr std::chrono::milliseconds kFolderLockWait{30000};

class FolderLock {
 public:
  FolderLock() = default;
  ~FolderLock() { Release(); }
  FolderLock(FolderLock&& other) noexcept;
  FolderLock& operator=(FolderLock&& other) noexcept;
  FolderLock(const FolderLock&) = delete;
  FolderLock& operator=(const FolderLock&) = delete;

  // Locks `folder` ("" is the working folder) in `mode`, waiting up to
  // `timeout` while another holder keeps it.
  static FolderLock Acquire(
      const std::string& folder, LockMode mode,
      std::chrono::milliseconds timeout = kFolderLockWait);

  // True when no process holds a lock on `folder` (it could be locked
  // exclusively at once). False for a folder that cannot be opened.
  static bool IsFree(const std::string& folder);

  bool Held() const { return fd_ >= 0; }
  void Release();

 private:
  explicit FolderLock(int fd) : fd_(fd) {}

  int fd_ = -1;  // the open folder carrying the lock; -1 when none
};

}  // namespace rz

#endif  // RZ_PLATFORM_FOLDER_LOCK_H_
