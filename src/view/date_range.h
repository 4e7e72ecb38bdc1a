// Copyright 2026 The Veltmark authors.
//
// Date-range resolution: turns a view's range rule (range kind, From and To
// types, forward and backward amounts, calendar settings) into the two
// date-times the run filters on, ViewState::BegDate and ViewState::EndDate,
// with their text copies BegText and EndText.
//
// The module is pure: it never reads the clock. Every function that needs
// the reference time takes it as `now` (a date serial, see core/date_time.h),
// so one pass resolves every type against the same moment and tests pin it.
//
// Calendar types (every From/To type except "First Record"/"Last Record" and
// "Specific Date/Time -->") honour the day start: a day, and so every week,
// month, quarter and year, begins PlusMinus x ShiftStart after midnight. A
// From type gives the start of its period; a To type gives one second
// before the start of the following period.
//
// Reading `now`: its calendar parts (year ... second) are taken rounded to
// the whole second, and "midnight of now" is the midnight of those parts,
// so the parts and the day always agree. Comparisons with period starts use
// `now` as given.
//
// Failures: a type index outside 0..15 (-1 is "nothing selected") and a
// unit index outside 0..9 leave the value unchanged, as does a shift type or
// the Shift(s) unit when ShiftDuration is not above 0. A date component plus
// an amount that does not fit a 16-bit whole number throws Error::Overflow
// (6), and so does any date built outside the calendar's range (years
// 100..9999). WeekDays outside 0..6 throws Error::InvalidArgument (5) for
// the week types. Nothing is written to the state when a function throws.

#ifndef RZ_VIEW_DATE_RANGE_H_
#define RZ_VIEW_DATE_RANGE_H_

#include <array>
#include <cstdint>
#include <optional>
#include <string_view>

