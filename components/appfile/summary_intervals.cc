// Copyright 2026 The Veltmark authors.

#include "appfile/summary_intervals.h"

#include <charconv>
#include <cmath>
#include <string>

#include "core/date_time.h"
#include "core/error.h"

namespace rz {
namespace {

constexpr int64_t kSecondsPerDay = 86400;
constexpr int64_t kSecondsPerHour = 3600;
constexpr int64_t kSecondsPerMinute = 60;
// The span of the calendar (0100-01-01 .. 9999-12-31) in seconds. A longer
// specific interval is refused: it could only ever hold all records at once,
// and the limit keeps the grid arithmetic far from int64 overflow.
constexpr int64_t kCalendarSeconds = (static_cast<int64_t>(kMaxDateSerial) + 1 -
                                      static_cast<int64_t>(kMinDateSerial)) *
                                     kSecondsPerDay;

// Division rounding toward minus infinity, right for negative dividends.
// REQUIRES: divisor > 0.
int64_t FloorDiv(int64_t dividend, int64_t divisor) {
  const int64_t quotient = dividend / divisor;
  return (dividend % divisor < 0) ? quotient - 1 : quotient;
}

// The non-negative remainder of value / divisor. REQUIRES: divisor > 0.
int FloorMod(int value, int divisor) {
  const int remainder = value % divisor;
  return remainder < 0 ? remainder + divisor : remainder;
}

std::string ShortestText(double value) {
  char buffer[32];
  const auto result = std::to_chars(buffer, buffer + sizeof(buffer), value,
                                    std::chars_format::general);
  return std::string(buffer, result.ptr);
}

Error NoGrid(const std::string& setting, const std::string& value) {
  return Error::InvalidArgument(setting + " " + value +
                                " cannot divide time into summary intervals");
}

// A calendar month, and stepping one month back or forward.
struct YearMonth {
  int64_t year;
  int month;  // 1..12
};

YearMonth PreviousMonth(YearMonth at) {
  return at.month == 1 ? YearMonth{at.year - 1, 12}
                       : YearMonth{at.year, at.month - 1};
}

YearMonth FollowingMonth(YearMonth at) {
  return at.month == 12 ? YearMonth{at.year + 1, 1}
                        : YearMonth{at.year, at.month + 1};
}

// Whole seconds of a block, or 0 when the hours round to none.
int64_t ShiftLengthOf(double shift_hours) {
  const double seconds = shift_hours * kSecondsPerHour;
  if (seconds >= static_cast<double>(kSecondsPerDay)) return kSecondsPerDay;
  return std::llround(seconds);
}

}  // namespace

int64_t SecondsFromSerial(double serial) {
  if (!(serial >= kMinDateSerial && serial < kMaxDateSerial + 1)) {
    throw Error::Overflow(ShortestText(serial));
  }
  const double day = std::floor(serial);
  return static_cast<int64_t>(day) * kSecondsPerDay +
         std::llround((serial - day) * kSecondsPerDay);
}

double SerialFromSeconds(int64_t seconds) {
  const int64_t day = FloorDiv(seconds, kSecondsPerDay);
  const int64_t time_of_day = seconds - day * kSecondsPerDay;
  return static_cast<double>(day) +
         static_cast<double>(time_of_day) / kSecondsPerDay;
}

IntervalGrid IntervalGrid::For(IntervalKey key,
                               const SummarySettings& settings) {
  switch (key) {
    case IntervalKey::kSpecific:
      if (settings.interval_seconds <= 0 ||
          settings.interval_seconds > kCalendarSeconds) {
        throw NoGrid("Interval",
                     std::to_string(settings.interval_seconds) + " seconds");
      }
      break;
    case IntervalKey::kShift:
      // The negated test also refuses NaN.
      if (!(settings.shift_hours > 0) ||
          ShiftLengthOf(settings.shift_hours) < 1) {
        throw NoGrid("ShiftDuration",
                     ShortestText(settings.shift_hours) + " hours");
      }
      break;
    case IntervalKey::kYear:
    case IntervalKey::kQuarter:
    case IntervalKey::kMonth:
    case IntervalKey::kWeek:
    case IntervalKey::kDay:
    case IntervalKey::kHour:
    case IntervalKey::kMinute:
    case IntervalKey::kSecond:
      break;
    default:
      throw Error::InvalidArgument("summary key " +
                                   std::to_string(static_cast<int32_t>(key)) +
                                   " is not a time interval");
  }
  return IntervalGrid(key, settings);
}

IntervalGrid::IntervalGrid(IntervalKey key, const SummarySettings& settings)
    : key_(key), day_start_(settings.day_start_seconds) {
  if (settings.week_days >= 0 && settings.week_days <= 6) {
    week_days_ = settings.week_days;
  }
  if (settings.year_begins >= 1 && settings.year_begins <= 12) {
    year_begins_ = settings.year_begins;
  }
  switch (key) {
    case IntervalKey::kDay:
      length_ = kSecondsPerDay;
      break;
    case IntervalKey::kShift:
      length_ = ShiftLengthOf(settings.shift_hours);
      break;
    case IntervalKey::kHour:
      length_ = kSecondsPerHour;
      break;
    case IntervalKey::kMinute:
      length_ = kSecondsPerMinute;
      break;
    case IntervalKey::kSecond:
      length_ = 1;
      break;
    case IntervalKey::kSpecific:
      length_ = settings.interval_seconds;
      break;
    default:  // the calendar keys have blocks of varying length
      break;
  }
}

int64_t IntervalGrid::DayOf(int64_t seconds) const {
  return FloorDiv(seconds - day_start_, kSecondsPerDay);
}

int64_t IntervalGrid::DayStart(int64_t day) const {
  return day * kSecondsPerDay + day_start_;
}

int64_t IntervalGrid::StartOf(int64_t seconds) const {
  switch (key_) {
    case IntervalKey::kDay:
    case IntervalKey::kSpecific:
      // Blocks repeating from DayStart(0).
      return day_start_ + FloorDiv(seconds - day_start_, length_) * length_;
    case IntervalKey::kHour:
    case IntervalKey::kMinute:
    case IntervalKey::kSecond:
      // Clock units from midnight of 1899-12-30.
      return FloorDiv(seconds, length_) * length_;
    case IntervalKey::kShift:
      return ShiftStartOf(seconds);
    case IntervalKey::kWeek: {
      const int64_t day = DayOf(seconds);
      const int into_week =
          Weekday(static_cast<double>(day), week_days_ + 1) - 1;
      return DayStart(day - into_week);
    }
    default:
      return DayStart(FirstDayOfPeriod(DayOf(seconds)));
  }
}

int64_t IntervalGrid::NextStart(int64_t start) const {
  switch (key_) {
    case IntervalKey::kDay:
    case IntervalKey::kSpecific:
    case IntervalKey::kHour:
    case IntervalKey::kMinute:
    case IntervalKey::kSecond:
      return StartOf(start) + length_;
    case IntervalKey::kShift:
      return ShiftNextStart(start);
    case IntervalKey::kWeek:
      return StartOf(start) + 7 * kSecondsPerDay;
    default: {
      const int64_t first_day = DayOf(StartOf(start));
      return DayStart(FirstDayOfNextPeriod(first_day));
    }
  }
}

int64_t IntervalGrid::ShiftStartOf(int64_t seconds) const {
  const int64_t day_start = DayStart(DayOf(seconds));
  const int64_t into_day = seconds - day_start;  // 0 .. one day - 1
  return day_start + into_day / length_ * length_;
}

// The block after a shift ends at the next DayStart at the latest, so the
// last shift of a day is cut short there.
int64_t IntervalGrid::ShiftNextStart(int64_t start) const {
  const int64_t shift_start = ShiftStartOf(start);
  const int64_t next_day = DayStart(DayOf(start) + 1);
  const int64_t next_shift = shift_start + length_;
  return next_shift < next_day ? next_shift : next_day;
}

int IntervalGrid::MonthsPerPeriod() const {
  switch (key_) {
    case IntervalKey::kYear:
      return 12;
    case IntervalKey::kQuarter:
      return 3;
    default:
      return 1;
  }
}

// Walks back from the 1st of the day's month to the month the period
// begins in: quarters and years begin in month year_begins (+3, +6, +9).
int64_t IntervalGrid::FirstDayOfPeriod(int64_t day) const {
  const DateTimeParts parts = SplitDateTime(static_cast<double>(day));
  const int months_back =
      FloorMod(parts.month - year_begins_, MonthsPerPeriod());
  int64_t first_day = day - (parts.day - 1);
  YearMonth month{parts.year, parts.month};
  for (int i = 0; i < months_back; ++i) {
    month = PreviousMonth(month);
    first_day -= DaysInMonth(month.year, month.month);
  }
  return first_day;
}

int64_t IntervalGrid::FirstDayOfNextPeriod(int64_t first_day) const {
  const DateTimeParts parts = SplitDateTime(static_cast<double>(first_day));
  YearMonth month{parts.year, parts.month};
  int64_t next_day = first_day;
  for (int i = 0; i < MonthsPerPeriod(); ++i) {
    next_day += DaysInMonth(month.year, month.month);
    month = FollowingMonth(month);
  }
  return next_day;
}

}  // namespace rz
