// Copyright 2026 The Veltmark authors.

// The 23 statistics of one variable over a set of records. The expected
// numbers were printed by statistics_reference.py (beside this file), which
// computes them exactly with fractions from the same data; run it again
// after changing a data set or a limit case.

#include "appfile/column_statistics.h"

#include <gtest/gtest.h>
#include <sqlite3.h>

#include <array>
#include <cmath>
#include <optional>
#include <string>
#include <vector>

#include "appfile/record_columns.h"
#include "appfile/sqlite_util.h"
#include "support/error_number.h"

namespace rz {
namespace {

using enum StatisticValue;
using Expected = std::array<std::optional<double>, kStatisticValueCount>;
constexpr std::nullopt_t kNull = std::nullopt;

constexpr int kNumber = 3;  // the numeric variable of the test data
constexpr int kText = 4;    // the text variable

struct TestRow {
  std::string date;
  std::string time;
  std::optional<double> number;
  std::optional<std::string> text;
};

// Columns as the data store reads them: v1 date, v2 time, v3 REAL, v4 TEXT.
RecordColumns MakeColumns(const std::vector<TestRow>& rows) {
  SqliteDb db(":memory:", SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE);
  db.Exec(
      "CREATE TABLE records(recno INTEGER PRIMARY KEY, v1 TEXT, v2 TEXT, "
      "v3 REAL, v4 TEXT)");
  SqliteStatement insert(db, "INSERT INTO records VALUES(?, ?, ?, ?, ?)");
  for (size_t k = 0; k < rows.size(); ++k) {
    const TestRow& row = rows[k];
    insert.BindInt64(1, static_cast<int64_t>(k + 1));
    insert.BindText(2, row.date);
    insert.BindText(3, row.time);
    row.number ? insert.BindDouble(4, *row.number) : insert.BindNull(4);
    row.text ? insert.BindText(5, *row.text) : insert.BindNull(5);
    insert.Step();
    insert.Reset();
  }
  SqliteStatement select(db, "SELECT * FROM records ORDER BY recno");
  RecordColumns columns({false, false, true, false});
  columns.ReadRows(select);
  return columns;
}

// Every statistic against the reference: Count exactly as a Long, the rest
// as Doubles within a relative 1e-12 (exactly when the reference is 0).
void ExpectStatistics(const ColumnStatistic& actual, const Expected& expected,
                      const std::string& label) {
  for (int k = 0; k < kStatisticValueCount; ++k) {
    const auto value = static_cast<StatisticValue>(k);
    const Variant& got = actual[value];
    const std::string where =
        label + ": " + std::string(StatisticValueName(value));
    if (!expected[k]) {
      EXPECT_TRUE(got.IsNull()) << where << " = " << got.ToString();
      continue;
    }
    if (value == Count) {
      ASSERT_EQ(got.Type(), VariantType::kLong) << where;
      EXPECT_EQ(got.ToLong(), static_cast<int32_t>(*expected[k])) << where;
      continue;
    }
    ASSERT_EQ(got.Type(), VariantType::kDouble) << where;
    EXPECT_NEAR(got.ToDouble(), *expected[k], std::fabs(*expected[k]) * 1e-12)
        << where;
  }
}

Limit L(const char* method, double value = 0) { return Limit{method, value}; }

StatisticLimits Limits(Limit usl, Limit ucl, Limit tgt, Limit lcl, Limit lsl) {
  return StatisticLimits{usl, ucl, tgt, lcl, lsl};
}

const StatisticLimits kFixed =
    Limits(L("F", 11.5), L("F", 11.0), L("F", 10.0), L("F", 9.0), L("F", 9.5));
const StatisticLimits kCalculated =
    Limits(L("C"), L("C"), L("C"), L("C"), L("C"));
const StatisticLimits kBlank = Limits(L("B"), L("B"), L("B"), L("B"), L("B"));

// Records 8 minutes to 11 hours; the numbers have a gap (record 1), the
// texts a Null, blank and empty cells and one with spaces kept around it.
const std::vector<TestRow>& MainRows() {
  static const std::vector<TestRow> rows = {
      {"2024-03-01", "08:00:00", 10.2, "alpha"},
      {"2024-03-01", "08:10:00", std::nullopt, "   "},
      {"2024-03-01", "08:25:00", 9.7, std::nullopt},
      {"2024-03-01", "09:00:00", 10.9, "  beta "},
      {"2024-03-01", "09:40:00", 8.8, ""},
      {"2024-03-01", "10:05:00", 11.6, "gamma"},
      {"2024-03-01", "10:30:00", 10.1, std::nullopt},
      {"2024-03-01", "11:00:00", 9.4, "delta"},
  };
  return rows;
}

// Out of index order and without record 4: the statistics must follow this
// order (first value 11.6 from 10:05, last 10.1 from 10:30).
const std::vector<int32_t> kMainOrder = {5, 0, 2, 7, 1, 3, 6};

struct LimitCase {
  const char* name;
  StatisticLimits limits;
  Expected expected;
};

TEST(NumericStatisticsTest, EveryStatisticForEachKindOfLimits) {
  const RecordColumns columns = MakeColumns(MainRows());
  // Expected values from statistics_reference.py, in the same case order.
  // clang-format off
  const LimitCase cases[] = {
      {"fixed, two-sided", kFixed,
       {6.0, 0.31666666666666643, 61.9, 0.8084965470963167, 11.6, 11.5, 11.0,
        10.316666666666666, 9.0, 9.5, 9.4, 2.393617021276596,
        0.39688888888888857, 0.34118518518518504, 7.836800133405331,
        2.1999999999999993, 33.333333333333336, 333333.3333333333,
        22.204506955974722, 222045.06955974724, 11.6, 10.1, 299.9999999720603}},
      {"calculated", kCalculated,
       {6.0, 0.0, 61.9, 0.8084965470963167, 11.6, 12.742156307955616,
        12.710283687943262, 10.316666666666666, 7.92304964539007,
        7.891177025377717, 9.4, 0.9868593048307489, 0.0, 1.0133156723607168,
        7.836800133405331, 2.1999999999999993, 0.0, 0.0, 0.23661977062301381,
        2366.197706230138, 11.6, 10.1, 299.9999999720603}},
      {"blank", kBlank,
       {6.0, kNull, 61.9, 0.8084965470963167, 11.6, kNull, kNull,
        10.316666666666666, kNull, kNull, 9.4, kNull, kNull, kNull,
        7.836800133405331, 2.1999999999999993, kNull, kNull, kNull, kNull, 11.6,
        10.1, 299.9999999720603}},
      {"upper spec limit only",
       Limits(L("F", 11.0), L("B"), L("C"), L("B"), L("B")),
       {6.0, 0.0, 61.9, 0.8084965470963167, 11.6, 11.0, kNull,
        10.316666666666666, kNull, kNull, 9.4, kNull, 0.0, 0.28548148148148156,
        7.836800133405331, 2.1999999999999993, 16.666666666666668,
        166666.66666666666, 19.58759949748452, 195875.9949748452, 11.6, 10.1,
        299.9999999720603}},
      {"lower spec limit only",
       Limits(L("B"), L("C"), L("B"), L("B"), L("F", 9.9)),
       {6.0, kNull, 61.9, 0.8084965470963167, 11.6, kNull, 12.710283687943262,
        10.316666666666666, kNull, 9.9, 9.4, kNull, kNull, 0.1740740740740738,
        7.836800133405331, 2.1999999999999993, 33.333333333333336,
        333333.3333333333, 30.075780765254855, 300757.80765254854, 11.6, 10.1,
        299.9999999720603}},
      {"calculated USL, fixed LSL",
       Limits(L("C"), L("F", 12), L("F", 10.5), L("C"), L("F", 9.5)),
       {6.0, -0.18333333333333357, 61.9, 0.8084965470963167, 11.6,
        12.742156307955616, 12.0, 10.316666666666666, 7.92304964539007, 9.5,
        9.4, 1.4765586812721698, -0.22977777777777805, 0.34118518518518504,
        7.836800133405331, 2.1999999999999993, 16.666666666666668,
        166666.66666666666, 15.4205722207828, 154205.722207828, 11.6, 10.1,
        299.9999999720603}},
      {"limits on the extreme values",
       Limits(L("F", 11.6), L("B"), L("F", 10.5), L("B"), L("F", 9.4)),
       {6.0, -0.18333333333333357, 61.9, 0.8084965470963167, 11.6, 11.6, kNull,
        10.316666666666666, kNull, 9.4, 9.4, 2.1760154738878152,
        -0.22977777777777805, 0.38296296296296267, 7.836800133405331,
        2.1999999999999993, 0.0, 0.0, 17.916983710032564, 179169.83710032565,
        11.6, 10.1, 299.9999999720603}},
      {"method letters read leniently",
       Limits(L(" f ", 11.5), L("c"), L("X", 10.0), L("", 9.0), L("F", 9.5)),
       {6.0, kNull, 61.9, 0.8084965470963167, 11.6, 11.5, 12.710283687943262,
        10.316666666666666, kNull, 9.5, 9.4, 2.393617021276596, kNull,
        0.34118518518518504, 7.836800133405331, 2.1999999999999993,
        33.333333333333336, 333333.3333333333, 22.204506955974722,
        222045.06955974724, 11.6, 10.1, 299.9999999720603}},
  };
  // clang-format on
  for (const LimitCase& c : cases) {
    ExpectStatistics(NumericStatistics(columns, kNumber, kMainOrder, c.limits),
                     c.expected, c.name);
  }
}

struct SmallCase {
  const char* name;
  std::vector<int32_t> records;
  StatisticLimits limits;
  Expected expected;
};

TEST(NumericStatisticsTest, NoneOneAndTwoValues) {
  const RecordColumns columns = MakeColumns(MainRows());
  // Expected values from statistics_reference.py.
  // clang-format off
  const SmallCase cases[] = {
      {"n = 0, fixed", {1}, kFixed,
       {0.0, kNull, kNull, kNull, kNull, 11.5, 11.0, kNull, 9.0, 9.5, kNull,
        kNull, kNull, kNull, kNull, kNull, kNull, kNull, kNull, kNull, kNull,
        kNull, kNull}},
      {"n = 0 (no records), fixed", {}, kFixed,
       {0.0, kNull, kNull, kNull, kNull, 11.5, 11.0, kNull, 9.0, 9.5, kNull,
        kNull, kNull, kNull, kNull, kNull, kNull, kNull, kNull, kNull, kNull,
        kNull, kNull}},
      {"n = 0, calculated", {1}, kCalculated,
       {0.0, kNull, kNull, kNull, kNull, kNull, kNull, kNull, kNull, kNull,
        kNull, kNull, kNull, kNull, kNull, kNull, kNull, kNull, kNull, kNull,
        kNull, kNull, kNull}},
      {"n = 1, fixed", {1, 3}, kFixed,
       {1.0, 0.9000000000000004, 10.9, kNull, 10.9, 11.5, 11.0, 10.9, 9.0, 9.5,
        10.9, kNull, kNull, kNull, kNull, 0.0, 0.0, 0.0, kNull, kNull, 10.9,
        10.9, kNull}},
      {"n = 1, calculated", {3}, kCalculated,
       {1.0, 0.0, 10.9, kNull, 10.9, kNull, kNull, 10.9, kNull, kNull, 10.9,
        kNull, kNull, kNull, kNull, 0.0, kNull, kNull, kNull, kNull, 10.9, 10.9,
        kNull}},
      {"n = 2, fixed", {2, 5}, kFixed,
       {2.0, 0.6499999999999995, 21.299999999999997, 1.3435028842544405, 11.6,
        11.5, 11.0, 10.649999999999999, 9.0, 9.5, 9.7, 5.053191489361703,
        0.38589473684210485, 0.16821052631578953, 12.615050556379725,
        1.9000000000000004, 50.0, 500000.0, 55.42953853200254,
        554295.3853200254, 9.7, 11.6, 6000.000000069849}},
      {"n = 2, calculated", {2, 5}, kCalculated,
       {2.0, 0.0, 21.299999999999997, 1.3435028842544405, 11.6,
        14.68050865276332, 15.703191489361704, 10.649999999999999,
        5.596808510638296, 6.619491347236678, 9.7, 1.2537354276357227, 0.0,
        0.7976164491784256, 12.615050556379725, 1.9000000000000004, 0.0, 0.0,
        1.6718104055676155, 16718.104055676155, 9.7, 11.6, 6000.000000069849}},
  };
  // clang-format on
  for (const SmallCase& c : cases) {
    ExpectStatistics(NumericStatistics(columns, kNumber, c.records, c.limits),
                     c.expected, c.name);
  }
}

TEST(NumericStatisticsTest, WorkedExampleOfTheDocumentation) {
  const std::vector<TestRow> rows = {
      {"2024-03-01", "08:00:00", 10.0, std::nullopt},
      {"2024-03-01", "08:10:00", 12.0, std::nullopt},
      {"2024-03-01", "08:20:00", 11.0, std::nullopt},
      {"2024-03-01", "08:30:00", 13.0, std::nullopt},
  };
  const RecordColumns columns = MakeColumns(rows);
  const std::vector<int32_t> records = {0, 1, 2, 3};
  const StatisticLimits limits =
      Limits(L("F", 14), L("C"), L("F", 11), L("C"), L("F", 9));
  // From statistics_reference.py ("worked example").
  ExpectStatistics(NumericStatistics(columns, kNumber, records, limits),
                   {4.0,
                    0.5,
                    46.0,
                    1.2909944487358056,
                    13.0,
                    14.0,
                    15.932624113475178,
                    11.5,
                    7.067375886524823,
                    9.0,
                    10.0,
                    1.773049645390071,
                    0.3384,
                    0.564,
                    11.22603868465918,
                    3.0,
                    0.0,
                    0.0,
                    9.064597362489408,
                    90645.97362489409,
                    10.0,
                    13.0,
                    599.9999998603016},
                   "worked example");
}

TEST(NumericStatisticsTest, OrderOfRecordsDecidesEndsMovingRangeAndTime) {
  const RecordColumns columns = MakeColumns(MainRows());
  const std::vector<int32_t> forward = {0, 2, 3, 5};   // 10.2 9.7 10.9 11.6
  const std::vector<int32_t> shuffled = {3, 0, 5, 2};  // 10.9 10.2 11.6 9.7
  const ColumnStatistic a =
      NumericStatistics(columns, kNumber, forward, kBlank);
  const ColumnStatistic b =
      NumericStatistics(columns, kNumber, shuffled, kBlank);
  // Same values: the same location and spread (sums in another order may
  // differ in the last bit).
  for (StatisticValue same : {Count, Minimum, Maximum}) {
    EXPECT_EQ(a[same], b[same]) << StatisticValueName(same);
  }
  for (StatisticValue near : {Sum, Average, SD}) {
    EXPECT_NEAR(a[near].ToDouble(), b[near].ToDouble(), 1e-12)
        << StatisticValueName(near);
  }
  EXPECT_EQ(a[FirstValue], Variant(10.2));
  EXPECT_EQ(a[LastValue], Variant(11.6));
  EXPECT_EQ(b[FirstValue], Variant(10.9));
  EXPECT_EQ(b[LastValue], Variant(9.7));
  // Moving ranges 0.5 1.2 0.7 against 0.7 1.4 1.9, seen through the C
  // control limit: UCL = Average + 3 * mean moving range / 1.128.
  const Limit c = L("C");
  const StatisticLimits ucl_only = Limits(L("B"), c, L("B"), L("B"), L("B"));
  const double average = 42.4 / 4;
  EXPECT_NEAR(NumericStatistics(columns, kNumber, forward, ucl_only)[CalcUCL]
                  .ToDouble(),
              average + 3 * (2.4 / 3) / 1.128, 1e-12);
  EXPECT_NEAR(NumericStatistics(columns, kNumber, shuffled, ucl_only)[CalcUCL]
                  .ToDouble(),
              average + 3 * (4.0 / 3) / 1.128, 1e-12);
  // 08:00 -> 10:05 is 7500 s; 09:00 -> 08:25 is -2100 s, over 3 gaps.
  EXPECT_NEAR(a[AvgTBE].ToDouble(), 2500, 1e-6);
  EXPECT_NEAR(b[AvgTBE].ToDouble(), -700, 1e-6);
}

TEST(NumericStatisticsTest, SampleDeviationKeepsSmallSpreadAtLargeOffset) {
  std::vector<TestRow> rows;
  const double deviations[] = {0.1, 0.25, -0.05, 0.4, 0.15, 0.05, 0.3, -0.2};
  for (double d : deviations) {
    rows.push_back({"2024-03-01", "08:00:00", 1e9 + d, std::nullopt});
  }
  const RecordColumns columns = MakeColumns(rows);
  const std::vector<int32_t> records = {0, 1, 2, 3, 4, 5, 6, 7};
  const ColumnStatistic s =
      NumericStatistics(columns, kNumber, records, kCalculated);
  // From statistics_reference.py ("values near 1e9"; exact fractions).
  const double sd = 0.19456911708812702;
  EXPECT_NEAR(s[SD].ToDouble(), sd, sd * 1e-12);
  EXPECT_NEAR(s[Average].ToDouble(), 1000000000.125, 1e-6);
  EXPECT_NEAR(s[CalcUSL].ToDouble(), 1000000000.7087073, 1e-6);
  EXPECT_NEAR(s[CV].ToDouble(), 1.9456911706380587e-08, 1e-20);
  EXPECT_NEAR(s[CR].ToDouble(), 1.3018139526847066, 1.3e-12);
}

TEST(NumericStatisticsTest, FarNormalTailStaysPositive) {
  std::vector<TestRow> rows;
  for (double v : {10.0, 11.0, 10.0, 11.0}) {
    rows.push_back({"2024-03-01", "08:00:00", v, std::nullopt});
  }
  const RecordColumns columns = MakeColumns(rows);
  const std::vector<int32_t> records = {0, 1, 2, 3};
  // Average 10.5, within sigma 1 / 1.128: limits 9 sigma away (values from
  // statistics_reference.py).
  const double nine_sigma_up = 18.47872340425532;
  const double nine_sigma_down = 2.5212765957446797;
  struct {
    const char* name;
    StatisticLimits limits;
    double pct;
  } cases[] = {
      {"upper only",
       Limits(L("F", nine_sigma_up), L("B"), L("B"), L("B"), L("B")),
       1.1285884059538423e-17},
      {"both sides",
       Limits(L("F", nine_sigma_up), L("B"), L("B"), L("B"),
              L("F", nine_sigma_down)),
       2.2571768119076846e-17},
  };
  for (const auto& c : cases) {
    const ColumnStatistic s =
        NumericStatistics(columns, kNumber, records, c.limits);
    EXPECT_NEAR(s[COOLpct].ToDouble(), c.pct, c.pct * 1e-12) << c.name;
    EXPECT_NEAR(s[COOLppm].ToDouble(), c.pct * 1e4, c.pct * 1e-8) << c.name;
    EXPECT_EQ(s[OOOLpct], Variant(0.0)) << c.name;
  }
  // Beyond what a double holds (z = 100): still not 0.
  const StatisticLimits far =
      Limits(L("F", 10.5 + 100 / 1.128), L("B"), L("B"), L("B"), L("B"));
  const ColumnStatistic s = NumericStatistics(columns, kNumber, records, far);
  EXPECT_GT(s[COOLpct].ToDouble(), 0.0);
  EXPECT_GT(s[COOLppm].ToDouble(), 0.0);
}

TEST(NumericStatisticsTest, DivisionByZeroGivesNull) {
  std::vector<TestRow> rows;
  for (double v : {5.0, 5.0, 5.0, -1.0, 1.0}) {
    rows.push_back({"2024-03-01", "08:00:00", v, std::nullopt});
  }
  const RecordColumns columns = MakeColumns(rows);
  const std::vector<int32_t> constant = {0, 1, 2};
  const StatisticLimits fixed =
      Limits(L("F", 6), L("C"), L("F", 4), L("C"), L("F", 4));
  const ColumnStatistic s =
      NumericStatistics(columns, kNumber, constant, fixed);
  // No spread: SD 0, within sigma 0.
  EXPECT_EQ(s[SD], Variant(0.0));
  EXPECT_EQ(s[CalcUCL], Variant(5.0));
  EXPECT_EQ(s[CalcLCL], Variant(5.0));
  EXPECT_EQ(s[Tdev], Variant(1.0));
  EXPECT_EQ(s[CV], Variant(0.0));
  for (StatisticValue null : {TZ, CPK, COOLpct, COOLppm}) {
    EXPECT_TRUE(s[null].IsNull()) << StatisticValueName(null);
  }
  EXPECT_EQ(s[CR], Variant(0.0));  // 0 / 2: no division by zero
  // Calculated spec limits on constant values lie on the values: all in.
  const ColumnStatistic c =
      NumericStatistics(columns, kNumber, constant, kCalculated);
  EXPECT_EQ(c[CalcUSL], Variant(5.0));
  EXPECT_EQ(c[OOOLpct], Variant(0.0));

  // Average 0: CV is Null; equal spec limits: CR is Null, CPK is not.
  const std::vector<int32_t> balanced = {3, 4};
  const StatisticLimits equal =
      Limits(L("F", 0), L("B"), L("B"), L("B"), L("F", 0));
  const ColumnStatistic z =
      NumericStatistics(columns, kNumber, balanced, equal);
  EXPECT_EQ(z[Average], Variant(0.0));
  EXPECT_TRUE(z[CV].IsNull());
  EXPECT_TRUE(z[CR].IsNull());
  EXPECT_EQ(z[CPK], Variant(0.0));
  EXPECT_EQ(z[OOOLpct], Variant(100.0));
}

TEST(NumericStatisticsTest, ResultsOutsideTheDoubleRangeAreNull) {
  const RecordColumns columns = MakeColumns({
      {"2024-03-01", "08:00:00", 1e308, std::nullopt},
      {"2024-03-01", "08:00:00", 1e308, std::nullopt},
  });
  const std::vector<int32_t> records = {0, 1};
  const ColumnStatistic s =
      NumericStatistics(columns, kNumber, records, kCalculated);
  EXPECT_TRUE(s[Sum].IsNull());
  EXPECT_EQ(s[Average], Variant(1e308));
  EXPECT_EQ(s[SD], Variant(0.0));
  EXPECT_TRUE(s[CalcUSL].Type() == VariantType::kDouble)
      << s[CalcUSL].ToString();
  for (const Variant& value : s.values) {
    if (value.Type() == VariantType::kDouble) {
      EXPECT_TRUE(std::isfinite(value.ToDouble()));
    }
  }
}

TEST(NumericStatisticsTest, AverageTimeNeedsTheDateTimeOfBothEnds) {
  const RecordColumns columns = MakeColumns({
      {"2024-03-01", "08:00:00", 1.0, std::nullopt},
      {"", "08:30:00", 2.0, std::nullopt},  // no date: no date-time
      {"2024-03-01", "09:00:00", 3.0, std::nullopt},
      {"2024-03-01", "09:30:00", std::nullopt, std::nullopt},
  });
  struct {
    const char* name;
    std::vector<int32_t> records;
    std::optional<double> seconds;
  } cases[] = {
      {"one gap of an hour", {0, 2}, 3600},
      {"middle date-time not needed", {0, 1, 2}, 1800},
      {"last record without a value", {0, 2, 3}, 3600},
      {"first without a date-time", {1, 2}, kNull},
      {"last without a date-time", {2, 1}, kNull},
      {"one value", {2}, kNull},
  };
  for (const auto& c : cases) {
    const Variant got =
        NumericStatistics(columns, kNumber, c.records, kBlank)[AvgTBE];
    if (!c.seconds) {
      EXPECT_TRUE(got.IsNull()) << c.name;
    } else {
      EXPECT_NEAR(got.ToDouble(), *c.seconds, 1e-6) << c.name;
    }
  }
}

TEST(TextStatisticsTest, CountsNonBlankTextsAndKeepsThemUnchanged) {
  const RecordColumns columns = MakeColumns(MainRows());
  const ColumnStatistic s = TextStatistics(columns, kText, kMainOrder);
  EXPECT_EQ(s[Count], Variant(int32_t{4}));  // gamma alpha delta "  beta "
  EXPECT_EQ(s[FirstValue], Variant("gamma"));
  EXPECT_EQ(s[LastValue], Variant("  beta "));
  for (int k = 0; k < kStatisticValueCount; ++k) {
    const auto value = static_cast<StatisticValue>(k);
    if (value == Count || value == FirstValue || value == LastValue) continue;
    EXPECT_TRUE(s[value].IsNull()) << StatisticValueName(value);
  }
  // A numeric request on a text column gives the same.
  EXPECT_EQ(NumericStatistics(columns, kText, kMainOrder, kFixed), s);

  const std::vector<int32_t> only_blanks = {1, 2, 4, 6};
  const ColumnStatistic none = TextStatistics(columns, kText, only_blanks);
  EXPECT_EQ(none[Count], Variant(int32_t{0}));
  EXPECT_TRUE(none[FirstValue].IsNull());
  EXPECT_TRUE(none[LastValue].IsNull());
}

TEST(TextStatisticsTest, NumericColumnGivesCountAndEndsOnly) {
  const RecordColumns columns = MakeColumns(MainRows());
  const ColumnStatistic s = TextStatistics(columns, kNumber, kMainOrder);
  EXPECT_EQ(s[Count], Variant(int32_t{6}));
  EXPECT_EQ(s[FirstValue], Variant(11.6));
  EXPECT_EQ(s[LastValue], Variant(10.1));
  EXPECT_TRUE(s[Sum].IsNull());
  EXPECT_TRUE(s[AvgTBE].IsNull());
}

TEST(ColumnStatisticsTest, VariableOutsideTheColumnsIsError9) {
  const RecordColumns columns = MakeColumns(MainRows());
  for (int variable : {0, -1, 5}) {
    EXPECT_EQ(ErrorNumber([&] {
                NumericStatistics(columns, variable, kMainOrder, kFixed);
              }),
              9)
        << variable;
    EXPECT_EQ(
        ErrorNumber([&] { TextStatistics(columns, variable, kMainOrder); }), 9)
        << variable;
  }
}

TEST(LimitsOfTest, TakesTheFiveLimitsTheStatisticsUse) {
  FieldDefinition variable;
  variable.SetLimit(LimitKind::kUsl, L("F", 12));
  variable.SetLimit(LimitKind::kUcl, L("C", 99));
  variable.SetLimit(LimitKind::kUwl, L("F", 11));
  variable.SetLimit(LimitKind::kTgt, L("f", 10));
  variable.SetLimit(LimitKind::kLwl, L("F", 9));
  variable.SetLimit(LimitKind::kLcl, L("B", 8));
  variable.SetLimit(LimitKind::kLsl, L("F", 7));
  const StatisticLimits limits = LimitsOf(variable);
  EXPECT_EQ(limits.usl, L("F", 12));
  EXPECT_EQ(limits.ucl, L("C", 99));
  EXPECT_EQ(limits.tgt, L("f", 10));
  EXPECT_EQ(limits.lcl, L("B", 8));
  EXPECT_EQ(limits.lsl, L("F", 7));
}

// A text column kept coded (its distinct texts and an entry per record,
// as the column cache keeps texts that repeat) gives what its plain form
// gives, blank entries included.
class OneColumnLoader : public ColumnLoader {
 public:
  explicit OneColumnLoader(RecordColumn column) : column_(std::move(column)) {}
  RecordColumn LoadColumn(int) override { return column_; }

