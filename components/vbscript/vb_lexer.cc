// Copyright 2026 The Veltmark authors.

#include "vbscript/vb_lexer.h"

#include <cctype>
#include <cmath>
#include <cstdlib>

#include "core/date_time.h"
#include "core/text.h"
#include "vbscript/vb_errors.h"

namespace rz::vb {
namespace {

bool IsBlank(char c) { return c == ' ' || c == '\t'; }
bool IsDigit(char c) { return c >= '0' && c <= '9'; }
bool IsLetter(char c) {
  return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z');
}
bool IsNameChar(char c) { return IsLetter(c) || IsDigit(c) || c == '_'; }

// The smallest VBScript number type that holds an integral value.
Variant IntegralValue(double value) {
  if (value >= -32768 && value <= 32767) {
    return Variant(static_cast<int16_t>(value));
  }
  if (value >= -2147483648.0 && value <= 2147483647.0) {
    return Variant(static_cast<int32_t>(value));
  }
  return Variant(value);
}

class Lexer {
 public:
  explicit Lexer(std::string_view source) : src_(source) {}

  std::vector<Token> Run() {
    while (pos_ < src_.size()) {
      const bool blank = SkipBlanks();
      if (pos_ >= src_.size()) break;
      ReadToken(blank);
    }
    Push(TokenKind::kEnd, "", false);
    return std::move(tokens_);
  }

 private:
  // Skips blanks and line continuations; true when anything was skipped.
  bool SkipBlanks() {
    const size_t start = pos_;
    while (pos_ < src_.size()) {
      if (IsBlank(src_[pos_]) || src_[pos_] == '\r') {
        ++pos_;
      } else if (src_[pos_] == '_' && IsContinuation()) {
        SkipToLineEnd();
        ++pos_;  // the '\n'
        ++line_;
      } else {
        break;
      }
    }
    return pos_ > start;
  }

  // "_" followed by blanks and a line end, with a blank (or the line start)
  // before it.
  bool IsContinuation() const {
    if (pos_ > 0 && !IsBlank(src_[pos_ - 1]) && src_[pos_ - 1] != '\n') {
      return false;
    }
    size_t p = pos_ + 1;
    while (p < src_.size() && (IsBlank(src_[p]) || src_[p] == '\r')) ++p;
    return p < src_.size() && src_[p] == '\n';
  }

  void SkipToLineEnd() {
    while (pos_ < src_.size() && src_[pos_] != '\n') ++pos_;
  }

  void Push(TokenKind kind, std::string key, bool blank) {
    Token token;
    token.kind = kind;
    token.key = std::move(key);
    token.line = line_;
    token.space_before = blank;
    tokens_.push_back(std::move(token));
  }

  void PushLiteral(Variant value, bool blank) {
    Push(TokenKind::kLiteral, "", blank);
    tokens_.back().value = std::move(value);
  }

  [[noreturn]] void Fail(int32_t number) {
    throw MakeCompileError(number, line_);
  }

  void ReadToken(bool blank) {
    const char c = src_[pos_];
    if (c == '\n') {
      ++pos_;
      Push(TokenKind::kNewLine, "", blank);
      ++line_;
    } else if (c == '\'') {
      SkipToLineEnd();
    } else if (c == ':') {
      ++pos_;
      Push(TokenKind::kColon, ":", blank);
    } else if (c == '"') {
      ReadString(blank);
    } else if (c == '#') {
      ReadDate(blank);
    } else if (IsDigit(c) ||
               (c == '.' && pos_ + 1 < src_.size() && IsDigit(src_[pos_ + 1]) &&
                !AfterOperand(blank))) {
      ReadNumber(blank);
    } else if (c == '&' && pos_ + 1 < src_.size() &&
               (src_[pos_ + 1] == 'h' || src_[pos_ + 1] == 'H' ||
                src_[pos_ + 1] == 'o' || src_[pos_ + 1] == 'O')) {
      ReadRadixNumber(blank);
    } else if (IsLetter(c)) {
      ReadIdentifier(blank);
    } else if (c == '[') {
      ReadBracketIdentifier(blank);
    } else {
      ReadOperator(blank);
    }
  }

