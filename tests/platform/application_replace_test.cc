// Copyright 2026 The Veltmark authors.
//
// Replacing an application as a whole: a replacement killed at every step
// of the switch (the crash points) leaves, once recovered, exactly the old
// application or exactly the new one, and nothing of the protocol behind;
// files that are not the application's are never touched; temporaries of
// live processes are kept; readers never get in while files switch.

#include "platform/application_replace.h"

#include <gtest/gtest.h>
#include <signal.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <map>

#include "core/error.h"
#include "platform/file_system.h"
#include "platform/folder_lock.h"
#include "support/error_number.h"
#include "support/forked.h"
#include "support/temp_folder.h"

namespace rz {
namespace {

namespace fs = std::filesystem;

// A folder's entries: name -> content ("<folder>" for a folder).
using FileSet = std::map<std::string, std::string>;

constexpr const char* kCrashVariable = "RZ_TEST_CRASH_AT";
constexpr int kKilled = 128 + SIGKILL;

const FileSet kOldApplication = {
    {"line4.rzt", "old template"},    {"line4.rzd", "old data"},
    {"line4.rzd-wal", "old journal"}, {"line4.rzd-shm", "old index"},
    {"line4.V1", "old view 1"},       {"line4.v12", "old view 12"},
    {"line4.rzt.rzx", "old script"},  {"line4.rzc", "old column cache"}};

// Files beside the application that are not part of it.
const FileSet kOtherFiles = {{"other.rzt", "another application"},
                             {"line4.V1x", "not a view"},
                             {"line4.rzt.bak", "a backup"},
                             {"line4.rzd.copy", "a copy"},
                             {"RZscript.rzx", "the folder's script"},
                             {"notes.txt.tmp-1-1", "not a temporary of ours"}};

const FileSet kNewApplication = {{"line4.rzt", "new template"},
                                 {"line4.rzd", "new data"},
                                 {"line4.V1", "new view 1"},
                                 {"line4.V2", "new view 2"},
                                 {"line4.rzc", "new column cache"}};

FileSet Union(FileSet a, const FileSet& b) {
  a.insert(b.begin(), b.end());
  return a;
}

FileSet Snapshot(const std::string& folder) {
  FileSet files;
  for (const auto& entry : fs::directory_iterator(folder)) {
    const std::string name = entry.path().filename().string();
    files[name] = entry.is_directory() ? "<folder>"
                                       : ReadBinaryFile(entry.path().string());
  }
  return files;
}

void WriteFiles(const std::string& folder, const FileSet& files) {
  for (const auto& [name, bytes] : files) {
    std::ofstream(folder + "/" + name, std::ios::binary) << bytes;
  }
}

std::string Describe(const FileSet& files) {
  std::string text;
  for (const auto& [name, bytes] : files) text += name + "=" + bytes + "; ";
  return text;
}

class ApplicationReplaceTest : public ::testing::Test {
 protected:
  void SetUp() override { Reset(); }

  // The folder with the old application and the other files only.
  void Reset() {
    fs::remove_all(dir_);
    fs::create_directory(dir_);
    WriteFiles(dir_, Union(kOldApplication, kOtherFiles));
  }

  // Writes the new application through a replacement and commits it; for
  // a child process, returns 0.
  int ReplaceWithNew(const FileSet& staged = kNewApplication) const {
    ApplicationReplacement replacement(Template());
    WriteFiles(ParentFolder(replacement.StagedTemplatePath()), staged);
    replacement.Commit();
    return 0;
  }

  // Runs the replacement in a child that kills itself at `point`.
  int ReplaceCrashingAt(const std::string& point) const {
    return RunForked([this] { return ReplaceWithNew(); }, kCrashVariable,
                     point);
  }

  std::string Template() const { return dir_ + "/line4.rzt"; }

