// Copyright 2026 The Veltmark authors.

#include "core/like.h"

#include <gtest/gtest.h>

#include <iterator>
#include <ostream>
#include <string>

#include "core/error.h"

namespace rz {
namespace {

struct Row {
  const char* pattern;
  const char* text;
  bool matches;
};

std::ostream& operator<<(std::ostream& out, const Row& row) {
  return out << "'" << row.text << "' Like '" << row.pattern << "'";
}

void ExpectRows(const Row* rows, size_t count, LikeOptions options) {
  for (size_t i = 0; i < count; ++i) {
    EXPECT_EQ(Like(rows[i].text, rows[i].pattern, options), rows[i].matches)
        << rows[i];
  }
}

TEST(LikeTest, Wildcards) {
  const Row rows[] = {
      {"", "", true},
      {"", "a", false},
      {"*", "", true},
      {"*", "anything", true},
      {"a*", "abc", true},
      {"a*", "ba", false},
      {"*c", "abc", true},
      {"a*c", "ac", true},
      {"a*c", "abcd", false},
      {"a*b*c", "aXbYc", true},
      {"a*b*c", "aXcYb", false},
      {"?", "", false},
      {"?", "é", true},
      {"??", "é", false},
      {"a?c", "abc", true},
      {"a?c", "ac", false},
      {"#", "7", true},
      {"#", "x", false},
      {"##-#", "12-3", true},
      {"#", "٣", false},
      {"**a**", "bab", true},
      {"a", "A", false},
      {"abc", "abcd", false},
      {"%_", "%_", true},
      {"%", "x", false},
      {"*a", "aaa", true},
      {"*ab", "aab", true},
      {"*aab", "aaab", true},
      {"a*", "a", true},
  };
  ExpectRows(rows, std::size(rows), {});
}

TEST(LikeTest, CharacterLists) {
  const Row rows[] = {
      {"[abc]", "b", true},      {"[abc]", "d", false},
      {"[a-c]x", "bx", true},    {"[a-c]", "B", false},
      {"[!a-c]", "d", true},     {"[!a-c]", "b", false},
      {"[a-cx0-9]", "5", true},  {"[a-cx0-9]", "x", true},
      {"[a-cx0-9]", "y", false}, {"[*]", "*", true},
      {"[*]", "x", false},       {"[?]", "?", true},
      {"[#]", "#", true},        {"[[]", "[", true},
      {"[-a]", "-", true},       {"[a-]", "-", true},
      {"[!-]", "-", false},      {"[!-]", "x", true},
      {"a[]b", "ab", true},      {"a[]b", "axb", false},
      {"[]", "", true},          {"[!]", "x", true},
      {"[!]", "", false},        {"]", "]", true},
      {"[é-ë]", "ê", true},      {"[é-ë]", "e", false},
      {"[!é]", "e", true},       {"[a-z]*[0-9]", "abc9", true},
  };
  ExpectRows(rows, std::size(rows), {});
}

TEST(LikeTest, IgnoreCaseFoldsTextPatternAndLists) {
  const Row rows[] = {
      {"abc", "ABC", true}, {"ÉTÉ*", "été 2024", true}, {"[a-c]", "B", true},
      {"[A-C]", "b", true}, {"[!a-c]", "B", false},     {"[é]", "É", true},
      {"ÿ", "Ÿ", true},     {"*SSE", "straße", false},  {"a?C", "AbC", true},
      {"[š]", "Š", true},
  };
  ExpectRows(rows, std::size(rows), {.ignore_case = true});
  EXPECT_FALSE(Like("ABC", "abc"));
}

TEST(LikeTest, SqlWildcardsAddPercentAndUnderscore) {
  const Row rows[] = {
      {"a%", "abc", true},      {"%c", "abc", true}, {"a_c", "abc", true},
      {"a_c", "ac", false},     {"[%]", "%", true},  {"[%]", "x", false},
      {"[_]", "x", false},      {"a*", "abc", true},  // "*" still works.
      {"%a%B%", "xaxbx", true},
  };
  ExpectRows(rows, std::size(rows),
             {.ignore_case = true, .sql_wildcards = true});
}

TEST(LikeTest, InvalidUtf8BytesAreCharactersOfTheirOwn) {
  EXPECT_TRUE(Like("a\xE9z", "a?z"));
  EXPECT_TRUE(Like("a\xE9z", "a\xE9z"));
  EXPECT_FALSE(Like("a\xC3\xA9z", "a\xE9z"));  // "é" is not the byte 0xE9.
  EXPECT_FALSE(Like("\xC3\x28", "?"));         // Two characters.
}

TEST(LikeTest, MalformedPatternsRaiseInvalidArgumentNamingThePattern) {
  const char* patterns[] = {"[abc", "a[", "[!", "x[a-", "[z-a]", "[9-0]"};
  for (const char* pattern : patterns) {
    try {
      LikePattern::Compile(pattern);
      ADD_FAILURE() << pattern << " compiled";
    } catch (const Error& error) {
      EXPECT_EQ(error.Number(), 5) << pattern;
      EXPECT_NE(error.Description().find(std::string("'") + pattern + "'"),
                std::string::npos)
          << error.Description();
    }
  }
}

TEST(LikeTest, CompiledPatternIsReusable) {
  const LikePattern pattern =
      LikePattern::Compile("LINE#*", {.ignore_case = true});
  EXPECT_TRUE(pattern.Matches("line4"));
  EXPECT_TRUE(pattern.Matches("Line7 west"));
  EXPECT_FALSE(pattern.Matches("lineX"));
  EXPECT_FALSE(pattern.Matches("line"));
}

// Backtracking over every star would take exponential time here; the
// matcher must answer at once (the test times out otherwise).
TEST(LikeTest, ManyStarsOnALongTextStayFast) {
  const std::string text(200000, 'a');
  EXPECT_FALSE(Like(text, "*a*a*a*a*a*a*a*a*a*a*b"));
  EXPECT_TRUE(Like(text + "b", "*a*a*a*a*a*a*a*a*a*a*b"));
  EXPECT_FALSE(Like(text, "*?*?*?*?*?*?*?*?*#"));
}

}  // namespace
}  // namespace rz
