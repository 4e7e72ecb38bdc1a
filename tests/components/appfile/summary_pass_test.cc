// Copyright 2026 The Veltmark authors.

// The sort/summary pass of ApplicationFile: which records each summary
// record holds, in which order, with the settings as the engine hands them
// over; empty intervals; restriction to a pivot value; the errors. The
// interval boundaries themselves and the statistics formulas have tests of
// their own (summary_intervals_test, column_statistics_test).

#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "appfile/application_file.h"
#include "components/appfile/application_test_fixture.h"
#include "core/error.h"
#include "support/error_number.h"

namespace rz {
namespace {

constexpr int16_t kWeight = 3;
constexpr int16_t kOperator = 4;
constexpr int16_t kCount = 5;

Record At(const char* date, const char* time, Variant weight = kNull,
          Variant op = kNull, Variant count = kNull) {
  return {date, time, std::move(weight), std::move(op), std::move(count)};
}

class SummaryPassTest : public ApplicationFileTest {
 protected:
  std::unique_ptr<ApplicationFile> OpenWith(
      const std::vector<Record>& records) {
    Export("pass.rzt", records);
    return Open("pass.rzt");
  }

  // Summary mode by `key` with the settings the engine hands over.
  static void Summarize(AppFile& file, int32_t key,
                        const char* interval = "00:00:00",
                        double shift_hours = 8,
                        const char* shift_start = "00:00:00",
                        int16_t plus_minus = 1, bool null_intervals = false) {
    file.SetSummarize(true);
    file.SummaryKeys().Reset();
    file.SummaryKeys().Add(key);
    file.SetInterval(interval);
    file.SetNullIntervals(null_intervals);
    file.SetShiftDuration(shift_hours);
    file.SetShiftStart(shift_start);
    file.SetPlusMinus(plus_minus);
    file.SetWeekDays(0);
    file.SetYearBegins(1);
    file.SortFile();
  }

  // Every summary record, walked as the engine walks them, as
  // "rec=<first record> n=<extent> sum=<Sum of Weight>", or for an empty
  // interval "empty <date> <time>" from the date and time variables.
  static std::vector<std::string> Walk(AppFile& file) {
    std::vector<std::string> rows;
    const int32_t count = file.SummaryCursor().Count();
    while (!file.EndOfSummary()) {
      file.NextSummary();
      const int32_t position = file.SummaryPosition();
      EXPECT_LE(position, count);
      const int32_t record = file.SummaryCursor().Item(position).record;
      ColumnStatisticsList& statistics = file.ColumnStatistics();
      const ColumnStatistic weight = statistics.Item(kWeight);
      if (record == 0) {
        EXPECT_EQ(file.SummaryExtent(), 0);
        EXPECT_EQ(weight[StatisticValue::Count], Variant(int32_t{0}));
        EXPECT_TRUE(weight[StatisticValue::Sum].IsNull());
        rows.push_back(
            "empty " +
            statistics.Item(1)[StatisticValue::FirstValue].ToString() + " " +
            statistics.Item(2)[StatisticValue::LastValue].ToString());
        continue;
      }
      rows.push_back("rec=" + std::to_string(record) +
                     " n=" + std::to_string(file.SummaryExtent()) +
                     " sum=" + weight[StatisticValue::Sum].ToString());
    }
    EXPECT_EQ(file.SummaryPosition(), count);
    return rows;
  }

