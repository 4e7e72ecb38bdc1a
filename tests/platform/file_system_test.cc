// Copyright 2026 The Veltmark authors.

#include "platform/file_system.h"
#include "platform/mapped_file.h"

#include <gtest/gtest.h>
#include <signal.h>
#include <stdlib.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <stdexcept>
#include <string>
#include <vector>

#include "core/codec.h"
#include "core/error.h"
#include "platform/trace.h"
#include "platform/trace_sink.h"
#include "support/error_number.h"
#include "support/temp_folder.h"

namespace rz {
namespace {

namespace fs = std::filesystem;

using Sent = std::array<std::string, 4>;

// A Platform that always has a running trace sink and records every record
// it receives. Everything else is unused by the file services.
class RecordingPlatform : public Platform {
 public:
  int lookups = 0;
  std::vector<Sent> sent;

  std::unique_ptr<TraceSink> FindTraceSink() noexcept override {
    ++lookups;
    return std::make_unique<Sink>(sent);
  }
  std::shared_ptr<AppFile> CreateAppFile() override { throw Unused(); }
  std::shared_ptr<Repository> CreateRepository() override { throw Unused(); }
  std::shared_ptr<InputFileReader> CreateInputFileReader() override {
    throw Unused();
  }
  std::unique_ptr<ScriptEngine> CreateScriptEngine() override {
    throw Unused();
  }
  Toolkit& UserInterface() override { throw Unused(); }
  double Now() override { throw Unused(); }

 private:
  class Sink : public TraceSink {
   public:
    explicit Sink(std::vector<Sent>& sent) : sent_(sent) {}
    void Send(std::string_view component, std::string_view writer,
              std::string_view procedure,
              std::string_view message) noexcept override {
      sent_.push_back({std::string(component), std::string(writer),
                       std::string(procedure), std::string(message)});
    }

   private:
    std::vector<Sent>& sent_;
  };
  static std::logic_error Unused() {
    return std::logic_error("the file services never ask for this");
  }
};

bool RunningAsRoot() { return ::geteuid() == 0; }

// A fresh folder per test, removed afterwards (permissions restored first).
class FileSystemTest : public ::testing::Test {
 protected:
  void SetUp() override {
    std::string pattern = (fs::temp_directory_path() / "rz_fs_XXXXXX").string();
    ASSERT_NE(::mkdtemp(pattern.data()), nullptr);
    dir_ = pattern;
  }
  void TearDown() override {
    std::error_code ignored;
    for (const auto& entry : fs::recursive_directory_iterator(dir_, ignored)) {
      if (entry.is_directory(ignored)) {
        fs::permissions(entry.path(), fs::perms::owner_all,
                        fs::perm_options::add, ignored);
      }
    }
    fs::permissions(dir_, fs::perms::owner_all, fs::perm_options::add, ignored);
    fs::remove_all(dir_, ignored);
  }

  std::string Path(const std::string& name) const {
    return (fs::path(dir_) / name).string();
  }
  void MakeFile(const std::string& name, const std::string& bytes) const {
    WriteBinaryFileAtomically(Path(name), bytes);
  }
  // The names in the test folder, sorted.
  std::vector<std::string> Names() const {
    std::vector<std::string> names;
    for (const auto& entry : fs::directory_iterator(dir_)) {
      names.push_back(entry.path().filename().string());
    }
    std::sort(names.begin(), names.end());
    return names;
  }

