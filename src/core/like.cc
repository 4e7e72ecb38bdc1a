// Copyright 2026 The Veltmark authors.

#include "core/like.h"

#include <string>

#include "core/error.h"
#include "core/text.h"

namespace rz {
namespace {

std::string PatternProblem(std::string_view pattern, std::string_view what) {
  return std::string(what) + " in pattern '" + std::string(pattern) + "'";
}

}  // namespace

LikePattern LikePattern::Compile(std::string_view pattern,
                                 LikeOptions options) {
  LikePattern compiled(options.ignore_case);
  size_t pos = 0;
  while (pos < pattern.size()) {
    const uint32_t ch = utf8::NextChar(pattern, &pos);
    Kind kind = Kind::kChar;
    if (ch == '*' || (options.sql_wildcards && ch == '%')) {
      kind = Kind::kStar;
    } else if (ch == '?' || (options.sql_wildcards && ch == '_')) {
      kind = Kind::kAnyChar;
    } else if (ch == '#') {
      kind = Kind::kDigit;
    } else if (ch == '[') {
      compiled.CompileList(pattern, &pos);
      continue;
    }
    // A run of stars means the same as one.
    if (kind == Kind::kStar && !compiled.elements_.empty() &&
        compiled.elements_.back().kind == Kind::kStar) {
      continue;
    }
    const uint32_t stored = options.ignore_case ? utf8::UpperChar(ch) : ch;
    compiled.elements_.push_back({kind, false, stored, 0, 0});
  }
  return compiled;
}

void LikePattern::CompileList(std::string_view pattern, size_t* pos) {
  bool negated = false;
  if (*pos < pattern.size() && pattern[*pos] == '!') {
    negated = true;
    ++*pos;
  }
  const auto first = static_cast<uint32_t>(ranges_.size());
  while (true) {
    if (*pos >= pattern.size()) {
      throw Error::InvalidArgument(PatternProblem(pattern, "unclosed '['"));
    }
    const uint32_t low = utf8::NextChar(pattern, pos);
    if (low == ']') break;
    uint32_t high = low;
    size_t after_dash = *pos + 1;
    if (*pos < pattern.size() && pattern[*pos] == '-' &&
        after_dash < pattern.size() && pattern[after_dash] != ']') {
      high = utf8::NextChar(pattern, &after_dash);
      *pos = after_dash;
      if (high < low) {
        throw Error::InvalidArgument(
            PatternProblem(pattern, "range written high to low"));
      }
    }
    ranges_.push_back({low, high});
  }
  const auto last = static_cast<uint32_t>(ranges_.size());
  if (first == last) {
    // "[]" takes no character; "[!]" excludes nothing, so takes any one.
    if (negated) elements_.push_back({Kind::kAnyChar, false, 0, 0, 0});
    return;
  }
  elements_.push_back({Kind::kList, negated, 0, first, last});
}

bool LikePattern::InList(const Element& element, uint32_t ch) const {
  for (uint32_t i = element.first; i < element.last; ++i) {
    if (ch >= ranges_[i].low && ch <= ranges_[i].high) return true;
  }
  return false;
}

bool LikePattern::MatchesOne(const Element& element, uint32_t ch) const {
  switch (element.kind) {
    case Kind::kChar:
      return element.ch == (ignore_case_ ? utf8::UpperChar(ch) : ch);
    case Kind::kAnyChar:
      return true;
    case Kind::kDigit:
      return ch >= '0' && ch <= '9';
    case Kind::kList: {
      bool found = InList(element, ch);
      if (!found && ignore_case_) {
        found = InList(element, utf8::UpperChar(ch)) ||
                InList(element, utf8::LowerChar(ch));
      }
      return found != element.negated;
    }
    case Kind::kStar:
      break;
  }
  return false;
}

// Greedy matching: every element but "*" takes exactly one character. On a
// mismatch the last "*" seen takes one more character and matching resumes
// after it; earlier stars never need to change, which bounds the work by
// pattern length x text length.
bool LikePattern::Matches(std::string_view text) const {
  const size_t count = elements_.size();
  size_t element = 0;
  size_t pos = 0;
  bool have_star = false;
  size_t star_element = 0;  // The element after the last "*" seen.
  size_t star_pos = 0;      // Where the text after that "*" starts now.
  while (pos < text.size()) {
    if (element < count && elements_[element].kind == Kind::kStar) {
      have_star = true;
      star_element = ++element;
      star_pos = pos;
      continue;
    }
    if (element < count) {
      size_t next = pos;
      if (MatchesOne(elements_[element], utf8::NextChar(text, &next))) {
        pos = next;
        ++element;
        continue;
      }
    }
    if (!have_star) return false;
    if (star_element == count) return true;  // A final "*" takes the rest.
    utf8::NextChar(text, &star_pos);
    pos = star_pos;
    element = star_element;
  }
  while (element < count && elements_[element].kind == Kind::kStar) ++element;
  return element == count;
}

bool Like(std::string_view text, std::string_view pattern,
          LikeOptions options) {
  return LikePattern::Compile(pattern, options).Matches(text);
}

}  // namespace rz
