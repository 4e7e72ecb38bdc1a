// Copyright 2026 The Veltmark authors.
//
// `rzselect sample --force` and `import --force` replace an application as
// a whole. Killed at each step of the switch (RZ_TEST_CRASH_AT) and at
// random moments, the folder holds, once the next command ran, exactly the
// old application or exactly the new one — template, data, views and hook
// script, byte for byte — and nothing of the replacement. A reader started
// while the files switch waits until they have. Folders the user may read
// but not write: writing there names the folder; an application there
// lists its views and scripts.

#include <fcntl.h>
#include <gtest/gtest.h>
#include <signal.h>
#include <sys/stat.h>
#include <unistd.h>

#include <chrono>
#include <filesystem>
#include <fstream>
#include <map>
#include <random>
#include <thread>

#include "appfile/application_file.h"
#include "e2e/cli_run.h"
#include "support/forked.h"

namespace rz {
namespace {

namespace fs = std::filesystem;

// The folder's entries, name -> bytes ("<folder>" for a folder), but for
// the data file's -wal and -shm, which SQLite makes and removes as it
// reads, and the column cache, which a reader makes.
using FileSet = std::map<std::string, std::string>;

constexpr int kKilled = 128 + SIGKILL;

FileSet Snapshot(const std::string& folder) {
  FileSet files;
  for (const auto& entry : fs::directory_iterator(folder)) {
    const std::string name = entry.path().filename().string();
    if (name.ends_with(".rzd-wal") || name.ends_with(".rzd-shm") ||
        name.ends_with(".rzc")) {
      continue;
    }
    files[name] = entry.is_directory() ? "<folder>"
                                       : ReadWholeFile(entry.path().string());
  }
  return files;
}

std::string Names(const FileSet& files) {
  std::string names;
  for (const auto& [name, bytes] : files) names += name + " ";
  return names;
}

void WriteFile(const std::string& path, const std::string& bytes) {
  std::ofstream(path, std::ios::binary) << bytes;
}

int32_t RecordCount(const std::string& template_path) {
  ApplicationFile file;
  file.SetOpenMode(kOpenExisting);
  file.OpenApplication(template_path);
  return file.ApplicationExists() ? file.RecordCount() : -1;
}

// Runs rzselect with RZ_TEST_CRASH_AT set to `point`; its exit status.
int RunCrashingAt(const std::vector<std::string>& args,
                  const std::string& point) {
  TempFolder logs;
  std::vector<std::string> argv = {RZSELECT_PATH};
  argv.insert(argv.end(), args.begin(), args.end());
  Child child(argv, logs.File("out"), logs.File("err"),
              {"RZ_TEST_CRASH_AT=" + point});
  return child.WaitExit(std::chrono::seconds(60)).value_or(-1);
}

class CliReplaceTest : public ::testing::Test {
 protected:
  static constexpr int32_t kOldRecords = 40;
  static constexpr int32_t kNewRecords = 60;

  void SetUp() override {
    ASSERT_EQ(Sample(temp_.File("old"), kOldRecords, "1").status, 0);
    // The template and views of both are the same but for this comment
    // line, which sets every old file apart; a hook script and a view file
    // outside the catalogue belong to the application too.
    for (const char* name :
         {"line4.rzt", "line4.V1", "line4.V2", "line4.V3", "line4.V4"}) {
      std::ofstream(temp_.File("old/") + name, std::ios::binary | std::ios::app)
          << "; written by the old application\r\n";
    }
    WriteFile(
        temp_.File("old/line4.rzt.rzx"),
        "Function Describe()\r\n  Describe = \"old\"\r\nEnd Function\r\n");
    fs::copy_file(temp_.File("old/line4.V1"), temp_.File("old/line4.V9"));
    old_ = Snapshot(temp_.File("old"));
    ASSERT_EQ(Sample(temp_.File("new"), kNewRecords, "2").status, 0);
    new_ = Snapshot(temp_.File("new"));
  }

  static CliResult Sample(const std::string& folder, int32_t records,
                          const std::string& seed) {
    return RunRzselect({"sample", folder, "--records", std::to_string(records),
                        "--seed", seed, "--force"});
  }
  std::vector<std::string> ReplaceArgs() const {
    return {"sample", dir_, "--records", std::to_string(kNewRecords),
            "--seed", "2",  "--force"};
  }

  // The folder with the old application, as it was before any replacement.
  void Restore() {
    fs::remove_all(dir_);
    fs::create_directory(dir_);
    for (const auto& [name, bytes] : old_) WriteFile(dir_ + "/" + name, bytes);
  }

