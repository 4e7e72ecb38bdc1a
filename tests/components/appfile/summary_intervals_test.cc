// Copyright 2026 The Veltmark authors.

// The time grid of the summary pass: the seconds form of date-time serials,
// the boundaries of every key exact to the second (shifted by the day start
// where they should be), the errors for settings that make no grid, and the
// shape of the grid (contiguous half-open intervals) over sweeps of times.

#include "appfile/summary_intervals.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <ostream>
#include <string>
#include <vector>

#include "core/date_time.h"
#include "core/error.h"

namespace rz {
namespace {

constexpr int64_t kHour = 3600;
constexpr int64_t kDay = 86400;

// Seconds of a calendar date-time; hours beyond 0..23 carry into the
// neighbouring days (At(2024, 5, 2, -2) is 2024-05-01 22:00:00).
int64_t At(int year, int month, int day, int64_t hour = 0, int64_t minute = 0,
           int64_t second = 0) {
  return static_cast<int64_t>(DateSerial(year, month, day)) * kDay +
         hour * kHour + minute * 60 + second;
}

std::string Text(int64_t seconds) {
  return FormatDateTime(SerialFromSeconds(seconds));
}

SummarySettings DayStart(int64_t seconds) {
  SummarySettings settings;
  settings.day_start_seconds = seconds;
  return settings;
}

SummarySettings Weeks(int week_days, int64_t day_start = 0) {
  SummarySettings settings = DayStart(day_start);
  settings.week_days = week_days;
  return settings;
}

SummarySettings Years(int year_begins, int64_t day_start = 0) {
  SummarySettings settings = DayStart(day_start);
  settings.year_begins = year_begins;
  return settings;
}

SummarySettings Shifts(double hours, int64_t day_start = 0) {
  SummarySettings settings = DayStart(day_start);
  settings.shift_hours = hours;
  return settings;
}

SummarySettings Every(int64_t seconds, int64_t day_start = 0) {
  SummarySettings settings = DayStart(day_start);
  settings.interval_seconds = seconds;
  return settings;
}

// --- SecondsFromSerial / SerialFromSeconds ---

TEST(SecondsFromSerialTest, ReadsSerialsAsTheCalendarDoes) {
  struct Case {
    double serial;
    int64_t seconds;
  };
  const Case cases[] = {
      {0.0, 0},
      {0.5, 12 * kHour},
      {39000.5, 39000 * kDay + 12 * kHour},
      {1.0, kDay},
      // Before 1899-12-30 the day is floor(serial), as DateSerial +
      // TimeSerial build a record's date-time.
      {-1.0, -kDay},
      {-0.75, -kDay + 6 * kHour},
      {-1.25, -2 * kDay + 18 * kHour},
      {-1.0 / kDay, -1},
      // Rounding to the nearest second, at both ends of a day.
      {0.4 / kDay, 0},
      {0.6 / kDay, 1},
      {0.99999999, kDay},
      {-0.4 / kDay, 0},
      {DateSerial(2024, 2, 29) + TimeSerial(23, 59, 59), At(2024, 3, 1) - 1},
      {kMinDateSerial, At(100, 1, 1)},
      {kMaxDateSerial + TimeSerial(23, 59, 59), At(9999, 12, 31, 23, 59, 59)},
  };
  for (const Case& c : cases) {
    EXPECT_EQ(SecondsFromSerial(c.serial), c.seconds) << c.serial;
  }
}

TEST(SecondsFromSerialTest, AgreesWithTheRecordDateTimes) {
  // A record's date-time, built from its texts, and its seconds name the
  // same moment, before 1899-12-30 as after it.
  const char* const texts[][2] = {
      {"1899-12-29", "06:00:00"}, {"1899-12-30", "00:00:00"},
      {"1899-12-31", "23:59:59"}, {"1900-02-28", "12:00:00"},
      {"1900-03-01", "00:00:01"}, {"2000-02-29", "13:14:15"},
      {"1800-07-04", "18:30:00"}, {"0100-01-01", "00:00:00"},
  };
  for (const auto& text : texts) {
    const double serial = DateTimeFromRecordText(text[0], text[1]);
    const int64_t seconds = SecondsFromSerial(serial);
    EXPECT_EQ(Text(seconds), std::string(text[0]) + " " + text[1]);
  }
  // 1900 has no 29 February: the 28th and 1 March are one day apart.
  EXPECT_EQ(At(1900, 3, 1) - At(1900, 2, 28), kDay);
  EXPECT_EQ(At(2000, 3, 1) - At(2000, 2, 28), 2 * kDay);
}

TEST(SecondsFromSerialTest, RefusesValuesOutsideTheCalendar) {
  const double bad[] = {std::nan(""),
                        std::numeric_limits<double>::infinity(),
                        -std::numeric_limits<double>::infinity(),
                        kMaxDateSerial + 1,
                        kMinDateSerial - 1e-6,
                        1e300};
  for (double serial : bad) {
    try {
      SecondsFromSerial(serial);
      ADD_FAILURE() << serial << " was accepted";
    } catch (const Error& error) {
      EXPECT_EQ(error.Number(), 6) << serial;
    }
  }
}

TEST(SecondsFromSerialTest, SerialFromSecondsIsTheInverse) {
  for (int64_t seconds = -3 * kDay - 1; seconds <= 3 * kDay + 1;
       seconds += 997) {
    EXPECT_EQ(SecondsFromSerial(SerialFromSeconds(seconds)), seconds);
  }
  const int64_t ends[] = {At(100, 1, 1), At(9999, 12, 31, 23, 59, 59),
                          At(2024, 2, 29, 23, 59, 59)};
  for (int64_t seconds : ends) {
    EXPECT_EQ(SecondsFromSerial(SerialFromSeconds(seconds)), seconds);
  }
  EXPECT_EQ(Text(-kDay + 6 * kHour), "1899-12-29 06:00:00");
  EXPECT_EQ(SerialFromSeconds(-kDay + 6 * kHour), -0.75);
}

// --- Boundaries ---

struct BoundaryCase {
  const char* name;
  IntervalKey key;
  SummarySettings settings;
  int64_t record;
  int64_t start;  // the interval that holds the record
  int64_t next;   // the start of the one after it
};

void PrintTo(const BoundaryCase& c, std::ostream* out) { *out << c.name; }

// The record's interval is [start, next): the second at `start` and the one
// before `next` are in it; the second before `start` is in the interval that
// ends at `start`; `next` starts the following one.
void ExpectInterval(const BoundaryCase& c) {
  SCOPED_TRACE(c.name);
  const IntervalGrid grid = IntervalGrid::For(c.key, c.settings);
  EXPECT_EQ(Text(grid.StartOf(c.record)), Text(c.start));
  EXPECT_EQ(Text(grid.NextStart(c.start)), Text(c.next));
  EXPECT_EQ(grid.StartOf(c.start), c.start);
  EXPECT_EQ(grid.StartOf(c.next - 1), c.start);
  EXPECT_EQ(grid.StartOf(c.next), c.next);
  const int64_t previous = grid.StartOf(c.start - 1);
  EXPECT_LT(previous, c.start);
  EXPECT_EQ(grid.NextStart(previous), c.start);
}

class IntervalBoundaryTest : public testing::TestWithParam<BoundaryCase> {};

TEST_P(IntervalBoundaryTest, HoldsTheRecordBetweenExactBoundaries) {
  ExpectInterval(GetParam());
}

const int64_t kPlus6 = 6 * kHour;
const int64_t kMinus2 = -2 * kHour;

const BoundaryCase kYearCases[] = {
    {"calendar year",
     IntervalKey::kYear,
     {},
     At(2024, 5, 17, 10),
     At(2024, 1, 1),
     At(2025, 1, 1)},
    {"year from July, spring", IntervalKey::kYear, Years(7), At(2024, 3, 1),
     At(2023, 7, 1), At(2024, 7, 1)},
    {"year from July, its first second", IntervalKey::kYear, Years(7),
     At(2024, 7, 1), At(2024, 7, 1), At(2025, 7, 1)},
    {"year from December", IntervalKey::kYear, Years(12), At(2024, 11, 30),
     At(2023, 12, 1), At(2024, 12, 1)},
    {"year month 0 counts as January", IntervalKey::kYear, Years(0),
     At(2024, 3, 1), At(2024, 1, 1), At(2025, 1, 1)},
    {"year month 13 counts as January", IntervalKey::kYear, Years(13),
     At(2024, 3, 1), At(2024, 1, 1), At(2025, 1, 1)},
    {"year, day start +06:00, early on New Year's Day", IntervalKey::kYear,
     DayStart(kPlus6), At(2024, 1, 1, 5, 59, 59), At(2023, 1, 1, 6),
     At(2024, 1, 1, 6)},
    {"year, day start -02:00, late on New Year's Eve", IntervalKey::kYear,
     DayStart(kMinus2), At(2023, 12, 31, 23), At(2023, 12, 31, 22),
     At(2024, 12, 31, 22)},
    {"year from July, day start -02:00", IntervalKey::kYear, Years(7, kMinus2),
     At(2024, 6, 30, 22, 30), At(2024, 6, 30, 22), At(2025, 6, 30, 22)},
    {"year before 1899-12-30",
     IntervalKey::kYear,
     {},
     At(1899, 6, 1),
     At(1899, 1, 1),
     At(1900, 1, 1)},
    {"year 1900",
     IntervalKey::kYear,
     {},
     At(1900, 3, 1),
     At(1900, 1, 1),
     At(1901, 1, 1)},
};
INSTANTIATE_TEST_SUITE_P(Year, IntervalBoundaryTest,
                         testing::ValuesIn(kYearCases));

const BoundaryCase kQuarterCases[] = {
    {"second quarter",
     IntervalKey::kQuarter,
     {},
     At(2024, 5, 15),
     At(2024, 4, 1),
     At(2024, 7, 1)},
    {"last quarter",
     IntervalKey::kQuarter,
     {},
     At(2024, 12, 31, 23, 59, 59),
     At(2024, 10, 1),
     At(2025, 1, 1)},
    {"February start, January is in November's quarter", IntervalKey::kQuarter,
     Years(2), At(2024, 1, 15), At(2023, 11, 1), At(2024, 2, 1)},
    {"February start, March", IntervalKey::kQuarter, Years(2), At(2024, 3, 31),
     At(2024, 2, 1), At(2024, 5, 1)},
    {"February start, August", IntervalKey::kQuarter, Years(2), At(2024, 8, 1),
     At(2024, 8, 1), At(2024, 11, 1)},
    {"February start, December", IntervalKey::kQuarter, Years(2),
     At(2024, 12, 31), At(2024, 11, 1), At(2025, 2, 1)},
    {"December start, leap February", IntervalKey::kQuarter, Years(12),
     At(2024, 2, 29, 12), At(2023, 12, 1), At(2024, 3, 1)},
    {"quarter, day start +06:00", IntervalKey::kQuarter, DayStart(kPlus6),
     At(2024, 4, 1, 5), At(2024, 1, 1, 6), At(2024, 4, 1, 6)},
    {"quarter, day start -02:00", IntervalKey::kQuarter, DayStart(kMinus2),
     At(2024, 3, 31, 22), At(2024, 3, 31, 22), At(2024, 6, 30, 22)},
};
INSTANTIATE_TEST_SUITE_P(Quarter, IntervalBoundaryTest,
                         testing::ValuesIn(kQuarterCases));

const BoundaryCase kMonthCases[] = {
    {"leap February",
     IntervalKey::kMonth,
     {},
     At(2024, 2, 29, 23, 59, 59),
     At(2024, 2, 1),
     At(2024, 3, 1)},
    {"February 2023",
     IntervalKey::kMonth,
     {},
     At(2023, 2, 14),
     At(2023, 2, 1),
     At(2023, 3, 1)},
    {"February 1900 has 28 days",
     IntervalKey::kMonth,
     {},
     At(1900, 2, 28),
     At(1900, 2, 1),
     At(1900, 3, 1)},
    {"February 2000 has 29 days",
     IntervalKey::kMonth,
     {},
     At(2000, 2, 29),
     At(2000, 2, 1),
     At(2000, 3, 1)},
    {"April has 30 days",
     IntervalKey::kMonth,
     {},
     At(2024, 4, 30),
     At(2024, 4, 1),
     At(2024, 5, 1)},
    {"December into January",
     IntervalKey::kMonth,
     {},
     At(2024, 12, 31, 12),
     At(2024, 12, 1),
     At(2025, 1, 1)},
    {"December 1899, before the origin",
     IntervalKey::kMonth,
     {},
     At(1899, 12, 15),
     At(1899, 12, 1),
     At(1900, 1, 1)},
    {"month, day start +06:00, early on the 1st", IntervalKey::kMonth,
     DayStart(kPlus6), At(2024, 3, 1, 5), At(2024, 2, 1, 6), At(2024, 3, 1, 6)},
    {"month, day start -02:00, late on the last day", IntervalKey::kMonth,
     DayStart(kMinus2), At(2024, 2, 29, 23), At(2024, 2, 29, 22),
     At(2024, 3, 31, 22)},
};
INSTANTIATE_TEST_SUITE_P(Month, IntervalBoundaryTest,
                         testing::ValuesIn(kMonthCases));

// 2024-05-15 is a Wednesday.
const BoundaryCase kWeekCases[] = {
    {"Sunday", IntervalKey::kWeek, Weeks(0), At(2024, 5, 15, 12),
     At(2024, 5, 12), At(2024, 5, 19)},
    {"Monday", IntervalKey::kWeek, Weeks(1), At(2024, 5, 15, 12),
     At(2024, 5, 13), At(2024, 5, 20)},
    {"Tuesday", IntervalKey::kWeek, Weeks(2), At(2024, 5, 15, 12),
     At(2024, 5, 14), At(2024, 5, 21)},
    {"Wednesday", IntervalKey::kWeek, Weeks(3), At(2024, 5, 15, 12),
     At(2024, 5, 15), At(2024, 5, 22)},
    {"Thursday", IntervalKey::kWeek, Weeks(4), At(2024, 5, 15, 12),
     At(2024, 5, 9), At(2024, 5, 16)},
    {"Friday", IntervalKey::kWeek, Weeks(5), At(2024, 5, 15, 12),
     At(2024, 5, 10), At(2024, 5, 17)},
    {"Saturday", IntervalKey::kWeek, Weeks(6), At(2024, 5, 15, 12),
     At(2024, 5, 11), At(2024, 5, 18)},
    {"week day 7 counts as Sunday", IntervalKey::kWeek, Weeks(7),
     At(2024, 5, 15), At(2024, 5, 12), At(2024, 5, 19)},
    {"week day -1 counts as Sunday", IntervalKey::kWeek, Weeks(-1),
     At(2024, 5, 15), At(2024, 5, 12), At(2024, 5, 19)},
    {"Wednesday, day start +06:00, early on Wednesday", IntervalKey::kWeek,
     Weeks(3, kPlus6), At(2024, 5, 15, 5, 59, 59), At(2024, 5, 8, 6),
     At(2024, 5, 15, 6)},
    {"Wednesday, day start -02:00, late on Tuesday", IntervalKey::kWeek,
     Weeks(3, kMinus2), At(2024, 5, 14, 22), At(2024, 5, 14, 22),
     At(2024, 5, 21, 22)},
    {"across the turn of the year", IntervalKey::kWeek, Weeks(1),
     At(2025, 1, 1), At(2024, 12, 30), At(2025, 1, 6)},
    {"before the origin (1899-12-29 was a Friday)", IntervalKey::kWeek,
     Weeks(0), At(1899, 12, 29), At(1899, 12, 24), At(1899, 12, 31)},
};
INSTANTIATE_TEST_SUITE_P(Week, IntervalBoundaryTest,
                         testing::ValuesIn(kWeekCases));

const BoundaryCase kDayCases[] = {
    {"midnight to midnight",
     IntervalKey::kDay,
     {},
     At(2024, 5, 15, 13),
     At(2024, 5, 15),
     At(2024, 5, 16)},
    {"day start +06:00, before it", IntervalKey::kDay, DayStart(kPlus6),
     At(2024, 5, 15, 5), At(2024, 5, 14, 6), At(2024, 5, 15, 6)},
    {"day start +06:00, after it", IntervalKey::kDay, DayStart(kPlus6),
     At(2024, 5, 15, 7), At(2024, 5, 15, 6), At(2024, 5, 16, 6)},
    {"day start -02:00: 23:00 on the 1st is in the day of the 2nd",
     IntervalKey::kDay, DayStart(kMinus2), At(2024, 5, 1, 23),
     At(2024, 5, 1, 22), At(2024, 5, 2, 22)},
    {"leap day",
     IntervalKey::kDay,
     {},
     At(2024, 2, 29, 23, 59, 59),
     At(2024, 2, 29),
     At(2024, 3, 1)},
    {"before the origin",
     IntervalKey::kDay,
     {},
     At(1899, 12, 29, 6),
     At(1899, 12, 29),
     At(1899, 12, 30)},
    {"before the origin, day start +06:00", IntervalKey::kDay, DayStart(kPlus6),
     At(1899, 12, 30, 5), At(1899, 12, 29, 6), At(1899, 12, 30, 6)},
};
INSTANTIATE_TEST_SUITE_P(Day, IntervalBoundaryTest,
                         testing::ValuesIn(kDayCases));

const BoundaryCase kShiftCases[] = {
    {"8 hours, second shift", IntervalKey::kShift, Shifts(8),
     At(2024, 5, 15, 15), At(2024, 5, 15, 8), At(2024, 5, 15, 16)},
    {"8 hours, day start -02:00, late evening", IntervalKey::kShift,
     Shifts(8, kMinus2), At(2024, 5, 15, 23), At(2024, 5, 15, 22),
     At(2024, 5, 16, 6)},
    {"12 hours, last second of the day", IntervalKey::kShift, Shifts(12),
     At(2024, 5, 15, 23, 59, 59), At(2024, 5, 15, 12), At(2024, 5, 16)},
    {"7 hours, the short last block", IntervalKey::kShift, Shifts(7),
     At(2024, 5, 15, 22), At(2024, 5, 15, 21), At(2024, 5, 16)},
    {"7 hours, the block before it", IntervalKey::kShift, Shifts(7),
     At(2024, 5, 15, 20), At(2024, 5, 15, 14), At(2024, 5, 15, 21)},
    {"7 hours, day start +06:00, short block before it", IntervalKey::kShift,
     Shifts(7, kPlus6), At(2024, 5, 16, 5), At(2024, 5, 16, 3),
     At(2024, 5, 16, 6)},
    {"7 hours, day start +06:00, block across midnight", IntervalKey::kShift,
     Shifts(7, kPlus6), At(2024, 5, 16, 1), At(2024, 5, 15, 20),
     At(2024, 5, 16, 3)},
    {"1.5 hours", IntervalKey::kShift, Shifts(1.5), At(2024, 5, 15, 2, 59),
     At(2024, 5, 15, 1, 30), At(2024, 5, 15, 3)},
    {"30 hours is one block per day", IntervalKey::kShift, Shifts(30, kPlus6),
     At(2024, 5, 15, 3), At(2024, 5, 14, 6), At(2024, 5, 15, 6)},
    {"before the origin", IntervalKey::kShift, Shifts(8), At(1899, 12, 29, 9),
     At(1899, 12, 29, 8), At(1899, 12, 29, 16)},
};
INSTANTIATE_TEST_SUITE_P(Shift, IntervalBoundaryTest,
                         testing::ValuesIn(kShiftCases));

// Clock units ignore the day start.
const BoundaryCase kClockCases[] = {
    {"hour", IntervalKey::kHour, DayStart(30 * 60), At(2024, 5, 15, 10, 30),
     At(2024, 5, 15, 10), At(2024, 5, 15, 11)},
    {"last hour of the day",
     IntervalKey::kHour,
     {},
     At(2024, 12, 31, 23, 59, 59),
     At(2024, 12, 31, 23),
     At(2025, 1, 1)},
    {"minute", IntervalKey::kMinute, DayStart(30), At(2024, 5, 15, 10, 30, 59),
     At(2024, 5, 15, 10, 30), At(2024, 5, 15, 10, 31)},
    {"minute before the origin",
     IntervalKey::kMinute,
     {},
     At(1899, 12, 29, 23, 59, 30),
     At(1899, 12, 29, 23, 59),
     0},
    {"second",
     IntervalKey::kSecond,
     {},
     At(2024, 5, 15, 10, 30, 7),
     At(2024, 5, 15, 10, 30, 7),
     At(2024, 5, 15, 10, 30, 8)},
    {"second before the origin", IntervalKey::kSecond, {}, -1, -1, 0},
};
INSTANTIATE_TEST_SUITE_P(Clock, IntervalBoundaryTest,
                         testing::ValuesIn(kClockCases));

const BoundaryCase kSpecificCases[] = {
    {"15 minutes", IntervalKey::kSpecific, Every(15 * 60),
     At(2024, 5, 15, 10, 7), At(2024, 5, 15, 10), At(2024, 5, 15, 10, 15)},
    {"15 minutes from a day start of +06:05", IntervalKey::kSpecific,
     Every(15 * 60, kPlus6 + 5 * 60), At(2024, 5, 15, 10, 7),
     At(2024, 5, 15, 10, 5), At(2024, 5, 15, 10, 20)},
    // 7 minutes do not divide a day: the blocks run on from 1899-12-30.
    {"7 minutes, across a midnight", IntervalKey::kSpecific, Every(7 * 60),
     At(1899, 12, 31), At(1899, 12, 30, 23, 55), At(1899, 12, 31, 0, 2)},
    {"7 minutes, before the origin", IntervalKey::kSpecific, Every(7 * 60), -1,
     -7 * 60, 0},
    {"25 hours", IntervalKey::kSpecific, Every(25 * kHour), At(1900, 1, 1),
     At(1899, 12, 31, 1), At(1900, 1, 1, 2)},
    {"25 hours from a day start of -02:00", IntervalKey::kSpecific,
     Every(25 * kHour, kMinus2), At(1899, 12, 30), At(1899, 12, 29, 22),
     At(1899, 12, 30, 23)},
};
INSTANTIATE_TEST_SUITE_P(Specific, IntervalBoundaryTest,
                         testing::ValuesIn(kSpecificCases));

// --- Settings that make no grid ---

TEST(IntervalGridTest, RefusesSettingsThatMakeNoGridAndNamesThem) {
  struct Case {
    IntervalKey key;
    SummarySettings settings;
    const char* setting;
    const char* value;
  };
  const Case cases[] = {
      {IntervalKey::kSpecific, Every(0), "Interval", "0 seconds"},
      {IntervalKey::kSpecific, Every(-60), "Interval", "-60 seconds"},
      {IntervalKey::kSpecific, Every(int64_t{1} << 62), "Interval",
       "4611686018427387904 seconds"},
      {IntervalKey::kShift, Shifts(0), "ShiftDuration", "0 hours"},
      {IntervalKey::kShift, Shifts(-8), "ShiftDuration", "-8 hours"},
      {IntervalKey::kShift, Shifts(std::nan("")), "ShiftDuration", "nan"},
      {IntervalKey::kShift, Shifts(0.0001), "ShiftDuration", "0.0001 hours"},
  };
  for (const Case& c : cases) {
    try {
      IntervalGrid::For(c.key, c.settings);
      ADD_FAILURE() << c.setting << " " << c.value << " was accepted";
    } catch (const Error& error) {
      EXPECT_EQ(error.Number(), 5) << c.value;
      EXPECT_NE(error.Description().find(c.setting), std::string::npos)
          << error.Description();
      EXPECT_NE(error.Description().find(c.value), std::string::npos)
          << error.Description();
    }
  }
}

TEST(IntervalGridTest, ChecksOnlyTheSettingsOfItsKey) {
  SummarySettings unusable;
  unusable.interval_seconds = 0;
  unusable.shift_hours = -1;
  for (int key = -9; key <= -1; ++key) {
    if (key == static_cast<int>(IntervalKey::kShift)) continue;
    EXPECT_NO_THROW(IntervalGrid::For(static_cast<IntervalKey>(key), unusable))
        << key;
  }
  unusable.interval_seconds = 60;
  EXPECT_NO_THROW(IntervalGrid::For(IntervalKey::kSpecific, unusable));
  unusable.interval_seconds = 0;
  unusable.shift_hours = 8;
  EXPECT_NO_THROW(IntervalGrid::For(IntervalKey::kShift, unusable));
}

TEST(IntervalGridTest, RefusesKeysThatAreNotIntervals) {
  for (int32_t key : {-10, 1, 7}) {
    try {
      IntervalGrid::For(static_cast<IntervalKey>(key), Every(60));
      ADD_FAILURE() << key << " was accepted";
    } catch (const Error& error) {
      EXPECT_EQ(error.Number(), 5) << key;
    }
  }
}

TEST(IntervalGridTest, CalendarKeysRefuseDaysOutsideTheCalendar) {
  const IntervalGrid month = IntervalGrid::For(IntervalKey::kMonth, {});
  try {
    month.StartOf(At(100, 1, 1) - 1);
    ADD_FAILURE() << "a day before 0100-01-01 was placed";
  } catch (const Error& error) {
    EXPECT_EQ(error.Number(), 6);
  }
  // The last month of the calendar still has an end.
  EXPECT_EQ(month.NextStart(month.StartOf(At(9999, 12, 31, 23, 59, 59))),
            At(9999, 12, 31) + kDay);
  // A year from July holding January 0100 begins before the calendar.
  const IntervalGrid july = IntervalGrid::For(IntervalKey::kYear, Years(7));
  EXPECT_EQ(july.StartOf(At(100, 1, 1)), At(100, 1, 1) - 184 * kDay);
}

// --- The shape of the grid over sweeps of times ---

struct SweepCase {
  const char* name;
  IntervalKey key;
  SummarySettings settings;
  int64_t from;
  int64_t step;  // an odd step so that the times fall all over the intervals
};

TEST(IntervalGridTest, IntervalsAreContiguousAndHoldTheirTimes) {
  const SweepCase sweeps[] = {
      {"years from July, -02:00", IntervalKey::kYear, Years(7, kMinus2),
       At(1896, 1, 1), 86400 * 3 + 17},
      {"quarters from February, +06:00", IntervalKey::kQuarter,
       Years(2, kPlus6), At(1898, 1, 1), 86400 + 4999},
      {"months, -02:00", IntervalKey::kMonth, DayStart(kMinus2), At(1899, 1, 1),
       86400 / 2 + 7},
      {"weeks from Thursday, +06:00", IntervalKey::kWeek, Weeks(4, kPlus6),
       At(1899, 11, 1), 7919},
      {"days, -02:00", IntervalKey::kDay, DayStart(kMinus2), -20 * kDay, 3607},
      {"7-hour shifts, +06:00", IntervalKey::kShift, Shifts(7, kPlus6),
       -10 * kDay, 1013},
      {"0.35-hour shifts, -02:00", IntervalKey::kShift, Shifts(0.35, kMinus2),
       -2 * kDay, 97},
      {"hours", IntervalKey::kHour, {}, -3 * kDay, 211},
      {"minutes", IntervalKey::kMinute, {}, -kDay / 4, 7},
      {"seconds", IntervalKey::kSecond, {}, -5000, 1},
      {"11-minute intervals, +06:05", IntervalKey::kSpecific,
       Every(11 * 60, kPlus6 + 300), -5 * kDay, 173},
  };
  constexpr int kSteps = 2000;
  for (const SweepCase& sweep : sweeps) {
    SCOPED_TRACE(sweep.name);
    const IntervalGrid grid = IntervalGrid::For(sweep.key, sweep.settings);
    int failures = 0;
    for (int i = 0; i < kSteps && failures < 5; ++i) {
      const int64_t t = sweep.from + i * sweep.step;
      const int64_t start = grid.StartOf(t);
      const int64_t next = grid.NextStart(start);
      const bool holds = start <= t && t < next;
      const bool next_is_a_start = grid.StartOf(next) == next;
      const bool start_is_a_start = grid.StartOf(start) == start;
      const bool contiguous = grid.NextStart(grid.StartOf(start - 1)) == start;
      if (!(holds && next_is_a_start && start_is_a_start && contiguous)) {
        ++failures;
        ADD_FAILURE() << Text(t) << ": [" << Text(start) << ", " << Text(next)
                      << ")";
      }
    }
  }
}

TEST(IntervalGridTest, IntervalsThatDivideADayLineUpWithEveryDayStart) {
  const int64_t day_starts[] = {0, kPlus6 + 5 * 60, kMinus2};
  for (int64_t day_start : day_starts) {
    const IntervalGrid specific =
        IntervalGrid::For(IntervalKey::kSpecific, Every(15 * 60, day_start));
    const IntervalGrid shifts =
        IntervalGrid::For(IntervalKey::kShift, Shifts(7, day_start));
    for (int64_t day = -400; day <= 400; day += 13) {
      const int64_t begins = day * kDay + day_start;
      EXPECT_EQ(specific.StartOf(begins), begins) << Text(begins);
      EXPECT_EQ(specific.StartOf(begins - 1), begins - 15 * 60) << Text(begins);
      EXPECT_EQ(shifts.StartOf(begins), begins) << Text(begins);
      EXPECT_EQ(shifts.StartOf(begins - 1), begins - 3 * kHour) << Text(begins);
    }
  }
}

}  // namespace
}  // namespace rz