 private:
  RecordColumn column_;
};

TEST(ColumnStatisticsTest, CodedTextsGiveWhatPlainTextsGive) {
  const std::vector<std::optional<std::string>> texts = {
      "  ", "b", "", std::nullopt, "a ", "b", " ", "c", "", std::nullopt};
  RecordColumn plain(false);
  RecordColumn coded{NullMask(), ColumnBuffer<uint32_t>(),
                     ColumnBuffer<size_t>(), ColumnBuffer<char>()};
  ASSERT_TRUE(coded.Coded());
  for (const auto& text : texts) {
    for (RecordColumn* column : {&plain, &coded}) {
      if (text) {
        column->AppendText(*text);
      } else {
        column->AppendNull();
      }
    }
  }
  ColumnBuffer<double> date_times;
  for (size_t i = 0; i < texts.size(); ++i) date_times.push_back(1.0 * i);
  OneColumnLoader plain_loader(plain);
  OneColumnLoader coded_loader(coded);
  const RecordColumns plain_columns({false}, date_times, 10, &plain_loader);
  const RecordColumns coded_columns({false}, date_times, 10, &coded_loader);
  const std::vector<std::vector<int32_t>> spans = {
      {0, 1, 2, 3, 4, 5, 6, 7, 8, 9}, {0, 2, 3, 6}, {7, 1}, {}, {4}};
  for (const std::vector<int32_t>& span : spans) {
    SCOPED_TRACE(testing::PrintToString(span));
    EXPECT_EQ(TextStatistics(coded_columns, 1, span),
              TextStatistics(plain_columns, 1, span));
  }
  EXPECT_EQ(TextStatistics(coded_columns, 1, spans[0])[Count], Variant(4));
  EXPECT_EQ(coded_columns.Column(1).FoldedCodes(),
            plain_columns.Column(1).FoldedCodes());
}

}  // namespace
}  // namespace rz
