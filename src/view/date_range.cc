// Copyright 2026 The Veltmark authors.

#include "view/date_range.h"

#include <cmath>
#include <cstdio>
#include <limits>
#include <string>

#include "core/date_time.h"
#include "core/error.h"
#include "view/view_state.h"

namespace rz {

const std::array<std::string_view, 16> kFromTypeNames = {
    "Beg of Previous Year",
    "Beg of Previous Quarter",
    "Beg of Previous Month",
    "Beg of Previous Week",
    "Beg of Previous Day",
    "Beg of Previous Shift",
    "Beg of Previous Hour",
    "Beg of Current  Year",
    "Beg of Current  Quarter",
    "Beg of Current  Month",
    "Beg of Current  Week",
    "Beg of Current  Day",
    "Beg of Current  Shift",
    "Beg of Current  Hour",
    "First Record",
    "Specific Date/Time -->",
};

const std::array<std::string_view, 16> kToTypeNames = {
    "End of Previous Year",
    "End of Previous Quarter",
    "End of Previous Month",
    "End of Previous Week",
    "End of Previous Day",
    "End of Previous Shift",
    "End of Previous Hour",
    "End of Current  Year",
    "End of Current  Quarter",
    "End of Current  Month",
    "End of Current  Week",
    "End of Current  Day",
    "End of Current  Shift",
    "End of Current  Hour",
    "Last Record",
    "Specific Date/Time -->",
};

const std::array<std::string_view, 10> kAmountUnitNames = {
    "Year(s)",  "Quarter(s)", "Month(s)",  "Week(s)",   "Day(s)",
    "Shift(s)", "Hour(s)",    "Minute(s)", "Second(s)", "Record(s)",
};

namespace {

constexpr double kOneSecond = 1.0 / 86400;

// The reference time read once per resolution: its parts rounded to the
// second and the midnight of those parts.
struct ReferenceTime {
  double now;
  int64_t year, month, day, hour;
  double midnight;
};

ReferenceTime ReadReferenceTime(double now) {
  const DateTimeParts parts = SplitDateTime(now);
  return {now,         parts.year,
          parts.month, parts.day,
          parts.hour,  DateSerial(parts.year, parts.month, parts.day)};
}

// Instants are compared to the whole second, the resolution at which the
// reference time is read; this keeps a period that starts exactly at `now`
// from being missed by a rounding difference in the last bit.
int64_t WholeSeconds(double serial) { return std::llround(serial * 86400); }

bool StartsAfter(double start, double now) {
  return WholeSeconds(start) > WholeSeconds(now);
}

// A date before carrying, as DateSerial takes it.
struct Ymd {
  int64_t year, month, day;
};

double DateOf(const Ymd& date) {
  return DateSerial(date.year, date.month, date.day);
}

// A calendar type: the candidate date part, the start X of the period that
// should already be running, and the date part one period earlier that
// replaces the candidate while X has not begun by the day-start rule.
struct PeriodRule {
  Ymd candidate, check, alternative;
};

double ChooseDatePart(const PeriodRule& rule, double now, double day_offset) {
  const bool begun = !StartsAfter(DateOf(rule.check) + day_offset, now);
  return DateOf(begun ? rule.candidate : rule.alternative);
}

// The first month of a quarter as the range rules write it, before
// carrying: ((month - back) \ 3) x 3 + q + 1 with q = (YearBegins - 1) mod 3
// and a division that truncates toward zero. `back` is 1 for the quarter
// containing `month` and 4 for the one before; where truncation lands a
// quarter off, the period check of the type steps back.
int64_t QuarterMonth(int64_t month, int64_t back, int32_t year_begins) {
  const int64_t q = (year_begins - 1) % 3;
  return ((month - back) / 3) * 3 + q + 1;
}

// The day of the week of `now`, 1 for the calendar's first day.
int64_t WeekPosition(const ReferenceTime& ref, const RangeCalendar& calendar) {
  return Weekday(ref.now, calendar.week_days + 1);
}

std::optional<PeriodRule> FromPeriodRule(int32_t type, const ReferenceTime& r,
                                         const RangeCalendar& c) {
  const int64_t y = r.year, m = r.month, d = r.day, m0 = c.year_begins;
  switch (type) {
    case kTypePreviousYear:
      return PeriodRule{{y - 1, m0, 1}, {y, m0, 1}, {y - 2, m0, 1}};
    case kTypePreviousQuarter: {
      const int64_t s = QuarterMonth(m, 4, c.year_begins);
      return PeriodRule{{y, s, 1}, {y, s + 3, 1}, {y, s - 3, 1}};
    }
    case kTypePreviousMonth:
      return PeriodRule{{y, m - 1, 1}, {y, m, 1}, {y, m - 2, 1}};
    case kTypePreviousWeek: {
      const int64_t w = WeekPosition(r, c);
      return PeriodRule{{y, m, d - w - 6}, {y, m, d - w + 1}, {y, m, d - 14}};
    }
    case kTypePreviousDay:
      return PeriodRule{{y, m, d - 1}, {y, m, d}, {y, m, d - 2}};
    case kTypeCurrentYear:
      return PeriodRule{{y, m0, 1}, {y, m0, 1}, {y - 1, m0, 1}};
    case kTypeCurrentQuarter: {
      const int64_t s = QuarterMonth(m, 1, c.year_begins);
      return PeriodRule{{y, s, 1}, {y, s, 1}, {y, s - 3, 1}};
    }
    case kTypeCurrentMonth:
      return PeriodRule{{y, m, 1}, {y, m, 1}, {y, m - 1, 1}};
    case kTypeCurrentWeek: {
      const int64_t w = WeekPosition(r, c);
      return PeriodRule{
          {y, m, d - w + 1}, {y, m, d - w + 1}, {y, m, d - w - 6}};
    }
    case kTypeCurrentDay:
      return PeriodRule{{y, m, d}, {y, m, d}, {y, m, d - 1}};
    default:
      return std::nullopt;
  }
}

// "End of Previous" ends where the current period begins and "End of
// Current" where the next one begins; both find the current period's start
// as the matching "Beg of Current" type does.
std::optional<PeriodRule> ToPeriodRule(int32_t type, const ReferenceTime& r,
                                       const RangeCalendar& c) {
  const int64_t y = r.year, m = r.month, d = r.day, m0 = c.year_begins;
  switch (type) {
    case kTypePreviousYear:
    case kTypePreviousQuarter:
    case kTypePreviousMonth:
    case kTypePreviousWeek:
    case kTypePreviousDay:
      return FromPeriodRule(type + kTypeCurrentYear, r, c);
    case kTypeCurrentYear:
      return PeriodRule{{y + 1, m0, 1}, {y, m0, 1}, {y, m0, 1}};
    case kTypeCurrentQuarter: {
      const int64_t s = QuarterMonth(m, 1, c.year_begins);
      return PeriodRule{{y, s + 3, 1}, {y, s, 1}, {y, s, 1}};
    }
    case kTypeCurrentMonth:
      return PeriodRule{{y, m + 1, 1}, {y, m, 1}, {y, m, 1}};
    case kTypeCurrentWeek: {
      const int64_t w = WeekPosition(r, c);
      return PeriodRule{
          {y, m, d - w + 8}, {y, m, d - w + 1}, {y, m, d - w + 1}};
    }
    case kTypeCurrentDay:
      return PeriodRule{{y, m, d + 1}, {y, m, d}, {y, m, d}};
    default:
      return std::nullopt;
  }
}

// The first shift boundary after `now`: boundaries lie every shift length
// from the day start of `now`'s date, and a boundary at `now` itself has
// already passed. Computed by multiplication rather than by stepping, with
// a bounded correction for rounding.
double FirstShiftBoundaryAfter(const ReferenceTime& ref,
                               const RangeCalendar& calendar) {
  const double first = ref.midnight + calendar.day_offset;
  const double length = calendar.shift_days;
  if (StartsAfter(first, ref.now)) return first;
  double steps = std::floor((ref.now - first) / length);
  for (int i = 0; i < 4 && !StartsAfter(first + steps * length, ref.now); ++i) {
    ++steps;
  }
  for (int i = 0;
       i < 4 && steps > 1 && StartsAfter(first + (steps - 1) * length, ref.now);
       ++i) {
    --steps;
  }
  return first + steps * length;
}

// The hour types and shift types, which do not follow the period-rule table.
std::optional<double> BegOfClockPeriod(int32_t type, const ReferenceTime& ref,
                                       const RangeCalendar& calendar) {
  switch (type) {
    case kTypePreviousHour:
      return ref.midnight + TimeSerial(ref.hour - 1, 0, 0);
    case kTypeCurrentHour:
      return ref.midnight + TimeSerial(ref.hour, 0, 0);
    case kTypePreviousShift:
    case kTypeCurrentShift: {
      if (!(calendar.shift_days > 0)) return std::nullopt;
      const int shifts_back = type == kTypePreviousShift ? 2 : 1;
      return FirstShiftBoundaryAfter(ref, calendar) -
             shifts_back * calendar.shift_days;
    }
    default:
      return std::nullopt;
  }
}

std::optional<double> EndOfClockPeriod(int32_t type, const ReferenceTime& ref,
                                       const RangeCalendar& calendar) {
  switch (type) {
    case kTypePreviousHour:
      return ref.midnight + TimeSerial(ref.hour, 0, -1);
    case kTypeCurrentHour:
      return ref.midnight + TimeSerial(ref.hour + 1, 0, -1);
    case kTypePreviousShift:
    case kTypeCurrentShift: {
      if (!(calendar.shift_days > 0)) return std::nullopt;
      const int shifts_back = type == kTypePreviousShift ? 1 : 0;
      return FirstShiftBoundaryAfter(ref, calendar) -
             shifts_back * calendar.shift_days - kOneSecond;
    }
    default:
      return std::nullopt;
  }
}

double RoundHalfToEven(double value) {
  const double nearest = std::round(value);
  if (std::fabs(value - std::trunc(value)) != 0.5) return nearest;
  return 2 * std::round(value / 2);
}

// A date or time component moved by an amount, as the 16-bit whole number
// the date and time builders take.
int64_t MovedComponent(int64_t component, double amount) {
  const double sum = static_cast<double>(component) + amount;
  const double moved = RoundHalfToEven(sum);
  if (!(moved >= std::numeric_limits<int16_t>::min() &&
        moved <= std::numeric_limits<int16_t>::max())) {
    char text[32];
    std::snprintf(text, sizeof text, "%.15g", sum);
    throw Error::Overflow(text);
  }
  return static_cast<int64_t>(moved);
}

// `base` moved by `amount` units (negative to go back), before the
// one-second adjustment; nullopt when the unit leaves the value unchanged.
std::optional<double> MoveByAmount(double base, double amount, int32_t unit,
                                   const RangeCalendar& calendar) {
  const DateTimeParts p = SplitDateTime(base);
  const double day = DateSerial(p.year, p.month, p.day);
  const double time = base - day;
  switch (unit) {
    case kUnitYears:
      return DateSerial(MovedComponent(p.year, amount), p.month, p.day) + time;
    case kUnitQuarters:
      return DateSerial(p.year, MovedComponent(p.month, 3 * amount), p.day) +
             time;
    case kUnitMonths:
      return DateSerial(p.year, MovedComponent(p.month, amount), p.day) + time;
    case kUnitWeeks:
      return day + 7 * amount + time;
    case kUnitDays:
      return DateSerial(p.year, p.month, MovedComponent(p.day, amount)) + time;
    case kUnitShifts:
      if (!(calendar.shift_days > 0)) return std::nullopt;
      return base + amount * calendar.shift_days;
    case kUnitHours:
      return day +
             TimeSerial(MovedComponent(p.hour, amount), p.minute, p.second);
    case kUnitMinutes:
      return day +
             TimeSerial(p.hour, MovedComponent(p.minute, amount), p.second);
    case kUnitSeconds:
      return day +
             TimeSerial(p.hour, p.minute, MovedComponent(p.second, amount));
    default:
      return std::nullopt;  // Record(s) limits the records read instead
  }
}

bool IsRangeKind(int32_t kind) {
  return kind == kRangeBackward || kind == kRangeFromTo ||
         kind == kRangeForward;
}

// The working From and To date-times of one load pass.
struct WorkingRange {
  double from, to;
};

// Resolves the From and To types in the order of the range kind: Backward
// From, To, From; Forward To, From; FromTo (and any other kind) From, To.
void ResolveTypesInKindOrder(const ViewState& state, double now,
                             WorkingRange& range) {
  const auto resolve_from = [&] {
    range.from = ResolveFromType(state, state.FromType, now, range.from);
  };
  const auto resolve_to = [&] {
    range.to = ResolveToType(state, state.ToType, now, range.to);
  };
  if (state.FilterRangeType == kRangeBackward) {
    resolve_from();
    resolve_to();
    resolve_from();
  } else if (state.FilterRangeType == kRangeForward) {
    resolve_to();
    resolve_from();
  } else {
    resolve_from();
    resolve_to();
  }
}

// Turns on the amount of the range kind and applies it: Forward derives To
// from From, Backward From from To. An amount below 1 is refused, as the
// wizard refuses it, and changes nothing; returns false then.
bool ApplyAmountOfKind(const ViewState& state, WorkingRange& range) {
  const RangeCalendar calendar = RangeCalendarOf(state);
  if (state.FilterRangeType == kRangeForward) {
    if (state.ForwardAmount < 1) return false;
    range.to = ApplyForwardAmount(range.from, state.ForwardAmount,
                                  state.ForwardUnits, calendar)
                   .value_or(range.to);
  } else if (state.FilterRangeType == kRangeBackward) {
    if (state.BackwardAmount < 1) return false;
    range.from = ApplyBackwardAmount(range.to, state.BackwardAmount,
                                     state.BackwardUnits, calendar)
                     .value_or(range.from);
  }
  return true;
}

}  // namespace

RangeCalendar RangeCalendarOf(const ViewState& state) {
  return {state.YearBegins, state.WeekDays, state.PlusMinus * state.ShiftStart,
          state.ShiftDuration / 24};
}

std::optional<double> BegOfPeriod(int32_t from_type, double now,
                                  const RangeCalendar& calendar) {
  const ReferenceTime ref = ReadReferenceTime(now);
  if (auto rule = FromPeriodRule(from_type, ref, calendar)) {
    return ChooseDatePart(*rule, now, calendar.day_offset) +
           calendar.day_offset;
  }
  return BegOfClockPeriod(from_type, ref, calendar);
}

std::optional<double> EndOfPeriod(int32_t to_type, double now,
                                  const RangeCalendar& calendar) {
  const ReferenceTime ref = ReadReferenceTime(now);
  if (auto rule = ToPeriodRule(to_type, ref, calendar)) {
    return ChooseDatePart(*rule, now, calendar.day_offset) +
           calendar.day_offset - kOneSecond;
  }
  return EndOfClockPeriod(to_type, ref, calendar);
}

double ResolveFromType(const ViewState& state, int32_t from_type, double now,
                       double held) {
  if (from_type == kTypeRecordBound) return state.FirstRecordDateTime;
  if (from_type < 0 || from_type >= kTypeRecordBound) return held;
  return BegOfPeriod(from_type, now, RangeCalendarOf(state)).value_or(held);
}

double ResolveToType(const ViewState& state, int32_t to_type, double now,
                     double held) {
  if (to_type == kTypeRecordBound) return state.LastRecordDateTime;
  if (to_type < 0 || to_type >= kTypeRecordBound) return held;
  return EndOfPeriod(to_type, now, RangeCalendarOf(state)).value_or(held);
}

std::optional<double> ApplyForwardAmount(double from, double amount,
                                         int32_t unit,
                                         const RangeCalendar& calendar) {
  const auto moved = MoveByAmount(from, amount, unit, calendar);
  if (!moved) return std::nullopt;
  return *moved - kOneSecond;
}

std::optional<double> ApplyBackwardAmount(double to, double amount,
                                          int32_t unit,
                                          const RangeCalendar& calendar) {
  const auto moved = MoveByAmount(to, -amount, unit, calendar);
  if (!moved) return std::nullopt;
  return *moved + kOneSecond;
}

bool ResolveRangeOnLoad(ViewState& state, double now) {
  WorkingRange range{state.BegDate, state.EndDate};
  ResolveTypesInKindOrder(state, now, range);
  const bool amount_accepted = ApplyAmountOfKind(state, range);
  const std::string beg_text = FormatDateTime(range.from);
  const std::string end_text = FormatDateTime(range.to);
  state.BegDate = range.from;
  state.EndDate = range.to;
  state.BegText = beg_text;
  state.EndText = end_text;
  return amount_accepted;
}

void RefreshRecordBoundRange(ViewState& state) {
  if (!IsRangeKind(state.FilterRangeType)) return;
  const bool to_side = state.FilterRangeType != kRangeForward &&
                       state.ToType == kTypeRecordBound;
  const bool from_side = state.FilterRangeType != kRangeBackward &&
                         state.FromType == kTypeRecordBound;
  // Both texts are made before anything is assigned, so a failure leaves
  // the state as it was.
  const std::string end_text =
      to_side ? FormatDateTime(state.LastRecordDateTime) : state.EndText;
  const std::string beg_text =
      from_side ? FormatDateTime(state.FirstRecordDateTime) : state.BegText;
  if (to_side) {
    state.EndDate = state.LastRecordDateTime;
    state.EndText = end_text;
  }
  if (from_side) {
    state.BegDate = state.FirstRecordDateTime;
    state.BegText = beg_text;
  }
}
std::string_view RangeKindTraceText(int32_t filter_range_type) {
  switch (filter_range_type) {
    case kRangeBackward:
      return "FilterRangeType=Backward";
    case kRangeForward:
      return "FilterRangeType=Forward";
    case kRangeFromTo:
      return "FilterRangeType=FromTo";
    default:
      return "";
  }
}

}  // namespace rz
