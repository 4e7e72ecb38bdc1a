// Copyright 2026 The Veltmark authors.
//
// `rzselect sample` as a user runs it: the written application opened
// through the real application-file component holds the generated header,
// rules, variables and records; a second run without --force changes
// nothing.

#include <gtest/gtest.h>

#include <filesystem>

#include "appfile/application_file.h"
#include "e2e/cli_run.h"
#include "rzselect/sample_data.h"

namespace rz {
namespace {

class CliSampleTest : public ::testing::Test {
 protected:
  std::string Template() const { return folder_.File("demo/line4.rzt"); }
  std::string Data() const { return folder_.File("demo/line4.rzd"); }

  TempFolder folder_;
};

TEST_F(CliSampleTest, WritesTheGeneratedApplication) {
  const CliResult run = RunRzselect(
      {"sample", folder_.File("demo"), "--records", "300", "--seed", "3"});
  ASSERT_EQ(run.status, 0) << run.err;
  EXPECT_EQ(run.err, "");
  EXPECT_NE(run.out.find("300 records from 2026-01-05 06:00:00"),
            std::string::npos)
      << run.out;

  ApplicationFile file;
  file.SetOpenMode(kOpenExisting);
  file.OpenApplication(Template());
  ASSERT_TRUE(file.ApplicationExists());
  EXPECT_EQ(file.AppTitle(), "Line 4 - filling and capping");
  EXPECT_EQ(file.DefaultLookBack(), 500);
  EXPECT_EQ(file.ShiftHours(), 8);
  EXPECT_EQ(file.ShiftStartText(), "06:00");
  EXPECT_EQ(file.SecuredFunctions(), "EXPORT");
  EXPECT_EQ(file.LeadingVariableCount(), 2);
  EXPECT_EQ(file.HeaderItem("VERSION").ToDouble(), 5.0);
  EXPECT_EQ(file.SpecialVariable2(), 1);
  EXPECT_EQ(file.HeaderItem("ITEM6").ToDouble(), 0);
  EXPECT_EQ(file.HeaderItem("ITEM17"), Variant(""));

  const NewApplication expected = GenerateSample(300, 3);
  ASSERT_EQ(file.Rules().Count(), 3);
  for (int32_t i = 1; i <= 3; ++i) {
    EXPECT_EQ(file.Rules().Item(i), expected.rules[i - 1]) << i;
  }

  ASSERT_EQ(file.Variables().Count(), 14);
  for (int32_t k = 1; k <= 14; ++k) {
    const FieldDefinition& got = *file.Variables().Item(k);
    const FieldDefinition& want = *expected.variables[k - 1];
    EXPECT_EQ(got.Name(), want.Name()) << k;
    EXPECT_EQ(got.TypeLetter(), want.TypeLetter()) << k;
    EXPECT_EQ(got.Length(), want.Length()) << k;
    EXPECT_EQ(got.Decimals(), want.Decimals()) << k;
    EXPECT_EQ(got.Text(FieldAttribute::kUnits),
              want.Text(FieldAttribute::kUnits))
        << k;
    EXPECT_EQ(got.Text(FieldAttribute::kRules),
              want.Text(FieldAttribute::kRules))
        << k;
    for (int limit = 0; limit < kLimitCount; ++limit) {
      const LimitKind kind = static_cast<LimitKind>(limit);
      EXPECT_EQ(got.GetLimit(kind), want.GetLimit(kind))
          << k << " " << FieldDefinition::KeyOf(kind);
    }
  }
  EXPECT_EQ(file.Variables().Item(9)->Text(FieldAttribute::kUnits),
            "\u00B0C");  // through the Windows-1252 template

  ASSERT_EQ(file.RecordCount(), 300);
  file.MoveFirst();
  ASSERT_TRUE(file.ReadNext());
  EXPECT_EQ(file.Value(1), Variant("2026-01-05"));
  EXPECT_EQ(file.Value(2), Variant("06:00:00"));
  EXPECT_EQ(file.Value(3), Variant("Line 4"));
  EXPECT_EQ(file.Value(4), Variant("A. Meyer"));
  file.MoveLast();
  ASSERT_TRUE(file.ReadPrevious());
  EXPECT_EQ(file.Value(1), expected.records.back()[0]);
  EXPECT_EQ(file.Value(2), expected.records.back()[1]);
  // Every cell as generated, missing values as Null.
  for (int32_t r = 1; r <= 300; ++r) {
    file.GotoRecord(r);
    for (int16_t k = 1; k <= 14; ++k) {
      ASSERT_EQ(file.Value(k), expected.records[r - 1][k - 1])
          << "record " << r << " variable " << k;
    }
  }
}

// The column cache is derived: every view of the sample gives the same
// bytes read from the data file (no cache), from a fresh cache, and from a
// cache plus records another program appended since.
TEST_F(CliSampleTest, ViewsGiveTheSameBytesWithAndWithoutTheColumnCache) {
  ASSERT_EQ(RunRzselect({"sample", folder_.File("demo"), "--records", "3000",
                         "--seed", "5"})
                .status,
            0);
  const std::string cache = folder_.File("demo/line4.rzc");
  const std::vector<std::vector<std::string>> views = {
      {"--view", "1"},
      {"--view", "2"},
      {"--view", "3", "--as-of", "2026-01-20 12:00:00"},
      {"--view", "4", "--param", "1=A. Meyer"},
  };
  // Each view in CSV and JSON, as one text; `drop_cache`: every run reads
  // the data file.
  auto run_all = [&](bool drop_cache) {
    std::string text;
    for (const std::vector<std::string>& view : views) {
      for (const char* format : {"csv", "json"}) {
        if (drop_cache) std::filesystem::remove(cache);
        std::vector<std::string> args = {"run", Template(), "--format",
                                         format};
        args.insert(args.end(), view.begin(), view.end());
        const CliResult run = RunRzselect(args);
        EXPECT_EQ(run.status, 0) << view[1] << " " << run.err;
        text += run.out;
      }
    }
    return text;
  };
  const std::string from_data_file = run_all(true);
  ASSERT_TRUE(std::filesystem::exists(cache));
  EXPECT_EQ(run_all(false), from_data_file);

  // Another program appends 200 records, 40 days after the first 200.
  {
    TempFolder logs;
    Child sqlite({"/usr/bin/sqlite3", Data(),
                  "INSERT INTO records(v1, v2, v3, v4, v5, v6, v7, v8, v9, "
                  "v10, v11, v12, v13, v14) SELECT date(v1, '+40 days'), v2, "
                  "v3, v4, v5, v6, v7, v8, v9, v10, v11, v12, v13, v14 FROM "
                  "records ORDER BY recno LIMIT 200;"},
                 logs.File("out"), logs.File("err"));
    ASSERT_TRUE(sqlite.started()) << "the sqlite3 command line is needed";
    ASSERT_EQ(sqlite.WaitExit(std::chrono::seconds(60)), 0)
        << ReadWholeFile(logs.File("err"));
  }
  const std::string with_tail = run_all(false);
  EXPECT_NE(with_tail, from_data_file);  // the appended records count
  EXPECT_EQ(run_all(true), with_tail);
}

TEST_F(CliSampleTest, RefusesToOverwriteWithoutForce) {
  ASSERT_EQ(
      RunRzselect({"sample", folder_.File("demo"), "--records", "20"}).status,
      0);
  const std::string template_bytes = ReadWholeFile(Template());
  const std::string data_bytes = ReadWholeFile(Data());
  const auto data_time = std::filesystem::last_write_time(Data());

  const CliResult again = RunRzselect(
      {"sample", folder_.File("demo"), "--records", "30", "--seed", "2"});
  EXPECT_EQ(again.status, 1);
  EXPECT_EQ(again.err.rfind("error 58: ", 0), 0u) << again.err;
  EXPECT_NE(again.err.find("line4.rzt"), std::string::npos) << again.err;
  EXPECT_EQ(ReadWholeFile(Template()), template_bytes);
  EXPECT_EQ(ReadWholeFile(Data()), data_bytes);
  EXPECT_EQ(std::filesystem::last_write_time(Data()), data_time);

  const CliResult forced = RunRzselect(
      {"sample", folder_.File("demo"), "--records", "30", "--force"});
  ASSERT_EQ(forced.status, 0) << forced.err;
  ApplicationFile file;
  file.SetOpenMode(kOpenExisting);
  file.OpenApplication(Template());
  EXPECT_EQ(file.RecordCount(), 30);
  EXPECT_EQ(file.Rules().Count(), 3);
}

TEST_F(CliSampleTest, BadUsageExitsWithTwo) {
  const std::vector<std::vector<std::string>> cases = {
      {"sample"},
      {"sample", folder_.File("demo"), "--records", "0"},
      {"sample", folder_.File("demo"), "--records", "many"},
      {"sample", folder_.File("demo"), "--seed", "-1"},
      // One past the largest 64-bit seed, and forms that are not decimal.
      {"sample", folder_.File("demo"), "--seed", "18446744073709551616"},
      {"sample", folder_.File("demo"), "--seed", "0x10"},
      {"sample", folder_.File("demo"), "--seed", "1e3"},
      {"sample", folder_.File("demo"), "--records", "2147483648"},
      {"sample", folder_.File("demo"), "--colour"},
      {"nonsense"},
  };
  for (const auto& args : cases) {
    const CliResult run = RunRzselect(args);
    EXPECT_EQ(run.status, 2) << testing::PrintToString(args) << run.err;
  }
  EXPECT_FALSE(std::filesystem::exists(folder_.File("demo")));
  const CliResult seed = RunRzselect(
      {"sample", folder_.File("demo"), "--seed", "18446744073709551616"});
  EXPECT_NE(seed.err.find("--seed: '18446744073709551616' is not a whole "
                          "number from 0 to 18446744073709551615"),
            std::string::npos)
      << seed.err;
}

}  // namespace
}  // namespace rz
