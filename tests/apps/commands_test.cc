// Copyright 2026 The Veltmark authors.
//
// The commands over fake application files: they refuse an existing
// application and fail on a bad CSV file before any application-file
// object is made, so nothing can be written.

#include "rzselect/commands.h"

#include <gtest/gtest.h>

#include <fstream>
#include <sstream>

#include "core/error.h"
#include "platform/file_system.h"
#include "rzselect/sample_data.h"
#include "support/error_number.h"
#include "support/fake_platform.h"
#include "support/temp_folder.h"

namespace rz {
namespace {

void WriteFile(const std::string& path, const std::string& bytes) {
  std::ofstream(path, std::ios::binary) << bytes;
}

class CommandsTest : public ::testing::Test {
 protected:
  TempFolder folder_;
  FakePlatform platform_;
  std::ostringstream out_;
};

TEST_F(CommandsTest, SampleRefusesAnExistingApplicationUnlessForced) {
  for (const char* existing : {"line4.rzt", "line4.rzd"}) {
    TempFolder folder;
    WriteFile(folder.File(existing), "keep");
    FakePlatform platform;
    SampleOptions options;
    options.folder = folder.File("");
    options.records = 5;
    EXPECT_EQ(
        ErrorNumber([&] { RunSample(platform, options, out_); }), 58)
        << existing;
    EXPECT_TRUE(platform.AppFiles().empty()) << existing;
    EXPECT_EQ(ReadBinaryFile(folder.File(existing)), "keep");

    options.force = true;
    RunSample(platform, options, out_);
    EXPECT_EQ(platform.Disk().size(), 1u) << existing;
    const FakeApplication& stored = platform.Disk().begin()->second;
    const NewApplication sample = GenerateSample(options.records, options.seed);
    EXPECT_EQ(stored.rules, sample.rules);
    EXPECT_EQ(stored.secured_functions, sample.secured_functions);
  }
}

TEST_F(CommandsTest, ImportFailuresWriteNothing) {
  const std::string csv = folder_.File("bad.csv");
  WriteFile(csv, "Date,Time,v\n2024-01-01,10:00,1\n2024-01-01,10:05\n");
  ImportOptions options;
  options.csv_path = csv;
  options.template_path = folder_.File("out.rzt");
  try {
    RunImport(platform_, options, out_);
    ADD_FAILURE() << "no error";
  } catch (const Error& error) {
    EXPECT_EQ(error.Number(), 5);
    EXPECT_NE(error.Description().find(csv + ":3: "), std::string::npos)
        << error.Description();
  }
  EXPECT_TRUE(platform_.AppFiles().empty());
  EXPECT_TRUE(platform_.Disk().empty());

  options.csv_path = folder_.File("missing.csv");
  EXPECT_EQ(ErrorNumber([&] { RunImport(platform_, options, out_); }), 53);

  options.csv_path = csv;
  options.template_path = folder_.File("no/such/folder/out.rzt");
  EXPECT_EQ(ErrorNumber([&] { RunImport(platform_, options, out_); }), 76);
  EXPECT_TRUE(platform_.AppFiles().empty());

  options.template_path = folder_.File("out.rzt");
  WriteFile(folder_.File("out.rzt"), "keep");
  EXPECT_EQ(ErrorNumber([&] { RunImport(platform_, options, out_); }), 58);
  EXPECT_TRUE(platform_.AppFiles().empty());
}

}  // namespace
}  // namespace rz