  // True when a "." here follows a name or ")" (a member access).
  bool AfterOperand(bool blank) const {
    if (blank || tokens_.empty()) return false;
    const Token& last = tokens_.back();
    return last.kind == TokenKind::kIdentifier || last.key == ")";
  }

  void ReadString(bool blank) {
    std::string value;
    ++pos_;
    while (true) {
      if (pos_ >= src_.size() || src_[pos_] == '\n') Fail(kUnterminatedString);
      const char c = src_[pos_++];
      if (c == '"') {
        if (pos_ < src_.size() && src_[pos_] == '"') {
          value.push_back('"');
          ++pos_;
          continue;
        }
        break;
      }
      value.push_back(c);
    }
    PushLiteral(Variant(std::move(value)), blank);
  }

  void ReadDate(bool blank) {
    const size_t end = src_.find_first_of("#\n", pos_ + 1);
    if (end == std::string_view::npos || src_[end] != '#') Fail(kSyntaxError);
    double serial = 0;
    if (!ParseDateText(src_.substr(pos_ + 1, end - pos_ - 1), &serial)) {
      Fail(kSyntaxError);
    }
    pos_ = end + 1;
    PushLiteral(Variant::Date(serial), blank);
  }

  void ReadNumber(bool blank) {
    const size_t start = pos_;
    bool integral = true;
    while (pos_ < src_.size() && IsDigit(src_[pos_])) ++pos_;
    if (pos_ < src_.size() && src_[pos_] == '.') {
      integral = false;
      ++pos_;
      while (pos_ < src_.size() && IsDigit(src_[pos_])) ++pos_;
    }
    if (pos_ < src_.size() && (src_[pos_] == 'e' || src_[pos_] == 'E')) {
      integral = false;
      ++pos_;
      if (pos_ < src_.size() && (src_[pos_] == '+' || src_[pos_] == '-')) {
        ++pos_;
      }
      if (pos_ >= src_.size() || !IsDigit(src_[pos_])) Fail(kInvalidNumber);
      while (pos_ < src_.size() && IsDigit(src_[pos_])) ++pos_;
    }
    if (pos_ < src_.size() && IsLetter(src_[pos_])) Fail(kInvalidNumber);
    const std::string text(src_.substr(start, pos_ - start));
    const double value = std::strtod(text.c_str(), nullptr);
    if (!std::isfinite(value)) Fail(kInvalidNumber);
    PushLiteral(integral ? IntegralValue(value) : Variant(value), blank);
  }

  void ReadRadixNumber(bool blank) {
    const bool hex = src_[pos_ + 1] == 'h' || src_[pos_ + 1] == 'H';
    size_t end = pos_ + 2;
    while (end < src_.size() &&
           (hex ? std::isxdigit(static_cast<unsigned char>(src_[end])) != 0
                : (src_[end] >= '0' && src_[end] <= '7'))) {
      ++end;
    }
    if (end == pos_ + 2 || end - pos_ - 2 > (hex ? 8u : 11u)) {
      Fail(kInvalidNumber);
    }
    double value = 0;
    try {
      value = LeadingNumber(src_.substr(pos_, end - pos_));
    } catch (const Error&) {
      Fail(kInvalidNumber);
    }
    if (end < src_.size() && src_[end] == '&') ++end;  // type suffix
    pos_ = end;
    PushLiteral(IntegralValue(value), blank);
  }

  void ReadIdentifier(bool blank) {
    const size_t start = pos_;
    while (pos_ < src_.size() && IsNameChar(src_[pos_])) ++pos_;
    const std::string_view name = src_.substr(start, pos_ - start);
    if (name.size() > kMaxIdentifierLength) Fail(kIdentifierTooLong);
    std::string key = UpperCase(name);
    if (key == "REM") {
      SkipToLineEnd();
      return;
    }
    Push(TokenKind::kIdentifier, std::move(key), blank);
    tokens_.back().spelling = std::string(name);
  }

