// Copyright 2026 The Veltmark authors.

#include "platform/application_replace.h"

#include <fcntl.h>
#include <signal.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <cctype>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <map>
#include <system_error>

#include "core/error.h"
#include "platform/file_system.h"

namespace rz {
namespace {

constexpr std::string_view kStagingTag = ".tmp-";
constexpr std::string_view kAsideTag = ".old-";
constexpr std::string_view kCommittedTag = ".new-";
constexpr std::string_view kDataExtension = ".rzd";
constexpr std::string_view kScriptExtension = ".rzx";
constexpr std::string_view kCacheExtension = ".rzc";
constexpr std::string_view kDataCompanions[] = {"-wal", "-shm", "-journal"};
constexpr const char* kCrashVariable = "RZ_TEST_CRASH_AT";
constexpr std::string_view kStopSuffix = ":stop";

// What names the files of one application.
struct AppNames {
  std::string folder;         // "dir/" or "" for the working folder
  std::string template_name;  // NAME.rzt
  std::string stem;           // NAME

  std::string Path(std::string_view name) const {
    return JoinPath(folder, name);
  }
  std::string DataName() const { return stem + std::string(kDataExtension); }
};

AppNames NamesOf(std::string_view template_path) {
  const std::string path = NormalizePath(template_path);
  AppNames names;
  names.folder = ParentFolder(path);
  names.template_name = path.substr(names.folder.size());
  names.stem = WithoutExtension(names.template_name);
  return names;
}

// The folder as a user wrote it: without its final "/", "." for none.
std::string DisplayFolder(const std::string& folder) {
  if (folder.empty()) return ".";
  if (folder.size() > 1 && folder.back() == '/') {
    return folder.substr(0, folder.size() - 1);
  }
  return folder;
}

bool AllDigits(std::string_view text) {
  return !text.empty() && std::all_of(text.begin(), text.end(), [](char ch) {
    return std::isdigit(ch & 0xff) != 0;
  });
}

bool IsViewName(std::string_view name, const AppNames& names) {
  const size_t stem = names.stem.size();
  return name.size() > stem + 2 && name.substr(0, stem) == names.stem &&
         name[stem] == '.' &&
         (name[stem + 1] == 'V' || name[stem + 1] == 'v') &&
         AllDigits(name.substr(stem + 2));
}

bool IsApplicationFile(std::string_view name, const AppNames& names) {
  if (name == names.template_name ||
      name == names.template_name + std::string(kScriptExtension)) {
    return true;
  }
  const std::string data = names.DataName();
  if (name == data || name == names.stem + std::string(kCacheExtension)) {
    return true;
  }
  for (std::string_view companion : kDataCompanions) {
    if (name == data + std::string(companion)) return true;
  }
  return IsViewName(name, names);
}

struct Entry {
  std::string name;
  bool is_folder = false;
};

// The entries of `folder`, in byte order; none when it cannot be read.
std::vector<Entry> ListFolder(const std::string& folder) {
  std::vector<Entry> entries;
  std::error_code error;
  std::filesystem::directory_iterator it(folder.empty() ? "." : folder, error);
  for (; !error && it != std::filesystem::directory_iterator();
       it.increment(error)) {
    std::error_code type_error;
    const bool is_folder =
        std::filesystem::is_directory(it->symlink_status(type_error));
    entries.push_back({it->path().filename().string(), is_folder});
  }
  std::sort(entries.begin(), entries.end(),
            [](const Entry& a, const Entry& b) { return a.name < b.name; });
  return entries;
}

std::vector<std::string> FileNamesIn(const std::string& folder) {
  std::vector<std::string> names;
  for (const Entry& entry : ListFolder(folder)) names.push_back(entry.name);
  return names;
}

// The process of an owner id "<pid>-<n>", when `id` is one.
std::optional<pid_t> OwnerProcess(std::string_view id) {
  const size_t dash = id.find('-');
  if (dash == std::string_view::npos || !AllDigits(id.substr(0, dash)) ||
      !AllDigits(id.substr(dash + 1)) || dash > 9) {
    return std::nullopt;
  }
  return static_cast<pid_t>(std::atol(std::string(id.substr(0, dash)).c_str()));
}

bool ProcessEnded(pid_t pid) {
  if (pid <= 0 || pid == ::getpid()) return false;
  return ::kill(pid, 0) != 0 && errno == ESRCH;
}

// True for "NAME.tmp-<pid>-<n>" (with a journal suffix when the name is
// the data file's) of an application file NAME whose process has ended.
bool IsAbandonedTemporary(std::string_view name, const AppNames& names) {
  const size_t tag = name.rfind(kStagingTag);
  if (tag == std::string_view::npos) return false;
  if (!IsApplicationFile(name.substr(0, tag), names)) return false;
  std::string_view id = name.substr(tag + kStagingTag.size());
  for (std::string_view companion : kDataCompanions) {
    if (id.ends_with(companion)) id.remove_suffix(companion.size());
  }
  const std::optional<pid_t> owner = OwnerProcess(id);
  return owner && ProcessEnded(*owner);
}

// The folders one replacement left behind, found by its owner id.
struct ProtocolFolders {
  std::string staging;  // paths; empty when absent
  std::string aside;
  std::string committed;
};

std::map<std::string, ProtocolFolders> FindProtocolFolders(
    const AppNames& names, const std::vector<Entry>& entries) {
  std::map<std::string, ProtocolFolders> found;
  const std::pair<std::string_view, std::string ProtocolFolders::*> tags[] = {
      {kStagingTag, &ProtocolFolders::staging},
      {kAsideTag, &ProtocolFolders::aside},
      {kCommittedTag, &ProtocolFolders::committed}};
  for (const Entry& entry : entries) {
    const std::string_view name = entry.name;
    if (!entry.is_folder || !name.starts_with(names.template_name)) continue;
    const std::string_view rest = name.substr(names.template_name.size());
    for (const auto& [tag, member] : tags) {
      if (!rest.starts_with(tag)) continue;
      const std::string_view id = rest.substr(tag.size());
      if (OwnerProcess(id)) found[std::string(id)].*member = names.Path(name);
    }
  }
  return found;
}

void CrashPoint(std::string_view point) {
  const char* value = std::getenv(kCrashVariable);
  if (value == nullptr) return;
  std::string_view wanted = value;
  const bool stop = wanted.ends_with(kStopSuffix);
  if (stop) wanted.remove_suffix(kStopSuffix.size());
  if (wanted == point) ::raise(stop ? SIGSTOP : SIGKILL);
}

void CrashPoint(std::string_view step, int count) {
  CrashPoint(std::string(step) + "-" + std::to_string(count));
}

void MoveFile(const std::string& from, const std::string& to) {
  if (std::rename(from.c_str(), to.c_str()) != 0) {
    throw FileWriteError(errno, from);
  }
}

void RemoveFolder(const std::string& path) {
  std::error_code error;
  std::filesystem::remove_all(path, error);
  if (error) throw FileWriteError(error.value(), path);
}

// Moves `files` (names) from folder `from` into the application's folder,
// in that order, passing crash point "<step>-<k>" after the k-th.
void MoveInto(const AppNames& names, const std::string& from,
              const std::vector<std::string>& files, std::string_view step) {
  int count = 0;
  for (const std::string& file : files) {
    MoveFile(JoinPath(from, file), names.Path(file));
    CrashPoint(step, ++count);
  }
  FlushFolder(names.folder);
}

// The new files in the order they go into place: the data file first, so
// that the template, which makes the application, comes last.
std::vector<std::string> PlacingOrder(const AppNames& names,
                                      std::vector<std::string> files) {
  auto rank = [&names](const std::string& name) {
    if (name == names.DataName()) return 0;
    return name == names.template_name ? 2 : 1;
  };
  std::stable_sort(files.begin(), files.end(),
                   [&rank](const std::string& a, const std::string& b) {
                     return rank(a) < rank(b);
                   });
  return files;
}

// Steps d and e: the committed folder's files into place, then the old
// files and both folders away.
void RollForward(const AppNames& names, const std::string& committed,
                 const std::string& aside, std::string_view step) {
  MoveInto(names, committed, PlacingOrder(names, FileNamesIn(committed)), step);
  if (!aside.empty()) RemoveFolder(aside);
  CrashPoint("removed-old");
  RemoveFolder(committed);
  FlushFolder(names.folder);
}

// Undoes step b: the old files back into place, then the staging folder
// away.
void RollBack(const AppNames& names, const std::string& aside,
              const std::string& staging) {
  MoveInto(names, aside, FileNamesIn(aside), "recovered");
  RemoveFolder(aside);
  if (!staging.empty()) RemoveFolder(staging);
}

// Leftovers that a reader must not see (a half-done switch) or that
// recovery removes; decided for good only under the exclusive lock.
bool HasLeftovers(const AppNames& names) {
  const std::vector<Entry> entries = ListFolder(names.folder);
  for (const auto& [id, folders] : FindProtocolFolders(names, entries)) {
    if (!folders.aside.empty() || !folders.committed.empty()) return true;
    if (FolderLock::IsFree(folders.staging)) return true;
  }
  return std::any_of(entries.begin(), entries.end(), [&](const Entry& entry) {
    return !entry.is_folder && IsAbandonedTemporary(entry.name, names);
  });
}

// Recovery proper; the caller holds the folder lock exclusively.
void RecoverLocked(const AppNames& names) {
  const std::vector<Entry> entries = ListFolder(names.folder);
  for (const auto& [id, folders] : FindProtocolFolders(names, entries)) {
    if (!folders.committed.empty()) {
      RollForward(names, folders.committed, folders.aside, "recovered");
    } else if (!folders.aside.empty()) {
      RollBack(names, folders.aside, folders.staging);
    } else if (FolderLock::IsFree(folders.staging)) {
      std::error_code ignored;  // harmless if it stays
      std::filesystem::remove_all(folders.staging, ignored);
    }
  }
  for (const Entry& entry : entries) {
    if (!entry.is_folder && IsAbandonedTemporary(entry.name, names)) {
      DeleteFileQuietly(names.Path(entry.name));
    }
  }
}

std::string NewOwnerId() {
  static std::atomic<unsigned> counter{0};
  return std::to_string(::getpid()) + "-" + std::to_string(++counter);
}

// A folder beside the application could not be made.
Error FolderError(int error_number, const AppNames& names,
                  const std::string& path) {
  switch (error_number) {
    case EACCES:
    case EPERM:
    case EROFS:
      return Error::PermissionDeniedFor(DisplayFolder(names.folder),
                                        "the folder cannot be written");
    case ENOENT:
    case ENOTDIR:
      return Error::PathNotFound(DisplayFolder(names.folder));
    default:
      return FileWriteError(error_number, path);
  }
}

void MakeFolder(const AppNames& names, const std::string& path) {
  if (::mkdir(path.c_str(), 0777) != 0) {
    throw FolderError(errno, names, path);
  }
}

void FlushFile(const std::string& path) {
  const int fd = ::open(path.c_str(), O_RDONLY | O_CLOEXEC);
  if (fd < 0) return;
  ::fsync(fd);
  ::close(fd);
}

}  // namespace

std::vector<std::string> ExistingApplicationFiles(
    std::string_view template_path) {
  const AppNames names = NamesOf(template_path);
  std::vector<std::string> files;
  for (const Entry& entry : ListFolder(names.folder)) {
    if (!entry.is_folder && IsApplicationFile(entry.name, names)) {
      files.push_back(entry.name);
    }
  }
  return files;
}

void RecoverApplication(std::string_view template_path) {
  const AppNames names = NamesOf(template_path);
  FolderLock lock = FolderLock::Acquire(names.folder, LockMode::kExclusive);
  if (lock.Held()) RecoverLocked(names);
}

ApplicationReadLock::ApplicationReadLock(std::string_view template_path) {
  const AppNames names = NamesOf(template_path);
  lock_ = FolderLock::Acquire(names.folder, LockMode::kShared);
  if (!lock_.Held() || !HasLeftovers(names)) return;
  lock_.Release();
  RecoverApplication(template_path);
  lock_ = FolderLock::Acquire(names.folder, LockMode::kShared);
}

void DeleteAbandonedTemporaries(std::string_view path) {
  const std::string normalized = NormalizePath(path);
  const std::string folder = ParentFolder(normalized);
  const std::string prefix =
      normalized.substr(folder.size()) + std::string(kStagingTag);
  for (const Entry& entry : ListFolder(folder)) {
    if (entry.is_folder || !entry.name.starts_with(prefix)) continue;
    const std::optional<pid_t> owner =
        OwnerProcess(std::string_view(entry.name).substr(prefix.size()));
    if (owner && ProcessEnded(*owner)) {
      DeleteFileQuietly(JoinPath(folder, entry.name));
    }
  }
}

bool ApplicationHasLeftovers(std::string_view template_path) {
  return HasLeftovers(NamesOf(template_path));
}

ApplicationReplacement::ApplicationReplacement(std::string_view template_path)
    : id_(NewOwnerId()) {
  const AppNames names = NamesOf(template_path);
  folder_ = names.folder;
  template_name_ = names.template_name;
  staging_ = names.Path(template_name_ + std::string(kStagingTag) + id_);
  // Made and locked under the shared folder lock, so that recovery (which
  // holds it exclusively) never finds the folder made but not yet locked.
  const FolderLock folder_lock =
      FolderLock::Acquire(folder_, LockMode::kShared);
  MakeFolder(names, staging_);
  staging_lock_ = FolderLock::Acquire(staging_, LockMode::kShared);
}

ApplicationReplacement::~ApplicationReplacement() {
  if (committed_) return;
  std::error_code ignored;
  std::filesystem::remove_all(staging_, ignored);
}

std::string ApplicationReplacement::StagedTemplatePath() const {
  return JoinPath(staging_, template_name_);
}

void ApplicationReplacement::Commit() {
  if (committed_) {
    throw Error::InvalidArgument("the replacement of " + template_name_ +
                                 " is already committed");
  }
  ReadyStagingFolder();
  CrashPoint("staged");
  const FolderLock folder_lock =
      FolderLock::Acquire(folder_, LockMode::kExclusive);
  SwitchFiles();
}

void ApplicationReplacement::ReadyStagingFolder() const {
  const AppNames names = NamesOf(StagedTemplatePath());
  const std::string data = names.Path(names.DataName());
  struct stat wal {};
  if (::stat((data + "-wal").c_str(), &wal) == 0 && wal.st_size > 0) {
    throw Error::BadDataFile(data, "the data file was not closed");
  }
  DeleteFileQuietly(data + "-wal");
  DeleteFileQuietly(data + "-shm");
  for (const std::string& file : FileNamesIn(staging_)) {
    FlushFile(JoinPath(staging_, file));
  }
  FlushFolder(staging_);
}

void ApplicationReplacement::SwitchFiles() {
  const AppNames names = NamesOf(JoinPath(folder_, template_name_));
  const std::string aside =
      names.Path(template_name_ + std::string(kAsideTag) + id_);
  const std::string committed =
      names.Path(template_name_ + std::string(kCommittedTag) + id_);
  MakeFolder(names, aside);
  try {
    std::vector<std::string> old_files =
        ExistingApplicationFiles(names.Path(template_name_));
    // The template first: without it the folder holds no application.
    std::stable_partition(
        old_files.begin(), old_files.end(),
        [&](const std::string& name) { return name == template_name_; });
    int count = 0;
    for (const std::string& file : old_files) {
      MoveFile(names.Path(file), JoinPath(aside, file));
      CrashPoint("aside", ++count);
    }
    FlushFolder(aside);
    FlushFolder(folder_);
    MoveFile(staging_, committed);
  } catch (...) {
    try {
      RollBack(names, aside, "");
    } catch (const Error&) {
      // The next recovery moves the rest back.
    }
    throw;
  }
  committed_ = true;
  FlushFolder(folder_);
  CrashPoint("committed");
  RollForward(names, committed, aside, "placed");
}

}  // namespace rz