  // Runs the next command (`rzselect views`, which recovers what a kill
  // left) and tells which application the folder holds: "old", "new" or
  // what else it holds.
  std::string HeldAfterNextCommand() {
    const CliResult views = RunRzselect({"views", Template()});
    if (views.status != 0) return "views failed: " + views.err;
    const FileSet held = Snapshot(dir_);
    if (held == old_ && RecordCount(Template()) == kOldRecords) return "old";
    if (held == new_ && RecordCount(Template()) == kNewRecords) return "new";
    return "neither: " + Names(held);
  }

  std::string Template() const { return dir_ + "/line4.rzt"; }

  // The files a new application places: those compared, and the column
  // cache its views were checked with.
  size_t PlacedFileCount() const {
    return new_.size() + (fs::exists(temp_.File("new/line4.rzc")) ? 1 : 0);
  }

  TempFolder temp_;
  std::string dir_ = temp_.File("app");
  FileSet old_;
  FileSet new_;
};

TEST_F(CliReplaceTest, OldAndNewDiffer) {
  // What the other tests tell apart: every file of the old application is
  // gone or changed in the new one, and the old one still reads.
  for (const auto& [name, bytes] : old_) {
    const auto found = new_.find(name);
    EXPECT_TRUE(found == new_.end() || found->second != bytes) << name;
  }
  EXPECT_EQ(Names(new_),
            "line4.V1 line4.V2 line4.V3 line4.V4 line4.rzd "
            "line4.rzt ");
  Restore();
  EXPECT_EQ(HeldAfterNextCommand(), "old");
  EXPECT_NE(RunRzselect({"views", Template()}).out.find("Operator query"),
            std::string::npos);
}

TEST_F(CliReplaceTest, KilledAtEachStepHoldsTheOldOrTheNewApplication) {
  struct Phase {
    std::string step;
    const char* expected;
    size_t files;  // the number of its points; 0: one point, no number
  };
  const Phase phases[] = {{"staged", "old", 0},
                          {"aside", "old", old_.size()},
                          {"committed", "new", 0},
                          {"placed", "new", PlacedFileCount()},
                          {"removed-old", "new", 0}};
  for (const Phase& phase : phases) {
    for (size_t k = phase.files == 0 ? 0 : 1; k <= phase.files; ++k) {
      const std::string point =
          k == 0 ? phase.step : phase.step + "-" + std::to_string(k);
      Restore();
      ASSERT_EQ(RunCrashingAt(ReplaceArgs(), point), kKilled) << point;
      EXPECT_EQ(HeldAfterNextCommand(), phase.expected) << point;
    }
  }
  // The numbered steps end with the last file: one more is never reached.
  Restore();
  EXPECT_EQ(
      RunCrashingAt(ReplaceArgs(),
                    "placed-" + std::to_string(PlacedFileCount() + 1)),
      0);
  EXPECT_EQ(HeldAfterNextCommand(), "new");
}

TEST_F(CliReplaceTest, KilledAtRandomMomentsHoldsTheOldOrTheNewApplication) {
  Restore();
  const auto start = std::chrono::steady_clock::now();
  ASSERT_EQ(RunRzselect(ReplaceArgs()).status, 0);
  const auto full_run = std::chrono::duration_cast<std::chrono::microseconds>(
      std::chrono::steady_clock::now() - start);

  // Half the kills anywhere in the run, half in its last fifth, where the
  // files switch.
  std::mt19937 random(20260124);
  const int64_t run_us = full_run.count();
  std::uniform_int_distribution<int64_t> anywhere(0, run_us * 11 / 10);
  std::uniform_int_distribution<int64_t> near_end(run_us * 8 / 10,
                                                  run_us * 11 / 10);
  std::map<std::string, int> outcomes;
  TempFolder logs;
  std::vector<std::string> argv = {RZSELECT_PATH};
  for (const std::string& arg : ReplaceArgs()) argv.push_back(arg);
  for (int run = 0; run < 30; ++run) {
    Restore();
    {
      Child child(argv, logs.File("out"), logs.File("err"));
      const int64_t delay = run % 2 == 0 ? anywhere(random) : near_end(random);
      std::this_thread::sleep_for(std::chrono::microseconds(delay));
      child.Signal(SIGKILL);
      child.WaitExit(std::chrono::seconds(60));
    }
    const std::string held = HeldAfterNextCommand();
    ++outcomes[held];
    EXPECT_TRUE(held == "old" || held == "new")
        << "run " << run << ": " << held;
  }
  std::cout << "a full run took " << full_run.count() << " us; outcomes:";
  for (const auto& [held, count] : outcomes)
    std::cout << " " << held << " " << count;
  std::cout << "\n";
}

TEST_F(CliReplaceTest, ImportReplacesTheWholeApplication) {
  const std::string csv = temp_.File("press.csv");
  WriteFile(csv,
            "Date,Time,Force\n2024-06-03,06:00,12.5\n2024-06-03,06:10,13\n");
  fs::create_directory(temp_.File("press"));
  ASSERT_EQ(RunRzselect({"import", csv, "--to", temp_.File("press/line4.rzt")})
                .status,
            0);
  const FileSet imported = Snapshot(temp_.File("press"));
  ASSERT_EQ(Names(imported), "line4.rzd line4.rzt ");
  const std::vector<std::string> args = {"import", csv, "--to", Template(),
                                         "--force"};

  Restore();
  EXPECT_EQ(RunRzselect({"import", csv, "--to", Template()}).err,
            "error 58: File already exists: '" + Template() + "'\n");
  ASSERT_EQ(RunCrashingAt(args, "aside-3"), kKilled);
  EXPECT_EQ(HeldAfterNextCommand(), "old");
  ASSERT_EQ(RunCrashingAt(args, "placed-1"), kKilled);
  EXPECT_EQ(RunRzselect({"views", Template()}).status, 0);
  EXPECT_EQ(Snapshot(dir_), imported);
  // The old views and hook script went with the old application.
  Restore();
  ASSERT_EQ(RunRzselect(args).status, 0);
  EXPECT_EQ(Snapshot(dir_), imported);
  EXPECT_EQ(RecordCount(Template()), 2);
}

TEST_F(CliReplaceTest, WithoutForceAnyFileOfTheApplicationIsKept) {
  Restore();
  fs::remove(dir_ + "/line4.rzt");
  fs::remove(dir_ + "/line4.rzd");
  const FileSet before = Snapshot(dir_);
  const CliResult refused = RunRzselect({"sample", dir_, "--records", "10"});
  EXPECT_EQ(refused.err,
            "error 58: File already exists: '" + dir_ + "/line4.V1'\n");
  EXPECT_EQ(Snapshot(dir_), before);
}

TEST_F(CliReplaceTest, AReaderWaitsWhileTheFilesSwitch) {
  Restore();
  TempFolder logs;
  Child writer({RZSELECT_PATH, "sample", dir_, "--records",
                std::to_string(kNewRecords), "--seed", "2", "--force"},
               logs.File("writer.out"), logs.File("writer.err"),
               {"RZ_TEST_CRASH_AT=placed-2:stop"});
  // The writer stops with two new files in place and the rest to come.
  const auto deadline =
      std::chrono::steady_clock::now() + std::chrono::seconds(30);
  while (!fs::exists(dir_ + "/line4.V1") || fs::exists(dir_ + "/line4.V9")) {
    ASSERT_LT(std::chrono::steady_clock::now(), deadline) << "no switch";
    std::this_thread::sleep_for(std::chrono::milliseconds(5));
  }
  Child reader({RZSELECT_PATH, "views", Template()}, logs.File("reader.out"),
               logs.File("reader.err"));
  std::this_thread::sleep_for(std::chrono::milliseconds(500));
  EXPECT_TRUE(reader.Running()) << ReadWholeFile(logs.File("reader.err"));
  writer.Signal(SIGCONT);
  EXPECT_EQ(writer.WaitExit(std::chrono::seconds(60)), 0);
  EXPECT_EQ(reader.WaitExit(std::chrono::seconds(60)), 0);
  EXPECT_EQ(ReadWholeFile(logs.File("reader.out")),
            RunRzselect({"views", Template()}).out);
  EXPECT_EQ(Snapshot(dir_), new_);
}

TEST_F(CliReplaceTest, RacingCommandsEachSeeAWholeApplication) {
  ASSERT_EQ(Sample(temp_.File("third"), 50, "3").status, 0);
  const FileSet third = Snapshot(temp_.File("third"));
  Restore();
  TempFolder logs;
  {
    // Two replacements and two readers at once: the replacements take
    // turns, the readers see one whole application each.
    Child first({RZSELECT_PATH, "sample", dir_, "--records", "60", "--seed",
                 "2", "--force"},
                logs.File("1.out"), logs.File("1.err"));
    Child second({RZSELECT_PATH, "sample", dir_, "--records", "50", "--seed",
                  "3", "--force"},
                 logs.File("2.out"), logs.File("2.err"));
    Child reader({RZSELECT_PATH, "views", Template()}, logs.File("3.out"),
                 logs.File("3.err"));
    Child script_reader({RZSELECT_PATH, "scripts", Template()},
                        logs.File("4.out"), logs.File("4.err"));
    for (Child* child : {&first, &second, &reader, &script_reader}) {
      EXPECT_EQ(child->WaitExit(std::chrono::seconds(60)), 0);
    }
  }
  for (const char* err : {"1.err", "2.err", "3.err", "4.err"}) {
    EXPECT_EQ(ReadWholeFile(logs.File(err)), "") << err;
  }
  EXPECT_NE(ReadWholeFile(logs.File("3.out")).find("Operator query"),
            std::string::npos);
  const FileSet held = Snapshot(dir_);
  EXPECT_TRUE(held == new_ || held == third) << Names(held);
}

// Runs rzselect (a copy any user may run) as a user who cannot write
// `folder`; skip_reason tells when that cannot be done here.
UnprivilegedRun RunRzselectWithoutWriteAccess(
    const TempFolder& temp, const std::string& folder,
    const std::vector<std::string>& args, CliResult& result) {
  const std::string program = temp.File("rzselect");
  if (!fs::exists(program)) {
    fs::copy_file(RZSELECT_PATH, program);
    ::chmod(program.c_str(), 0755);
  }
  const std::string out_path = temp.File("cli.out");
  const std::string err_path = temp.File("cli.err");
  const int out = ::open(out_path.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0644);
  const int err = ::open(err_path.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0644);
  const UnprivilegedRun run = RunWithoutWriteAccess(folder, [&] {
    ::dup2(out, STDOUT_FILENO);
    ::dup2(err, STDERR_FILENO);
    std::vector<char*> argv = {const_cast<char*>(program.c_str())};
    for (const std::string& arg : args)
      argv.push_back(const_cast<char*>(arg.c_str()));
    argv.push_back(nullptr);
    ::execv(program.c_str(), argv.data());
    return 127;
  });
  ::close(out);
  ::close(err);
  result.status = run.status;
  result.out = ReadWholeFile(out_path);
  result.err = ReadWholeFile(err_path);
  return run;
}

class CliReadOnlyFolderTest : public ::testing::Test {
 protected:
  void SetUp() override {
    MakeTraversable(temp_.File(""));
    fs::create_directory(dir_);
    ::setenv("VELTMARK_SYSTEM_DIR", temp_.File("system").c_str(), 1);
  }
  void TearDown() override {
    ::chmod(dir_.c_str(), 0755);
    ::unsetenv("VELTMARK_SYSTEM_DIR");
  }

