// Copyright 2026 The Veltmark authors.

#include "core/format.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstdint>
#include <iterator>

#include "core/date_time.h"
#include "core/error.h"
#include "core/text.h"

namespace rz {
namespace {

constexpr const char* kMonthNames[12] = {
    "January", "February", "March",     "April",   "May",      "June",
    "July",    "August",   "September", "October", "November", "December"};
constexpr const char* kDayNames[7] = {"Sunday",    "Monday",   "Tuesday",
                                      "Wednesday", "Thursday", "Friday",
                                      "Saturday"};

// The significant digits of 15 a number has at most in its decimal form.
constexpr int kSignificantDigits = 15;

// A number rounded to some count of decimals, as decimal digits: the value
// is 0.d1d2d3... x 10^point, digits from `count` on being zeros.
struct RoundedDecimal {
  char digits[kSignificantDigits];
  int64_t count = 0;
  int64_t point = 0;
  bool negative = false;

  bool IsZero() const { return count == 0; }
  // The k-th digit (0-based from the first significant one), '0' outside.
  char DigitAt(int64_t k) const {
    return k >= 0 && k < count ? digits[k] : '0';
  }
};

// The common case of RoundHalfAwayFromZero without a decimal text: when
// the number scaled to `decimals` places has at most 14 integer digits and
// is not within the 15-digit noise of a half, rounding the scaled binary
// value gives the same digits as rounding its 15-digit text. False when
// the text is needed.
constexpr double kPowersOfTen[] = {1e0, 1e1, 1e2,  1e3,  1e4,  1e5,  1e6, 1e7,
                                   1e8, 1e9, 1e10, 1e11, 1e12, 1e13, 1e14};

// The magnitude of `value` times 10^decimals, rounded half away from zero,
// into `rounded` when that can be done on the binary value (see below).
bool RoundScaled(double value, size_t decimals, uint64_t* rounded) {
  if (decimals >= std::size(kPowersOfTen)) return false;
  const double scaled = std::fabs(value) * kPowersOfTen[decimals];
  if (!(scaled < 1e14)) return false;
  const double whole = std::floor(scaled);
  const double fraction = scaled - whole;
  // The 15-digit text differs from the value by at most 5e-15 of it.
  if (std::fabs(fraction - 0.5) <= 1e-13 * scaled) return false;
  *rounded = static_cast<uint64_t>(whole) + (fraction > 0.5 ? 1 : 0);
  return true;
}

bool RoundDirectly(double value, size_t decimals, RoundedDecimal* number) {
  uint64_t rounded = 0;
  if (!RoundScaled(value, decimals, &rounded)) return false;
  if (rounded == 0) return true;  // zero at this many places
  char* const end = std::to_chars(number->digits,
                                  number->digits + kSignificantDigits, rounded)
                        .ptr;
  number->count = end - number->digits;
  number->point = number->count - static_cast<int64_t>(decimals);
  return true;
}

// Takes the number's decimal form at 15 significant digits, then rounds that
// text half away from zero to `decimals` places, so binary noise below the
// 15th digit never decides the rounding (2.675 -> 2.68).
RoundedDecimal RoundHalfAwayFromZero(double value, size_t decimals) {
  RoundedDecimal number;
  number.negative = value < 0;
  if (value == 0) return number;
  if (RoundDirectly(value, decimals, &number)) return number;
  char buffer[40];
  char* const end =
      std::to_chars(buffer, buffer + sizeof buffer, std::fabs(value),
                    std::chars_format::scientific, kSignificantDigits - 1)
          .ptr;
  // buffer holds "d.dddddddddddddde+XX".
  number.digits[0] = buffer[0];
  std::copy(buffer + 2, buffer + 1 + kSignificantDigits, number.digits + 1);
  const char* exponent_text = std::find(buffer, end, 'e') + 1;
  const bool negative_exponent = *exponent_text == '-';
  int exponent = 0;
  std::from_chars(exponent_text + 1, end, exponent);
  number.point = (negative_exponent ? -exponent : exponent) + 1;
  number.count = kSignificantDigits;
  const int64_t keep = number.point + static_cast<int64_t>(decimals);
  if (keep >= kSignificantDigits) return number;
  if (keep < 0) {
    number.count = 0;
    return number;
  }
  const bool round_up = number.digits[keep] >= '5';
  number.count = keep;
  if (!round_up) return number;
  int64_t i = keep - 1;
  while (i >= 0 && number.digits[i] == '9') number.digits[i--] = '0';
  if (i >= 0) {
    ++number.digits[i];
  } else {  // 9.99 -> 10.0, or 0.5 -> 1 at keep 0.
    number.digits[0] = '1';
    number.count = 1;
    ++number.point;
  }
  return number;
}

// Writes the digits an integer placeholder stands for. `position` counts
// from the right; the leftmost placeholder also writes every digit beyond
// the placeholders, so the integer part is never cut.
void AppendIntegerDigits(const RoundedDecimal& number, int64_t int_count,
                         int64_t position, char placeholder, bool leftmost,
                         bool grouping, std::string* out) {
  auto put = [&](char digit, int64_t at) {
    out->push_back(digit);
    if (grouping && at > 0 && at % 3 == 0) out->push_back(',');
  };
  if (leftmost) {
    for (int64_t at = int_count - 1; at > position; --at) {
      put(number.DigitAt(int_count - 1 - at), at);
    }
  }
  if (position < int_count) {
    put(number.DigitAt(int_count - 1 - position), position);
  } else if (placeholder == '0') {
    put('0', position);
  }
}

// How many decimal places to write: decimal "#"s at the end are left out
// where they would write a zero.
size_t ShownDecimals(const RoundedDecimal& number,
                     std::string_view placeholders) {
  size_t shown = placeholders.size();
  while (shown > 0 && placeholders[shown - 1] == '#' &&
         number.DigitAt(number.point + static_cast<int64_t>(shown) - 1) ==
             '0') {
    --shown;
  }
  return shown;
}

void AppendPadded(int value, int width, std::string* out) {
  char buffer[16];
  char* end = std::to_chars(buffer, buffer + sizeof buffer, value).ptr;
  for (int pad = width - static_cast<int>(end - buffer); pad > 0; --pad) {
    out->push_back('0');
  }
  out->append(buffer, end);
}

bool IsPlaceholder(char c) { return c == '#' || c == '0'; }

char Lower(char c) { return c >= 'A' && c <= 'Z' ? c + ('a' - 'A') : c; }

// True when `mask` holds `word` (lower-case) at `pos`, in any case.
bool HasWordAt(std::string_view mask, size_t pos, std::string_view word) {
  if (mask.size() - pos < word.size()) return false;
  for (size_t i = 0; i < word.size(); ++i) {
    if (Lower(mask[pos + i]) != word[i]) return false;
  }
  return true;
}

size_t RunLength(std::string_view mask, size_t pos) {
  size_t end = pos;
  while (end < mask.size() && Lower(mask[end]) == Lower(mask[pos])) ++end;
  return end - pos;
}

}  // namespace

FormatMask FormatMask::Compile(std::string_view mask) {
  FormatMask compiled(mask);
  if (mask.empty()) return compiled;
  if (mask.find_first_of("#0") == std::string_view::npos) {
    compiled.CompileDate();
    if (compiled.kind_ == Kind::kDate) return compiled;
    compiled.items_.clear();
    compiled.literals_.clear();
  }
  compiled.CompileNumber();
  compiled.NotePlainNumberMask();
  return compiled;
}

void FormatMask::AddLiteral(std::string_view text) {
  if (!items_.empty() && items_.back().number_part == NumberPart::kLiteral &&
      items_.back().date_token == DateToken::kLiteral &&
      items_.back().begin + items_.back().length == literals_.size()) {
    items_.back().length += static_cast<uint32_t>(text.size());
  } else {
    items_.push_back({NumberPart::kLiteral, DateToken::kLiteral, 0, 0,
                      static_cast<uint32_t>(literals_.size()),
                      static_cast<uint32_t>(text.size())});
  }
  literals_.append(text);
}

void FormatMask::AddNumberItem(NumberPart part, char placeholder,
                               uint32_t index) {
  items_.push_back({part, DateToken::kLiteral, placeholder, index, 0, 0});
}

void FormatMask::AddDateItem(DateToken token, uint32_t field, uint32_t width) {
  items_.push_back({NumberPart::kLiteral, token, 0, field, 0, width});
  kind_ = Kind::kDate;
}

void FormatMask::CompileNumber() {
  kind_ = Kind::kNumber;
  const std::string_view mask = mask_;
  const size_t point = mask.find('.');
  const std::string_view integer_part = mask.substr(0, point);
  const size_t first = integer_part.find_first_of("#0");
  const size_t last = integer_part.find_last_of("#0");
  integer_digits_ = static_cast<uint32_t>(
      std::count_if(integer_part.begin(), integer_part.end(), IsPlaceholder));
  uint32_t position = integer_digits_;
  for (size_t i = 0; i < integer_part.size(); ++i) {
    const char c = integer_part[i];
    if (IsPlaceholder(c)) {
      AddNumberItem(NumberPart::kIntegerDigit, c, --position);
    } else if (c == ',' && first < i && i < last) {
      grouping_ = true;
    } else {
      AddLiteral(integer_part.substr(i, 1));
    }
  }
  if (integer_digits_ == 0) {
    // An invisible "#" where the integer part goes, so its digits have a
    // place: before the point, or at the end.
    integer_digits_ = 1;
    AddNumberItem(NumberPart::kIntegerDigit, '#', 0);
  }
  if (point == std::string_view::npos) return;
  AddNumberItem(NumberPart::kPoint, '.', 0);
  for (size_t i = point + 1; i < mask.size(); ++i) {
    const char c = mask[i];
    if (IsPlaceholder(c)) {
      AddNumberItem(NumberPart::kFractionDigit, c,
                    static_cast<uint32_t>(fraction_placeholders_.size()));
      fraction_placeholders_.push_back(c);
    } else {
      AddLiteral(mask.substr(i, 1));
    }
  }
}

void FormatMask::CompileDate() {
  size_t pos = 0;
  while (pos < mask_.size()) {
    const size_t am_pm = CompileAmPm(pos);
    pos += am_pm > 0 ? am_pm : CompileDateToken(pos);
  }
  MarkMinutes();
}

// An AM/PM marker at `pos`: adds it and returns its length, else returns 0.
size_t FormatMask::CompileAmPm(size_t pos) {
  const std::string_view mask = mask_;
  std::string_view am;
  std::string_view pm;
  size_t length = 0;
  if (HasWordAt(mask, pos, "am/pm")) {
    am = mask.substr(pos, 2), pm = mask.substr(pos + 3, 2), length = 5;
  } else if (HasWordAt(mask, pos, "ampm")) {
    am = "AM", pm = "PM", length = 4;
  } else if (HasWordAt(mask, pos, "a/p")) {
    am = mask.substr(pos, 1), pm = mask.substr(pos + 2, 1), length = 3;
  } else {
    return 0;
  }
  AddDateItem(DateToken::kAmPm, static_cast<uint32_t>(am.size()), 0);
  items_.back().begin = static_cast<uint32_t>(literals_.size());
  items_.back().length = static_cast<uint32_t>(am.size() + pm.size());
  literals_.append(am).append(pm);
  twelve_hour_ = true;
  return length;
}

// The token (or literal character) at `pos`: adds it, returns its length.
// Runs of a letter split greedily into the longest tokens.
size_t FormatMask::CompileDateToken(size_t pos) {
  const size_t run = std::min<size_t>(RunLength(mask_, pos), 4);
  const size_t pair = std::min<size_t>(run, 2);
  switch (Lower(mask_[pos])) {
    case 'y':
      if (run == 1) break;
      AddDateItem(DateToken::kNumber, run == 4 ? kYear : kYearOfCentury,
                  run == 4 ? 4 : 2);
      return run == 4 ? 4 : 2;
    case 'm':
      if (run >= 3) {
        AddDateItem(run == 4 ? DateToken::kMonthName : DateToken::kMonthAbbrev);
      } else {
        AddDateItem(DateToken::kNumber, kMonth, static_cast<uint32_t>(run));
      }
      return run;
    case 'd':
      if (run >= 3) {
        AddDateItem(run == 4 ? DateToken::kDayName : DateToken::kDayAbbrev);
        needs_weekday_ = true;
      } else {
        AddDateItem(DateToken::kNumber, kDay, static_cast<uint32_t>(run));
      }
      return run;
    case 'h':
      AddDateItem(DateToken::kNumber, kHour, static_cast<uint32_t>(pair));
      return pair;
    case 'n':
      AddDateItem(DateToken::kNumber, kMinute, static_cast<uint32_t>(pair));
      return pair;
    case 's':
      AddDateItem(DateToken::kNumber, kSecond, static_cast<uint32_t>(pair));
      return pair;
    default:
      break;
  }
  AddLiteral(std::string_view(mask_).substr(pos, 1));
  return 1;
}

// "mm"/"m" right after an hour token or right before a seconds token (with
// only literals between) is minutes.
void FormatMask::MarkMinutes() {
  auto is_field = [this](size_t i, DateField field) {
    return i < items_.size() && items_[i].date_token == DateToken::kNumber &&
           items_[i].index == field;
  };
  for (size_t i = 0; i < items_.size(); ++i) {
    if (!is_field(i, kMonth)) continue;
    size_t before = i;
    while (before > 0 && items_[before - 1].date_token == DateToken::kLiteral) {
      --before;
    }
    size_t after = i + 1;
    while (after < items_.size() &&
           items_[after].date_token == DateToken::kLiteral) {
      ++after;
    }
    if ((before > 0 && is_field(before - 1, kHour)) ||
        is_field(after, kSecond)) {
      items_[i].index = kMinute;
    }
  }
}

void FormatMask::NotePlainNumberMask() {
  plain_ = !grouping_ && literals_.empty();
  bool zeros_begun = false;
  for (const Item& item : items_) {
    if (item.number_part == NumberPart::kIntegerDigit) {
      // "#"s first, then "0"s: the "0"s are the least digits written.
      if (item.placeholder == '0') {
        zeros_begun = true;
        ++plain_least_integer_digits_;
      } else if (zeros_begun) {
        plain_ = false;
      }
    } else if (item.number_part == NumberPart::kPoint) {
      plain_point_ = true;
    }
  }
  for (const char placeholder : fraction_placeholders_) {
    if (placeholder != '0') plain_ = false;
  }
  // Room in FormatPlainNumber's buffer; more decimals never round there.
  if (plain_least_integer_digits_ > 20 || fraction_placeholders_.size() > 14) {
    plain_ = false;
  }
}

bool FormatMask::FormatPlainNumber(double value, std::string* out) const {
  const size_t decimals = fraction_placeholders_.size();
  uint64_t rounded = 0;
  if (!RoundScaled(value, decimals, &rounded)) return false;
  // Written from the right: the decimals, the point, the integer digits
  // (at least the mask's "0"s; none for a zero integer part otherwise),
  // the sign. At most a sign, 20 integer digits, a point and 14 decimals.
  char text[48];
  char* const end = text + sizeof text;
  char* at = end;
  const bool minus = value < 0 && rounded != 0;
  for (size_t k = 0; k < decimals; ++k) {
    *--at = static_cast<char>('0' + rounded % 10);
    rounded /= 10;
  }
  if (plain_point_) *--at = '.';
  for (int64_t k = 0; rounded > 0 || k < plain_least_integer_digits_; ++k) {
    *--at = static_cast<char>('0' + rounded % 10);
    rounded /= 10;
  }
  if (minus) *--at = '-';
  out->assign(at, end);
  return true;
}

std::string FormatMask::FormatNumber(double value) const {
  if (kind_ == Kind::kDate) {
    throw Error::InvalidArgument("the date mask '" + mask_ +
                                 "' cannot format a number");
  }
  if (!std::isfinite(value)) {
    throw Error::Overflow(std::isnan(value) ? "NaN" : "Infinity");
  }
  if (kind_ == Kind::kEmpty) return ShortestNumberText(value);
  if (plain_) {
    std::string text;
    if (FormatPlainNumber(value, &text)) return text;
  }
  const RoundedDecimal number =
      RoundHalfAwayFromZero(value, fraction_placeholders_.size());
  const int64_t int_count =
      number.IsZero() ? 0 : std::max<int64_t>(number.point, 0);
  const size_t shown = ShownDecimals(number, fraction_placeholders_);
  std::string out;
  out.reserve(literals_.size() + int_count + int_count / 3 + shown + 2);
  if (number.negative && !number.IsZero()) out.push_back('-');
  for (const Item& item : items_) {
    switch (item.number_part) {
      case NumberPart::kLiteral:
        out.append(literals_, item.begin, item.length);
        break;
      case NumberPart::kIntegerDigit:
        AppendIntegerDigits(number, int_count, item.index, item.placeholder,
                            item.index + 1 == integer_digits_, grouping_, &out);
        break;
      case NumberPart::kPoint:
        out.push_back('.');
        break;
      case NumberPart::kFractionDigit:
        if (item.index < shown) {
          out.push_back(number.DigitAt(number.point + item.index));
        }
        break;
    }
  }
  return out;
}

std::string FormatMask::FormatDate(double serial) const {
  if (kind_ == Kind::kEmpty) return FormatDateTime(serial);
  if (kind_ != Kind::kDate) {
    throw Error::InvalidArgument("the number mask '" + mask_ +
                                 "' cannot format a date");
  }
  const DateTimeParts parts = SplitDateTime(serial);
  int hour = parts.hour;
  if (twelve_hour_) hour = hour % 12 == 0 ? 12 : hour % 12;
  const int fields[kDateFieldCount] = {
      parts.year,   parts.year % 100,
      parts.month,  parts.day,
      hour,         parts.minute,
      parts.second, needs_weekday_ ? Weekday(serial) : 1};
  std::string out;
  out.reserve(literals_.size() + items_.size() * 4);
  for (const Item& item : items_) AppendDateItem(item, parts, fields, &out);
  return out;
}

void FormatMask::AppendDateItem(const Item& item, const DateTimeParts& parts,
                                const int (&fields)[kDateFieldCount],
                                std::string* out) const {
  switch (item.date_token) {
    case DateToken::kLiteral:
      out->append(literals_, item.begin, item.length);
      break;
    case DateToken::kNumber:
      AppendPadded(fields[item.index], static_cast<int>(item.length), out);
      break;
    case DateToken::kMonthName:
      out->append(kMonthNames[parts.month - 1]);
      break;
    case DateToken::kMonthAbbrev:
      out->append(kMonthNames[parts.month - 1], 3);
      break;
    case DateToken::kDayName:
      out->append(kDayNames[fields[kWeekday] - 1]);
      break;
    case DateToken::kDayAbbrev:
      out->append(kDayNames[fields[kWeekday] - 1], 3);
      break;
    case DateToken::kAmPm:
      if (parts.hour < 12) {
        out->append(literals_, item.begin, item.index);
      } else {
        out->append(literals_, item.begin + item.index,
                    item.length - item.index);
      }
      break;
  }
}

std::string FormatMask::Apply(double value) const {
  return kind_ == Kind::kDate ? FormatDate(value) : FormatNumber(value);
}

std::string Format(const Variant& value, const FormatMask& mask) {
  if (value.IsEmpty() || value.IsNull()) return "";
  if (value.IsString()) {
    const std::string text = value.ToString();
    if (!IsNumericText(text)) return text;
    return mask.Apply(LeadingNumber(text));
  }
  if (value.Type() == VariantType::kDate) {
    if (mask.IsEmptyMask()) return value.ToString();
    return mask.Apply(value.ToDate());
  }
  if (!value.IsNumber()) throw Error::TypeMismatch(value.TypeName());
  return mask.Apply(value.ToDouble());
}

}  // namespace rz
