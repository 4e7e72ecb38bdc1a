// Copyright 2026 The Veltmark authors.

#include "core/date_time.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <string>

#include "core/error.h"

namespace rz {
namespace {

constexpr double kSecond = 1.0 / 86400;

template <typename Call>
void ExpectError(int number, Call call, const std::string& context) {
  try {
    call();
    ADD_FAILURE() << context << ": no error";
  } catch (const Error& error) {
    EXPECT_EQ(error.Number(), number) << context << ": " << error.what();
  }
}

TEST(DateTimeTest, DateSerialCarriesEveryUnit) {
  struct Row {
    int64_t year, month, day;
    const char* date;
  } rows[] = {
      {2024, 2, 31, "2024-03-02"},   {2024, -1, 1, "2023-11-01"},
      {2024, 1, -1, "2023-12-30"},   {2024, 0, 1, "2023-12-01"},
      {2024, 13, 1, "2025-01-01"},   {2024, 3, 0, "2024-02-29"},
      {2023, 3, 0, "2023-02-28"},    {1900, 3, 0, "1900-02-28"},
      {2000, 3, 0, "2000-02-29"},    {1900, 2, 29, "1900-03-01"},
      {2024, -24, 1, "2021-12-01"},  {2024, 1, 366, "2024-12-31"},
      {2024, 1, -365, "2022-12-31"}, {2024, 25, 0, "2025-12-31"},
      {1899, 12, 30, "1899-12-30"},  {100, 1, 1, "0100-01-01"},
      {9999, 12, 31, "9999-12-31"},  {9998, 13, 1, "9999-01-01"},
      {2006, 10, 10, "2006-10-10"},
  };
  for (const Row& row : rows) {
    EXPECT_EQ(FormatDate(DateSerial(row.year, row.month, row.day)), row.date)
        << row.year << "/" << row.month << "/" << row.day;
  }
  EXPECT_EQ(DateSerial(1899, 12, 30), 0);
  EXPECT_EQ(DateSerial(2006, 10, 10), 39000);
  EXPECT_EQ(DateSerial(100, 1, 1), kMinDateSerial);
  EXPECT_EQ(DateSerial(9999, 12, 31), kMaxDateSerial);
}

TEST(DateTimeTest, DateSerialOutOfRangeRaisesOverflow) {
  struct Row {
    int64_t year, month, day;
  } rows[] = {
      {99, 12, 31},
      {10000, 1, 1},
      {9999, 12, 32},
      {100, 1, 0},
      {0, 0, 0},
      {2024, 1, 1000000000},
      {std::numeric_limits<int64_t>::max(), 1, 1},
      {2024, std::numeric_limits<int64_t>::min(), 1},
      {2024, 1, std::numeric_limits<int64_t>::min()},
  };
  for (const Row& row : rows) {
    ExpectError(
        6, [&] { DateSerial(row.year, row.month, row.day); },
        std::to_string(row.year) + "/" + std::to_string(row.month) + "/" +
            std::to_string(row.day));
  }
}

TEST(DateTimeTest, TimeSerialCarriesAcrossDays) {
  EXPECT_EQ(TimeSerial(24, 0, 0), 1.0);
  EXPECT_EQ(TimeSerial(12, 0, 0), 0.5);
  EXPECT_EQ(TimeSerial(0, 0, -1), -kSecond);
  EXPECT_EQ(TimeSerial(0, 90, 0), 1.5 / 24);
  EXPECT_EQ(TimeSerial(1, -30, 0), 0.5 / 24);
  EXPECT_EQ(TimeSerial(-1, 0, 0), -1.0 / 24);
  // At 00:20 the previous hour starts on the day before.
  const double now = DateSerial(2024, 3, 1) + TimeSerial(0, 20, 0);
  EXPECT_EQ(FormatDateTime(std::floor(now) + TimeSerial(Hour(now) - 1, 0, 0)),
            "2024-02-29 23:00:00");
  ExpectError(
      6, [] { TimeSerial(100000000, 0, 0); }, "huge hours");
}

TEST(DateTimeTest, SplitRoundsToTheNearestSecond) {
  struct Row {
    double serial;
    const char* text;
  } rows[] = {
      {39000.5, "2006-10-10 12:00:00"},
      {0.99999999, "1899-12-31 00:00:00"},
      {1 - 0.6 * kSecond, "1899-12-30 23:59:59"},
      {1 - 0.4 * kSecond, "1899-12-31 00:00:00"},
      {-1.25, "1899-12-28 18:00:00"},
      {-kSecond, "1899-12-29 23:59:59"},
      {kMinDateSerial, "0100-01-01 00:00:00"},
      {kMaxDateSerial + 1 - kSecond, "9999-12-31 23:59:59"},
  };
  for (const Row& row : rows) {
    EXPECT_EQ(FormatDateTime(row.serial), row.text) << row.text;
  }
  const DateTimeParts parts = SplitDateTime(39000.5 + 3661 * kSecond);
  EXPECT_EQ(parts.year, 2006);
  EXPECT_EQ(parts.month, 10);
  EXPECT_EQ(parts.day, 10);
  EXPECT_EQ(parts.hour, 13);
  EXPECT_EQ(parts.minute, 1);
  EXPECT_EQ(parts.second, 1);
  EXPECT_EQ(Minute(0.99999999), 0);
  EXPECT_EQ(Day(0.99999999), 31);
}

TEST(DateTimeTest, SplitOutOfRangeRaisesOverflow) {
  const double serials[] = {
      kMaxDateSerial + 1,
      kMaxDateSerial + 1 - 0.1 * kSecond,  // Rounds into the year 10000.
      kMinDateSerial - kSecond,
      std::numeric_limits<double>::quiet_NaN(),
      std::numeric_limits<double>::infinity(),
      -1e300,
  };
  for (double serial : serials) {
    ExpectError(
        6, [&] { SplitDateTime(serial); }, std::to_string(serial));
    ExpectError(
        6, [&] { Weekday(serial); }, std::to_string(serial));
  }
}

TEST(DateTimeTest, WeekdayCountsFromTheFirstDay) {
  struct Row {
    double serial;
    int first_day;
    int weekday;
  } rows[] = {
      {0, 1, 7},  // 1899-12-30, a Saturday.
      {0, 7, 1},
      {1, 1, 1},        // A Sunday.
      {-1, 1, 6},       // 1899-12-29, a Friday.
      {39000.5, 1, 3},  // 2006-10-10, a Tuesday.
      {39000.5, 2, 2},
      {39000.5, 3, 1},
      {39000.5, 4, 7},
      {DateSerial(2024, 2, 29), 1, 5},              // A Thursday.
      {DateSerial(2024, 2, 29) + 0.9999999, 1, 6},  // Rounds to Friday.
      {kMinDateSerial, 1, 6},                       // 0100-01-01, a Friday.
  };
  for (const Row& row : rows) {
    EXPECT_EQ(Weekday(row.serial, row.first_day), row.weekday)
        << row.serial << " from " << row.first_day;
  }
  ExpectError(
      5, [] { Weekday(0, 0); }, "first day 0");
  ExpectError(
      5, [] { Weekday(0, 8); }, "first day 8");
}

TEST(DateTimeTest, FormatTimeWritesTheTimeOfDayOnly) {
  EXPECT_EQ(FormatTime(-kSecond), "23:59:59");
  EXPECT_EQ(FormatTime(1.5), "12:00:00");
  EXPECT_EQ(FormatTime(TimeSerial(25, 0, 0)), "01:00:00");
  EXPECT_EQ(FormatTime(0), "00:00:00");
  EXPECT_EQ(FormatDate(39000.75), "2006-10-10");
}

TEST(DateTimeTest, ParseDateTimeAcceptsTheFiveForms) {
  struct Row {
    const char* text;
    double serial;
  } rows[] = {
      {"2006-10-10 12:00:00", 39000.5},
      {"  2006-10-10 12:00  ", 39000.5},
      {"2006-10-10", 39000},
      {"\t2006-10-10\t", 39000},
      {"12:00:00", 0.5},
      {"06:00", 0.25},
      {"2000-02-29", DateSerial(2000, 2, 29)},
      {"0100-01-01 00:00:00", kMinDateSerial},
      {"9999-12-31 23:59:59", kMaxDateSerial + TimeSerial(23, 59, 59)},
      {"23:59:59", TimeSerial(23, 59, 59)},
  };
  for (const Row& row : rows) {
    const std::optional<double> serial = ParseDateTime(row.text);
    ASSERT_TRUE(serial.has_value()) << row.text;
    EXPECT_EQ(*serial, row.serial) << row.text;
  }
}

TEST(DateTimeTest, ParseDateTimeRejectsEverythingElse) {
  const char* texts[] = {
      "",
      "   ",
      "1900-02-29",
      "2023-02-29",
      "2024-04-31",
      "2024-13-01",
      "2024-00-10",
      "2024-01-00",
      "0099-12-31",
      "24:00",
      "12:60",
      "12:00:60",
      "2024-1-05",
      "2024/01/05",
      "2024-01-05T10:00",
      "2024-01-05  10:00",
      "2024-01-05 10",
      "12:00:0x",
      "+2:00",
      "2024-01-05 10:00:00 PM",
      "abcdefghij",
  };
  for (const char* text : texts) {
    EXPECT_FALSE(ParseDateTime(text).has_value()) << '"' << text << '"';
  }
}

// Walks 1900..2100 day by day with its own calendar: every day must give
// the next serial, split into the same parts and read back from its text.
TEST(DateTimeTest, EveryDayOf1900To2100RoundTrips) {
  const int kMonthDays[12] = {31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
  double expected = DateSerial(1900, 1, 1);
  int days = 0;
  for (int year = 1900; year <= 2100; ++year) {
    const bool leap = year % 4 == 0 && (year % 100 != 0 || year % 400 == 0);
    for (int month = 1; month <= 12; ++month) {
      const int length = kMonthDays[month - 1] + (month == 2 && leap);
      for (int day = 1; day <= length; ++day, ++days, expected += 1) {
        const int seconds = (days * 7919) % 86400;
        const double serial =
            DateSerial(year, month, day) + TimeSerial(0, 0, seconds);
        ASSERT_EQ(std::floor(serial), expected) << year << "-" << month;
        const DateTimeParts parts = SplitDateTime(serial);
        ASSERT_EQ(parts.year, year);
        ASSERT_EQ(parts.month, month);
        ASSERT_EQ(parts.day, day);
        ASSERT_EQ(parts.hour * 3600 + parts.minute * 60 + parts.second,
                  seconds);
        const std::string text = FormatDateTime(serial);
        ASSERT_EQ(ParseDateTime(text), serial) << text;
      }
    }
  }
  EXPECT_EQ(days, 73414);  // 201 years, 49 of them leap years.
}

TEST(DateTimeTest, EverySecondOfADayRoundTrips) {
  const double dates[] = {DateSerial(2000, 2, 29), 0, -2};
  for (double date : dates) {
    for (int second = 0; second < 86400; ++second) {
      const double serial = date + TimeSerial(0, 0, second);
      const DateTimeParts parts = SplitDateTime(serial);
      ASSERT_EQ(parts.hour * 3600 + parts.minute * 60 + parts.second, second)
          << date;
      ASSERT_EQ(ParseDateTime(FormatDateTime(serial)), serial) << serial;
      ASSERT_EQ(ParseDateTime(FormatTime(serial)), TimeSerial(0, 0, second))
          << serial;
    }
  }
}

TEST(DateTimeTest, ParseTimeOfDayReadsFixedCharacterPositions) {
  struct Row {
    const char* text;
    double serial;
  } rows[] = {
      {"08:30:15", TimeSerial(8, 30, 15)},
      {"08:30", TimeSerial(8, 30, 0)},
      {"8:30", TimeSerial(8, 0, 0)},  // Characters 4-5 are "0".
      {"12:5", TimeSerial(12, 5, 0)},
      {"", 0},
      {"xx:30:00", TimeSerial(0, 30, 0)},
      {"25:00:00", TimeSerial(25, 0, 0)},
      {"-1:00:00", TimeSerial(-1, 0, 0)},
      {".5:00:00", 0},  // Half an hour rounds to 0 (to even).
      {"1.5", TimeSerial(1, 0, 0)},
      {"10:20:30 and more", TimeSerial(10, 20, 30)},
  };
  for (const Row& row : rows) {
    EXPECT_EQ(ParseTimeOfDay(row.text), row.serial) << '"' << row.text << '"';
  }
}

TEST(DateTimeTest, DateTimeFromRecordTextIsLenient) {
  struct Row {
    const char* date;
    const char* time;
    const char* text;
  } rows[] = {
      {"2006-10-10", "12:00:00", "2006-10-10 12:00:00"},
      {"2006/10/10", "12", "2006-10-10 12:00:00"},
      {"2024-02-31", "", "2024-03-02 00:00:00"},
      {"2006-10-10", "24:00:00", "2006-10-11 00:00:00"},
      {"2006-10", "01:02:03", "2006-09-30 01:02:03"},  // Day 0.
      {"2006-10-10xyz", "7:30", "2006-10-10 07:00:00"},
  };
  for (const Row& row : rows) {
    EXPECT_EQ(FormatDateTime(DateTimeFromRecordText(row.date, row.time)),
              row.text)
        << row.date << " " << row.time;
  }
  ExpectError(
      6, [] { DateTimeFromRecordText("", "12:00:00"); }, "empty date");
  ExpectError(
      6, [] { DateTimeFromRecordText("9e99-01-01", ""); }, "9e99");
}

}  // namespace
}  // namespace rz
