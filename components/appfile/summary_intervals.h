// Copyright 2026 The Veltmark authors.
//
// The time grid of the summary pass. A summary by Year, Quarter, Month,
// Week, Day, Shift, Hour, Minute, Second or by a specific interval puts each
// record into one half-open interval [start, next) of a grid that is fixed by
// the calendar and the summary settings, never by the data.
//
// Times are whole seconds since 1899-12-30 00:00:00 (SecondsFromSerial).
//
// The day start: day d of the calendar begins at
//   DayStart(d) = midnight of d + day_start_seconds,
// and a moment belongs to the day whose DayStart is the last one at or before
// it. Day, Week, Month, Quarter and Year begin at a DayStart:
//   - Week:    at the DayStart of a day that is `week_days` (0 = Sunday);
//   - Month:   at the DayStart of the 1st;
//   - Quarter: at the DayStart of the 1st of the months year_begins,
//              year_begins + 3, + 6 and + 9 (carried into the neighbouring
//              years);
//   - Year:    at the DayStart of the 1st of month year_begins.
// Shift: blocks of shift_hours (rounded to whole seconds) that start again at
// every DayStart; the last block of a day ends at the next DayStart and may
// be shorter. Hour, Minute and Second are clock units, not moved by the day
// start. Specific: blocks of interval_seconds repeating from DayStart of
// 1899-12-30, i.e. from day_start_seconds itself.
//
// Out-of-range settings a view may hold without having set them: week_days
// outside 0..6 counts as 0 (Sunday), year_begins outside 1..12 counts as 1
// (January).
//
// Errors: IntervalGrid::For raises error 5 naming the setting and its value
// when the key needs a setting that cannot make a grid (see For). The
// calendar keys (Year, Quarter, Month, Week) raise error 6 for a time whose
// day lies outside the calendar of 0100-01-01 .. 9999-12-31;
// SecondsFromSerial raises error 6 for a serial outside that calendar, NaN or
// infinite. Nothing else throws.
//
// IntervalGrid is a small copyable value; it holds no reference and may be
// used from several threads at once.

#ifndef RZ_APPFILE_SUMMARY_INTERVALS_H_
#define RZ_APPFILE_SUMMARY_INTERVALS_H_

#include <cstdint>

namespace rz {

// Whole seconds since 1899-12-30 00:00:00: the linear form of a date-time
// serial. The serial is read as everywhere in this system (core/date_time.h):
// its day is floor(serial) and its time of day serial - floor(serial), so
// -0.75 is 1899-12-29 06:00:00 (-64800 seconds) and -1.25 is 1899-12-28
// 18:00:00 (-108000). The time of day is rounded to the nearest second.
// Throws Error::Overflow outside the calendar, for NaN and for infinities.
int64_t SecondsFromSerial(double serial);
// The inverse: the serial of `seconds`, in the same form, so that
// SecondsFromSerial(SerialFromSeconds(s)) == s for every s in the calendar.
double SerialFromSeconds(int64_t seconds);

// The settings of the summary pass, already read from their texts.
struct SummarySettings {
  int64_t interval_seconds = 0;   // Interval ("hh:mm:ss" read as seconds)
  double shift_hours = 0;         // ShiftDuration
  int64_t day_start_seconds = 0;  // PlusMinus x ShiftStart; negative = the day
                                  // starts before midnight
  int week_days = 0;              // first day of the week, 0 = Sunday .. 6
  int year_begins = 1;            // first month of the year, 1..12
};

// The summary keys that place records on a fixed time grid.
enum class IntervalKey : int32_t {
  kYear = -9,
  kQuarter = -8,
  kMonth = -7,
  kWeek = -6,
  kDay = -5,
  kShift = -4,
  kHour = -3,
  kMinute = -2,
  kSecond = -1,
  kSpecific = 0,
};

// A fixed grid of half-open intervals [start, next) in seconds.
class IntervalGrid {
 public:
  // The grid of `key`. Raises error 5 naming the setting and its value,
  // before any work, when the key needs a setting that cannot make a grid:
  //   - kSpecific: interval_seconds <= 0, or longer than the whole calendar
  //     ("Interval");
  //   - kShift: shift_hours <= 0, NaN, or so short that it rounds to no
  //     whole second ("ShiftDuration"). Shifts of a day or more give one
  //     block per day.
  // Settings the key does not use are not checked. Raises error 5 for a
  // value that is not one of the keys.
  static IntervalGrid For(IntervalKey key, const SummarySettings& settings);

  IntervalKey Key() const { return key_; }

  // The start of the interval that holds `seconds`. Integer arithmetic only
  // for Day, Shift, Hour, Minute, Second and Specific.
  int64_t StartOf(int64_t seconds) const;
  // The start of the interval after the one that holds `start` (normally a
  // value StartOf gave).
  int64_t NextStart(int64_t start) const;

 private:
  IntervalGrid(IntervalKey key, const SummarySettings& settings);

  // The calendar keys: the start of the month, quarter or year that holds
  // the calendar day `day`, as a day number, and the day number after it.
  int64_t FirstDayOfPeriod(int64_t day) const;
  int64_t FirstDayOfNextPeriod(int64_t first_day) const;
  int MonthsPerPeriod() const;

  int64_t ShiftStartOf(int64_t seconds) const;
  int64_t ShiftNextStart(int64_t start) const;

  // The calendar day whose DayStart is the last one at or before `seconds`,
  // and the DayStart of a day.
  int64_t DayOf(int64_t seconds) const;
  int64_t DayStart(int64_t day) const;

  IntervalKey key_;
  int64_t length_ = 0;     // seconds of one block (Shift, Hour..Specific)
  int64_t day_start_ = 0;  // seconds from midnight to the start of a day
  int week_days_ = 0;      // 0 = Sunday .. 6 = Saturday
  int year_begins_ = 1;    // 1..12
};

}  // namespace rz

#endif  // RZ_APPFILE_SUMMARY_INTERVALS_H_
