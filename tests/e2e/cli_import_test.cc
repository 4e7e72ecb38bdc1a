// Copyright 2026 The Veltmark authors.
//
// `rzselect import` as a user runs it: a small CSV file becomes an
// application that the real application-file component reads back; a file
// with a bad record exits 1 naming the line and leaves no file behind.

#include <gtest/gtest.h>
#include <unistd.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>

#include "appfile/application_file.h"
#include "e2e/cli_run.h"

namespace rz {
namespace {

void WriteFile(const std::string& path, const std::string& bytes) {
  std::ofstream(path, std::ios::binary) << bytes;
}

std::vector<std::string> FolderEntries(const std::string& folder) {
  std::vector<std::string> names;
  for (const auto& entry : std::filesystem::directory_iterator(folder)) {
    names.push_back(entry.path().filename().string());
  }
  std::sort(names.begin(), names.end());
  return names;
}

class CliImportTest : public ::testing::Test {
 protected:
  TempFolder folder_;
};

TEST_F(CliImportTest, ImportsASmallCsvFile) {
  const std::string csv = folder_.File("press 2.v1.csv");
  // Windows-1252 (0xB0 degree sign, 0xE9 e acute), CR LF, a combined
  // date-time column, quotes, an embedded line break and missing values.
  WriteFile(csv,
            "Timestamp,Force kN,Temp \xB0"
            "C,Operator,Note\r\n"
            "2024-06-03T06:00:00,12.5,-3,Ren\xE9,\r\n"
            "2024-06-03 06:07,12.75,,Ana,\"jam, cleared\"\r\n"
            "2024-06-03 06:15:30,,4,,\"two\r\nlines\"\r\n");
  const std::string app = folder_.File("press2.rzt");
  const CliResult run = RunRzselect({"import", csv, "--to", app});
  ASSERT_EQ(run.status, 0) << run.err;
  EXPECT_NE(run.out.find("3 records"), std::string::npos) << run.out;

  ApplicationFile file;
  file.SetOpenMode(kOpenExisting);
  file.OpenApplication(app);
  ASSERT_TRUE(file.ApplicationExists());
  EXPECT_EQ(file.AppTitle(), "press 2.v1");
  EXPECT_EQ(file.DefaultLookBack(), -1);
  const struct {
    const char* name;
    const char* type;
    int16_t length;
    int16_t decimals;
  } variables[] = {{"Date", "T", 10, 0},    {"Time", "T", 8, 0},
                   {"Force kN", "N", 5, 2}, {"Temp \u00B0C", "N", 2, 0},
                   {"Operator", "T", 4, 0}, {"Note", "T", 12, 0}};
  ASSERT_EQ(file.Variables().Count(), 6);
  for (int k = 1; k <= 6; ++k) {
    const FieldDefinition& v = *file.Variables().Item(k);
    EXPECT_EQ(v.Name(), variables[k - 1].name) << k;
    EXPECT_EQ(v.TypeLetter(), variables[k - 1].type) << k;
    EXPECT_EQ(v.Length(), variables[k - 1].length) << k;
    EXPECT_EQ(v.Decimals(), variables[k - 1].decimals) << k;
  }
  ASSERT_EQ(file.RecordCount(), 3);
  file.MoveFirst();
  ASSERT_TRUE(file.ReadNext());
  EXPECT_EQ(file.Value(1), Variant("2024-06-03"));
  EXPECT_EQ(file.Value(2), Variant("06:00:00"));
  EXPECT_EQ(file.Value(3), Variant(12.5));
  EXPECT_EQ(file.Value(4), Variant(-3.0));
  EXPECT_EQ(file.Value(5), Variant("Ren\u00E9"));
  EXPECT_TRUE(file.Value(6).IsNull());
  ASSERT_TRUE(file.ReadNext());
  EXPECT_EQ(file.Value(2), Variant("06:07:00"));
  EXPECT_TRUE(file.Value(4).IsNull());
  EXPECT_EQ(file.Value(6), Variant("jam, cleared"));
  ASSERT_TRUE(file.ReadNext());
  EXPECT_EQ(file.Value(2), Variant("06:15:30"));
  EXPECT_TRUE(file.Value(3).IsNull());
  EXPECT_TRUE(file.Value(5).IsNull());
  EXPECT_EQ(file.Value(6), Variant("two\r\nlines"));
  EXPECT_FALSE(file.ReadNext());
}

TEST_F(CliImportTest, TitleOption) {
  const std::string csv = folder_.File("a.csv");
  WriteFile(csv, "Date,Time,x\n2024-01-01,10:00,1\n");
  const std::string app = folder_.File("a.rzt");
  ASSERT_EQ(
      RunRzselect({"import", csv, "--to", app, "--title", "Line 9"}).status, 0);
  ApplicationFile file;
  file.SetOpenMode(kOpenExisting);
  file.OpenApplication(app);
  EXPECT_EQ(file.AppTitle(), "Line 9");
}

TEST_F(CliImportTest, BadRowExitsOneNamesItsLineAndWritesNothing) {
  const std::string csv = folder_.File("bad.csv");
  WriteFile(csv,
            "Date,Time,Weight\n"
            "2024-01-01,10:00,1.5\n"
            "2024-01-01,10:10,1.6\n"
            "2024-01-01,10:20,1.7\n"
            "2024-01-01,10:30,1.8\n"
            "2024-01-01,10:40,1.9\n"
            "2024-01-01,10:50,2.0,extra\n"
            "2024-01-01,11:00,2.1\n");
  const CliResult run =
      RunRzselect({"import", csv, "--to", folder_.File("bad.rzt")});
  EXPECT_EQ(run.status, 1);
  EXPECT_EQ(run.err.rfind("error 5: ", 0), 0u) << run.err;
  EXPECT_NE(run.err.find("bad.csv:7: "), std::string::npos) << run.err;
  EXPECT_EQ(FolderEntries(folder_.File("")),
            std::vector<std::string>{"bad.csv"});

  WriteFile(csv, "Date,Time\n2024-01-01,10:00\n2024-01-01,25:00\n");
  const CliResult bad_time =
      RunRzselect({"import", csv, "--to", folder_.File("bad.rzt")});
  EXPECT_EQ(bad_time.status, 1);
  EXPECT_EQ(bad_time.err.rfind("error 13: ", 0), 0u) << bad_time.err;
  EXPECT_NE(bad_time.err.find("bad.csv:3: "), std::string::npos);
  EXPECT_EQ(FolderEntries(folder_.File("")),
            std::vector<std::string>{"bad.csv"});
}

TEST_F(CliImportTest, MissingFileAndUsage) {
  const CliResult missing = RunRzselect(
      {"import", folder_.File("none.csv"), "--to", folder_.File("x.rzt")});
  EXPECT_EQ(missing.status, 1);
  EXPECT_EQ(missing.err.rfind("error 53: ", 0), 0u) << missing.err;
  EXPECT_EQ(RunRzselect({"import", folder_.File("none.csv")}).status, 2);
  EXPECT_EQ(RunRzselect({"import"}).status, 2);
}

TEST_F(CliImportTest, DateAndTimeColumnsAnywhereOrChosen) {
  struct Case {
    const char* csv;
    std::vector<std::string> options;
    int status;
    const char* first_time;  // variable 2 of record 1 when imported
  } cases[] = {
      {"id,when,v\n1,2024-01-01 00:00:30,2.5\n2,2024-01-01T00:01:00,3\n",
       {}, 0, "00:00:30"},
      {"id,v,d,t\n1,2.5,2024-01-01,7:05\n", {}, 0, "07:05:00"},
      {"id,start,stop\n1,2024-01-01 06:00,2024-01-01 07:00\n",
       {"--datetime-column", "stop"}, 0, "07:00:00"},
      {"a,b,c\n1,2024-01-01,06:00\n",
       {"--date-column", "2", "--time-column", "C"}, 0, "06:00:00"},
      {"a,b,c\n1,2024-01-01,06:00\n", {"--date-column", "b"}, 2, ""},
      {"a,b,c\n1,2024-01-01,06:00\n",
       {"--datetime-column", "b", "--date-column", "b", "--time-column", "c"},
       2, ""},
      {"a,b,c\n1,2024-01-01,06:00\n",
       {"--date-column", "b", "--time-column", "x"}, 1, ""},
  };
  int n = 0;
  for (const Case& c : cases) {
    const std::string csv = folder_.File("in" + std::to_string(n) + ".csv");
    const std::string app = folder_.File("app" + std::to_string(n++) + ".rzt");
    WriteFile(csv, c.csv);
    std::vector<std::string> args = {"import", csv, "--to", app};
    args.insert(args.end(), c.options.begin(), c.options.end());
    const CliResult run = RunRzselect(args);
    EXPECT_EQ(run.status, c.status) << c.csv << run.err;
    if (c.status != 0) {
      EXPECT_FALSE(std::filesystem::exists(app)) << c.csv;
      continue;
    }
    ApplicationFile file;
    file.SetOpenMode(kOpenExisting);
    file.OpenApplication(app);
    file.MoveFirst();
    ASSERT_TRUE(file.ReadNext()) << c.csv;
    EXPECT_EQ(file.Value(2), Variant(c.first_time)) << c.csv;
  }
}

TEST_F(CliImportTest, AHugeFileIsReadAsItGoesAndItsFirstFieldRefused) {
  // A CSV file of a terabyte that takes no disk (sparse): reading it whole
  // could never get the memory; read as it goes, its first field (a run of
  // NUL bytes) is too long for a field of a record.
  const std::string csv = folder_.File("huge.csv");
  WriteFile(csv, "");
  ASSERT_EQ(::truncate(csv.c_str(), off_t{1} << 40), 0);
  const CliResult run =
      RunRzselect({"import", csv, "--to", folder_.File("huge.rzt")});
  EXPECT_EQ(run.status, 1) << run.err;
  EXPECT_NE(run.err.find(csv + ":1: a field longer than 16 MiB"),
            std::string::npos)
      << run.err;
  EXPECT_FALSE(std::filesystem::exists(folder_.File("huge.rzt")));
}

}  // namespace
}  // namespace rz
