// Copyright 2026 The Veltmark authors.
//
// Date built-ins. Serials are core/date_time.h's; intervals are VBScript's
// ("yyyy", "q", "m", "y", "d", "w", "ww", "h", "n", "s").

#include <cmath>
#include <string>

#include "core/date_time.h"
#include "core/error.h"
#include "core/format.h"
#include "core/text.h"
#include "vbscript/vb_builtins.h"

namespace rz::vb {
namespace {

constexpr const char* kMonthNames[] = {
    "January", "February", "March",     "April",   "May",      "June",
    "July",    "August",   "September", "October", "November", "December"};
constexpr const char* kDayNames[] = {"Sunday",    "Monday",   "Tuesday",
                                     "Wednesday", "Thursday", "Friday",
                                     "Saturday"};

double Now(BuiltinContext& context) {
  if (!context.now) throw Error::InvalidArgument("no clock");
  return context.now();
}

Variant NowFn(BuiltinContext& context, DispatchArgs&) {
  return Variant::Date(Now(context));
}
Variant DateFn(BuiltinContext& context, DispatchArgs&) {
  return Variant::Date(std::floor(Now(context)));
}
Variant TimeFn(BuiltinContext& context, DispatchArgs&) {
  const double now = Now(context);
  return Variant::Date(now - std::floor(now));
}

template <int (*Part)(double)>
Variant PartFn(BuiltinContext&, DispatchArgs& args) {
  if (args[0].IsNull()) return Variant::Null();
  return Variant(static_cast<int16_t>(Part(ToDateSerial(args[0]))));
}

int FirstDay(const DispatchArgs& args, size_t index) {
  const int32_t first = ArgOr(args, index, Variant(int32_t{1})).ToLong();
  return first == 0 ? 1 : first;
}

Variant WeekdayFn(BuiltinContext&, DispatchArgs& args) {
  if (args[0].IsNull()) return Variant::Null();
  return Variant(
      static_cast<int16_t>(Weekday(ToDateSerial(args[0]), FirstDay(args, 1))));
}

// Two-digit years read as 2000-2029 and 1930-1999.
Variant DateSerialFn(BuiltinContext&, DispatchArgs& args) {
  int64_t year = args[0].ToLong();
  if (year >= 0 && year < 30) year += 2000;
  if (year >= 30 && year < 100) year += 1900;
  return Variant::Date(DateSerial(year, args[1].ToLong(), args[2].ToLong()));
}
Variant TimeSerialFn(BuiltinContext&, DispatchArgs& args) {
  return Variant::Date(
      TimeSerial(args[0].ToLong(), args[1].ToLong(), args[2].ToLong()));
}

std::string Interval(const Variant& value) {
  const std::string interval = LowerCase(value.ToString());
  static constexpr std::string_view kKnown[] = {"yyyy", "q",  "m", "y", "d",
                                                "w",    "ww", "h", "n", "s"};
  for (std::string_view known : kKnown) {
    if (interval == known) return interval;
  }
  throw Error::InvalidArgument("interval '" + value.ToString() + "'");
}

double TimeOfDay(double serial) { return serial - std::floor(serial); }

// Adds months, keeping the day where the target month has it.
double AddMonths(double serial, int64_t months) {
  const DateTimeParts parts = SplitDateTime(serial);
  const int64_t total =
      static_cast<int64_t>(parts.year) * 12 + (parts.month - 1) + months;
  const int64_t year = total >= 0 ? total / 12 : (total - 11) / 12;
  const int month = static_cast<int>(total - year * 12) + 1;
  if (year < 100 || year > 9999) throw Error::Overflow("DateAdd");
  const int day = std::min(parts.day, DaysInMonth(year, month));
  return DateSerial(year, month, day) + TimeOfDay(serial);
}

Variant DateAddFn(BuiltinContext&, DispatchArgs& args) {
  const std::string interval = Interval(args[0]);
  const double amount = std::trunc(args[1].ToDouble());
  const double serial = ToDateSerial(args[2]);
  if (std::fabs(amount) > 1e8) throw Error::Overflow("DateAdd");
  const int64_t n = static_cast<int64_t>(amount);
  double result = serial;
  if (interval == "yyyy") result = AddMonths(serial, n * 12);
  if (interval == "q") result = AddMonths(serial, n * 3);
  if (interval == "m") result = AddMonths(serial, n);
  if (interval == "y" || interval == "d" || interval == "w") result += n;
  if (interval == "ww") result += n * 7;
  if (interval == "h") result += n / 24.0;
  if (interval == "n") result += n / 1440.0;
  if (interval == "s") result += n / 86400.0;
  SplitDateTime(result);  // range check
  return Variant::Date(result);
}

// Whole seconds of a serial, its time rounded as SplitDateTime rounds it.
int64_t Seconds(double serial) {
  return static_cast<int64_t>(std::floor(serial * 86400.0 + 0.5));
}

int64_t FloorDiv(int64_t a, int64_t b) {
  return a >= 0 ? a / b : -((-a + b - 1) / b);
}

// The start of the week holding `day` (a whole serial).
int64_t WeekStart(int64_t day, int first_day) {
  return day - (Weekday(static_cast<double>(day), first_day) - 1);
}

Variant DateDiffFn(BuiltinContext&, DispatchArgs& args) {
  const std::string interval = Interval(args[0]);
  const double a = ToDateSerial(args[1]);
  const double b = ToDateSerial(args[2]);
  const DateTimeParts pa = SplitDateTime(a);
  const DateTimeParts pb = SplitDateTime(b);
  const int64_t day_a = FloorDiv(Seconds(a), 86400);
  const int64_t day_b = FloorDiv(Seconds(b), 86400);
  int64_t result = 0;
  if (interval == "yyyy") result = pb.year - pa.year;
  if (interval == "q") {
    result = (pb.year - pa.year) * 4 + (pb.month - 1) / 3 - (pa.month - 1) / 3;
  }
  if (interval == "m") result = (pb.year - pa.year) * 12 + pb.month - pa.month;
  if (interval == "y" || interval == "d") result = day_b - day_a;
  if (interval == "w") result = (day_b - day_a) / 7;
  if (interval == "ww") {
    const int first = FirstDay(args, 3);
    result = (WeekStart(day_b, first) - WeekStart(day_a, first)) / 7;
  }
  if (interval == "h") {
    result = FloorDiv(Seconds(b), 3600) - FloorDiv(Seconds(a), 3600);
  }
  if (interval == "n") {
    result = FloorDiv(Seconds(b), 60) - FloorDiv(Seconds(a), 60);
  }
  if (interval == "s") result = Seconds(b) - Seconds(a);
  return Variant(static_cast<int32_t>(result));
}

Variant DatePartFn(BuiltinContext&, DispatchArgs& args) {
  const std::string interval = Interval(args[0]);
  const double serial = ToDateSerial(args[1]);
  const DateTimeParts parts = SplitDateTime(serial);
  const int first = FirstDay(args, 2);
  const double jan1 = DateSerial(parts.year, 1, 1);
  const int64_t day = static_cast<int64_t>(std::floor(serial));
  int64_t result = 0;
  if (interval == "yyyy") result = parts.year;
  if (interval == "q") result = (parts.month - 1) / 3 + 1;
  if (interval == "m") result = parts.month;
  if (interval == "y") result = day - static_cast<int64_t>(jan1) + 1;
  if (interval == "d") result = parts.day;
  if (interval == "w") result = Weekday(serial, first);
  if (interval == "ww") {
    result =
        (WeekStart(day, first) - WeekStart(static_cast<int64_t>(jan1), first)) /
            7 +
        1;
  }
  if (interval == "h") result = parts.hour;
  if (interval == "n") result = parts.minute;
  if (interval == "s") result = parts.second;
  return Variant(static_cast<int32_t>(result));
}

Variant MonthNameFn(BuiltinContext&, DispatchArgs& args) {
  const int32_t month = args[0].ToLong();
  if (month < 1 || month > 12) throw Error::InvalidArgument("MonthName");
  std::string name = kMonthNames[month - 1];
  if (ArgOr(args, 1, Variant(false)).ToBool()) name.resize(3);
  return Variant(std::move(name));
}

Variant WeekdayNameFn(BuiltinContext&, DispatchArgs& args) {
  const int32_t day = args[0].ToLong();
  const int first = FirstDay(args, 2);
  if (day < 1 || day > 7 || first < 1 || first > 7) {
    throw Error::InvalidArgument("WeekdayName");
  }
  std::string name = kDayNames[(day - 1 + first - 1) % 7];
  if (ArgOr(args, 1, Variant(false)).ToBool()) name.resize(3);
  return Variant(std::move(name));
}

Variant FormatDateTimeFn(BuiltinContext&, DispatchArgs& args) {
  if (args[0].IsNull()) return Variant::Null();
  static constexpr const char* kMasks[] = {"", "dddd, mmmm d, yyyy",
                                           "yyyy-mm-dd", "hh:mm:ss", "hh:mm"};
  const int32_t style = ArgOr(args, 1, Variant(int32_t{0})).ToLong();
  if (style < 0 || style > 4) throw Error::InvalidArgument("FormatDateTime");
  const double serial = ToDateSerial(args[0]);
  if (style == 0) return Variant(Variant::Date(serial).ToString());
  return Variant(FormatMask::Compile(kMasks[style]).FormatDate(serial));
}

// FormatNumber(value, [decimals], [leading zero], [parentheses], [group]).
Variant FormatNumberFn(BuiltinContext&, DispatchArgs& args) {
  if (args[0].IsNull()) throw Error::TypeMismatch("Null");
  const double value = args[0].ToDouble();
  int32_t decimals = ArgOr(args, 1, Variant(int32_t{-1})).ToLong();
  if (decimals == -1) decimals = 2;
  if (decimals < -1 || decimals > 255) {
    throw Error::InvalidArgument("FormatNumber");
  }
  const bool leading = ArgOr(args, 2, Variant(int32_t{-2})).ToLong() != 0;
  const bool parens = ArgOr(args, 3, Variant(int32_t{-2})).ToLong() == -1;
  const bool group = ArgOr(args, 4, Variant(int32_t{-2})).ToLong() != 0;
  std::string mask = group ? "#,##" : "#";
  mask += leading ? "0" : "#";
  if (decimals > 0) mask += "." + std::string(decimals, '0');
  std::string text = FormatMask::Compile(mask).FormatNumber(std::fabs(value));
  const bool negative =
      value < 0 && text.find_first_of("123456789") != std::string::npos;
  if (negative) text = parens ? "(" + text + ")" : "-" + text;
  return Variant(std::move(text));
}

}  // namespace

void AddDateBuiltins(std::vector<Builtin>* table) {
  table->insert(table->end(), {
                                  {"NOW", 0, 0, NowFn},
                                  {"DATE", 0, 0, DateFn},
                                  {"TIME", 0, 0, TimeFn},
                                  {"YEAR", 1, 1, PartFn<Year>},
                                  {"MONTH", 1, 1, PartFn<Month>},
                                  {"DAY", 1, 1, PartFn<Day>},
                                  {"HOUR", 1, 1, PartFn<Hour>},
                                  {"MINUTE", 1, 1, PartFn<Minute>},
                                  {"SECOND", 1, 1, PartFn<Second>},
                                  {"WEEKDAY", 1, 2, WeekdayFn},
                                  {"DATESERIAL", 3, 3, DateSerialFn},
                                  {"TIMESERIAL", 3, 3, TimeSerialFn},
                                  {"DATEADD", 3, 3, DateAddFn},
                                  {"DATEDIFF", 3, 5, DateDiffFn},
                                  {"DATEPART", 2, 4, DatePartFn},
                                  {"MONTHNAME", 1, 2, MonthNameFn},
                                  {"WEEKDAYNAME", 1, 3, WeekdayNameFn},
                                  {"FORMATDATETIME", 1, 2, FormatDateTimeFn},
                                  {"FORMATNUMBER", 1, 5, FormatNumberFn},
                              });
}

}  // namespace rz::vb
