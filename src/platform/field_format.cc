// Copyright 2026 The Veltmark authors.

#include "platform/field_format.h"

#include <cmath>
#include <cstddef>
#include <limits>
#include <string>
#include <utility>

#include "core/codec.h"
#include "core/error.h"
#include "core/text.h"

namespace rz {
namespace {

constexpr std::string_view kTypeLetters = "TPLNARC";  // codes 1..7
constexpr std::string_view kLimitLetters = "BCF";     // codes 0..2
constexpr std::string_view kPopPrefix = "@POP[";
constexpr std::string_view kXbarPrefix = "@XBAR[";
constexpr std::string_view kRelationDefault =
    "000,000,000,000,000,000,000,000,000,000,000,000";
// Rule letters are the characters 65..255: one per rule, at most 191.
constexpr int kMaxRuleLetters = 255 - 64;

// The 0-based position of a one-letter text in `letters`, ignoring case;
// npos for anything that is not exactly one listed letter.
size_t LetterIndex(std::string_view letter, std::string_view letters) {
  if (letter.size() != 1) return std::string_view::npos;
  const std::string upper = UpperCase(letter);
  return letters.find(upper[0]);
}

// A whole number that must fit the system's 16-bit Integer.
int16_t ToInteger16(int value) {
  if (value < std::numeric_limits<int16_t>::min() ||
      value > std::numeric_limits<int16_t>::max()) {
    throw Error::Overflow(std::to_string(value));
  }
  return static_cast<int16_t>(value);
}

// Rounds to a whole number, halves to even, and drops the sign of zero.
double RoundWhole(double value) { return std::nearbyint(value) + 0.0; }

std::string Repeat(char ch, int count) {
  return count > 0 ? std::string(static_cast<size_t>(count), ch)
                   : std::string();
}

// One range item "Va..Vb", read by character position (see the header).
void ExpandRange(const std::string& item, size_t dots,
                 std::vector<std::string>& out) {
  // The number between the first character and the dots; empty when the
  // dots start the item.
  const std::string_view text(item);
  const std::string_view first_text =
      dots > 1 ? text.substr(1, dots - 1) : std::string_view();
  // The number after the dots and the one character that follows them.
  const size_t second_start = dots + 3;
  const std::string_view second_text = second_start < text.size()
                                           ? text.substr(second_start)
                                           : std::string_view();
  const double first = RoundWhole(LeadingNumber(first_text));
  const double last = RoundWhole(LeadingNumber(second_text));
  constexpr double kLow = std::numeric_limits<int16_t>::min();
  constexpr double kHigh = std::numeric_limits<int16_t>::max();
  if (first < kLow || first > kHigh || last < kLow || last > kHigh) {
    throw Error::Overflow(item);
  }
  for (int k = static_cast<int>(first); k <= static_cast<int>(last); ++k) {
    out.push_back("V" + std::to_string(k));
  }
}

// A result column's width and decimals, before the 16-bit check.
struct Size {
  int length;
  int decimals;
};

// The size of a summary-mode column from the variable's own length and
// decimals.
Size SummarySize(int16_t statistic, int length, int decimals) {
  switch (statistic) {
    case 0:
    case 1:
    case 6:
    case 12:
    case 21:  // first, last, max, min, range
      return {length, decimals};
    case 2:
    case 22:  // count, average seconds between events
      return {8, 0};
    case 3:
    case 7:
    case 8:
    case 9:
    case 10:
    case 11:  // Tdev, limits, mean
      return decimals == 0 ? Size{length + 2, 1}
                           : Size{length + 1, decimals + 1};
    case 4:  // sum
      return {length + 5, decimals};
    case 5:  // standard deviation
      return {length + 2, decimals + 1};
    case 13:
    case 15:  // percent out of limits
      return {7, 3};
    case 14:
    case 16:  // parts per million out of limits
      return {7, 0};
    case 17:
    case 19:  // CR, CPK
      return {7, 2};
    case 18:  // TZ
      return {7, 1};
    case 20:  // CV
      return {8, 3};
    case 23:  // average minutes between events
      return {9, 2};
    case 24:
    case 25:  // average hours, days between events
      return {9, 4};
    default:
      return {0, 0};
  }
}

// The size of a detail-mode column.
Size DetailSize(int16_t statistic, int length, int decimals) {
  switch (statistic) {
    case 0:  // the value
      return {length, decimals};
    case 1:
    case 2:  // count, seconds between events
      return {8, 0};
    case 3:  // minutes between events
      return {9, 2};
    case 4:
    case 5:  // hours, days between events
      return {9, 4};
    default:
      return {0, 0};
  }
}

std::string ReferenceText(double number) {
  return "V" + ShortestNumberText(number);
}

// One run of consecutive numbers as written in a compressed list.
std::string RunText(double first, double last, int count) {
  if (count == 1) return ReferenceText(first);
  const char* joint = count == 2 ? "," : "..";
  return ReferenceText(first) + joint + ReferenceText(last);
}

}  // namespace

int16_t TypeCode(std::string_view letter) {
  const size_t index = LetterIndex(letter, kTypeLetters);
  return index == std::string_view::npos ? 0 : static_cast<int16_t>(index + 1);
}

std::string TypeLetter(int16_t code) {
  if (code == 0) return "T";
  if (code < 1 || code > static_cast<int16_t>(kTypeLetters.size())) return "";
  return std::string(1, kTypeLetters[static_cast<size_t>(code - 1)]);
}

bool IsNumericType(std::string_view letter) {
  const int16_t code = TypeCode(letter);
  return code >= 4 && code <= 7;
}

int16_t LimitMethodCode(std::string_view letter) {
  const size_t index = LetterIndex(letter, kLimitLetters);
  return index == std::string_view::npos ? 0 : static_cast<int16_t>(index);
}

std::string LimitMethodLetter(const Variant& code) {
  if (code.IsNull() || code.IsObject() || code.IsArray()) return "";
  const std::string text = code.ToString();
  for (size_t i = 0; i < kLimitLetters.size(); ++i) {
    if (text == std::to_string(i)) return std::string(1, kLimitLetters[i]);
  }
  return "";
}

double ToNumber(const Variant& value) {
  if (value.IsNumber()) return value.ToDouble();
  if (!value.IsString()) return 0;  // Empty, Null, objects, arrays
  const std::string text = value.ToString();
  if (!IsNumericText(text)) return 0;  // also the empty text
  return LeadingNumber(text);
}

std::string BuildNumberMask(int16_t type_code, int16_t length,
                            int16_t decimals) {
  if (type_code < 4 || type_code > 7) return "";
  const int whole = length;
  const int places = decimals;
  if (places > 0) {
    std::string mask = Repeat('#', whole - places - 2);
    if (whole - places - 1 > 0) mask += '0';
    return mask + '.' + Repeat('0', places);
  }
  return Repeat('#', whole - 1) + '0';
}

void StatisticFieldSize(bool summary_mode, int16_t statistic, int16_t& length,
                        int16_t& decimals) {
  const Size size = summary_mode ? SummarySize(statistic, length, decimals)
                                 : DetailSize(statistic, length, decimals);
  // Both are checked before either is written.
  const int16_t new_length = ToInteger16(size.length);
  const int16_t new_decimals = ToInteger16(size.decimals);
  length = new_length;
  decimals = new_decimals;
}

void InitVariableDefaults(FieldDefinition& definition, int rule_count) {
  if (rule_count > kMaxRuleLetters) {
    throw Error::InvalidArgument("rule count " + std::to_string(rule_count));
  }
  const Variant empty_text = std::string();
  const Variant zero = int16_t{0};
  definition.Set(FieldAttribute::kXref, empty_text);
  definition.Set(FieldAttribute::kSample, zero);
  definition.Set(FieldAttribute::kReportType, "V");
  definition.Set(FieldAttribute::kUcase, "N");
  definition.Set(FieldAttribute::kRequired, "N");
  definition.Set(FieldAttribute::kInput, empty_text);
  definition.Set(FieldAttribute::kOutput, empty_text);
  definition.Set(FieldAttribute::kLimitMethod, zero);
  definition.Set(FieldAttribute::kTargetMethod, zero);
  definition.Set(FieldAttribute::kMax, 0.0);
  for (int i = 0; i < kLimitCount; ++i) {
    definition.SetLimit(static_cast<LimitKind>(i), Limit{"C", 0});
  }
  definition.Set(FieldAttribute::kMin, 0.0);
  definition.Set(FieldAttribute::kExtra, zero);
  definition.Set(FieldAttribute::kPopup, empty_text);
  definition.Set(FieldAttribute::kLookup, zero);
  definition.Set(FieldAttribute::kCompData, zero);
  definition.Set(FieldAttribute::kKeyId, zero);
  definition.Set(FieldAttribute::kRange, zero);
  definition.Set(FieldAttribute::kRelation, kRelationDefault);
  definition.Set(FieldAttribute::kHelpFile, empty_text);
  definition.Set(FieldAttribute::kPosition, zero);
  definition.Set(FieldAttribute::kSpare, zero);
  // Rule letters past "Z" are the following Windows-1252 characters.
  std::string rule_bytes;
  for (int rule = 1; rule <= rule_count; ++rule) {
    rule_bytes += static_cast<char>(64 + rule);
  }
  definition.Set(FieldAttribute::kRules, DecodeWindows1252(rule_bytes));
}

std::vector<std::string> ExpandReferenceList(std::string_view list) {
  std::string_view inner;
  if (!list.empty() && list.back() == ']') {
    if (StartsWithIgnoreCase(list, kPopPrefix)) {
      inner =
          list.substr(kPopPrefix.size(), list.size() - kPopPrefix.size() - 1);
    } else if (StartsWithIgnoreCase(list, kXbarPrefix)) {
      inner =
          list.substr(kXbarPrefix.size(), list.size() - kXbarPrefix.size() - 1);
    }
  }
  std::vector<std::string> items;
  for (std::string& item : Split(inner, ',')) {
    const size_t dots = item.find("..");
    if (dots == std::string::npos) {
      items.push_back(std::move(item));
    } else {
      ExpandRange(item, dots, items);
    }
  }
  return items;
}

double ReferenceNumber(std::string_view item) {
  if (item.empty()) return 0;
  // The first character may be any UTF-8 character, not only "V".
  size_t after_first = 0;
  utf8::NextChar(item, &after_first);
  return RoundWhole(LeadingNumber(item.substr(after_first)));
}

void SortReferenceList(std::vector<std::string>& items) {
  std::vector<double> numbers;
  numbers.reserve(items.size());
  for (const std::string& item : items)
    numbers.push_back(ReferenceNumber(item));
  bool swapped = true;
  while (swapped) {
    swapped = false;
    for (size_t i = items.size(); i > 1; --i) {
      if (numbers[i - 2] > numbers[i - 1]) {
        std::swap(numbers[i - 2], numbers[i - 1]);
        std::swap(items[i - 2], items[i - 1]);
        swapped = true;
      }
    }
  }
}

std::string CompressReferenceList(std::string_view list) {
  std::vector<std::string> items = ExpandReferenceList(list);
  if (items.empty()) return std::string(list);
  SortReferenceList(items);
  std::string runs;
  size_t start = 0;
  while (start < items.size()) {
    const double first = ReferenceNumber(items[start]);
    double last = first;
    size_t end = start + 1;
    while (end < items.size()) {
      const double next = ReferenceNumber(items[end]);
      if (next == last || next != last + 1) break;
      last = next;
      ++end;
    }
    if (!runs.empty()) runs += ',';
    runs += RunText(first, last, static_cast<int>(end - start));
    start = end;
  }
  const bool pop = FindIgnoreCase(list, kPopPrefix) != std::string_view::npos;
  return std::string(pop ? kPopPrefix : kXbarPrefix) + runs + "]";
}

}  // namespace rz
