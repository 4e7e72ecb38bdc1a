// Copyright 2026 The Veltmark authors.
//
// Date serials. A date-time is a double counting days since 1899-12-30, with
// the time of day as the fraction: 39000.5 is 2006-10-10 12:00:00. The
// calendar is the proleptic Gregorian one, for the years 100 to 9999.
//
// The arithmetic is continuous on the whole range, before 1899-12-30 too:
// the date of x is floor(x) and its time of day is x - floor(x). So -1.25 is
// 1899-12-28 18:00:00 and adding a time span to a date-time never needs a
// special case for negative values.
//
// Reading parts: every function that splits a serial first rounds its time
// of day to the nearest second (0.99999999 is 1899-12-31 00:00:00, never
// 23:59:60), so parts, weekdays and texts agree with each other.
//
// Errors: DateSerial, TimeSerial and every function that splits a serial
// throw Error::Overflow when a result or argument lies outside
// 0100-01-01 00:00:00 .. 9999-12-31 23:59:59 (after the rounding above), or
// is NaN or infinite. Weekday throws Error::InvalidArgument for a first day
// outside 1..7. The readers (Parse...) never throw for malformed text; only
// DateTimeFromRecordText throws, when its fields build a date out of range.

#ifndef RZ_CORE_DATE_TIME_H_
#define RZ_CORE_DATE_TIME_H_

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace rz {

// The serials of 0100-01-01 and of 9999-12-31 (both at midnight).
inline constexpr double kMinDateSerial = -657434;
inline constexpr double kMaxDateSerial = 2958465;

bool IsLeapYear(int64_t year);
// REQUIRES: 1 <= month <= 12.
int DaysInMonth(int64_t year, int month);

// The date at midnight built from year, month and day, carrying overflow in
// every unit: month 0 is December of the year before, month 13 January of
// the next, day 0 the last day of the month before, and negative values carry
// further back. DateSerial(2024, 2, 31) is 2024-03-02,
// DateSerial(2024, -1, 1) is 2023-11-01, DateSerial(2024, 1, -1) is
// 2023-12-30. There is no two-digit-year window: year 99 is the year 99 and
// therefore out of range. Throws Error::Overflow outside years 100..9999.
double DateSerial(int64_t year, int64_t month, int64_t day);

// hour * 3600 + minute * 60 + second seconds, as days. The result may be
// negative or a day and more: TimeSerial(24, 0, 0) is 1.0 and
// TimeSerial(0, 0, -1) is -1/86400, so Int(now) + TimeSerial(hour - 1, 0, 0)
// at 00:20 lands on the previous day. Throws Error::Overflow when the result
// is beyond the date range.
double TimeSerial(int64_t hour, int64_t minute, int64_t second);

struct DateTimeParts {
  int year;
  int month;   // 1..12
  int day;     // 1..31
  int hour;    // 0..23
  int minute;  // 0..59
  int second;  // 0..59
};

// The calendar parts of a serial, its time rounded to the nearest second.
DateTimeParts SplitDateTime(double serial);
int Year(double serial);
int Month(double serial);
int Day(double serial);
int Hour(double serial);
int Minute(double serial);
int Second(double serial);

// The day of the week as 1..7 counted from `first_day` (1 = Sunday ...
// 7 = Saturday): the day named by first_day gives 1. 1899-12-30 was a
// Saturday, so Weekday(0) is 7 and Weekday(0, 7) is 1.
int Weekday(double serial, int first_day = 1);

// "yyyy-mm-dd hh:mm:ss", "yyyy-mm-dd" and "hh:mm:ss". FormatTime writes the
// time of day only: a span of 24 hours or more loses its whole days, and a
// negative value gives the time of day of the day before (-1/86400 is
// "23:59:59").
std::string FormatDateTime(double serial);
std::string FormatDate(double serial);
std::string FormatTime(double serial);

// Reads, after removing blanks (spaces, tabs) at both ends, exactly one of
// "yyyy-mm-dd hh:mm:ss", "yyyy-mm-dd hh:mm", "yyyy-mm-dd", "hh:mm:ss" or
// "hh:mm", with exactly these widths (four-digit year, two digits for every
// other field) and one space between date and time. A time alone is a time
// on day 0. Fields must be in range: year 100..9999, month 1..12, day within
// the month, hour 0..23, minute and second 0..59. Anything else gives
// std::nullopt.
std::optional<double> ParseDateTime(std::string_view text);

// The lenient time-of-day reader of view files and templates: characters 1-2
// are the hours, 4-5 the minutes and 7-8 the seconds, each read as a leading
// number (missing characters give 0; a fraction rounds half to even), and
// the result is TimeSerial(h, m, s) in days. "08:30" -> 8.5 / 24;
// "xx:30:00" -> 30 minutes; "25:00:00" -> 25 / 24.
double ParseTimeOfDay(std::string_view text);

// The lenient builder of a record's date-time from its date text and time
// text: DateSerial(leading numbers of date characters 1-4, 6-7, 9-10) +
// TimeSerial(time characters 1-2, 4-5, 7-8), missing parts 0. Throws
// Error::Overflow when the date fields build a date outside the range (an
// empty date text gives year 0 and so throws).
double DateTimeFromRecordText(std::string_view date, std::string_view time);

}  // namespace rz

#endif  // RZ_CORE_DATE_TIME_H_