  TempFolder temp_;
  std::string dir_ = temp_.File("app");
};

TEST_F(ApplicationReplaceTest, ListsExactlyTheApplicationsFiles) {
  const std::vector<std::string> expected = {
      "line4.V1",      "line4.rzc", "line4.rzd",     "line4.rzd-shm",
      "line4.rzd-wal", "line4.rzt", "line4.rzt.rzx", "line4.v12"};
  EXPECT_EQ(ExistingApplicationFiles(Template()), expected);
  EXPECT_TRUE(
      ExistingApplicationFiles(temp_.File("missing/line4.rzt")).empty());
}

TEST_F(ApplicationReplaceTest, CommitReplacesEveryApplicationFileAndNoOther) {
  // The data file's empty journal and index from reading the staged
  // application are SQLite's, not the application's: they stay behind.
  FileSet staged = kNewApplication;
  staged["line4.rzd-wal"] = "";
  staged["line4.rzd-shm"] = "index";
  ReplaceWithNew(staged);
  EXPECT_EQ(Snapshot(dir_), Union(kNewApplication, kOtherFiles));
}

TEST_F(ApplicationReplaceTest,
       KilledAtEveryStepLeavesTheOldOrTheNewApplication) {
  const FileSet old_folder = Union(kOldApplication, kOtherFiles);
  const FileSet new_folder = Union(kNewApplication, kOtherFiles);
  struct Step {
    std::string point;
    const FileSet* expected;
  };
  std::vector<Step> steps = {{"staged", &old_folder}};
  for (size_t k = 1; k <= kOldApplication.size(); ++k) {
    steps.push_back({"aside-" + std::to_string(k), &old_folder});
  }
  steps.push_back({"committed", &new_folder});
  for (size_t k = 1; k <= kNewApplication.size(); ++k) {
    steps.push_back({"placed-" + std::to_string(k), &new_folder});
  }
  steps.push_back({"removed-old", &new_folder});
  for (const Step& step : steps) {
    Reset();
    ASSERT_EQ(ReplaceCrashingAt(step.point), kKilled) << step.point;
    EXPECT_NE(Snapshot(dir_), *step.expected)
        << step.point << ": the kill left nothing to recover";
    RecoverApplication(Template());
    EXPECT_EQ(Snapshot(dir_), *step.expected)
        << step.point << ": " << Describe(Snapshot(dir_));
  }
  // One step past the last file of each phase is never reached.
  for (const std::string& point :
       {"aside-" + std::to_string(kOldApplication.size() + 1),
        "placed-" + std::to_string(kNewApplication.size() + 1)}) {
    Reset();
    EXPECT_EQ(ReplaceCrashingAt(point), 0) << point;
    EXPECT_EQ(Snapshot(dir_), new_folder) << point;
  }
}

TEST_F(ApplicationReplaceTest, RecoveryKilledHalfWayIsFinishedByTheNext) {
  const struct {
    const char* writer_point;
    FileSet expected;
  } cases[] = {{"aside-4", Union(kOldApplication, kOtherFiles)},
               {"placed-1", Union(kNewApplication, kOtherFiles)}};
  for (const auto& c : cases) {
    Reset();
    ASSERT_EQ(ReplaceCrashingAt(c.writer_point), kKilled);
    const int recovery = RunForked(
        [this] {
          RecoverApplication(Template());
          return 0;
        },
        kCrashVariable, "recovered-2");
    EXPECT_EQ(recovery, kKilled) << c.writer_point;
    RecoverApplication(Template());
    EXPECT_EQ(Snapshot(dir_), c.expected) << c.writer_point;
  }
}

TEST_F(ApplicationReplaceTest, AReaderRecoversFirstAndWaitsWhileFilesSwitch) {
  ASSERT_EQ(ReplaceCrashingAt("aside-2"), kKilled);
  { const ApplicationReadLock reading(Template()); }
  EXPECT_EQ(Snapshot(dir_), Union(kOldApplication, kOtherFiles));

  // A writer stopped in the middle of the switch holds the folder: a
  // reader cannot get in until it has finished.
  const pid_t writer = ::fork();
  if (writer == 0) {
    ::setenv(kCrashVariable, "placed-1:stop", 1);
    ::_exit(ReplaceWithNew());
  }
  int status = 0;
  ASSERT_EQ(::waitpid(writer, &status, WUNTRACED), writer);
  ASSERT_TRUE(WIFSTOPPED(status));
  EXPECT_EQ(ErrorNumber([&] {
              FolderLock::Acquire(dir_ + "/", LockMode::kShared,
                                  std::chrono::milliseconds(100));
            }),
            70);
  ::kill(writer, SIGCONT);
  ASSERT_EQ(::waitpid(writer, &status, 0), writer);
  EXPECT_EQ(StatusOf(status), 0);
  { const ApplicationReadLock reading(Template()); }
  EXPECT_EQ(Snapshot(dir_), Union(kNewApplication, kOtherFiles));
}

// The number of a process that has ended, as temporaries name it.
std::string EndedProcessId() {
  const pid_t ended = ::fork();
  if (ended == 0) ::_exit(0);
  ::waitpid(ended, nullptr, 0);
  return std::to_string(ended);
}

TEST_F(ApplicationReplaceTest, TemporariesOfLiveProcessesAreKept) {
  const std::string dead = EndedProcessId();
  const std::string alive = std::to_string(::getpid());
  const FileSet abandoned = {{"line4.V3.tmp-" + dead + "-2", "cut short"},
                             {"line4.rzt.tmp-" + dead + "-1", "cut short"},
                             {"line4.rzd.tmp-" + dead + "-4", "cut short"},
                             {"line4.rzd.tmp-" + dead + "-4-wal", "journal"},
                             {"line4.rzc.tmp-" + dead + "-5", "cache spool"}};
  const FileSet kept = {{"line4.V3.tmp-" + alive + "-2", "being written"},
                        {"other.rzt.tmp-" + dead + "-1", "not this one's"},
                        {"line4.V3.tmp-" + dead, "no number"}};
  WriteFiles(dir_, Union(abandoned, kept));
  // A staging folder left by a killed replacement goes; the one of a
  // replacement still under way stays.
  ASSERT_EQ(ReplaceCrashingAt("staged"), kKilled);
  ApplicationReplacement live(Template());
  const std::string live_staging = ParentFolder(live.StagedTemplatePath());

  RecoverApplication(Template());
  FileSet expected = Union(Union(kOldApplication, kOtherFiles), kept);
  expected[fs::path(live_staging.substr(0, live_staging.size() - 1))
               .filename()
               .string()] = "<folder>";
  EXPECT_EQ(Snapshot(dir_), expected) << Describe(Snapshot(dir_));
}

// Any file written atomically (a result of `rzselect run -o`) loses the
// temporaries of killed writers, and only those.
TEST_F(ApplicationReplaceTest, AbandonedTemporariesOfAnyFileAreDeleted) {
  const std::string dead = EndedProcessId();
  const std::string alive = std::to_string(::getpid());
  const FileSet abandoned = {{"out.csv.tmp-" + dead + "-1", "cut short"},
                             {"out.csv.tmp-" + dead + "-7", "cut short"}};
  const FileSet kept = {{"out.csv", "the last result"},
                        {"out.csv.tmp-" + alive + "-1", "being written"},
                        {"out.csv.tmp-" + dead, "no number"},
                        {"out.csvx.tmp-" + dead + "-1", "another file's"},
                        {"other.csv.tmp-" + dead + "-1", "another file's"}};
  WriteFiles(dir_, Union(abandoned, kept));
  DeleteAbandonedTemporaries(dir_ + "/out.csv");
  EXPECT_EQ(Snapshot(dir_), Union(Union(kOldApplication, kOtherFiles), kept))
      << Describe(Snapshot(dir_));
  DeleteAbandonedTemporaries(temp_.File("missing/out.csv"));  // no throw
}

TEST_F(ApplicationReplaceTest, AStagedDataFileStillOpenIsRefused) {
  FileSet staged = kNewApplication;
  staged["line4.rzd-wal"] = "pages not yet in the file";
  std::string staging;
  try {
    ApplicationReplacement replacement(Template());
    staging = ParentFolder(replacement.StagedTemplatePath());
    WriteFiles(staging, staged);
    replacement.Commit();
    ADD_FAILURE() << "no error";
  } catch (const Error& error) {
    EXPECT_EQ(error.Number(), 75);
    EXPECT_NE(error.Description().find(staging + "line4.rzd"),
              std::string::npos)
        << error.Description();
  }
  EXPECT_EQ(Snapshot(dir_), Union(kOldApplication, kOtherFiles));
}

TEST_F(ApplicationReplaceTest, AFolderThatCannotBeWrittenIsNamed) {
  EXPECT_EQ(ErrorNumber([&] {
              ApplicationReplacement replacement(temp_.File("no/line4.rzt"));
            }),
            76);
  MakeTraversable(temp_.File(""));
  ::chmod(dir_.c_str(), 0555);
  const UnprivilegedRun run = RunWithoutWriteAccess(dir_, [&] {
    try {
      ApplicationReplacement replacement(Template());
    } catch (const Error& error) {
      const std::string expected =
          "Permission denied: '" + dir_ + "': the folder cannot be written";
      if (error.Number() == 70 && error.Description() == expected) return 0;
      std::fprintf(stderr, "%s\n", error.what());
    }
    return 1;
  });
  ::chmod(dir_.c_str(), 0755);
  if (!run.skip_reason.empty()) GTEST_SKIP() << run.skip_reason;
  EXPECT_EQ(run.status, 0);
}

TEST(FolderLockTest, SharedHoldersExcludeAWriterUntilTheyGo) {
  TempFolder temp;
  const std::string folder = temp.File("");
  FolderLock first = FolderLock::Acquire(folder, LockMode::kShared);
  FolderLock second = FolderLock::Acquire(folder, LockMode::kShared);
  ASSERT_TRUE(first.Held() && second.Held());
  EXPECT_FALSE(FolderLock::IsFree(folder));
  try {
    FolderLock::Acquire(folder, LockMode::kExclusive,
                        std::chrono::milliseconds(50));
    ADD_FAILURE() << "no error";
  } catch (const Error& error) {
    EXPECT_EQ(error.Number(), 70);
    EXPECT_NE(error.Description().find(folder), std::string::npos);
    EXPECT_NE(error.Description().find("in use"), std::string::npos);
  }
  first.Release();
  second = FolderLock();  // moving an empty lock in releases the held one
  EXPECT_TRUE(FolderLock::IsFree(folder));
  EXPECT_TRUE(FolderLock::Acquire(folder, LockMode::kExclusive,
                                  std::chrono::milliseconds(0))
                  .Held());
  // A folder that cannot be opened is not locked, and that is no error.
  EXPECT_FALSE(
      FolderLock::Acquire(temp.File("missing"), LockMode::kShared).Held());
  EXPECT_FALSE(FolderLock::IsFree(temp.File("missing")));
}

}  // namespace
}  // namespace rz
