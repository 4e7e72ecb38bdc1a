// Copyright 2026 The Veltmark authors.
//
// An application in a folder the user may read but not write opens and
// reads every record, whether or not the data file's journal (-wal) and
// index (-shm) lie beside it; a journal holding records that cannot be read
// there is an error naming the file, never a silent loss. The reading runs
// in a child process without write access to the folder (as the user
// "nobody" when the tests run as root).

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdio>
#include <functional>

#include "appfile/application_file.h"
#include "components/appfile/application_test_fixture.h"
#include "components/appfile/data_file_helpers.h"
#include "support/forked.h"

namespace rz {
namespace {

// Leaves a record in the data file's journal, as a program killed while
// it appended would: the journal (-wal) with its page and the index (-shm)
// stay beside the file.
void AppendAndDieWithoutClosing(const std::string& data_path) {
  RunForked([&] {
    auto* connection = new OtherConnection(data_path);  // never closed
    connection->Exec("PRAGMA wal_autocheckpoint = 0");
    connection->Exec(
        "INSERT INTO records(v1, v2, v3, v4, v5) "
        "VALUES('2006-10-13', '10:00:00', 42.5, 'Cy', 1)");
    return 0;
  });
}

class ReadOnlyFolderTest : public ApplicationFileTest {
 protected:
  void SetUp() override {
    Export("app.rzt");
    MakeTraversable(folder_);
  }
  void TearDown() override { ::chmod(folder_.c_str(), 0755); }

  std::string Data() const { return Path("app.rzd"); }

  // Runs `body` on the application opened by a user who cannot write the
  // folder; the status is the body's, or 1 when opening raised.
  UnprivilegedRun OpenReadOnly(
      const std::function<int(ApplicationFile&)>& body) {
    ::chmod(folder_.c_str(), 0555);
    return RunWithoutWriteAccess(folder_, [&] {
      try {
        std::unique_ptr<ApplicationFile> file = Open("app.rzt");
        return body(*file);
      } catch (const Error& error) {
        std::fprintf(stderr, "%s\n", error.what());
        return 1;
      }
    });
  }
};

// Every way the data file's companions can lie beside it when the folder
// is shared read-only; each reads all of its records, and a reader that
// cannot write the folder leaves no column cache behind.
TEST_F(ReadOnlyFolderTest, OpensAndReadsEveryRecord) {
  const struct {
    const char* name;
    std::function<void()> prepare;
    int32_t records;
    bool cached;  // a column cache lies beside the data file
  } cases[] = {
      {"no journal, no index", [] {}, 4, false},
      {"the empty journal, index and cache a reader leaves",
       [this] { Open("app.rzt"); }, 4, true},
      {"a journal holding a record, with its index",
       [this] { AppendAndDieWithoutClosing(Data()); }, 5, false},
      {"a cache older than the record in the journal",
       [this] {
         Open("app.rzt");
         AppendAndDieWithoutClosing(Data());
       },
       5, true},
  };
  for (const auto& c : cases) {
    ::chmod(folder_.c_str(), 0755);
    for (const char* suffix : {"-wal", "-shm"}) {
      DeleteFileQuietly(Data() + suffix);
    }
    DeleteFileQuietly(Path("app.rzc"));
    c.prepare();
    const UnprivilegedRun run = OpenReadOnly([&](ApplicationFile& file) {
      if (!file.ApplicationExists() || file.RecordCount() != c.records ||
          file.TemplateWritable()) {
        std::fprintf(stderr, "%s: %d records, writable %d\n", c.name,
                     file.RecordCount(), file.TemplateWritable());
        return 2;
      }
      file.MoveLast();  // a refresh opens the data file again
      file.GotoRecord(1);
      return file.Value(3) == Variant(101.5) ? 0 : 3;
    });
    if (!run.skip_reason.empty()) GTEST_SKIP() << run.skip_reason;
    EXPECT_EQ(run.status, 0) << c.name;
    EXPECT_EQ(::access(Path("app.rzc").c_str(), F_OK) == 0, c.cached) << c.name;
  }
}

TEST_F(ReadOnlyFolderTest, AJournalThatCannotBeReadIsAnErrorNamingTheFile) {
  AppendAndDieWithoutClosing(Data());
  DeleteFileQuietly(Data() + "-shm");
  ::chmod(folder_.c_str(), 0555);
  const UnprivilegedRun run = RunWithoutWriteAccess(folder_, [&] {
    try {
      Open("app.rzt");
    } catch (const Error& error) {
      const std::string text = error.Description();
      if (error.Number() == 70 &&
          text.rfind("Permission denied: '" + Data() + "': ", 0) == 0 &&
          text.find(Data() + "-wal holds records") != std::string::npos) {
        return 0;
      }
      std::fprintf(stderr, "%s\n", error.what());
      return 1;
    }
    std::fprintf(stderr, "opened without its journal\n");
    return 2;
  });
  if (!run.skip_reason.empty()) GTEST_SKIP() << run.skip_reason;
  EXPECT_EQ(run.status, 0);
}

}  // namespace
}  // namespace rz