namespace rz {

struct ViewState;

// Indices into the From and To type lists. Both lists have the same
// layout; only the texts differ ("Beg of" / "End of").
inline constexpr int32_t kTypeNone = -1;  // nothing selected
inline constexpr int32_t kTypePreviousYear = 0;
inline constexpr int32_t kTypePreviousQuarter = 1;
inline constexpr int32_t kTypePreviousMonth = 2;
inline constexpr int32_t kTypePreviousWeek = 3;
inline constexpr int32_t kTypePreviousDay = 4;
inline constexpr int32_t kTypePreviousShift = 5;
inline constexpr int32_t kTypePreviousHour = 6;
inline constexpr int32_t kTypeCurrentYear = 7;
inline constexpr int32_t kTypeCurrentQuarter = 8;
inline constexpr int32_t kTypeCurrentMonth = 9;
inline constexpr int32_t kTypeCurrentWeek = 10;
inline constexpr int32_t kTypeCurrentDay = 11;
inline constexpr int32_t kTypeCurrentShift = 12;
inline constexpr int32_t kTypeCurrentHour = 13;
inline constexpr int32_t kTypeRecordBound = 14;  // First / Last Record
inline constexpr int32_t kTypeSpecific = 15;     // Specific Date/Time -->

// Indices into the unit list of both amounts.
inline constexpr int32_t kUnitYears = 0;
inline constexpr int32_t kUnitQuarters = 1;
inline constexpr int32_t kUnitMonths = 2;
inline constexpr int32_t kUnitWeeks = 3;
inline constexpr int32_t kUnitDays = 4;
inline constexpr int32_t kUnitShifts = 5;
inline constexpr int32_t kUnitHours = 6;
inline constexpr int32_t kUnitMinutes = 7;
inline constexpr int32_t kUnitSeconds = 8;
inline constexpr int32_t kUnitRecords = 9;

// The list entries shown to the user, by index. "Current" is followed by
// two blanks.
extern const std::array<std::string_view, 16> kFromTypeNames;
extern const std::array<std::string_view, 16> kToTypeNames;
extern const std::array<std::string_view, 10> kAmountUnitNames;

// The calendar settings a range rule is resolved with.
struct RangeCalendar {
  int32_t year_begins = 1;  // month the year begins in, 1 = January
  int32_t week_days = 0;    // first day of the week, 0 = Sunday .. 6
  double day_offset = 0;    // PlusMinus x ShiftStart, in days
  double shift_days = 0;    // ShiftDuration / 24
};

// The calendar settings of `state` (YearBegins, WeekDays, PlusMinus,
// ShiftStart, ShiftDuration).
RangeCalendar RangeCalendarOf(const ViewState& state);

// The start of the period a calendar From type names, or one second before
// the end of the period a calendar To type names, at `now`. Returns nullopt
// for the types that are not calendar types (14, 15, anything outside
// 0..13) and for the shift types when calendar.shift_days is not above 0.
std::optional<double> BegOfPeriod(int32_t from_type, double now,
                                  const RangeCalendar& calendar);
std::optional<double> EndOfPeriod(int32_t to_type, double now,
                                  const RangeCalendar& calendar);

// The From (To) date-time for `from_type` (`to_type`) at `now`: a calendar
// type as above, "First Record" FirstRecordDateTime ("Last Record"
// LastRecordDateTime), and `held`, the working value already held, for
// "Specific Date/Time -->", for nothing selected and wherever the type
// leaves the value unchanged.
double ResolveFromType(const ViewState& state, int32_t from_type, double now,
                       double held);
double ResolveToType(const ViewState& state, int32_t to_type, double now,
                     double held);

// The To date-time that `amount` units forward from `from` gives, or nullopt
// when the unit leaves the To date-time unchanged (Record(s), a unit outside
// 0..9, Shift(s) without a positive shift length). The amount may be
// fractional: it is added to the date or time component and rounded half
// to even, except for Week(s) and Shift(s), which add days directly.
// Throws Error::Overflow as the header says.
std::optional<double> ApplyForwardAmount(double from, double amount,
                                         int32_t unit,
                                         const RangeCalendar& calendar);

// The mirror image: the From date-time `amount` units back from `to`.
std::optional<double> ApplyBackwardAmount(double to, double amount,
                                          int32_t unit,
                                          const RangeCalendar& calendar);

// Re-resolves the range of `state` when a view is loaded or the wizard
// page is filled, against the reference time `now`:
//   1. the working From and To start as BegDate and EndDate;
//   2. the types are resolved in the range kind's order: Backward From, To,
//      From; FromTo From, To; Forward To, From;
//   3. Forward applies the forward amount (To from From), Backward the
//      backward amount (From from To); FromTo applies none;
//   4. BegDate, EndDate, BegText and EndText receive the result.
// An amount below 1 is refused and leaves the working value unchanged (the
// wizard reports it); the function then returns false, else true. A range
// kind other than -1, 0, 1 resolves the types as FromTo and applies no
// amount. The caller loading a view first sets BegDate/EndDate from
// FromDateTime/ToDateTime (SetRangeText) so that "Specific Date/Time -->"
// keeps the stored values.
bool ResolveRangeOnLoad(ViewState& state, double now);

// The run-time refresh of the record-bound types, called once the run has
// read FirstRecordDateTime and LastRecordDateTime: with Backward and
// ToType 14, EndDate := LastRecordDateTime; with Forward and FromType 14,
// BegDate := FirstRecordDateTime; with FromTo both, the To side first.
// Each assignment rewrites its text copy. No other type and no amount is
// re-evaluated.
void RefreshRecordBoundRange(ViewState& state);

// The trace line the run writes before the refresh:
// "FilterRangeType=Backward", "FilterRangeType=Forward",
// "FilterRangeType=FromTo", or empty for any other range kind.
std::string_view RangeKindTraceText(int32_t filter_range_type);

}  // namespace rz

#endif  // RZ_VIEW_DATE_RANGE_H_