  std::string dir_;
};

// The error `action` raises; fails the test when it raises none.
std::optional<Error> ErrorOf(const std::function<void()>& action) {
  try {
    action();
  } catch (const Error& error) {
    return error;
  }
  return std::nullopt;
}

void ExpectFileError(const std::function<void()>& action, int number,
                     const std::string& path, const std::string& context) {
  const std::optional<Error> error = ErrorOf(action);
  ASSERT_TRUE(error.has_value()) << context << ": no error";
  EXPECT_EQ(error->Number(), number) << context << ": " << error->what();
  EXPECT_NE(error->Description().find(path), std::string::npos)
      << context << ": the error names the path: " << error->Description();
}

TEST_F(FileSystemTest, FolderReadOnlyOnWritableFolderWithAnySeparator) {
  const std::string folders[] = {dir_, dir_ + "/", dir_ + "\\", dir_ + "/./"};
  for (const std::string& folder : folders) {
    RecordingPlatform platform;
    EXPECT_FALSE(FolerReadOnly(platform, folder)) << folder;
    EXPECT_TRUE(Names().empty()) << folder << ": dummy file left behind";
    ASSERT_EQ(platform.sent.size(), 1u) << folder;
    EXPECT_EQ(platform.sent[0],
              (Sent{std::string(kTraceComponent), "modRZselect",
                    "FolerReadOnly", "Result=False"}));
  }
}

TEST_F(FileSystemTest, FolderReadOnlyOnEmptyPathIsTrueWithoutTrace) {
  RecordingPlatform platform;
  EXPECT_TRUE(FolerReadOnly(platform, ""));
  EXPECT_EQ(platform.lookups, 0);
  EXPECT_TRUE(platform.sent.empty());
}

TEST_F(FileSystemTest, FolderReadOnlyWhenTheProbeCannotBeWritten) {
  MakeFile("plain.txt", "x");
  fs::create_directory(Path("blocked"));
  fs::create_directory(Path("blocked/dummy.$$$"));  // a folder in the way
  const std::string folders[] = {Path("missing"), Path("missing/deeper/"),
                                 Path("plain.txt"), Path("blocked"),
                                 std::string("bad\0name", 8)};
  for (const std::string& folder : folders) {
    RecordingPlatform platform;
    EXPECT_TRUE(FolerReadOnly(platform, folder)) << folder;
    ASSERT_EQ(platform.sent.size(), 1u) << folder;
    EXPECT_EQ(platform.sent[0][2], "FolerReadOnly");
    EXPECT_EQ(platform.sent[0][3], "Result=True");
  }
  EXPECT_FALSE(FileExists(Path("missing")));
  EXPECT_TRUE(fs::is_directory(Path("blocked/dummy.$$$")));
}

TEST_F(FileSystemTest, FolderReadOnlyOnReadOnlyFolder) {
  if (RunningAsRoot()) GTEST_SKIP() << "root writes into read-only folders";
  fs::create_directory(Path("locked"));
  fs::permissions(Path("locked"), fs::perms(0555));
  RecordingPlatform platform;
  EXPECT_TRUE(FolerReadOnly(platform, Path("locked")));
  EXPECT_TRUE(fs::is_empty(Path("locked")));
  ASSERT_EQ(platform.sent.size(), 1u);
  EXPECT_EQ(platform.sent[0][3], "Result=True");
}

TEST_F(FileSystemTest, FolderReadOnlyReplacesAnOldProbeFile) {
  MakeFile("dummy.$$$", "left by a crash");
  RecordingPlatform platform;
  EXPECT_FALSE(FolerReadOnly(platform, dir_));
  EXPECT_TRUE(Names().empty());
}

TEST_F(FileSystemTest, FileExists) {
  MakeFile("a.txt", "x");
  fs::create_directory(Path("sub"));
  struct Row {
    std::string path;
    bool exists;
  };
  const Row rows[] = {
      {Path("a.txt"), true},
      {Path("sub"), true},
      {Path("sub/"), true},
      {dir_ + "\\sub\\", true},
      {dir_ + "\\a.txt", true},
      {Path("a.txt/"), false},  // a file is no folder
      {Path("missing"), false},
      {Path("missing/a.txt"), false},
      {"", false},
      {Path("a.txt") + std::string("\0x", 2), false},
  };
  for (const Row& row : rows) {
    EXPECT_EQ(FileExists(row.path), row.exists) << row.path;
  }
}

TEST_F(FileSystemTest, Windows1252RoundTripOfEveryHighByte) {
  std::string bytes = "ASCII \r\n";
  for (int byte = 0x80; byte <= 0xFF; ++byte) bytes += static_cast<char>(byte);
  MakeFile("high.bin", bytes);

  const std::string text = ReadTextFile(Path("high.bin"));
  EXPECT_EQ(text, DecodeWindows1252(bytes));
  EXPECT_EQ(text.substr(8, 3), "\xE2\x82\xAC") << "0x80 is the euro sign";
  EXPECT_EQ(text.substr(text.size() - 2), "\xC3\xBF") << "0xFF is y-umlaut";

  WriteTextFileAtomically(Path("copy.txt"), text);
  EXPECT_EQ(ReadBinaryFile(Path("copy.txt")), bytes);
  EXPECT_EQ(Names(), (std::vector<std::string>{"copy.txt", "high.bin"}));
}

TEST_F(FileSystemTest, TextWriteReplacesUnencodableCharacters) {
  WriteTextFileAtomically(Path("t.txt"),
                          "a\xE2\x82\xAC"
                          "b\xE4\xB8\xAD"
                          "c");
  EXPECT_EQ(ReadBinaryFile(Path("t.txt")),
            "a\x80"
            "b?c");
}

TEST_F(FileSystemTest, ReadsWholeFiles) {
  MakeFile("empty.txt", "");
  EXPECT_EQ(ReadTextFile(Path("empty.txt")), "");
  EXPECT_EQ(ReadBinaryFile(Path("empty.txt")), "");

  // Larger than one read buffer, with NUL bytes.
  std::string big(200 * 1024 + 7, '\0');
  for (size_t i = 0; i < big.size(); ++i) big[i] = static_cast<char>(i * 31);
  MakeFile("big.bin", big);
  EXPECT_EQ(ReadBinaryFile(Path("big.bin")), big);
  EXPECT_EQ(ReadBinaryFile(dir_ + "\\big.bin"), big);
}

TEST_F(FileSystemTest, ReadErrors) {
  MakeFile("plain.txt", "x");
  fs::create_directory(Path("sub"));
  struct Row {
    std::string path;
    int number;
  };
  const Row rows[] = {
      {Path("missing.txt"), 53},
      {Path("missing/a.txt"), 53},
      {Path("sub"), 75},              // a folder is not a file
      {Path("plain.txt/a.txt"), 76},  // a file where a folder should be
      {"", 52},
      {Path("a") + std::string("\0b", 2), 52},
      {Path(std::string(5000, 'n')), 52},
  };
  for (const Row& row : rows) {
    ExpectFileError([&] { ReadBinaryFile(row.path); }, row.number,
                    row.path.substr(0, row.path.find('\0')), row.path);
    ExpectFileError([&] { ReadTextFile(row.path); }, row.number,
                    row.path.substr(0, row.path.find('\0')), row.path);
  }
}

TEST_F(FileSystemTest, ReadWithoutPermission) {
  if (RunningAsRoot()) GTEST_SKIP() << "root reads every file";
  MakeFile("secret.txt", "x");
  fs::permissions(Path("secret.txt"), fs::perms::none);
  ExpectFileError([&] { ReadTextFile(Path("secret.txt")); }, 70,
                  Path("secret.txt"), "mode 000");
}

TEST_F(FileSystemTest, AtomicWriteCreatesAndReplaces) {
  WriteBinaryFileAtomically(Path("v.V1"), "first");
  EXPECT_EQ(ReadBinaryFile(Path("v.V1")), "first");
  fs::permissions(Path("v.V1"), fs::perms(0640));

  WriteBinaryFileAtomically(Path("v.V1"), "second, longer");
  EXPECT_EQ(ReadBinaryFile(Path("v.V1")), "second, longer");
  WriteBinaryFileAtomically(Path("v.V1"), "");
  EXPECT_EQ(ReadBinaryFile(Path("v.V1")), "");
  EXPECT_EQ(fs::status(Path("v.V1")).permissions(), fs::perms(0640))
      << "a replaced file keeps its permission bits";

  WriteBinaryFileAtomically(dir_ + "\\w.V2", "backslash");
  EXPECT_EQ(ReadBinaryFile(Path("w.V2")), "backslash");
  EXPECT_EQ(Names(), (std::vector<std::string>{"v.V1", "w.V2"}));
}

TEST_F(FileSystemTest, AtomicWriteFailuresLeaveNoTrace) {
  MakeFile("plain.txt", "old");
  fs::create_directory(Path("folder"));
  MakeFile("folder/inside.txt", "kept");
  struct Row {
    std::string path;
    int number;
  };
  const Row rows[] = {
      {Path("missing/new.txt"), 76},  // the target folder is missing
      {Path("plain.txt/new.txt"), 76},
      {Path("folder"), 75},  // a folder cannot be replaced by a file
      {"", 52},
      {Path("x") + std::string("\0y", 2), 52},
      {Path(std::string(300, 'n')), 52},
  };
  for (const Row& row : rows) {
    ExpectFileError([&] { WriteTextFileAtomically(row.path, "new"); },
                    row.number, row.path.substr(0, row.path.find('\0')),
                    row.path);
    EXPECT_EQ(Names(), (std::vector<std::string>{"folder", "plain.txt"}))
        << row.path;
  }
  EXPECT_EQ(ReadBinaryFile(Path("plain.txt")), "old");
  EXPECT_EQ(ReadBinaryFile(Path("folder/inside.txt")), "kept");
}

TEST_F(FileSystemTest, AtomicWriteIntoReadOnlyFolder) {
  if (RunningAsRoot()) GTEST_SKIP() << "root writes into read-only folders";
  fs::create_directory(Path("locked"));
  MakeFile("locked/v.V1", "old");
  fs::permissions(Path("locked"), fs::perms(0555));
  ExpectFileError([&] { WriteTextFileAtomically(Path("locked/v.V1"), "new"); },
                  70, Path("locked/v.V1"), "read-only folder");
  EXPECT_EQ(ReadBinaryFile(Path("locked/v.V1")), "old");
  EXPECT_EQ(fs::directory_iterator(Path("locked"))->path().filename(), "v.V1");
}

// A write that fails half-way through the data (the file-size limit stops
// it after some bytes, for root too) keeps the old file and removes the
// partial temporary file.
TEST_F(FileSystemTest, AtomicWriteFailingMidwayKeepsOldContent) {
  MakeFile("v.V1", "old content");
  struct rlimit old_limit;
  ASSERT_EQ(::getrlimit(RLIMIT_FSIZE, &old_limit), 0);
  struct rlimit small = old_limit;
  small.rlim_cur = 4096;
  const auto old_handler = ::signal(SIGXFSZ, SIG_IGN);
  ASSERT_EQ(::setrlimit(RLIMIT_FSIZE, &small), 0);
  const std::optional<Error> error = ErrorOf([&] {
    WriteBinaryFileAtomically(Path("v.V1"), std::string(10000, 'z'));
  });
  ::setrlimit(RLIMIT_FSIZE, &old_limit);
  ::signal(SIGXFSZ, old_handler);

  ASSERT_TRUE(error.has_value());
  EXPECT_EQ(error->Number(), 75) << error->what();
  EXPECT_EQ(ReadBinaryFile(Path("v.V1")), "old content");
  EXPECT_EQ(Names(), (std::vector<std::string>{"v.V1"}));
}

TEST_F(FileSystemTest, DeleteFileQuietly) {
  MakeFile("a.txt", "x");
  fs::create_directory(Path("sub"));
  EXPECT_TRUE(DeleteFileQuietly(dir_ + "\\a.txt"));
  EXPECT_FALSE(FileExists(Path("a.txt")));
  EXPECT_FALSE(DeleteFileQuietly(Path("a.txt")));
  EXPECT_FALSE(DeleteFileQuietly(Path("sub")));
  EXPECT_TRUE(FileExists(Path("sub")));
  EXPECT_FALSE(DeleteFileQuietly(""));
  EXPECT_FALSE(DeleteFileQuietly(Path("sub") + std::string("\0", 1)));
}

TEST_F(FileSystemTest, CopyFileAtomically) {
  const std::string bytes("a\0\x80\xFF z", 6);
  MakeFile("from.bin", bytes);
  MakeFile("to.bin", "old");
  CopyFileAtomically(Path("from.bin"), Path("to.bin"));
  EXPECT_EQ(ReadBinaryFile(Path("to.bin")), bytes);
  EXPECT_EQ(ReadBinaryFile(Path("from.bin")), bytes);

  ExpectFileError([&] { CopyFileAtomically(Path("none"), Path("to.bin")); }, 53,
                  Path("none"), "missing source");
  EXPECT_EQ(ReadBinaryFile(Path("to.bin")), bytes);
  ExpectFileError(
      [&] { CopyFileAtomically(Path("from.bin"), Path("no/to.bin")); }, 76,
      Path("no/to.bin"), "missing target folder");
  EXPECT_EQ(Names(), (std::vector<std::string>{"from.bin", "to.bin"}));
}

TEST(FileSystemPathTest, SystemFolder) {
  const char* saved = std::getenv("VELTMARK_SYSTEM_DIR");
  const std::optional<std::string> saved_value =
      saved ? std::optional<std::string>(saved) : std::nullopt;
  struct Row {
    const char* value;  // nullptr: unset
    const char* folder;
  };
  const Row rows[] = {
      {nullptr, "/etc/veltmark"},
      {"", "/etc/veltmark"},
      {"/opt/vm", "/opt/vm"},
      {"/opt/vm/", "/opt/vm"},
      {"/opt/vm//", "/opt/vm/"},  // only the final separator goes
      {"/", "/"},
      {"\\", "/"},
      {"\\srv\\vm\\", "/srv/vm"},
      {"relative/dir/", "relative/dir"},
  };
  for (const Row& row : rows) {
    if (row.value == nullptr) {
      ::unsetenv("VELTMARK_SYSTEM_DIR");
    } else {
      ::setenv("VELTMARK_SYSTEM_DIR", row.value, 1);
    }
    EXPECT_EQ(SystemFolder(), row.folder)
        << (row.value ? row.value : "(unset)");
  }
  if (saved_value) {
    ::setenv("VELTMARK_SYSTEM_DIR", saved_value->c_str(), 1);
  } else {
    ::unsetenv("VELTMARK_SYSTEM_DIR");
  }
}

TEST(FileSystemPathTest, PathParts) {
  struct Row {
    const char* path;
    const char* normalized;
    const char* parent;
    const char* without_extension;
    const char* extension;
  };
  const Row rows[] = {
      {"a\\b\\c.v3", "a/b/c.v3", "a/b/", "a/b/c", ".v3"},
      {"/x/app.rza", "/x/app.rza", "/x/", "/x/app", ".rza"},
      {"app.V12", "app.V12", "", "app", ".V12"},
      {"app", "app", "", "app", ""},
      {"a.b/app", "a.b/app", "a.b/", "a.b/app", ""},
      {"a.b\\app", "a.b/app", "a.b/", "a.b/app", ""},
      {"x/a.tar.gz", "x/a.tar.gz", "x/", "x/a.tar", ".gz"},
      {"x/.profile", "x/.profile", "x/", "x/.profile", ""},
      {"x/.a.b", "x/.a.b", "x/", "x/.a", ".b"},
      {"x/name.", "x/name.", "x/", "x/name", "."},
      {"x/..", "x/..", "x/", "x/..", ""},
      {"x/.", "x/.", "x/", "x/.", ""},
      {"dir/", "dir/", "dir/", "dir/", ""},
      {"/", "/", "/", "/", ""},
      {"", "", "", "", ""},
      {"C:\\Apps\\Plant.rza", "C:/Apps/Plant.rza", "C:/Apps/", "C:/Apps/Plant",
       ".rza"},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.path);
    EXPECT_EQ(NormalizePath(row.path), row.normalized);
    EXPECT_EQ(ParentFolder(row.path), row.parent);
    EXPECT_EQ(WithoutExtension(row.path), row.without_extension);
    EXPECT_EQ(ExtensionOf(row.path), row.extension);
  }
}

TEST(FileSystemPathTest, ComparablePathsNameTheSamePlaceAlike) {
  const std::string here = std::filesystem::current_path().string();
  struct Row {
    const char* path;
    std::string comparable;
  };
  const Row rows[] = {
      {"/data/line4", "/data/line4"},   {"/data/./x/../line4", "/data/line4"},
      {"\\data\\line4", "/data/line4"}, {"//data//line4", "/data/line4"},
      {"line4", here + "/line4"},
  };
  for (const Row& row : rows) {
    EXPECT_EQ(ComparablePath(row.path), row.comparable) << row.path;
  }
}

TEST(FileSystemPathTest, JoinPathAndExtensionComparison) {
  EXPECT_EQ(JoinPath("/etc/veltmark", "RZscript.rzx"),
            "/etc/veltmark/RZscript.rzx");
  EXPECT_EQ(JoinPath("/etc/veltmark/", "RZscript.rzx"),
            "/etc/veltmark/RZscript.rzx");
  EXPECT_EQ(JoinPath("C:\\apps\\", "sub\\a.v1"), "C:/apps/sub/a.v1");
  EXPECT_EQ(JoinPath("", "a.v1"), "a.v1");
  EXPECT_EQ(JoinPath("/", "a.v1"), "/a.v1");

  struct Row {
    const char* path;
    const char* extension;
    bool equal;
  };
  const Row rows[] = {
      {"app.V3", ".v3", true},
      {"app.v3", ".V3", true},
      {"x/app.RZX", ".rzx", true},
      {"app.v3", ".v4", false},
      {"app.v3", "v3", false},
      {"app", "", true},
      {"app", ".v3", false},
      {"app.v3.bak", ".v3", false},
      {"f.\xC3\x89", ".\xC3\xA9", true},  // "É" and "é"
  };
  for (const Row& row : rows) {
    EXPECT_EQ(ExtensionEqualsIgnoreCase(row.path, row.extension), row.equal)
        << row.path << " vs " << row.extension;
  }
}

TEST_F(FileSystemTest, FindFileIgnoringExtensionCase) {
  MakeFile("app.V3", "3");
  MakeFile("both.V1", "upper");
  MakeFile("both.v1", "lower");
  MakeFile("m.aB", "");
  MakeFile("m.Ab", "");
  MakeFile("dotted.x.V5", "");
  MakeFile("f.\xC3\x89", "");
  struct Row {
    std::string path;
    std::optional<std::string> found;
  };
  const Row rows[] = {
      {Path("app.V3"), Path("app.V3")},
      {Path("app.v3"), Path("app.V3")},
      {dir_ + "\\app.v3", Path("app.V3")},
      {Path("both.v1"), Path("both.v1")},  // the exact name wins
      {Path("both.V1"), Path("both.V1")},
      {Path("m.ab"), Path("m.Ab")},  // the first in byte order
      {Path("f.\xC3\xA9"), Path("f.\xC3\x89")},
      {Path("APP.v3"), std::nullopt},  // only the extension may differ
      {Path("app.v4"), std::nullopt},
      {Path("app"), std::nullopt},
      {Path("dotted.v5"), std::nullopt},
      {Path("dotted.x.v5"), Path("dotted.x.V5")},
      {Path("missing/app.v3"), std::nullopt},
      {"", std::nullopt},
      {Path("app.v3") + std::string("\0", 1), std::nullopt},
  };
  for (const Row& row : rows) {
    EXPECT_EQ(FindFileIgnoringExtensionCase(row.path), row.found) << row.path;
  }
}

TEST(FileSystemPathTest, FindFileIgnoringExtensionCaseInWorkingFolder) {
  std::string pattern = (fs::temp_directory_path() / "rz_cwd_XXXXXX").string();
  ASSERT_NE(::mkdtemp(pattern.data()), nullptr);
  const fs::path previous = fs::current_path();
  fs::current_path(pattern);
  WriteBinaryFileAtomically("view.V7", "x");
  EXPECT_EQ(FindFileIgnoringExtensionCase("view.v7"),
            std::optional<std::string>("view.V7"));
  fs::current_path(previous);
  fs::remove_all(pattern);
}

// A mapped file gives the file's bytes, an empty file none; a missing file
// or a file taken for a folder is the read error; pages handed back are read again
// when touched.
TEST(MappedFileTest, BytesErrorsAndPagesHandedBack) {
  TempFolder folder;
  const std::string path = folder.File("big.csv");
  std::string bytes(3 << 20, 'a');
  for (size_t i = 0; i < bytes.size(); i += 4097) bytes[i] = 'b';
  WriteBinaryFileAtomically(path, bytes);
  MappedFile file(path);
  ASSERT_EQ(file.Bytes().size(), bytes.size());
  file.ReleaseBefore(bytes.size() - 10);
  EXPECT_EQ(file.Bytes(), bytes);
  WriteBinaryFileAtomically(folder.File("empty"), "");
  EXPECT_TRUE(MappedFile(folder.File("empty")).Bytes().empty());
  EXPECT_EQ(ErrorNumber([&] { MappedFile(folder.File("missing")); }), 53);
  EXPECT_EQ(ErrorNumber([&] { MappedFile(folder.File("empty/x")); }), 76);
  EXPECT_EQ(ErrorNumber([&] { MappedFile(std::string_view("a\0b", 3)); }),
            52);
}

}  // namespace
}  // namespace rz
