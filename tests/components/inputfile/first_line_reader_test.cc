// Copyright 2026 The Veltmark authors.

#include "inputfile/first_line_reader.h"

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <optional>
#include <string>
#include <vector>

#include "platform/headless_toolkit.h"

namespace rz {
namespace {

namespace fs = std::filesystem;

// A fresh folder per test, and $VELTMARK_INPUT_DIR restored afterwards.
class FirstLineReaderTest : public ::testing::Test {
 protected:
  FirstLineReaderTest() {
    char pattern[] = "/tmp/rz-inputfile-XXXXXX";
    folder_ = mkdtemp(pattern);
    if (const char* old = std::getenv("VELTMARK_INPUT_DIR")) old_dir_ = old;
    unsetenv("VELTMARK_INPUT_DIR");
  }
  ~FirstLineReaderTest() override {
    if (old_dir_) {
      setenv("VELTMARK_INPUT_DIR", old_dir_->c_str(), 1);
    } else {
      unsetenv("VELTMARK_INPUT_DIR");
    }
    fs::permissions(folder_, fs::perms::owner_all);
    fs::remove_all(folder_);
  }

  std::string Write(const std::string& name, const std::string& bytes) {
    const std::string path = folder_ + "/" + name;
    fs::create_directories(fs::path(path).parent_path());
    std::ofstream(path, std::ios::binary) << bytes;
    return path;
  }

  // A reader whose pauses are recorded instead of slept.
  FirstLineReader Reader() {
    return FirstLineReader(toolkit_, [this](std::chrono::milliseconds pause) {
      pauses_.push_back(pause);
    });
  }

