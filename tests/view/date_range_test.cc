// Copyright 2026 The Veltmark authors.

#include "view/date_range.h"

#include <gtest/gtest.h>

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "core/date_time.h"
#include "support/error_number.h"
#include "view/view_state.h"

namespace rz {
namespace {

double At(std::string_view text) {
  const std::optional<double> value = ParseDateTime(text);
  if (!value) ADD_FAILURE() << "bad test date " << text;
  return value.value_or(0);
}

std::string Text(std::optional<double> value) {
  return value ? FormatDateTime(*value) : "unchanged";
}

RangeCalendar Calendar(int year_begins, int week_days, double offset_hours,
                       double shift_hours) {
  return {year_begins, week_days, offset_hours / 24, shift_hours / 24};
}

// Every calendar type (0..13) resolved at one `now`: expected From text and
// expected To text per type index.
struct TypeRow {
  int32_t type;
  const char* from;
  const char* to;
};

void ExpectAllTypes(const char* now, const RangeCalendar& calendar,
                    const std::vector<TypeRow>& rows) {
  for (const TypeRow& row : rows) {
    EXPECT_EQ(Text(BegOfPeriod(row.type, At(now), calendar)), row.from)
        << "From " << kFromTypeNames[row.type] << " at " << now;
    EXPECT_EQ(Text(EndOfPeriod(row.type, At(now), calendar)), row.to)
        << "To " << kToTypeNames[row.type] << " at " << now;
  }
}

TEST(DateRangeTest, EveryTypeAtAndJustBeforeTheYearBoundary) {
  // Monday 2024-01-01 00:00 starts every period at once (week from Sunday
  // 31 Dec, W = 2); the quarter formula lands on month -2 = October.
  ExpectAllTypes("2024-01-01 00:00:00", Calendar(1, 0, 0, 8),
                 {{0, "2023-01-01 00:00:00", "2023-12-31 23:59:59"},
                  {1, "2023-10-01 00:00:00", "2023-12-31 23:59:59"},
                  {2, "2023-12-01 00:00:00", "2023-12-31 23:59:59"},
                  {3, "2023-12-24 00:00:00", "2023-12-30 23:59:59"},
                  {4, "2023-12-31 00:00:00", "2023-12-31 23:59:59"},
                  {5, "2023-12-31 16:00:00", "2023-12-31 23:59:59"},
                  {6, "2023-12-31 23:00:00", "2023-12-31 23:59:59"},
                  {7, "2024-01-01 00:00:00", "2024-12-31 23:59:59"},
                  {8, "2024-01-01 00:00:00", "2024-03-31 23:59:59"},
                  {9, "2024-01-01 00:00:00", "2024-01-31 23:59:59"},
                  {10, "2023-12-31 00:00:00", "2024-01-06 23:59:59"},
                  {11, "2024-01-01 00:00:00", "2024-01-01 23:59:59"},
                  {12, "2024-01-01 00:00:00", "2024-01-01 07:59:59"},
                  {13, "2024-01-01 00:00:00", "2024-01-01 00:59:59"}});
  // One second earlier, Sunday (W = 1): everything is still in 2023 and
  // the next shift boundary is midnight.
  ExpectAllTypes("2023-12-31 23:59:59", Calendar(1, 0, 0, 8),
                 {{0, "2022-01-01 00:00:00", "2022-12-31 23:59:59"},
                  {1, "2023-07-01 00:00:00", "2023-09-30 23:59:59"},
                  {2, "2023-11-01 00:00:00", "2023-11-30 23:59:59"},
                  {3, "2023-12-24 00:00:00", "2023-12-30 23:59:59"},
                  {4, "2023-12-30 00:00:00", "2023-12-30 23:59:59"},
                  {5, "2023-12-31 08:00:00", "2023-12-31 15:59:59"},
                  {6, "2023-12-31 22:00:00", "2023-12-31 22:59:59"},
                  {7, "2023-01-01 00:00:00", "2023-12-31 23:59:59"},
                  {8, "2023-10-01 00:00:00", "2023-12-31 23:59:59"},
                  {9, "2023-12-01 00:00:00", "2023-12-31 23:59:59"},
                  {10, "2023-12-31 00:00:00", "2024-01-06 23:59:59"},
                  {11, "2023-12-31 00:00:00", "2023-12-31 23:59:59"},
                  {12, "2023-12-31 16:00:00", "2023-12-31 23:59:59"},
                  {13, "2023-12-31 23:00:00", "2023-12-31 23:59:59"}});
}

TEST(DateRangeTest, EveryTypeAroundADayStartOfSixWithAJulyYear) {
  // Day start +06:00, year from July (quarters Jul/Oct/Jan/Apr), weeks
  // from Monday, 8-hour shifts at 06, 14, 22. Monday 2024-07-01 06:00 is
  // the first moment of the new year, quarter, month, week and day.
  ExpectAllTypes("2024-07-01 06:00:00", Calendar(7, 1, 6, 8),
                 {{0, "2023-07-01 06:00:00", "2024-07-01 05:59:59"},
                  {1, "2024-04-01 06:00:00", "2024-07-01 05:59:59"},
                  {2, "2024-06-01 06:00:00", "2024-07-01 05:59:59"},
                  {3, "2024-06-24 06:00:00", "2024-07-01 05:59:59"},
                  {4, "2024-06-30 06:00:00", "2024-07-01 05:59:59"},
                  {5, "2024-06-30 22:00:00", "2024-07-01 05:59:59"},
                  {6, "2024-07-01 05:00:00", "2024-07-01 05:59:59"},
                  {7, "2024-07-01 06:00:00", "2025-07-01 05:59:59"},
                  {8, "2024-07-01 06:00:00", "2024-10-01 05:59:59"},
                  {9, "2024-07-01 06:00:00", "2024-08-01 05:59:59"},
                  {10, "2024-07-01 06:00:00", "2024-07-08 05:59:59"},
                  {11, "2024-07-01 06:00:00", "2024-07-02 05:59:59"},
                  {12, "2024-07-01 06:00:00", "2024-07-01 13:59:59"},
                  {13, "2024-07-01 06:00:00", "2024-07-01 06:59:59"}});
  // One second earlier every check date (1 Jul 06:00) lies in the future,
  // so every calendar type takes its alternative one period back; the hour
  // types ignore the day start.
  ExpectAllTypes("2024-07-01 05:59:59", Calendar(7, 1, 6, 8),
                 {{0, "2022-07-01 06:00:00", "2023-07-01 05:59:59"},
                  {1, "2024-01-01 06:00:00", "2024-04-01 05:59:59"},
                  {2, "2024-05-01 06:00:00", "2024-06-01 05:59:59"},
                  {3, "2024-06-17 06:00:00", "2024-06-24 05:59:59"},
                  {4, "2024-06-29 06:00:00", "2024-06-30 05:59:59"},
                  {5, "2024-06-30 14:00:00", "2024-06-30 21:59:59"},
                  {6, "2024-07-01 04:00:00", "2024-07-01 04:59:59"},
                  {7, "2023-07-01 06:00:00", "2024-07-01 05:59:59"},
                  {8, "2024-04-01 06:00:00", "2024-07-01 05:59:59"},
                  {9, "2024-06-01 06:00:00", "2024-07-01 05:59:59"},
                  {10, "2024-06-24 06:00:00", "2024-07-01 05:59:59"},
                  {11, "2024-06-30 06:00:00", "2024-07-01 05:59:59"},
                  {12, "2024-06-30 22:00:00", "2024-07-01 05:59:59"},
                  {13, "2024-07-01 05:00:00", "2024-07-01 05:59:59"}});
}

TEST(DateRangeTest, KnownEdgeCases) {
  struct Case {
    const char* now;
    RangeCalendar calendar;
    bool to_side;
    int32_t type;
    const char* expected;
  } cases[] = {
      // 15 Feb: the formula gives 1 Jan, whose next quarter (1 Apr) has
      // not begun, so it steps back to 1 Oct.
      {"2023-02-15 12:00:00", Calendar(1, 0, 0, 8), false, 1,
       "2022-10-01 00:00:00"},
      // Quarters from February: 10 Jan lies in Nov-Jan.
      {"2024-01-10 12:00:00", Calendar(2, 0, 0, 8), false, 8,
       "2023-11-01 00:00:00"},
      {"2024-01-10 12:00:00", Calendar(2, 0, 0, 8), true, 8,
       "2024-01-31 23:59:59"},
      {"2024-01-10 12:00:00", Calendar(2, 0, 0, 8), false, 1,
       "2023-08-01 00:00:00"},
      // Day start +06:00 at 03:00 on 5 Mar: still 4 Mar by the day rule.
      {"2024-03-05 03:00:00", Calendar(1, 0, 6, 8), false, 11,
       "2024-03-04 06:00:00"},
      {"2024-03-05 03:00:00", Calendar(1, 0, 6, 8), true, 4,
       "2024-03-04 05:59:59"},
      // Day start +06:00 at 03:00 on 1 Mar: the month is still February.
      {"2024-03-01 03:00:00", Calendar(1, 0, 6, 8), false, 2,
       "2024-01-01 06:00:00"},
      // The hour before 00:20 ends on the previous day (leap day here).
      {"2024-03-01 00:20:00", Calendar(1, 0, 0, 8), true, 6,
       "2024-02-29 23:59:59"},
      // 8-hour shifts from 06:00 at 15:00: current shift 14:00-22:00.
      {"2024-03-05 15:00:00", Calendar(1, 0, 6, 8), false, 12,
       "2024-03-05 14:00:00"},
      {"2024-03-05 15:00:00", Calendar(1, 0, 6, 8), false, 5,
       "2024-03-05 06:00:00"},
      {"2024-03-05 15:00:00", Calendar(1, 0, 6, 8), true, 12,
       "2024-03-05 21:59:59"},
      {"2024-03-05 15:00:00", Calendar(1, 0, 6, 8), true, 5,
       "2024-03-05 13:59:59"},
      // Shifts from 07:00 (a day fraction with no exact binary form): the
      // 23:00 boundary counts as begun exactly at 23:00, not a second later.
      {"2024-03-05 23:00:00", Calendar(1, 0, 7, 8), false, 12,
       "2024-03-05 23:00:00"},
      {"2024-03-05 22:59:59", Calendar(1, 0, 7, 8), false, 12,
       "2024-03-05 15:00:00"},
      // Hour shifts from 00:30: 00:30 + 2 x 1/24 lies a bit above 02:30 in
      // binary, yet the 02:30 shift has begun at 02:30.
      {"2024-03-05 02:30:00", Calendar(1, 0, 0.5, 1), false, 12,
       "2024-03-05 02:30:00"},
      {"2024-03-05 02:29:59", Calendar(1, 0, 0.5, 1), false, 12,
       "2024-03-05 01:30:00"},
      {"2024-03-05 02:30:00", Calendar(1, 0, 0.5, 1), true, 5,
       "2024-03-05 02:29:59"},
      // Year from July on 1 Mar: the year began 1 Jul of the year before.
      {"2024-03-01 12:00:00", Calendar(7, 0, 0, 8), false, 7,
       "2023-07-01 00:00:00"},
      {"2024-03-01 12:00:00", Calendar(7, 0, 0, 8), false, 0,
       "2022-07-01 00:00:00"},
      {"2024-03-01 12:00:00", Calendar(7, 0, 0, 8), true, 7,
       "2024-06-30 23:59:59"},
      {"2024-03-01 12:00:00", Calendar(7, 0, 0, 8), true, 0,
       "2023-06-30 23:59:59"},
      // Day start -02:00: a day begins at 22:00 of the calendar day before,
      // and 8-hour shifts run 22-06, 06-14, 14-22.
      {"2024-03-05 10:00:00", Calendar(1, 0, -2, 8), false, 11,
       "2024-03-04 22:00:00"},
      {"2024-03-05 10:00:00", Calendar(1, 0, -2, 8), true, 11,
       "2024-03-05 21:59:59"},
      {"2024-03-05 10:00:00", Calendar(1, 0, -2, 8), false, 12,
       "2024-03-05 06:00:00"},
      {"2024-03-05 10:00:00", Calendar(1, 0, -2, 8), false, 5,
       "2024-03-04 22:00:00"},
      // Month ends in leap and common years, 2100 and 2000 included.
      {"2024-02-10 12:00:00", Calendar(1, 0, 0, 8), true, 9,
       "2024-02-29 23:59:59"},
      {"2023-02-10 12:00:00", Calendar(1, 0, 0, 8), true, 9,
       "2023-02-28 23:59:59"},
      {"2100-02-10 12:00:00", Calendar(1, 0, 0, 8), true, 9,
       "2100-02-28 23:59:59"},
      {"2000-02-10 12:00:00", Calendar(1, 0, 0, 8), true, 9,
       "2000-02-29 23:59:59"},
      // A reference time a fraction below midnight reads as midnight: the
      // hour and its day agree.
      {"2024-05-15 23:59:59", Calendar(1, 0, 0, 8), false, 13,
       "2024-05-15 23:00:00"},
  };
  for (const Case& c : cases) {
    const double now = At(c.now);
    const auto result = c.to_side ? EndOfPeriod(c.type, now, c.calendar)
                                  : BegOfPeriod(c.type, now, c.calendar);
    EXPECT_EQ(Text(result), c.expected)
        << (c.to_side ? kToTypeNames : kFromTypeNames)[c.type] << " at "
        << c.now << " offset " << c.calendar.day_offset * 24;
  }
  EXPECT_EQ(Text(BegOfPeriod(13, At("2024-05-15 23:59:59") + 0.7 / 86400,
                             Calendar(1, 0, 0, 8))),
            "2024-05-16 00:00:00");
}

TEST(DateRangeTest, QuarterStartsFollowTheYearStart) {
  // At 10 Jan 2024: quarters start Jan/Apr/Jul/Oct for year starts 1,4,7,10;
  // Feb/May/Aug/Nov for 2,5,8,11; Mar/Jun/Sep/Dec for 3,6,9,12.
  const char* current[] = {"2024-01-01 00:00:00", "2023-11-01 00:00:00",
                           "2023-12-01 00:00:00"};
  const char* previous[] = {"2023-10-01 00:00:00", "2023-08-01 00:00:00",
                            "2023-09-01 00:00:00"};
  const char* end[] = {"2024-03-31 23:59:59", "2024-01-31 23:59:59",
                       "2024-02-29 23:59:59"};
  const double now = At("2024-01-10 12:00:00");
  for (int year_begins = 1; year_begins <= 12; ++year_begins) {
    const RangeCalendar calendar = Calendar(year_begins, 0, 0, 8);
    const int group = (year_begins - 1) % 3;
    EXPECT_EQ(Text(BegOfPeriod(8, now, calendar)), current[group])
        << year_begins;
    EXPECT_EQ(Text(BegOfPeriod(1, now, calendar)), previous[group])
        << year_begins;
    EXPECT_EQ(Text(EndOfPeriod(8, now, calendar)), end[group]) << year_begins;
  }
}

TEST(DateRangeTest, WeekStartsOnTheConfiguredDay) {
  // Wednesday 15 May 2024; the current week begins on the latest
  // configured first day not after it.
  const char* expected[] = {"2024-05-12", "2024-05-13", "2024-05-14",
                            "2024-05-15", "2024-05-09", "2024-05-10",
                            "2024-05-11"};
  const double now = At("2024-05-15 10:30:00");
  for (int week_days = 0; week_days < 7; ++week_days) {
    EXPECT_EQ(Text(BegOfPeriod(10, now, Calendar(1, week_days, 0, 8))),
              std::string(expected[week_days]) + " 00:00:00")
        << week_days;
  }
  EXPECT_EQ(ErrorNumber([&] { BegOfPeriod(10, now, Calendar(1, 7, 0, 8)); }),
            5);
  // Types without a week ignore a bad first day.
  EXPECT_EQ(Text(BegOfPeriod(9, now, Calendar(1, 7, 0, 8))),
            "2024-05-01 00:00:00");
}

TEST(DateRangeTest, TypesThatLeaveTheValueUnchanged) {
  ViewState state;
  state.ShiftDuration = 8;
  state.FirstRecordDateTime = At("2020-02-02 02:02:02");
  state.LastRecordDateTime = At("2021-03-03 03:03:03");
  const double now = At("2024-05-15 10:30:00");
  const double held = At("2019-01-01 12:00:00");
  // Nothing selected, the explicit type, and indices beyond the list keep
  // the held value; the record-bound types take the record date-times.
  for (int32_t type : {-1, 15, 16, 99, -5}) {
    EXPECT_EQ(ResolveFromType(state, type, now, held), held) << type;
    EXPECT_EQ(ResolveToType(state, type, now, held), held) << type;
  }
  EXPECT_EQ(ResolveFromType(state, 14, now, held), state.FirstRecordDateTime);
  EXPECT_EQ(ResolveToType(state, 14, now, held), state.LastRecordDateTime);
  // Shift types need a positive shift length; other types do not.
  for (double hours : {0.0, -8.0}) {
    state.ShiftDuration = hours;
    for (int32_t type : {5, 12}) {
      EXPECT_EQ(ResolveFromType(state, type, now, held), held) << hours;
      EXPECT_EQ(ResolveToType(state, type, now, held), held) << hours;
    }
    EXPECT_EQ(FormatDateTime(ResolveFromType(state, 11, now, held)),
              "2024-05-15 00:00:00");
  }
}

TEST(DateRangeTest, AmountsInEveryUnit) {
  // Forward from 31 Jan 2024 06:00 (leap year) and back from 31 Mar 2024
  // 18:00, one unit each, 8-hour shifts. Month and quarter carry past the
  // month end (31 Feb = 2 Mar, 31 Apr = 1 May, 0 Jan = 31 Dec).
  struct Case {
    int32_t unit;
    const char* forward;
    const char* backward;
  } cases[] = {
      {0, "2025-01-31 05:59:59", "2023-03-31 18:00:01"},
      {1, "2024-05-01 05:59:59", "2023-12-31 18:00:01"},
      {2, "2024-03-02 05:59:59", "2024-03-02 18:00:01"},
      {3, "2024-02-07 05:59:59", "2024-03-24 18:00:01"},
      {4, "2024-02-01 05:59:59", "2024-03-30 18:00:01"},
      {5, "2024-01-31 13:59:59", "2024-03-31 10:00:01"},
      {6, "2024-01-31 06:59:59", "2024-03-31 17:00:01"},
      {7, "2024-01-31 06:00:59", "2024-03-31 17:59:01"},
      {8, "2024-01-31 06:00:00", "2024-03-31 18:00:00"},
      {9, "unchanged", "unchanged"},
      {10, "unchanged", "unchanged"},
      {-1, "unchanged", "unchanged"},
  };
  const RangeCalendar calendar = Calendar(1, 0, 0, 8);
  for (const Case& c : cases) {
    EXPECT_EQ(Text(ApplyForwardAmount(At("2024-01-31 06:00:00"), 1, c.unit,
                                      calendar)),
              c.forward)
        << "unit " << c.unit;
    EXPECT_EQ(Text(ApplyBackwardAmount(At("2024-03-31 18:00:00"), 1, c.unit,
                                       calendar)),
              c.backward)
        << "unit " << c.unit;
  }
  EXPECT_EQ(Text(ApplyForwardAmount(At("2024-01-31 06:00:00"), 1, 5,
                                    Calendar(1, 0, 0, 0))),
            "unchanged");
}

TEST(DateRangeTest, AmountsCarryAndRoundHalfToEven) {
  struct Case {
    bool forward;
    const char* base;
    double amount;
    int32_t unit;
    const char* expected;
  } cases[] = {
      // Hours and minutes carry into the neighbouring day (Feb 29 in 2024).
      {true, "2024-02-28 23:30:00", 25, 6, "2024-03-01 00:29:59"},
      {true, "2023-02-28 23:30:00", 25, 6, "2023-03-02 00:29:59"},
      {false, "2024-03-01 00:30:00", 90, 7, "2024-02-29 23:00:01"},
      // Month-end carrying backwards: 31 Feb is 2 Mar (leap), 3 Mar.
      {false, "2024-03-31 00:00:00", 1, 2, "2024-03-02 00:00:01"},
      {false, "2023-03-31 00:00:00", 1, 2, "2023-03-03 00:00:01"},
      {false, "2024-01-15 00:00:00", 13, 2, "2022-12-15 00:00:01"},
      // Day -1 of March: 28 Feb in a leap year, 27 Feb otherwise.
      {false, "2024-03-01 12:00:00", 2, 4, "2024-02-28 12:00:01"},
      {false, "2023-03-01 12:00:00", 2, 4, "2023-02-27 12:00:01"},
      // Halves go to the even neighbour: day 15.5 -> 16, 16.5 -> 16,
      // 17.5 -> 18; month 2.5 -> 2, 3.5 -> 4 (also via 1 + 3 x 0.5).
      {true, "2024-01-15 00:00:00", 0.5, 4, "2024-01-15 23:59:59"},
      {true, "2024-01-15 00:00:00", 1.5, 4, "2024-01-15 23:59:59"},
      {true, "2024-01-15 00:00:00", 2.5, 4, "2024-01-17 23:59:59"},
      {true, "2024-01-15 00:00:00", 1.5, 2, "2024-02-14 23:59:59"},
      {true, "2024-01-15 00:00:00", 2.5, 2, "2024-04-14 23:59:59"},
      {true, "2024-01-15 00:00:00", 0.5, 1, "2024-02-14 23:59:59"},
      {false, "2024-05-15 00:00:00", 1.5, 2, "2024-04-15 00:00:01"},
      // Weeks and shifts take fractions whole: 10.5 days, 12 hours.
      {true, "2024-01-15 00:00:00", 1.5, 3, "2024-01-25 11:59:59"},
      {true, "2024-01-15 00:00:00", 1.5, 5, "2024-01-15 11:59:59"},
      // The 16-bit limits themselves are allowed.
      {false, "2024-01-15 10:00:00", 32768, 7, "2023-12-23 15:52:01"},
      {true, "2024-01-15 00:00:00", 32767, 6, "2027-10-11 06:59:59"},
  };
  const RangeCalendar calendar = Calendar(1, 0, 0, 8);
  for (const Case& c : cases) {
    const auto result =
        c.forward ? ApplyForwardAmount(At(c.base), c.amount, c.unit, calendar)
                  : ApplyBackwardAmount(At(c.base), c.amount, c.unit, calendar);
    EXPECT_EQ(Text(result), c.expected)
        << (c.forward ? "fwd " : "back ") << c.amount << " unit " << c.unit
        << " from " << c.base;
  }
}

TEST(DateRangeTest, AmountsBeyondTheLimitsOverflow) {
  struct Case {
    bool forward;
    double amount;
    int32_t unit;
  } cases[] = {
      {true, 40000, 0},   // year 42024 is no 16-bit number
      {true, 8000, 0},    // year 10024 fits 16 bits but not the calendar
      {false, 40000, 0},  // year -37976
      {true, 11000, 1},   // month 1 + 33000
      {true, 32768, 8},   // second 32768
      {false, 32769, 7},  // minute -32769
      {true, 32768, 4},   // day 15 + 32768
  };
  const RangeCalendar calendar = Calendar(1, 0, 0, 8);
  const double base = At("2024-01-15 00:00:00");
  for (const Case& c : cases) {
    EXPECT_EQ(ErrorNumber([&] {
                c.forward
                    ? ApplyForwardAmount(base, c.amount, c.unit, calendar)
                    : ApplyBackwardAmount(base, c.amount, c.unit, calendar);
              }),
              6)
        << c.amount << " unit " << c.unit;
  }
}

ViewState LoadState(int32_t kind, int32_t from_type, int32_t to_type) {
  ViewState state;
  state.FilterRangeType = kind;
  state.FromType = from_type;
  state.ToType = to_type;
  state.YearBegins = 1;
  state.ShiftDuration = 8;
  state.BegDate = At("2001-01-01 01:01:01");
  state.EndDate = At("2002-02-02 02:02:02");
  state.FirstRecordDateTime = At("2020-02-02 02:02:02");
  state.LastRecordDateTime = At("2021-03-03 03:03:03");
  return state;
}

TEST(DateRangeTest, LoadResolvesInTheRangeKindsOrderAndAppliesItsAmount) {
  // Reference: Wednesday 15 May 2024 10:30. Prev Month = 1 Apr, End of
  // Current Day = 15 May 23:59:59, Current Month = 1 May. A forward amount
  // replaces the To value, a backward one the From value; FromTo keeps both
  // types; Record(s) and "Specific" keep what is there.
  struct Case {
    int32_t kind, from_type, to_type;
    int32_t amount, unit;
    const char* beg;
    const char* end;
    bool accepted;
  } cases[] = {
      {0, 9, 11, 3, 4, "2024-05-01 00:00:00", "2024-05-15 23:59:59", true},
      {0, 15, 15, 3, 4, "2001-01-01 01:01:01", "2002-02-02 02:02:02", true},
      {1, 2, 11, 2, 4, "2024-04-01 00:00:00", "2024-04-02 23:59:59", true},
      {1, 2, 15, 9, 9, "2024-04-01 00:00:00", "2002-02-02 02:02:02", true},
      {1, 14, 4, 5, 9, "2020-02-02 02:02:02", "2024-05-14 23:59:59", true},
      {1, 2, 11, 0, 4, "2024-04-01 00:00:00", "2024-05-15 23:59:59", false},
      {-1, 2, 11, 3, 6, "2024-05-15 21:00:00", "2024-05-15 23:59:59", true},
      {-1, 14, 14, 100, 9, "2020-02-02 02:02:02", "2021-03-03 03:03:03", true},
      {-1, 15, 11, 3, 9, "2001-01-01 01:01:01", "2024-05-15 23:59:59", true},
      {-1, 9, 11, -1, 6, "2024-05-01 00:00:00", "2024-05-15 23:59:59", false},
      {7, 9, 11, 3, 4, "2024-05-01 00:00:00", "2024-05-15 23:59:59", true},
  };
  for (const Case& c : cases) {
    ViewState state = LoadState(c.kind, c.from_type, c.to_type);
    state.ForwardAmount = state.BackwardAmount = c.amount;
    state.ForwardUnits = state.BackwardUnits = c.unit;
    EXPECT_EQ(ResolveRangeOnLoad(state, At("2024-05-15 10:30:00")), c.accepted)
        << "kind " << c.kind << " types " << c.from_type << "/" << c.to_type;
    EXPECT_EQ(FormatDateTime(state.BegDate), c.beg) << "kind " << c.kind;
    EXPECT_EQ(FormatDateTime(state.EndDate), c.end) << "kind " << c.kind;
    EXPECT_EQ(state.BegText, c.beg);
    EXPECT_EQ(state.EndText, c.end);
  }
}

TEST(DateRangeTest, LoadThatOverflowsChangesNothing) {
  ViewState state = LoadState(1, 2, 11);
  state.BegText = "before";
  state.ForwardAmount = 40000;
  state.ForwardUnits = 0;
  EXPECT_EQ(ErrorNumber(
                [&] { ResolveRangeOnLoad(state, At("2024-05-15 10:30:00")); }),
            6);
  EXPECT_EQ(FormatDateTime(state.BegDate), "2001-01-01 01:01:01");
  EXPECT_EQ(FormatDateTime(state.EndDate), "2002-02-02 02:02:02");
  EXPECT_EQ(state.BegText, "before");
}

TEST(DateRangeTest, RunRefreshesOnlyTheRecordBoundSidesOfTheKind) {
  constexpr const char* kOldBeg = "2001-01-01 01:01:01";
  constexpr const char* kOldEnd = "2002-02-02 02:02:02";
  constexpr const char* kFirst = "2020-02-02 02:02:02";
  constexpr const char* kLast = "2021-03-03 03:03:03";
  struct Case {
    int32_t kind, from_type, to_type;
    const char* beg;
    const char* end;
  } cases[] = {
      {-1, 14, 14, kOldBeg, kLast}, {-1, 14, 2, kOldBeg, kOldEnd},
      {1, 14, 14, kFirst, kOldEnd}, {1, 2, 14, kOldBeg, kOldEnd},
      {0, 14, 14, kFirst, kLast},   {0, 14, 3, kFirst, kOldEnd},
      {0, 2, 14, kOldBeg, kLast},   {2, 14, 14, kOldBeg, kOldEnd},
  };
  for (const Case& c : cases) {
    ViewState state = LoadState(c.kind, c.from_type, c.to_type);
    state.BegText = "old beg";
    state.EndText = "old end";
    RefreshRecordBoundRange(state);
    const bool beg_moved = std::string(c.beg) == kFirst;
    const bool end_moved = std::string(c.end) == kLast;
    EXPECT_EQ(FormatDateTime(state.BegDate), c.beg) << "kind " << c.kind;
    EXPECT_EQ(FormatDateTime(state.EndDate), c.end) << "kind " << c.kind;
    EXPECT_EQ(state.BegText, beg_moved ? kFirst : "old beg");
    EXPECT_EQ(state.EndText, end_moved ? kLast : "old end");
  }
  EXPECT_EQ(RangeKindTraceText(-1), "FilterRangeType=Backward");
  EXPECT_EQ(RangeKindTraceText(0), "FilterRangeType=FromTo");
  EXPECT_EQ(RangeKindTraceText(1), "FilterRangeType=Forward");
  EXPECT_EQ(RangeKindTraceText(2), "");
}

}  // namespace
}  // namespace rz
