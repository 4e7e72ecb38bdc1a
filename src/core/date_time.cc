// Copyright 2026 The Veltmark authors.

#include "core/date_time.h"

#include <cmath>

#include "core/error.h"
#include "core/text.h"

namespace rz {
namespace {

constexpr int64_t kSecondsPerDay = 86400;
// Days from 1970-01-01 (the epoch of the civil-date helpers) to 1899-12-30.
constexpr int64_t kEpochOffset = 25569;
constexpr int64_t kMinDay = static_cast<int64_t>(kMinDateSerial);
constexpr int64_t kMaxDay = static_cast<int64_t>(kMaxDateSerial);
// Arguments beyond this cannot build a date in range with sane partners;
// the bound also keeps the int64 arithmetic below far from overflow.
constexpr int64_t kArgumentLimit = 1000000000000;

bool BeyondLimit(int64_t value) {
  return value > kArgumentLimit || value < -kArgumentLimit;
}

int64_t FloorDiv(int64_t a, int64_t b) {
  int64_t q = a / b;
  return (a % b != 0 && (a < 0) != (b < 0)) ? q - 1 : q;
}

// Days since 1970-01-01 of a proleptic Gregorian date (month 1..12).
int64_t DaysFromCivil(int64_t year, int64_t month, int64_t day) {
  year -= month <= 2;
  const int64_t era = FloorDiv(year, 400);
  const int64_t year_of_era = year - era * 400;
  const int64_t day_of_year =
      (153 * (month > 2 ? month - 3 : month + 9) + 2) / 5 + day - 1;
  const int64_t day_of_era =
      year_of_era * 365 + year_of_era / 4 - year_of_era / 100 + day_of_year;
  return era * 146097 + day_of_era - 719468;
}

void CivilFromDays(int64_t days, DateTimeParts* parts) {
  days += 719468;
  const int64_t era = FloorDiv(days, 146097);
  const int64_t day_of_era = days - era * 146097;
  const int64_t year_of_era = (day_of_era - day_of_era / 1460 +
                               day_of_era / 36524 - day_of_era / 146096) /
                              365;
  const int64_t day_of_year =
      day_of_era - (365 * year_of_era + year_of_era / 4 - year_of_era / 100);
  const int64_t shifted_month = (5 * day_of_year + 2) / 153;
  parts->day =
      static_cast<int>(day_of_year - (153 * shifted_month + 2) / 5 + 1);
  parts->month = static_cast<int>(shifted_month < 10 ? shifted_month + 3
                                                     : shifted_month - 9);
  parts->year = static_cast<int>(year_of_era + era * 400 + (parts->month <= 2));
}

std::string SerialText(double serial) {
  if (std::isfinite(serial)) return ShortestNumberText(serial);
  return std::isnan(serial) ? "NaN" : (serial > 0 ? "Infinity" : "-Infinity");
}

std::string CallText(const char* name, int64_t a, int64_t b, int64_t c) {
  return std::string(name) + "(" + std::to_string(a) + ", " +
         std::to_string(b) + ", " + std::to_string(c) + ")";
}

// A serial as a whole day and the seconds of its time of day, the time
// rounded to the nearest second.
struct DaySeconds {
  int64_t day;
  int64_t seconds;  // 0..86399
};

DaySeconds RoundToSecond(double serial) {
  if (!(serial >= kMinDateSerial && serial < kMaxDateSerial + 1)) {
    throw Error::Overflow(SerialText(serial));
  }
  const double day = std::floor(serial);
  DaySeconds result{static_cast<int64_t>(day),
                    std::llround((serial - day) * kSecondsPerDay)};
  if (result.seconds == kSecondsPerDay) {
    ++result.day;
    result.seconds = 0;
  }
  if (result.day > kMaxDay) throw Error::Overflow(SerialText(serial));
  return result;
}

// Writes `value` as exactly `width` digits (zero-padded) at `out`.
char* PutDigits(char* out, int value, int width) {
  for (int i = width - 1; i >= 0; --i) {
    out[i] = static_cast<char>('0' + value % 10);
    value /= 10;
  }
  return out + width;
}

char* PutDate(char* out, const DateTimeParts& parts) {
  out = PutDigits(out, parts.year, 4);
  *out++ = '-';
  out = PutDigits(out, parts.month, 2);
  *out++ = '-';
  return PutDigits(out, parts.day, 2);
}

char* PutTime(char* out, const DateTimeParts& parts) {
  out = PutDigits(out, parts.hour, 2);
  *out++ = ':';
  out = PutDigits(out, parts.minute, 2);
  *out++ = ':';
  return PutDigits(out, parts.second, 2);
}

// Reads exactly `width` digits at `pos`; -1 when any is not a digit.
int ReadDigits(std::string_view text, size_t pos, size_t width) {
  int value = 0;
  for (size_t i = pos; i < pos + width; ++i) {
    if (text[i] < '0' || text[i] > '9') return -1;
    value = value * 10 + (text[i] - '0');
  }
  return value;
}

// "yyyy-mm-dd" at the start of `text` (at least 10 characters) as a serial.
std::optional<double> ReadDate(std::string_view text) {
  if (text[4] != '-' || text[7] != '-') return std::nullopt;
  const int year = ReadDigits(text, 0, 4);
  const int month = ReadDigits(text, 5, 2);
  const int day = ReadDigits(text, 8, 2);
  if (year < 100 || month < 1 || month > 12 || day < 1 ||
      day > DaysInMonth(year, month)) {
    return std::nullopt;
  }
  return static_cast<double>(DaysFromCivil(year, month, day) + kEpochOffset);
}

// "hh:mm" or "hh:mm:ss" (the whole text) as a fraction of a day.
std::optional<double> ReadTime(std::string_view text) {
  if (text.size() != 5 && text.size() != 8) return std::nullopt;
  if (text[2] != ':' || (text.size() == 8 && text[5] != ':')) {
    return std::nullopt;
  }
  const int hour = ReadDigits(text, 0, 2);
  const int minute = ReadDigits(text, 3, 2);
  const int second = text.size() == 8 ? ReadDigits(text, 6, 2) : 0;
  if (hour < 0 || hour > 23 || minute < 0 || minute > 59 || second < 0 ||
      second > 59) {
    return std::nullopt;
  }
  return static_cast<double>(hour * 3600 + minute * 60 + second) /
         kSecondsPerDay;
}

// The leading number of characters [first, first + count) of `text` (1-based
// like the field descriptions), rounded half to even; missing gives 0.
// Clamped so that absurd values reach the range checks instead of
// overflowing the conversion.
int64_t FieldNumber(std::string_view text, size_t first, size_t count) {
  if (first - 1 >= text.size()) return 0;
  const double value = LeadingNumber(text.substr(first - 1, count));
  const double limit = 1e15;
  return static_cast<int64_t>(
      std::nearbyint(std::fmax(-limit, std::fmin(limit, value))));
}

}  // namespace

bool IsLeapYear(int64_t year) {
  return (year % 4 == 0 && year % 100 != 0) || year % 400 == 0;
}

int DaysInMonth(int64_t year, int month) {
  static constexpr int kDays[12] = {31, 28, 31, 30, 31, 30,
                                    31, 31, 30, 31, 30, 31};
  return month == 2 && IsLeapYear(year) ? 29 : kDays[month - 1];
}

double DateSerial(int64_t year, int64_t month, int64_t day) {
  if (BeyondLimit(year) || BeyondLimit(month) || BeyondLimit(day)) {
    throw Error::Overflow(CallText("DateSerial", year, month, day));
  }
  const int64_t month_index = month - 1;
  const int64_t carried_year = year + FloorDiv(month_index, 12);
  const int64_t carried_month =
      month_index - FloorDiv(month_index, 12) * 12 + 1;
  const int64_t serial =
      DaysFromCivil(carried_year, carried_month, 1) + (day - 1) + kEpochOffset;
  if (serial < kMinDay || serial > kMaxDay) {
    throw Error::Overflow(CallText("DateSerial", year, month, day));
  }
  return static_cast<double>(serial);
}

double TimeSerial(int64_t hour, int64_t minute, int64_t second) {
  if (BeyondLimit(hour) || BeyondLimit(minute) || BeyondLimit(second)) {
    throw Error::Overflow(CallText("TimeSerial", hour, minute, second));
  }
  const int64_t seconds = hour * 3600 + minute * 60 + second;
  const double days = static_cast<double>(seconds) / kSecondsPerDay;
  if (days < kMinDateSerial || days >= kMaxDateSerial + 1) {
    throw Error::Overflow(CallText("TimeSerial", hour, minute, second));
  }
  return days;
}

DateTimeParts SplitDateTime(double serial) {
  const DaySeconds rounded = RoundToSecond(serial);
  DateTimeParts parts;
  CivilFromDays(rounded.day - kEpochOffset, &parts);
  parts.hour = static_cast<int>(rounded.seconds / 3600);
  parts.minute = static_cast<int>(rounded.seconds / 60 % 60);
  parts.second = static_cast<int>(rounded.seconds % 60);
  return parts;
}

int Year(double serial) { return SplitDateTime(serial).year; }
int Month(double serial) { return SplitDateTime(serial).month; }
int Day(double serial) { return SplitDateTime(serial).day; }
int Hour(double serial) { return SplitDateTime(serial).hour; }
int Minute(double serial) { return SplitDateTime(serial).minute; }
int Second(double serial) { return SplitDateTime(serial).second; }

int Weekday(double serial, int first_day) {
  if (first_day < 1 || first_day > 7) {
    throw Error::InvalidArgument("first day of the week " +
                                 std::to_string(first_day) + " is not in 1..7");
  }
  // Day 1 (1899-12-31) was a Sunday.
  const int64_t day = RoundToSecond(serial).day;
  const int64_t sunday_based = day - 1 - FloorDiv(day - 1, 7) * 7 + 1;
  const int64_t shifted = sunday_based - first_day;
  return static_cast<int>(shifted - FloorDiv(shifted, 7) * 7 + 1);
}

std::string FormatDateTime(double serial) {
  const DateTimeParts parts = SplitDateTime(serial);
  char buffer[19];
  char* out = PutDate(buffer, parts);
  *out++ = ' ';
  PutTime(out, parts);
  return std::string(buffer, sizeof buffer);
}

std::string FormatDate(double serial) {
  char buffer[10];
  PutDate(buffer, SplitDateTime(serial));
  return std::string(buffer, sizeof buffer);
}

std::string FormatTime(double serial) {
  char buffer[8];
  PutTime(buffer, SplitDateTime(serial));
  return std::string(buffer, sizeof buffer);
}

std::optional<double> ParseDateTime(std::string_view text) {
  while (!text.empty() && (text.front() == ' ' || text.front() == '\t')) {
    text.remove_prefix(1);
  }
  while (!text.empty() && (text.back() == ' ' || text.back() == '\t')) {
    text.remove_suffix(1);
  }
  if (text.size() == 5 || text.size() == 8) return ReadTime(text);
  if (text.size() != 10 && text.size() != 16 && text.size() != 19) {
    return std::nullopt;
  }
  std::optional<double> date = ReadDate(text);
  if (!date || text.size() == 10) return date;
  if (text[10] != ' ') return std::nullopt;
  std::optional<double> time = ReadTime(text.substr(11));
  if (!time) return std::nullopt;
  return *date + *time;
}

double ParseTimeOfDay(std::string_view text) {
  return TimeSerial(FieldNumber(text, 1, 2), FieldNumber(text, 4, 2),
                    FieldNumber(text, 7, 2));
}

double DateTimeFromRecordText(std::string_view date, std::string_view time) {
  return DateSerial(FieldNumber(date, 1, 4), FieldNumber(date, 6, 2),
                    FieldNumber(date, 9, 2)) +
         ParseTimeOfDay(time);
}

}  // namespace rz
