// Copyright 2026 The Veltmark authors.
//
// Replacing a whole application so that a process killed at any moment
// leaves either the complete old application or the complete new one, and
// finishing what such a kill left. docs/formats.md ("Replacing an
// application") describes the protocol. For the template DIR/NAME.rzt:
//
//   1. ApplicationReplacement makes the staging folder
//      DIR/NAME.rzt.tmp-<pid>-<n> and holds a shared lock on it for as long
//      as it lives: a staging folder nobody holds is abandoned. The caller
//      writes the new application there under its final names
//      (StagedTemplatePath()).
//   2. Commit, holding DIR's folder lock (folder_lock.h) exclusively:
//      a. readies the staging folder: removes the data file's empty -wal
//         and its -shm (a -wal that holds pages is refused: the data file
//         was not closed) and flushes every file and the folder to disk;
//      b. makes DIR/NAME.rzt.old-<pid>-<n> and moves every file of the old
//         application into it, the template first;
//      c. commits by renaming the staging folder to DIR/NAME.rzt.new-<pid>-<n>;
//      d. moves every new file into DIR, the data file first, the template
//         last;
//      e. deletes the old folder with its files, then the emptied new one.
//   A failure before (c) moves the old files back and raises the error;
//   after (c) the replacement is finished by the next recovery.
//
// RecoverApplication, holding DIR's folder lock exclusively, finishes what a
// killed replacement left: a .new- folder is rolled forward (d, e); an .old-
// folder without its .new- one is rolled back (its files moved back, the
// staging folder deleted); a staging folder whose lock is free is deleted;
// so is the temporary F.tmp-<pid>-<n> of one of the application's files F
// when process <pid> no longer runs (an atomic write cut short). Recovery
// can itself be killed and run again. ApplicationReadLock recovers when
// something is left and then holds DIR's folder lock shared, so a reader never
// sees half of a replacement; a host opening an application calls it first.
//
// The application's files are NAME.rzt, its hook script NAME.rzt.rzx, the
// data file NAME.rzd with NAME.rzd-wal, -shm and -journal, its column cache
// NAME.rzc, and the views NAME.V<number> (the extension in any letter
// case).
//
// Errors (rz::Error): 70 naming DIR when it cannot be written ("the folder
// cannot be written") or another program holds it past the wait (folder
// lock); 76 for a missing DIR; the file errors of a move (70/75/76) naming
// the file. Not thread-safe.
//
// For tests only: the environment variable RZ_TEST_CRASH_AT names a point
// of the protocol at which the process kills itself (SIGKILL), or stops
// (SIGSTOP) when ":stop" follows the name: "staged" (before the lock),
// "aside-<k>" (after the k-th old file was moved aside), "committed",
// "placed-<k>" (after the k-th new file was moved into place),
// "removed-old" (the old files are deleted, the .new- folder is not), and
// "recovered-<k>" (recovery moved its k-th file).

#ifndef RZ_PLATFORM_APPLICATION_REPLACE_H_
#define RZ_PLATFORM_APPLICATION_REPLACE_H_

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/folder_lock.h"

namespace rz {

// The names (not paths) of the files of the application whose template is
// `template_path` that exist in its folder, in byte order.
std::vector<std::string> ExistingApplicationFiles(
    std::string_view template_path);

// Finishes or undoes an interrupted replacement of the application at
// `template_path` and removes the temporaries of processes that have
// ended. Does nothing in a folder that cannot be opened. Raises the file
// errors when a half-done replacement cannot be finished (a folder that
// cannot be written); leftovers that do no harm are left quietly then.
void RecoverApplication(std::string_view template_path);

// Holds the folder of the application at `template_path` for reading (see
// above) from construction to destruction.
class ApplicationReadLock {
 public:
  explicit ApplicationReadLock(std::string_view template_path);

 private:
  FolderLock lock_;
};

// Deletes what atomic writes of the file `path` (of any kind: a result
// written by `rzselect run -o`, say) left when their process was killed:
// the files path + ".tmp-<pid>-<n>" whose process <pid> has ended
// (TemporaryNameFor). Never throws; a folder that cannot be read or
// written is left as it is.
void DeleteAbandonedTemporaries(std::string_view path);

// True when a replacement of the application at `template_path` left
// something for RecoverApplication to finish or remove (read without the
// folder lock: a writer that only needs recovery when something is left
// checks this first and so does not wait on the readers' lock).
bool ApplicationHasLeftovers(std::string_view template_path);

class ApplicationReplacement {
 public:
  // Makes the staging folder beside `template_path`. Raises 76 when the
  // folder does not exist, 70 naming it when it cannot be written.
  explicit ApplicationReplacement(std::string_view template_path);
  // Without a successful Commit, deletes the staging folder.
  ~ApplicationReplacement();
  ApplicationReplacement(const ApplicationReplacement&) = delete;
  ApplicationReplacement& operator=(const ApplicationReplacement&) = delete;

  // Where the new template is to be written; the data file and the views
  // go beside it under their usual names.
  std::string StagedTemplatePath() const;

  // Puts the staged application in place of the old one (steps 2a-e).
  // Call once, after every file of the new application is written and
  // closed.
  void Commit();

 private:
  void ReadyStagingFolder() const;
  // Steps b to e; the caller holds the folder lock exclusively.
  void SwitchFiles();

  std::string folder_;         // DIR with its final "/", or "" for "."
  std::string template_name_;  // NAME.rzt
  std::string id_;             // "<pid>-<n>"
  std::string staging_;        // the staging folder's path
  FolderLock staging_lock_;
  bool committed_ = false;
};

}  // namespace rz

#endif  // RZ_PLATFORM_APPLICATION_REPLACE_H_