  void ReadBracketIdentifier(bool blank) {
    const size_t end = src_.find_first_of("]\n", pos_);
    if (end == std::string_view::npos || src_[end] != ']') {
      Fail(kExpectedIdentifier);
    }
    const std::string_view name = src_.substr(pos_ + 1, end - pos_ - 1);
    if (name.size() > kMaxIdentifierLength) Fail(kIdentifierTooLong);
    pos_ = end + 1;
    Push(TokenKind::kIdentifier, UpperCase(name), blank);
    tokens_.back().spelling = std::string(name);
  }

  void ReadOperator(bool blank) {
    static constexpr std::string_view kTwoChar[] = {"<=", ">=", "<>", "=<",
                                                    "=>"};
    const std::string_view rest = src_.substr(pos_);
    for (std::string_view op : kTwoChar) {
      if (rest.substr(0, 2) == op) {
        pos_ += 2;
        std::string key(op);
        if (key == "=<") key = "<=";
        if (key == "=>") key = ">=";
        Push(TokenKind::kOperator, std::move(key), blank);
        return;
      }
    }
    static constexpr std::string_view kOneChar = "+-*/\\^&=<>(),.";
    if (kOneChar.find(src_[pos_]) == std::string_view::npos) {
      Fail(kInvalidCharacter);
    }
    Push(TokenKind::kOperator, std::string(1, src_[pos_]), blank);
    ++pos_;
  }

  std::string_view src_;
  size_t pos_ = 0;
  int32_t line_ = 1;
  std::vector<Token> tokens_;
};

// Reads up to `max_digits` digits at *pos into *value.
bool ReadField(std::string_view text, size_t* pos, int max_digits, int* value) {
  int digits = 0;
  *value = 0;
  while (*pos < text.size() && IsDigit(text[*pos]) && digits < max_digits) {
    *value = *value * 10 + (text[*pos] - '0');
    ++*pos;
    ++digits;
  }
  return digits > 0;
}

bool ParseUsTime(std::string_view text, double* serial) {
  size_t pos = 0;
  int hour = 0, minute = 0, second = 0;
  if (!ReadField(text, &pos, 2, &hour)) return false;
  if (pos >= text.size() || text[pos] != ':') return false;
  ++pos;
  if (!ReadField(text, &pos, 2, &minute)) return false;
  if (pos < text.size() && text[pos] == ':') {
    ++pos;
    if (!ReadField(text, &pos, 2, &second)) return false;
  }
  const std::string rest = UpperCase(Trim(text.substr(pos)));
  if (rest == "PM" || rest == "AM") {
    if (hour < 1 || hour > 12) return false;
    hour = hour % 12 + (rest == "PM" ? 12 : 0);
  } else if (!rest.empty()) {
    return false;
  }
  if (hour > 23 || minute > 59 || second > 59) return false;
  *serial = TimeSerial(hour, minute, second);
  return true;
}

bool ParseUsDate(std::string_view text, double* serial) {
  size_t pos = 0;
  int month = 0, day = 0, year = 0;
  if (!ReadField(text, &pos, 2, &month) || pos >= text.size() ||
      text[pos] != '/') {
    return false;
  }
  ++pos;
  if (!ReadField(text, &pos, 2, &day) || pos >= text.size() ||
      text[pos] != '/') {
    return false;
  }
  ++pos;
  const size_t year_start = pos;
  if (!ReadField(text, &pos, 4, &year)) return false;
  if (pos - year_start <= 2) year += year < 30 ? 2000 : 1900;
  if (month < 1 || month > 12 || year < 100 || day < 1 ||
      day > DaysInMonth(year, month)) {
    return false;
  }
  double time = 0;
  const std::string rest = Trim(text.substr(pos));
  if (!rest.empty() && !ParseUsTime(rest, &time)) return false;
  *serial = DateSerial(year, month, day) + time;
  return true;
}

}  // namespace

std::vector<Token> Tokenize(std::string_view source) {
  return Lexer(source).Run();
}

bool ParseDateText(std::string_view text, double* serial) {
  const std::string trimmed = Trim(text);
  if (auto iso = ParseDateTime(trimmed)) {
    *serial = *iso;
    return true;
  }
  if (trimmed.find('/') != std::string::npos) {
    return ParseUsDate(trimmed, serial);
  }
  return ParseUsTime(trimmed, serial);
}

}  // namespace rz::vb
