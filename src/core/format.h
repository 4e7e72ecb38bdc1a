// Copyright 2026 The Veltmark authors.
//
// Format masks: the number and date display masks of result columns, view
// texts and scripts. A mask is compiled once into a FormatMask and then
// formats many values; formatting writes straight into the result string
// (std::to_chars, no streams, no other allocation), because it is the floor
// of a detail run.
//
// Kinds of mask:
//   - empty: numbers are written with ShortestNumberText (core/text.h);
//   - date mask: holds at least one date/time token below and no "#" or "0";
//   - number mask: every other mask.
//
// Number masks. "#" is an optional digit, "0" a required digit, the first
// "." is the decimal point, and a "," that has digit placeholders of the
// integer part on both sides turns on thousands grouping (it is not written
// itself). Every other character is a literal written in place, before,
// between or after the digits ("$#,##0.00" on 1234.5 -> "$1,234.50").
//   - Rounding as spreadsheets do: the number's decimal form at 15
//     significant digits is rounded half away from zero to the number of
//     decimal placeholders, so 2.675 with "0.00" gives "2.68" and 1.005
//     gives "1.01".
//   - The integer part is never cut: digits beyond the integer placeholders
//     are written at the leftmost one (1234567 with "####0.00" gives
//     "1234567.00"). With no integer placeholder they are written just
//     before the decimal point, or at the end of a mask without one.
//   - A zero integer part is written only by "0" placeholders: 0.5 with
//     ".00" or "#.00" gives ".50", with "#0.00" gives "0.50".
//   - Decimal "0"s are always written; decimal "#"s only where they are not
//     trailing zeros ("0.0#": 1.5 -> "1.5", 1.25 -> "1.25"). The point
//     itself is always written ("0.##" on 5 gives "5.").
//   - The minus sign goes first, before any literal ("$0" on -5 gives
//     "-$5"), and only when the rounded value is not zero (-0.004 with
//     "0.00" gives "0.00").
//   - Not supported, so written as literals: ";" sections, "%" scaling, a
//     "," that scales by thousands, "\" escapes and quoted text. "e" is a
//     literal too (no exponent form).
//
// Date masks. Tokens (letters in any case): yyyy (2006), yy (06), mmmm
// (October), mmm (Oct), mm (10), m, dddd (Tuesday), ddd (Tue), dd (09), d,
// hh (08), h, nn (minutes 05), n, ss (seconds 07), s, and the AM/PM markers
// "AMPM" (writes AM or PM), "AM/PM", "am/pm", "A/P", "a/p" (write the half of
// the marker as written in the mask: "am/pm" writes "am" or "pm"). Any AM/PM
// marker turns every hour token into the 12-hour clock (12, 1..11). "mm" or
// "m" is minutes, not month, right after an hour token or right before a
// seconds token (literal characters between are ignored: "hh:mm",
// "mm:ss"). Longer runs split greedily ("ddddd" is dddd + d); a single "y"
// is a literal. Names are English. Every other character is a literal. The
// time is rounded to the nearest second as SplitDateTime does.
//
// Errors: FormatNumber on a date mask and FormatDate on a number mask throw
// Error::InvalidArgument naming the mask; number formatting throws
// Error::Overflow for NaN and infinities, date formatting for serials out
// of the date range (see core/date_time.h). Compile never throws.

#ifndef RZ_CORE_FORMAT_H_
#define RZ_CORE_FORMAT_H_

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "core/variant.h"

namespace rz {

struct DateTimeParts;

// A compiled mask; immutable, so one instance may be shared between threads.
class FormatMask {
 public:
  static FormatMask Compile(std::string_view mask);

  bool IsDateMask() const { return kind_ == Kind::kDate; }
  bool IsEmptyMask() const { return kind_ == Kind::kEmpty; }

  // The value by the number rules; an empty mask gives ShortestNumberText.
  std::string FormatNumber(double value) const;
  // The serial by the date rules; an empty mask gives "yyyy-mm-dd hh:mm:ss".
  std::string FormatDate(double serial) const;
  // A date mask formats the value as a date serial, any other mask as a
  // number (the empty mask with ShortestNumberText).
  std::string Apply(double value) const;

 private:
  enum class Kind : uint8_t { kEmpty, kNumber, kDate };

  enum class NumberPart : uint8_t {
    kLiteral,
    kIntegerDigit,  // index: position counted from the right, from 0.
    kPoint,
    kFractionDigit,  // index: position after the point, from 0.
  };

  enum class DateToken : uint8_t {
    kLiteral,
    kNumber,  // index: the DateField; length: the minimum width.
    kMonthName,
    kMonthAbbrev,
    kDayName,
    kDayAbbrev,
    kAmPm,  // literals_[begin, begin + length) holds the AM text and then
            // the PM text; the AM text is `index` bytes long.
  };

  // The numbers a date mask writes.
  enum DateField : uint32_t {
    kYear,
    kYearOfCentury,
    kMonth,
    kDay,
    kHour,
    kMinute,
    kSecond,
    kWeekday,  // Not written as a number; selects the day name.
    kDateFieldCount,
  };

  // One piece of a compiled mask. Literal text is kept in literals_.
  struct Item {
    NumberPart number_part;
    DateToken date_token;
    char placeholder;  // '0' or '#' for digit parts; '#' for a virtual one.
    uint32_t index;
    uint32_t begin;  // Literal text: literals_.substr(begin, length).
    uint32_t length;
  };

  explicit FormatMask(std::string_view mask) : mask_(mask) {}

  void CompileNumber();
  void CompileDate();
  void AddLiteral(std::string_view text);
  void AddNumberItem(NumberPart part, char placeholder, uint32_t index);
  size_t CompileAmPm(size_t pos);
  size_t CompileDateToken(size_t pos);
  void AddDateItem(DateToken token, uint32_t field = 0, uint32_t width = 0);
  void MarkMinutes();
  // Number masks of digit placeholders alone ("##0.000": "#"s, then "0"s,
  // a point, "0"s) are written straight from the rounded number.
  void NotePlainNumberMask();
  // False when the number needs the general path (see RoundScaled).
  bool FormatPlainNumber(double value, std::string* out) const;
  void AppendDateItem(const Item& item, const DateTimeParts& parts,
                      const int (&fields)[kDateFieldCount],
                      std::string* out) const;

  std::string mask_;
  Kind kind_ = Kind::kEmpty;
  std::vector<Item> items_;
  std::string literals_;
  // Number masks.
  uint32_t integer_digits_ = 0;  // Integer placeholders, a virtual one too.
  std::string fraction_placeholders_;  // '0'/'#' per decimal place.
  bool grouping_ = false;
  bool plain_ = false;
  bool plain_point_ = false;
  int64_t plain_least_integer_digits_ = 0;
  // Date masks.
  bool twelve_hour_ = false;
  bool needs_weekday_ = false;
};

// Formats a value as the automation Format function does with a compiled
// mask: Empty and Null give the empty text; a number, a Boolean (-1/0), a
// Date or a text holding one number goes through the mask (an empty mask
// writes a Date as its text and a number in its shortest form); any other
// text is returned unchanged. Objects and arrays raise error 13.
std::string Format(const Variant& value, const FormatMask& mask);

}  // namespace rz

#endif  // RZ_CORE_FORMAT_H_