  TempFolder temp_;
  std::string dir_ = temp_.File("shared");
};

TEST_F(CliReadOnlyFolderTest, WritingThereNamesTheFolder) {
  const std::string csv = temp_.File("press.csv");
  WriteFile(csv, "Date,Time,Force\n2024-06-03,06:00,12.5\n");
  ::chmod(csv.c_str(), 0644);
  ::chmod(dir_.c_str(), 0555);
  const std::string expected = "error 70: Permission denied: '" + dir_ +
                               "': the folder cannot be written\n";
  const std::vector<std::vector<std::string>> commands = {
      {"sample", dir_, "--records", "10"},
      {"import", csv, "--to", dir_ + "/press.rzt"}};
  for (const auto& args : commands) {
    CliResult result;
    const UnprivilegedRun run =
        RunRzselectWithoutWriteAccess(temp_, dir_, args, result);
    if (!run.skip_reason.empty()) GTEST_SKIP() << run.skip_reason;
    EXPECT_EQ(result.status, 1) << args[0];
    EXPECT_EQ(result.err, expected) << args[0];
  }
  EXPECT_TRUE(fs::is_empty(dir_));
}

TEST_F(CliReadOnlyFolderTest, AnApplicationThereListsItsViewsAndScripts) {
  for (const auto& entry : fs::directory_iterator(RZ_EXAMPLE_DIR)) {
    const std::string name = entry.path().filename().string();
    if (name.starts_with("line4.") && !name.ends_with("-wal") &&
        !name.ends_with("-shm")) {
      fs::copy_file(entry.path(), dir_ + "/" + name);
    }
  }
  const std::string app = dir_ + "/line4.rzt";
  const CliResult expected_views =
      RunRzselect({"views", app, "--as-of", "2026-01-20 10:00:00"});
  ASSERT_EQ(expected_views.status, 0) << expected_views.err;
  for (const char* suffix : {"-wal", "-shm"})
    fs::remove(dir_ + "/line4.rzd" + suffix);
  ::chmod(dir_.c_str(), 0555);

  CliResult views;
  UnprivilegedRun run = RunRzselectWithoutWriteAccess(
      temp_, dir_, {"views", app, "--as-of", "2026-01-20 10:00:00"}, views);
  if (!run.skip_reason.empty()) GTEST_SKIP() << run.skip_reason;
  EXPECT_EQ(views.status, 0) << views.err;
  EXPECT_EQ(views.out, expected_views.out);

  CliResult scripts;
  run = RunRzselectWithoutWriteAccess(temp_, dir_, {"scripts", app}, scripts);
  EXPECT_EQ(scripts.status, 0) << scripts.err;
  EXPECT_NE(scripts.out.find("Describe\n"), std::string::npos) << scripts.out;
  EXPECT_FALSE(fs::exists(dir_ + "/line4.rzd-shm"));
}

}  // namespace
}  // namespace rz