  using Rows = std::vector<std::string>;
};

// Records 1-5 out of time order, one without a date.
std::vector<Record> AroundMidnight() {
  return {
      At("2006-10-10", "08:00:00", 100.0),
      At("2006-10-10", "23:30:00", 101.0),
      At("2006-10-12", "00:00:00", 102.0),
      At("2006-10-11", "12:00:00", 103.0),
      At("", "", 104.0),
  };
}

TEST_F(SummaryPassTest, ByDayInTimeOrderWhateverTheRecordOrder) {
  auto file = OpenWith(AroundMidnight());
  Summarize(*file, -5);
  EXPECT_EQ(file->SummaryCursor().Count(), 3);
  // Before the first NextSummary: every selected record, the one without
  // a date included.
  EXPECT_EQ(file->SummaryPosition(), 0);
  EXPECT_EQ(file->SummaryExtent(), 5);
  EXPECT_EQ(file->ColumnStatistics().Item(kWeight)[StatisticValue::Sum],
            Variant(510.0));
  EXPECT_EQ(Walk(*file), (Rows{"rec=1 n=2 sum=201", "rec=4 n=1 sum=103",
                               "rec=3 n=1 sum=102"}));
  EXPECT_EQ(ErrorNumber([&] { file->NextSummary(); }), 5);
}

TEST_F(SummaryPassTest, TheDayStartMovesRecordsAcrossMidnight) {
  struct Case {
    const char* shift_start;
    int16_t plus_minus;
    Rows rows;
  };
  const Case cases[] = {
      // The day of the 11th begins at 22:00 on the 10th.
      {"02:00:00",
       -1,
       {"rec=1 n=1 sum=100", "rec=2 n=2 sum=204", "rec=3 n=1 sum=102"}},
      // The day of the 10th lasts until 06:00 on the 11th.
      {"06:00:00", 1, {"rec=1 n=2 sum=201", "rec=3 n=2 sum=205"}},
      {"00:00:00",
       -1,
       {"rec=1 n=2 sum=201", "rec=4 n=1 sum=103", "rec=3 n=1 sum=102"}},
  };
  auto file = OpenWith(AroundMidnight());
  for (const Case& c : cases) {
    Summarize(*file, -5, "00:00:00", 8, c.shift_start, c.plus_minus);
    EXPECT_EQ(Walk(*file), c.rows) << c.plus_minus << c.shift_start;
  }
}

TEST_F(SummaryPassTest, EmptyIntervalsReportTheirStart) {
  auto file = OpenWith({
      At("2006-10-10", "08:00:00", 1.0),
      At("2006-10-13", "07:00:00", 2.0),
      At("2006-10-13", "09:00:00", 4.0),
  });
  Summarize(*file, -5, "00:00:00", 8, "00:00:00", 1, false);
  EXPECT_EQ(Walk(*file), (Rows{"rec=1 n=1 sum=1", "rec=2 n=2 sum=6"}));

  Summarize(*file, -5, "00:00:00", 8, "00:00:00", 1, true);
  EXPECT_EQ(Walk(*file),
            (Rows{"rec=1 n=1 sum=1", "empty 2006-10-11 00:00:00",
                  "empty 2006-10-12 00:00:00", "rec=2 n=2 sum=6"}));

  // Days that begin at 08:00: the record at 07:00 on the 13th belongs to
  // the day of the 12th.
  Summarize(*file, -5, "00:00:00", 8, "08:00:00", 1, true);
  EXPECT_EQ(Walk(*file), (Rows{"rec=1 n=1 sum=1", "empty 2006-10-11 08:00:00",
                               "rec=2 n=1 sum=2", "rec=3 n=1 sum=4"}));
}

TEST_F(SummaryPassTest, ShiftsOfEightAndTwelveHoursFromTheDayStart) {
  auto file = OpenWith({
      At("2006-10-10", "05:59:59", 1.0),
      At("2006-10-10", "06:00:00", 2.0),
      At("2006-10-10", "13:59:59", 4.0),
      At("2006-10-10", "14:00:00", 8.0),
      At("2006-10-10", "22:00:00", 16.0),
      At("2006-10-11", "05:00:00", 32.0),
  });
  Summarize(*file, -4, "00:00:00", 8, "06:00:00");
  EXPECT_EQ(Walk(*file), (Rows{"rec=1 n=1 sum=1", "rec=2 n=2 sum=6",
                               "rec=4 n=1 sum=8", "rec=5 n=2 sum=48"}));
  Summarize(*file, -4, "00:00:00", 12, "06:00:00");
  EXPECT_EQ(Walk(*file),
            (Rows{"rec=1 n=1 sum=1", "rec=2 n=3 sum=14", "rec=5 n=2 sum=48"}));
}

TEST_F(SummaryPassTest, AFifteenMinuteInterval) {
  auto file = OpenWith({
      At("2006-10-10", "08:00:00", 1.0),
      At("2006-10-10", "08:14:59", 2.0),
      At("2006-10-10", "08:15:00", 4.0),
      At("2006-10-10", "08:45:00", 8.0),
  });
  Summarize(*file, 0, "00:15:00");
  EXPECT_EQ(Walk(*file),
            (Rows{"rec=1 n=2 sum=3", "rec=3 n=1 sum=4", "rec=4 n=1 sum=8"}));
  Summarize(*file, 0, "00:15:00", 8, "00:00:00", 1, true);
  EXPECT_EQ(Walk(*file),
            (Rows{"rec=1 n=2 sum=3", "rec=3 n=1 sum=4",
                  "empty 2006-10-10 08:30:00", "rec=4 n=1 sum=8"}));
}

std::vector<Record> Operators() {
  return {
      At("2006-10-10", "08:00:00", 1.0, "Ann", 3.0),
      At("2006-10-10", "09:00:00", 2.0, " bob ", kNull),
      At("2006-10-10", "10:00:00", 4.0, kNull, 0.0),
      At("2006-10-10", "11:00:00", 8.0, "  ", 7.0),
      At("2006-10-10", "12:00:00", 16.0, "ANN", 3.0),
      At("2006-10-10", "13:00:00", 32.0, "Bob", -1.0),
      At("2006-10-10", "14:00:00", 64.0, "carl", 0.0),
  };
}

TEST_F(SummaryPassTest, ByATextVariableNoValueFirstThenWithoutCase) {
  auto file = OpenWith(Operators());
  Summarize(*file, kOperator);
  EXPECT_EQ(Walk(*file), (Rows{"rec=3 n=2 sum=12", "rec=1 n=2 sum=17",
                               "rec=2 n=2 sum=34", "rec=7 n=1 sum=64"}));
  // The group reports the spelling of its first record.
  file->SortFile();
  file->NextSummary();
  file->NextSummary();
  EXPECT_EQ(
      file->ColumnStatistics().Item(kOperator)[StatisticValue::FirstValue],
      Variant("Ann"));
  EXPECT_EQ(file->ColumnStatistics().Item(kOperator)[StatisticValue::Count],
            Variant(int32_t{2}));
}

TEST_F(SummaryPassTest, SortKeyGroupsByNumberAndLocatesEachGroup) {
  auto file = OpenWith(Operators());
  file->SetSummarize(false);
  file->SummaryKeys().Add(-5);  // not read in detail mode
  file->SortKeys().Add(kCount, 3);
  file->SortFile();
  const std::vector<Variant> expected = {kNull, -1.0, 0.0, 3.0, 7.0};
  ASSERT_EQ(file->SummaryCursor().Count(), 5);
  for (int32_t i = 1; i <= 5; ++i) {
    file->GotoRecord(file->SummaryCursor().Item(i).record);
    EXPECT_EQ(file->Value(kCount), expected[i - 1]) << i;
  }
  EXPECT_EQ(Walk(*file),
            (Rows{"rec=2 n=1 sum=2", "rec=6 n=1 sum=32", "rec=3 n=2 sum=68",
                  "rec=1 n=2 sum=17", "rec=4 n=1 sum=8"}));

  // Summary mode reads the summary keys, not the sort keys.
  file->SetSummarize(true);
  file->SortFile();
  EXPECT_EQ(file->SummaryCursor().Count(), 1);
}

TEST_F(SummaryPassTest, TheConditionsDecideWhichRecordsCount) {
  auto file = OpenWith(Operators());
  file->Conditions().Add(0, "", kWeight, ">=", "4", "");
  file->Conditions().Add(1, "", kOperator, "<>", "carl", "");
  file->SetSummarize(true);
  file->SortFile();  // no key: one summary record
  EXPECT_EQ(Walk(*file), (Rows{"rec=3 n=4 sum=60"}));

  file->Conditions().Clear();
  file->Conditions().Add(0, "", kWeight, ">", "1000", "");
  file->SortFile();
  EXPECT_EQ(file->SummaryCursor().Count(), 0);
  EXPECT_TRUE(file->EndOfSummary());
  EXPECT_EQ(file->SummaryExtent(), 0);
  EXPECT_EQ(file->ColumnStatistics().Item(kWeight)[StatisticValue::Count],
            Variant(int32_t{0}));

  file->Conditions().Clear();
  file->Conditions().Add(0, "(", kWeight, ">", "1", "");
  EXPECT_EQ(ErrorNumber([&] { file->SortFile(); }), 5);  // brackets
}

TEST_F(SummaryPassTest, RestrictionToAPivotValueAndBack) {
  auto file = OpenWith(Operators());
  Summarize(*file, -5);
  file->NextSummary();
  std::string text;
  double work = 0;
  auto restrict_to = [&](int16_t variable, const std::string& value) {
    file->RestrictStatistics(file->SummaryPosition(), file->SummaryExtent(),
                             text, variable, value, work);
    return file->ColumnStatistics().Item(kWeight)[StatisticValue::Sum];
  };
  struct Case {
    int16_t variable;
    const char* value;
    Variant sum;
  };
  const Case cases[] = {
      {kOperator, "ann", 17.0}, {kOperator, " BOB ", 34.0},
      {kOperator, "", 12.0},    {kOperator, "dave", kNull},
      {kCount, "3", 17.0},      {kCount, "0", 68.0},
      {kCount, "-1", 32.0},     {kCount, "", 2.0},
      {kCount, "3.0", 17.0},    {0, "", 127.0},
  };
  for (const Case& c : cases) {
    EXPECT_EQ(restrict_to(c.variable, c.value), c.sum)
        << c.variable << " '" << c.value << "'";
  }
  restrict_to(kOperator, "ann");
  EXPECT_EQ(file->ColumnStatistics().Item(kCount)[StatisticValue::Count],
            Variant(int32_t{2}));
  EXPECT_EQ(text, "");
  EXPECT_EQ(work, 0);

  EXPECT_EQ(ErrorNumber([&] {
              file->RestrictStatistics(2, 1, text, kOperator, "ann", work);
            }),
            5);  // not the current summary record
  EXPECT_EQ(ErrorNumber([&] { restrict_to(6, "x"); }), 9);
}

TEST_F(SummaryPassTest, ResettingTheCursorForgetsThePass) {
  auto file = OpenWith(Operators());
  Summarize(*file, -5);
  file->SummaryCursor().Reset();
  EXPECT_TRUE(file->EndOfSummary());
  EXPECT_EQ(file->SummaryExtent(), 0);
  EXPECT_EQ(ErrorNumber([&] { file->NextSummary(); }), 5);
  EXPECT_EQ(ErrorNumber([&] { file->ColumnStatistics().Item(kWeight); }), 5);
  EXPECT_EQ(ErrorNumber([&] { file->ColumnStatistics().Item(6); }), 9);
}

TEST_F(SummaryPassTest, BadKeysAndSettingsAreRefusedBeforeAnyWork) {
  struct Case {
    const char* what;
    std::function<void(AppFile&)> set_up;
    int32_t error;
    const char* named;
  };
  const Case cases[] = {
      {"specific interval of zero", [](AppFile& f) { f.SummaryKeys().Add(0); },
       5, "Interval"},
      {"shift of zero hours",
       [](AppFile& f) {
         f.SummaryKeys().Add(-4);
         f.SetShiftDuration(0);
       },
       5, "ShiftDuration"},
      {"negative shift",
       [](AppFile& f) {
         f.SummaryKeys().Add(-4);
         f.SetShiftDuration(-8);
       },
       5, "ShiftDuration"},
      {"unknown variable", [](AppFile& f) { f.SummaryKeys().Add(6); }, 9,
       "variable 6"},
      {"key below Year", [](AppFile& f) { f.SummaryKeys().Add(-10); }, 5,
       "-10"},
      {"two summary keys",
       [](AppFile& f) {
         f.SummaryKeys().Add(-5);
         f.SummaryKeys().Add(-3);
       },
       5, "one summary key"},
      {"sort key of another kind",
       [](AppFile& f) {
         f.SetSummarize(false);
         f.SortKeys().Add(kCount, 1);
       },
       5, "kind 1"},
      {"sort key on an unknown variable",
       [](AppFile& f) {
         f.SetSummarize(false);
         f.SortKeys().Add(9, 3);
       },
       9, "variable 9"},
      // Settings the key does not use are not checked.
      {"day with no interval and no shift",
       [](AppFile& f) {
         f.SummaryKeys().Add(-5);
         f.SetShiftDuration(0);
       },
       0, ""},
      {"shift with no interval", [](AppFile& f) { f.SummaryKeys().Add(-4); }, 0,
       ""},
  };
  auto file = OpenWith(Operators());
  for (const Case& c : cases) {
    // A good pass first: a refused one leaves it as it was.
    Summarize(*file, -3, "00:00:00", 8);
    ASSERT_EQ(file->SummaryCursor().Count(), 7);
    file->SetSummarize(true);
    file->SummaryKeys().Reset();
    file->SortKeys().Reset();
    file->SetInterval("00:00:00");
    c.set_up(*file);
    try {
      file->SortFile();
      EXPECT_EQ(c.error, 0) << c.what;
    } catch (const Error& error) {
      EXPECT_EQ(error.Number(), c.error) << c.what;
      EXPECT_NE(error.Description().find(c.named), std::string::npos)
          << c.what << ": " << error.Description();
      EXPECT_EQ(file->SummaryCursor().Count(), 7) << c.what;
    }
    file->SetShiftDuration(8);
  }
}

}  // namespace
}  // namespace rz
