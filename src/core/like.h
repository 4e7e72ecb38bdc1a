// Copyright 2026 The Veltmark authors.
//
// Like: pattern matching of texts, as the automation Like operator does it,
// used by the filter evaluator for "LIKE" conditions and by scripts.
//
// Pattern syntax, on characters (UTF-8 code points, an invalid byte being a
// character of its own):
//   *        any run of characters, the empty run included
//   ?        exactly one character
//   #        one digit 0-9 (ASCII digits only)
//   [abc]    one of the listed characters
//   [a-z]    one character in the range (code-point order); ranges and single
//            characters mix: [a-cx0-9]
//   [!...]   one character not in the list
//   other    the character itself
// Inside brackets every character but "]" stands for itself, so "[*]",
// "[?]", "[#]" and "[[]" match those characters. A "-" first or last in the
// list is a plain "-" ("[-a]", "[a-]", "[!-]"). "]" cannot be put in a list;
// outside a list it is a plain character. Decisions where the automation
// rules are vague:
//   - "[]" is an empty list that stands for the empty text: it matches
//     without taking a character ("a[]b" matches "ab").
//   - "[!]" excludes nothing, so it matches any one character.
//   - A range written high to low ("[z-a]") is an error, not an empty set.
//
// Options: ignore_case compares with the case folding of core/text.h (a list
// matches when the character or its upper- or lower-case form is in it);
// sql_wildcards also makes "%" mean "*" and "_" mean "?" (but not inside
// brackets, where they stay plain characters).
//
// Matching is O(pattern x text) at worst (greedy matching that backtracks
// only to the last "*"), never exponential, and allocates nothing.
//
// Errors: Compile (and Like) throw Error::InvalidArgument naming the pattern
// for an unclosed "[" and for a range written high to low.

#ifndef RZ_CORE_LIKE_H_
#define RZ_CORE_LIKE_H_

#include <cstdint>
#include <string_view>
#include <vector>

namespace rz {

struct LikeOptions {
  bool ignore_case = false;    // Compare with case folding.
  bool sql_wildcards = false;  // Also "%" for "*" and "_" for "?".
};

// A compiled pattern; immutable, so one instance may be shared and used
// from several threads.
class LikePattern {
 public:
  static LikePattern Compile(std::string_view pattern,
                             LikeOptions options = {});

  // True when the whole text matches the whole pattern.
  bool Matches(std::string_view text) const;

 private:
  enum class Kind : uint8_t { kChar, kAnyChar, kDigit, kList, kStar };

  struct Element {
    Kind kind;
    bool negated;    // kList: matches characters NOT in the list.
    uint32_t ch;     // kChar: the character, upper-cased if ignore_case_.
    uint32_t first;  // kList: its ranges are ranges_[first, last).
    uint32_t last;
  };

  struct Range {
    uint32_t low;
    uint32_t high;
  };

  explicit LikePattern(bool ignore_case) : ignore_case_(ignore_case) {}

  // Parses "[...]" starting after the "[" at *pos; adds one element (or none
  // for "[]") and moves *pos past the "]".
  void CompileList(std::string_view pattern, size_t* pos);
  bool MatchesOne(const Element& element, uint32_t ch) const;
  bool InList(const Element& element, uint32_t ch) const;

  bool ignore_case_;
  std::vector<Element> elements_;
  std::vector<Range> ranges_;
};

// Compiles `pattern` and matches `text` once.
bool Like(std::string_view text, std::string_view pattern,
          LikeOptions options = {});

}  // namespace rz

#endif  // RZ_CORE_LIKE_H_
