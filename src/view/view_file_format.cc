// Copyright 2026 The Veltmark authors.
//
// The parts of the view file format both directions share: key tables,
// file names, fixed-point numbers, range defaults and rule letters.

#include <array>
#include <charconv>
#include <cmath>
#include <string>

#include "core/text.h"
#include "platform/app_file.h"
#include "view/view_file.h"
#include "view/view_file_keys.h"

namespace rz {
namespace view_file {
namespace {

using K = ValueKind;

constexpr ScalarKey kSelectionKeys[] = {
    {"FILTERTYPE", K::kInteger, &ViewState::FilterRangeType},
    {"FROMTYPE", K::kInteger, &ViewState::FromType},
    {"FROMDATETIME", K::kDateTime, &ViewState::FromDateTime},
    {"FWDAMOUNT", K::kInteger, &ViewState::ForwardAmount},
    {"FWDUNITS", K::kInteger, &ViewState::ForwardUnits},
    {"TOTYPE", K::kInteger, &ViewState::ToType},
    {"TODATETIME", K::kDateTime, &ViewState::ToDateTime},
    {"BWDAMOUNT", K::kInteger, &ViewState::BackwardAmount},
    {"BWDUNITS", K::kInteger, &ViewState::BackwardUnits},
};

constexpr ScalarKey kOptionsKeys[] = {
    {"SUMMARIZEDBY", K::kInteger, &ViewState::SumBy},
    {"INTERVAL", K::kTimeSpan, &ViewState::Interval},
    {"NULLINTERVALS", K::kInteger, &ViewState::NullIntervals},
    {"NULLPIVOTS", K::kInteger, &ViewState::NullPivots},
    {"SHIFTDURATION", K::kDecimal, &ViewState::ShiftDuration},
    {"WEEKSTART", K::kInteger, &ViewState::WeekDays},
    {"YEARSTART", K::kInteger, &ViewState::YearBegins},
    {"RETURNSCREEN", K::kInteger, &ViewState::ReturnScreen},
    {"EXCLUDEEMPTY", K::kInteger, &ViewState::ExcludeEmpty},
};

constexpr ScalarKey kReportKeys[] = {
    {"TYPE", K::kInteger, &ViewState::ReportType},
    {"HEADER", K::kMultiLine, &ViewState::ReportHeader},
    {"FOOTER", K::kMultiLine, &ViewState::ReportFooter},
    {"NUMERICONLY", K::kInteger, &ViewState::ReportNumericOnly},
    {"INCLUDEDETAIL", K::kInteger, &ViewState::ReportIncludeDetails},
    {"INCLUDECOLS", K::kInteger, &ViewState::ReportIncludeColumns},
    {"INCLUDESTATS", K::kInteger, &ViewState::ReportIncludeStatistics},
    {"INCLUDEFILTER", K::kInteger, &ViewState::ReportIncludeFilter},
};

constexpr std::string_view kFromToKeys[] = {
    "FILTERTYPE", "FROMTYPE", "FROMDATETIME", "TOTYPE", "TODATETIME"};
constexpr std::string_view kForwardKeys[] = {
    "FILTERTYPE", "FROMTYPE", "FROMDATETIME", "FWDAMOUNT", "FWDUNITS"};
constexpr std::string_view kBackwardKeys[] = {
    "FILTERTYPE", "TOTYPE", "TODATETIME", "BWDAMOUNT", "BWDUNITS"};

#define RZ_FIELD_HEAD \
  "NAME", "RAWFIELD", "PIVOTFIELD", "STATISTIC", "XREF", "TYPE", "LENGTH"
#define RZ_LIMITS "MAX", "USL", "UCL", "UWL", "TGT", "LWL", "LCL", "LSL", "MIN"

constexpr std::string_view kTextKeys[] = {
    RZ_FIELD_HEAD, "SAMPLE", "UCASE",    "REQUIRED", "INPUT",
    "OUTPUT",      "UNITS",  "CATEGORY", "HELPFILE"};
constexpr std::string_view kPopupKeys[] = {
    RZ_FIELD_HEAD, "SAMPLE",   "REQUIRED", "UCASE", "INPUT",    "OUTPUT",
    "POPUP",       "COMPDATA", "KEYID",    "UNITS", "CATEGORY", "HELPFILE"};
constexpr std::string_view kNumericKeys[] = {
    RZ_FIELD_HEAD, "DECIMALS",     "SAMPLE",   "REQUIRED", "REPORTTYPE",
    "LIMITMETHOD", "TARGETMETHOD", RZ_LIMITS,  "RULES",    "INPUT",
    "OUTPUT",      "UNITS",        "CATEGORY", "HELPFILE", "RELATION"};
constexpr std::string_view kAverageKeys[] = {
    RZ_FIELD_HEAD, "DECIMALS",    "SAMPLE",       "REQUIRED",
    "REPORTTYPE",  "LIMITMETHOD", "TARGETMETHOD", RZ_LIMITS,
    "RULES",       "INPUT",       "OUTPUT",       "#AVG",
    "UNITS",       "CATEGORY",    "HELPFILE",     "RELATION"};
constexpr std::string_view kCalculatedKeys[] = {
    RZ_FIELD_HEAD,  "DECIMALS", "SAMPLE",   "REPORTTYPE", "LIMITMETHOD",
    "TARGETMETHOD", RZ_LIMITS,  "RULES",    "INPUT",      "OUTPUT",
    "UNITS",        "CATEGORY", "HELPFILE", "CALC",       "RELATION"};
constexpr std::string_view kRangeKeys[] = {
    RZ_FIELD_HEAD,  "DECIMALS", "SAMPLE",   "REPORTTYPE", "LIMITMETHOD",
    "TARGETMETHOD", RZ_LIMITS,  "RULES",    "INPUT",      "OUTPUT",
    "RANGE",        "UNITS",    "CATEGORY", "HELPFILE",   "RELATION"};
constexpr std::string_view kLookupKeys[] = {
    RZ_FIELD_HEAD, "SAMPLE", "UCASE", "OUTPUT",   "POPUP",   "COMPDATA",
    "KEYID",       "LOOKUP", "UNITS", "CATEGORY", "HELPFILE"};

#undef RZ_FIELD_HEAD
#undef RZ_LIMITS

}  // namespace

std::span<const ScalarKey> SelectionKeys() { return kSelectionKeys; }
std::span<const ScalarKey> OptionsKeys() { return kOptionsKeys; }
std::span<const ScalarKey> ReportKeys() { return kReportKeys; }

std::span<const std::string_view> SelectionKeysWritten(
    int32_t filter_range_type) {
  switch (filter_range_type) {
    case kRangeFromTo:
      return kFromToKeys;
    case kRangeForward:
      return kForwardKeys;
    case kRangeBackward:
      return kBackwardKeys;
    default:
      return {};
  }
}

std::span<const std::string_view> FieldKeysWritten(std::string_view type) {
  if (type == "T") return kTextKeys;
  if (type == "P") return kPopupKeys;
  if (type == "N") return kNumericKeys;
  if (type == "A") return kAverageKeys;
  if (type == "C") return kCalculatedKeys;
  if (type == "R") return kRangeKeys;
  if (type == "L") return kLookupKeys;
  return {};
}

std::string_view AndOrText(int16_t and_or) {
  if (and_or == 0) return "NONE";
  if (and_or == 2) return "OR";
  return "AND";
}

}  // namespace view_file

int32_t ViewNumber(AppFile& app_file, std::string_view view_name,
                   bool last_match) {
  app_file.RefreshViews();
  ViewCatalogue& views = app_file.Views();
  int32_t number = 0;
  for (int32_t position = 1; position <= views.Count(); ++position) {
    const ViewEntry entry = views.Item(position);
    if (!EqualsIgnoreCase(entry.name, view_name)) continue;
    number = entry.number;
    if (!last_match) break;
  }
  return number;
}

std::string ViewFilePath(std::string_view base_path, int32_t number) {
  return std::string(base_path) + ".V" + std::to_string(number);
}

namespace {

// The digits of |value| in plain decimal, split at the point.
struct DecimalDigits {
  std::string whole;
  std::string fraction;
};

DecimalDigits DigitsOf(double magnitude) {
  char buffer[400];
  const auto result = std::to_chars(buffer, buffer + sizeof(buffer), magnitude,
                                    std::chars_format::fixed);
  const std::string text(buffer, result.ptr);
  const size_t point = text.find('.');
  if (point == std::string::npos) return {text, ""};
  return {text.substr(0, point), text.substr(point + 1)};
}

// True when the digits past `places` of the fraction make more than half a
// unit of the last kept place (`or_equal`: at least half).
bool TailReachesHalf(const std::string& fraction, size_t places,
                     bool or_equal) {
  if (fraction.size() <= places) return false;
  const char first = fraction[places];
  if (first != '5') return first > '5';
  if (or_equal) return true;
  return fraction.find_first_not_of('0', places + 1) != std::string::npos;
}

// Adds one unit in the last place of the decimal digit text `digits`.
void IncrementDigits(std::string& digits) {
  for (size_t i = digits.size(); i-- > 0;) {
    if (digits[i] != '9') {
      ++digits[i];
      return;
    }
    digits[i] = '0';
  }
  digits.insert(digits.begin(), '1');
}

}  // namespace

std::string FixedPointText(double value, int decimals) {
  const size_t places = static_cast<size_t>(decimals > 0 ? decimals + 1 : 1);
  const bool negative = value < 0;
  DecimalDigits digits = DigitsOf(std::fabs(value));
  // floor(x + half): a positive value rounds its magnitude up from exactly
  // half, a negative one only from more than half.
  const bool round_up = TailReachesHalf(digits.fraction, places, !negative);
  std::string kept =
      digits.whole +
      digits.fraction.substr(0, std::min(places, digits.fraction.size()));
  kept.append(places - std::min(places, digits.fraction.size()), '0');
  if (round_up) IncrementDigits(kept);
  std::string text = kept.substr(0, kept.size() - places);
  text += '.';
  text += kept.substr(kept.size() - places);
  const bool zero = kept.find_first_not_of('0') == std::string::npos;
  return (negative && !zero) ? "-" + text : text;
}

RangeDefaults RangeDefaultsFor(int length, int decimals) {
  if (length <= 0) return {};
  std::string picture(static_cast<size_t>(length), '9');
  if (decimals > 0) {
    const int point = decimals >= length ? 0 : length - decimals - 1;
    picture[static_cast<size_t>(point)] = '.';
  }
  RangeDefaults defaults;
  defaults.max = LeadingNumber(picture);
  if (picture.size() > 1 && picture.front() != '.') {
    defaults.min = LeadingNumber("-" + picture.substr(1));
  }
  return defaults;
}

std::string RemapRuleLetters(std::string_view letters,
                             const std::vector<int>& positions) {
  std::string result;
  for (const char letter : letters) {
    if (letter < 'A' || letter > 'Z') continue;
    const size_t rule = static_cast<size_t>(letter - 'A');
    if (rule >= positions.size() || positions[rule] <= 0) continue;
    result += static_cast<char>(64 + positions[rule]);
  }
  return result;
}

}  // namespace rz