  std::string folder_;
  std::optional<std::string> old_dir_;
  HeadlessToolkit toolkit_;
  std::vector<std::chrono::milliseconds> pauses_;
};

TEST_F(FirstLineReaderTest, TheValueIsTheFirstLineDecodedAndTrimmed) {
  struct Row {
    const char* label;
    std::string bytes;
    std::string value;
  };
  const Row rows[] = {
      {"CR LF", "12.5\r\nsecond\r\n", "12.5"},
      {"LF", "12.5\nsecond\n", "12.5"},
      {"lone CR", "12.5\rsecond", "12.5"},
      {"no line end", "12.5", "12.5"},
      {"blanks and tabs around", " \t Lot 7 \t \r\n", "Lot 7"},
      {"blanks inside stay", "A  B\n", "A  B"},
      {"empty file", "", ""},
      {"empty first line", "\r\nsecond", ""},
      {"only blanks", "   \n", ""},
      {"Windows-1252", "Caf\xE9 \x80 \x9C\n",
       "Caf\xC3\xA9 \xE2\x82\xAC \xC5\x93"},
      {"NUL bytes kept", std::string("a\0b\n", 4), std::string("a\0b", 3)},
      {"long line", std::string(10000, 'x') + "\nrest",
       std::string(10000, 'x')},
  };
  for (const Row& row : rows) {
    const std::string path = Write("value.txt", row.bytes);
    FirstLineReader reader = Reader();
    EXPECT_EQ(reader.ReadInputFile(path), row.value) << row.label;
    EXPECT_TRUE(reader.Success()) << row.label;
  }
  EXPECT_TRUE(pauses_.empty());
  EXPECT_TRUE(toolkit_.Log().empty());
}

TEST_F(FirstLineReaderTest, NamesAreFoundByTheLookupRules) {
  Write("in/a.txt", "from folder\n");
  Write("b.txt", "from input dir\n");
  const std::string work = fs::current_path();
  struct Row {
    const char* label;
    std::optional<std::string> input_dir;  // nullopt: unset
    std::string name;
    bool success;
    std::string value;
  };
  const Row rows[] = {
      {"absolute", std::nullopt, folder_ + "/in/a.txt", true, "from folder"},
      {"absolute with backslashes", std::nullopt,
       "\\" + folder_.substr(1) + "\\in\\a.txt", true, "from folder"},
      {"absolute ignores the input dir", "/nowhere", folder_ + "/in/a.txt",
       true, "from folder"},
      {"relative to the input dir", folder_, "b.txt", true, "from input dir"},
      {"input dir with a final slash", (folder_ + "/").c_str(), "in/a.txt",
       true, "from folder"},
      {"relative with a backslash", folder_, "in\\a.txt", true, "from folder"},
      {"blanks around the name", folder_, "  b.txt ", true, "from input dir"},
      {"relative to the working folder", std::nullopt, "b.txt", false, ""},
      {"empty input dir means the working folder", "", "b.txt", false, ""},
      {"missing", folder_, "missing.txt", false, ""},
      {"a folder", folder_, "in", false, ""},
      {"empty name", folder_, "", false, ""},
  };
  for (const Row& row : rows) {
    if (row.input_dir) {
      setenv("VELTMARK_INPUT_DIR", row.input_dir->c_str(), 1);
    } else {
      unsetenv("VELTMARK_INPUT_DIR");
    }
    FirstLineReader reader = Reader();
    reader.SetSilent(true);
    EXPECT_EQ(reader.ReadInputFile(row.name), row.value) << row.label;
    EXPECT_EQ(reader.Success(), row.success) << row.label;
  }
  // The working folder is used when no input dir is set.
  unsetenv("VELTMARK_INPUT_DIR");
  ASSERT_EQ(chdir(folder_.c_str()), 0);
  FirstLineReader reader = Reader();
  const std::string value = reader.ReadInputFile("b.txt");
  ASSERT_EQ(chdir(work.c_str()), 0);
  EXPECT_EQ(value, "from input dir");
  EXPECT_TRUE(reader.Success());
}

TEST_F(FirstLineReaderTest, ResolvePathJoinsAndNormalizes) {
  setenv("VELTMARK_INPUT_DIR", "C:\\values", 1);
  EXPECT_EQ(FirstLineReader::ResolvePath("x\\y.txt"), "C:/values/x/y.txt");
  EXPECT_EQ(FirstLineReader::ResolvePath("/abs/y.txt"), "/abs/y.txt");
  EXPECT_EQ(FirstLineReader::ResolvePath("\\abs\\y.txt"), "/abs/y.txt");
  unsetenv("VELTMARK_INPUT_DIR");
  EXPECT_EQ(FirstLineReader::ResolvePath("x/y.txt"), "x/y.txt");
}

TEST_F(FirstLineReaderTest, AFileThatNeverOpensIsRetriedThenReported) {
  struct Row {
    int16_t retries;
    size_t pauses;
  };
  const Row rows[] = {{0, 0}, {1, 1}, {3, 3}, {-2, 0}};
  for (const Row& row : rows) {
    pauses_.clear();
    toolkit_.ClearLog();
    FirstLineReader reader = Reader();
    reader.SetRetries(row.retries);
    EXPECT_EQ(reader.ReadInputFile(folder_ + "/missing.txt"), "")
        << row.retries;
    EXPECT_FALSE(reader.Success()) << row.retries;
    ASSERT_EQ(pauses_.size(), row.pauses) << row.retries;
    for (auto pause : pauses_) EXPECT_EQ(pause.count(), 100);
    // Not silent: one message after the last attempt.
    const auto shown = toolkit_.Log();
    ASSERT_EQ(shown.size(), 1u) << row.retries;
    EXPECT_EQ(shown[0].kind, HeadlessToolkit::ShownKind::kMessageBox);
    EXPECT_EQ(shown[0].title, "Input File");
    EXPECT_EQ(shown[0].icon, MessageIcon::kExclamation);
    EXPECT_EQ(shown[0].buttons, MessageButtons::kOk);
    EXPECT_EQ(shown[0].text, "Cannot read the input file \"" + folder_ +
                                 "/missing.txt\": No such file or directory.");
  }
}

TEST_F(FirstLineReaderTest, SilentReaderShowsNothing) {
  FirstLineReader reader = Reader();
  reader.SetSilent(true);
  reader.SetRetries(3);
  EXPECT_EQ(reader.ReadInputFile(folder_), "");
  EXPECT_FALSE(reader.Success());
  EXPECT_EQ(pauses_.size(), 3u);
  EXPECT_TRUE(toolkit_.Log().empty());
}

TEST_F(FirstLineReaderTest, AFolderIsReportedAsSuch) {
  FirstLineReader reader = Reader();
  reader.ReadInputFile(folder_);
  ASSERT_EQ(toolkit_.Log().size(), 1u);
  EXPECT_EQ(toolkit_.Log()[0].text,
            "Cannot read the input file \"" + folder_ + "\": it is a folder.");
}

TEST_F(FirstLineReaderTest, AFileThatAppearsDuringTheRetriesIsRead) {
  const std::string path = folder_ + "/late.txt";
  FirstLineReader reader(toolkit_, [&](std::chrono::milliseconds) {
    pauses_.emplace_back(100);
    if (pauses_.size() == 2) Write("late.txt", "arrived\n");
  });
  reader.SetRetries(3);
  EXPECT_EQ(reader.ReadInputFile(path), "arrived");
  EXPECT_TRUE(reader.Success());
  EXPECT_EQ(pauses_.size(), 2u);  // no pause after the successful attempt
  EXPECT_TRUE(toolkit_.Log().empty());
}

TEST_F(FirstLineReaderTest, SuccessFollowsTheLastRead) {
  const std::string path = Write("v.txt", "1\n");
  FirstLineReader reader = Reader();
  reader.SetSilent(true);
  EXPECT_FALSE(reader.Success());  // before the first read
  reader.ReadInputFile(path);
  EXPECT_TRUE(reader.Success());
  reader.ReadInputFile(path + ".missing");
  EXPECT_FALSE(reader.Success());
  reader.ReadInputFile(path);
  EXPECT_TRUE(reader.Success());
}

// Reads a file without read permission and checks the outcome; 0 when it
// failed as expected.
int ReadWithoutPermission(const std::string& path) {
  HeadlessToolkit toolkit;
  FirstLineReader reader(toolkit, [](std::chrono::milliseconds) {});
  const std::string value = reader.ReadInputFile(path);
  if (!value.empty() || reader.Success() || toolkit.Log().size() != 1) {
    return 1;
  }
  const std::string expected =
      "Cannot read the input file \"" + path + "\": Permission denied.";
  return toolkit.Log()[0].text == expected ? 0 : 2;
}

TEST_F(FirstLineReaderTest, UnreadableFileFails) {
  const std::string path = Write("secret.txt", "x\n");
  fs::permissions(path, fs::perms::none);
  if (geteuid() != 0) {
    EXPECT_EQ(ReadWithoutPermission(path), 0);
    return;
  }
  // Root reads every file: try it as an ordinary user in a child process.
  const pid_t child = fork();
  ASSERT_GE(child, 0);
  if (child == 0) {
    if (setgid(65534) != 0 || setuid(65534) != 0) _exit(3);
    _exit(ReadWithoutPermission(path));
  }
  int status = 0;
  ASSERT_EQ(waitpid(child, &status, 0), child);
  ASSERT_TRUE(WIFEXITED(status));
  EXPECT_EQ(WEXITSTATUS(status), 0);
}

}  // namespace
}  // namespace rz
