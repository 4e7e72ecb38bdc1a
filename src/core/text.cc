// Copyright 2026 The Veltmark authors.

#include "core/text.h"

#include <charconv>
#include <cmath>
#include <system_error>

#include "core/error.h"

namespace rz {
namespace {

bool IsDigit(char c) { return c >= '0' && c <= '9'; }
bool IsBlank(char c) { return c == ' ' || c == '\t'; }
bool IsExponentLetter(char c) {
  return c == 'e' || c == 'E' || c == 'd' || c == 'D';
}

// Where a decimal number starts and ends inside a text, as LeadingNumber
// reads it. `mantissa_end` is where the exponent (if any) begins.
struct DecimalSpan {
  size_t begin = 0;
  size_t mantissa_end = 0;
  size_t end = 0;
  bool found = false;
};

size_t SkipDigits(std::string_view text, size_t pos) {
  while (pos < text.size() && IsDigit(text[pos])) ++pos;
  return pos;
}

DecimalSpan ScanDecimal(std::string_view text, size_t pos) {
  DecimalSpan span;
  span.begin = pos;
  if (pos < text.size() && (text[pos] == '+' || text[pos] == '-')) ++pos;
  size_t digits_begin = pos;
  pos = SkipDigits(text, pos);
  size_t digit_count = pos - digits_begin;
  if (pos < text.size() && text[pos] == '.') {
    size_t frac_begin = pos + 1;
    size_t frac_end = SkipDigits(text, frac_begin);
    digit_count += frac_end - frac_begin;
    // A lone "." belongs to the number only when some digit is there.
    if (digit_count > 0) pos = frac_end;
  }
  if (digit_count == 0) return span;
  span.found = true;
  span.mantissa_end = pos;
  if (pos < text.size() && IsExponentLetter(text[pos])) {
    size_t exp = pos + 1;
    if (exp < text.size() && (text[exp] == '+' || text[exp] == '-')) ++exp;
    if (exp < text.size() && IsDigit(text[exp])) pos = SkipDigits(text, exp);
  }
  span.end = pos;
  return span;
}

// Decimal exponent of the first non-zero digit of the span, with the
// exponent part saturated; used only to tell overflow from underflow when
// the conversion is out of range. "123.4" -> 2, "0.005" -> -3, ".5e3" -> 2.
int64_t MagnitudeOf(std::string_view text, const DecimalSpan& span) {
  int64_t int_digits = 0;
  int64_t first_nonzero = -1;
  int64_t digit_index = 0;
  bool seen_point = false;
  for (size_t i = span.begin; i < span.mantissa_end; ++i) {
    char c = text[i];
    if (c == '.') seen_point = true;
    if (!IsDigit(c)) continue;
    if (!seen_point) ++int_digits;
    if (c != '0' && first_nonzero < 0) first_nonzero = digit_index;
    ++digit_index;
  }
  int64_t exponent = 0;
  bool negative = false;
  for (size_t i = span.mantissa_end + 1; i < span.end; ++i) {
    if (text[i] == '-') negative = true;
    if (IsDigit(text[i]) && exponent < 1000000000) {
      exponent = exponent * 10 + (text[i] - '0');
    }
  }
  return int_digits - 1 - first_nonzero + (negative ? -exponent : exponent);
}

enum class Conversion { kOk, kOverflow };

// Converts a span found by ScanDecimal. The text is rewritten only when
// std::from_chars cannot take it as it is (a "+" sign or a d/D exponent).
Conversion ConvertDecimal(std::string_view text, const DecimalSpan& span,
                          double* value) {
  std::string_view slice = text.substr(span.begin, span.end - span.begin);
  std::string rewritten;
  bool d_exponent =
      span.mantissa_end < span.end && (text[span.mantissa_end] | 0x20) == 'd';
  if (slice.front() == '+' || d_exponent) {
    rewritten.assign(slice.front() == '+' ? slice.substr(1) : slice);
    for (char& c : rewritten) {
      if (c == 'd' || c == 'D') c = 'e';
    }
    slice = rewritten;
  }
  const char* last = slice.data() + slice.size();
  auto [ptr, ec] = std::from_chars(slice.data(), last, *value);
  if (ec == std::errc::result_out_of_range) {
    if (MagnitudeOf(text, span) >= 0) return Conversion::kOverflow;
    *value = 0;
  }
  if (*value == 0) *value = 0;  // No -0.
  return Conversion::kOk;
}

// Reads "&H..." or "&O..." at `pos` (which holds the "&").
double ReadRadixNumber(std::string_view text, size_t pos, int radix) {
  uint64_t value = 0;
  for (pos += 2; pos < text.size(); ++pos) {
    char c = text[pos];
    int digit = -1;
    if (IsDigit(c)) digit = c - '0';
    if (c >= 'a' && c <= 'f') digit = c - 'a' + 10;
    if (c >= 'A' && c <= 'F') digit = c - 'A' + 10;
    if (digit < 0 || digit >= radix) break;
    value = value * radix + digit;
    if (value > 0xFFFFFFFFull) throw Error::Overflow(text);
  }
  if (value <= 0xFFFF) return static_cast<int16_t>(value);
  return static_cast<int32_t>(value);
}

bool StartsWithRadix(std::string_view text, size_t pos, char letter) {
  return pos + 1 < text.size() && text[pos] == '&' &&
         (text[pos + 1] == letter || text[pos + 1] == letter + ('a' - 'A'));
}

template <typename MapChar>
std::string MapCase(std::string_view text, MapChar map) {
  std::string out;
  out.reserve(text.size());
  size_t pos = 0;
  while (pos < text.size()) {
    unsigned char byte = text[pos];
    if (byte < 0x80) {
      out.push_back(static_cast<char>(map(byte)));
      ++pos;
    } else {
      utf8::AppendChar(map(utf8::NextChar(text, &pos)), &out);
    }
  }
  return out;
}

// Compares `needle` with `text` at byte offset `pos`, folded.
bool MatchesAtIgnoreCase(std::string_view text, size_t pos,
                         std::string_view needle) {
  size_t needle_pos = 0;
  while (needle_pos < needle.size()) {
    if (pos >= text.size()) return false;
    uint32_t a = utf8::UpperChar(utf8::NextChar(text, &pos));
    uint32_t b = utf8::UpperChar(utf8::NextChar(needle, &needle_pos));
    if (a != b) return false;
  }
  return true;
}

}  // namespace

std::string Trim(std::string_view text) { return LTrim(RTrim(text)); }

std::string LTrim(std::string_view text) {
  size_t begin = text.find_first_not_of(' ');
  if (begin == std::string_view::npos) return "";
  return std::string(text.substr(begin));
}

std::string RTrim(std::string_view text) {
  size_t last = text.find_last_not_of(' ');
  if (last == std::string_view::npos) return "";
  return std::string(text.substr(0, last + 1));
}

std::string_view TrimSpaces(std::string_view text) {
  const size_t first = text.find_first_not_of(' ');
  if (first == std::string_view::npos) return {};
  const size_t last = text.find_last_not_of(' ');
  return text.substr(first, last - first + 1);
}

std::string UpperCase(std::string_view text) {
  return MapCase(text, utf8::UpperChar);
}

std::string LowerCase(std::string_view text) {
  return MapCase(text, utf8::LowerChar);
}

bool EqualsIgnoreCase(std::string_view a, std::string_view b) {
  return CompareIgnoreCase(a, b) == 0;
}

size_t FindIgnoreCase(std::string_view haystack, std::string_view needle) {
  size_t pos = 0;
  while (true) {
    if (MatchesAtIgnoreCase(haystack, pos, needle)) return pos;
    if (pos >= haystack.size()) return std::string_view::npos;
    utf8::NextChar(haystack, &pos);
  }
}

bool ContainsIgnoreCase(std::string_view haystack, std::string_view needle) {
  return FindIgnoreCase(haystack, needle) != std::string_view::npos;
}

bool StartsWithIgnoreCase(std::string_view text, std::string_view prefix) {
  return MatchesAtIgnoreCase(text, 0, prefix);
}

int CompareIgnoreCase(std::string_view a, std::string_view b) {
  size_t pos_a = 0;
  size_t pos_b = 0;
  while (pos_a < a.size() && pos_b < b.size()) {
    uint32_t ca = utf8::UpperChar(utf8::NextChar(a, &pos_a));
    uint32_t cb = utf8::UpperChar(utf8::NextChar(b, &pos_b));
    if (ca != cb) return ca < cb ? -1 : 1;
  }
  if (pos_a < a.size()) return 1;
  if (pos_b < b.size()) return -1;
  return 0;
}

double LeadingNumber(std::string_view text) {
  size_t pos = 0;
  while (pos < text.size() && IsBlank(text[pos])) ++pos;
  if (StartsWithRadix(text, pos, 'H')) return ReadRadixNumber(text, pos, 16);
  if (StartsWithRadix(text, pos, 'O')) return ReadRadixNumber(text, pos, 8);
  DecimalSpan span = ScanDecimal(text, pos);
  if (!span.found) return 0;
  double value = 0;
  if (ConvertDecimal(text, span, &value) == Conversion::kOverflow) {
    throw Error::Overflow(text);
  }
  return value;
}

bool IsNumericText(std::string_view text) {
  size_t begin = 0;
  size_t end = text.size();
  while (begin < end && IsBlank(text[begin])) ++begin;
  while (end > begin && IsBlank(text[end - 1])) --end;
  std::string_view core = text.substr(begin, end - begin);
  DecimalSpan span = ScanDecimal(core, 0);
  if (!span.found || span.end != core.size()) return false;
  double value = 0;
  return ConvertDecimal(core, span, &value) == Conversion::kOk;
}

std::string ShortestNumberText(double value) {
  if (value == 0) return "0";
  char buffer[64];
  char* const last = buffer + sizeof buffer;
  double magnitude = std::fabs(value);
  if (magnitude >= 1e-5 && magnitude < 1e15) {
    char* end =
        std::to_chars(buffer, last, value, std::chars_format::fixed).ptr;
    return std::string(buffer, end);
  }
  char* end =
      std::to_chars(buffer, last, value, std::chars_format::scientific).ptr;
  const std::string_view written(buffer, static_cast<size_t>(end - buffer));
  const size_t e = written.find('e');
  if (e == std::string_view::npos) return std::string(written);  // nan/inf
  // "1e+20" becomes "1E+20": a sign and at least two exponent digits, even
  // if a library wrote fewer.
  std::string_view exponent = written.substr(e + 1);
  char sign = '+';
  if (!exponent.empty() && (exponent[0] == '+' || exponent[0] == '-')) {
    sign = exponent[0];
    exponent.remove_prefix(1);
  }
  std::string text(written.substr(0, e));
  text += 'E';
  text += sign;
  if (exponent.size() < 2) text += '0';
  text += exponent;
  return text;
}

std::vector<std::string> Split(std::string_view text, char separator) {
  std::vector<std::string> items;
  if (text.empty()) return items;
  size_t begin = 0;
  while (true) {
    size_t next = text.find(separator, begin);
    if (next == std::string_view::npos) {
      items.emplace_back(text.substr(begin));
      return items;
    }
    items.emplace_back(text.substr(begin, next - begin));
    begin = next + 1;
  }
}

std::string Replace(std::string_view text, std::string_view from,
                    std::string_view to) {
  if (from.empty()) return std::string(text);
  std::string out;
  out.reserve(text.size());
  size_t begin = 0;
  while (true) {
    size_t next = text.find(from, begin);
    if (next == std::string_view::npos) break;
    out.append(text.substr(begin, next - begin));
    out.append(to);
    begin = next + from.size();
  }
  out.append(text.substr(begin));
  return out;
}

namespace utf8 {

uint32_t NextChar(std::string_view text, size_t* pos) {
  const unsigned char lead = text[*pos];
  if (lead < 0x80) {
    ++*pos;
    return lead;
  }
  size_t length = 0;
  uint32_t ch = 0;
  uint32_t min = 0;
  if ((lead & 0xE0) == 0xC0) {
    length = 2, ch = lead & 0x1F, min = 0x80;
  } else if ((lead & 0xF0) == 0xE0) {
    length = 3, ch = lead & 0x0F, min = 0x800;
  } else if ((lead & 0xF8) == 0xF0) {
    length = 4, ch = lead & 0x07, min = 0x10000;
  }
  bool valid = length > 0 && *pos + length <= text.size();
  for (size_t i = 1; valid && i < length; ++i) {
    const unsigned char next = text[*pos + i];
    valid = (next & 0xC0) == 0x80;
    ch = (ch << 6) | (next & 0x3F);
  }
  valid = valid && ch >= min && ch <= 0x10FFFF && (ch < 0xD800 || ch > 0xDFFF);
  if (!valid) {
    ++*pos;
    return kInvalidByteBase + lead;
  }
  *pos += length;
  return ch;
}

size_t CharacterCount(std::string_view text) {
  size_t count = 0;
  for (size_t pos = 0; pos < text.size(); ++count) NextChar(text, &pos);
  return count;
}

void AppendChar(uint32_t ch, std::string* out) {
  if (IsInvalidByte(ch)) {
    out->push_back(static_cast<char>(ch - kInvalidByteBase));
  } else if (ch < 0x80) {
    out->push_back(static_cast<char>(ch));
  } else if (ch < 0x800) {
    out->push_back(static_cast<char>(0xC0 | (ch >> 6)));
    out->push_back(static_cast<char>(0x80 | (ch & 0x3F)));
  } else if (ch < 0x10000) {
    out->push_back(static_cast<char>(0xE0 | (ch >> 12)));
    out->push_back(static_cast<char>(0x80 | ((ch >> 6) & 0x3F)));
    out->push_back(static_cast<char>(0x80 | (ch & 0x3F)));
  } else {
    out->push_back(static_cast<char>(0xF0 | (ch >> 18)));
    out->push_back(static_cast<char>(0x80 | ((ch >> 12) & 0x3F)));
    out->push_back(static_cast<char>(0x80 | ((ch >> 6) & 0x3F)));
    out->push_back(static_cast<char>(0x80 | (ch & 0x3F)));
  }
}

uint32_t UpperChar(uint32_t ch) {
  if (ch >= 'a' && ch <= 'z') return ch - ('a' - 'A');
  if (ch < 0xE0) return ch;
  if (ch <= 0xFE && ch != 0xF7) return ch - 0x20;  // à..þ except ÷.
  switch (ch) {
    case 0xFF:  // ÿ
      return 0x178;
    case 0x161:  // š
    case 0x153:  // œ
    case 0x17E:  // ž
      return ch - 1;
    default:
      return ch;
  }
}

uint32_t LowerChar(uint32_t ch) {
  if (ch >= 'A' && ch <= 'Z') return ch + ('a' - 'A');
  if (ch < 0xC0) return ch;
  if (ch <= 0xDE && ch != 0xD7) return ch + 0x20;  // À..Þ except ×.
  switch (ch) {
    case 0x178:  // Ÿ
      return 0xFF;
    case 0x160:  // Š
    case 0x152:  // Œ
    case 0x17D:  // Ž
      return ch + 1;
    default:
      return ch;
  }
}

}  // namespace utf8
}  // namespace rz
