// Copyright 2026 The Veltmark authors.

#include "core/text.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <random>
#include <string>
#include <vector>

#include "core/error.h"

namespace rz {
namespace {

TEST(TextTest, TrimRemovesSpacesOnly) {
  struct Row {
    const char* text;
    const char* trim;
    const char* ltrim;
    const char* rtrim;
  } rows[] = {
      {"  ab c  ", "ab c", "ab c  ", "  ab c"},
      {"", "", "", ""},
      {"    ", "", "", ""},
      {"\tx\t", "\tx\t", "\tx\t", "\tx\t"},  // Tabs are not blanks here.
      {" \r\n", "\r\n", "\r\n", " \r\n"},
      {"x", "x", "x", "x"},
  };
  for (const Row& row : rows) {
    EXPECT_EQ(Trim(row.text), row.trim) << '"' << row.text << '"';
    EXPECT_EQ(LTrim(row.text), row.ltrim) << '"' << row.text << '"';
    EXPECT_EQ(RTrim(row.text), row.rtrim) << '"' << row.text << '"';
  }
}

TEST(TextTest, CaseMappingCoversLatin1AndWindows1252Letters) {
  struct Row {
    const char* lower;
    const char* upper;
  } pairs[] = {
      {"abc xyz", "ABC XYZ"},
      {"àáâãäåæçèéêëìíîïðñòóôõöøùúûüýþ", "ÀÁÂÃÄÅÆÇÈÉÊËÌÍÎÏÐÑÒÓÔÕÖØÙÚÛÜÝÞ"},
      {"ÿ", "Ÿ"},
      {"šœž", "ŠŒŽ"},
  };
  for (const Row& row : pairs) {
    EXPECT_EQ(UpperCase(row.lower), row.upper) << row.lower;
    EXPECT_EQ(LowerCase(row.upper), row.lower) << row.upper;
  }
  // Characters without a case partner here stay as they are.
  const char* unchanged[] = {"ß", "÷", "×", "µ", "1-2_3", "ф", "Ф", "€", "😀"};
  for (const char* text : unchanged) {
    EXPECT_EQ(UpperCase(text), text) << text;
    EXPECT_EQ(LowerCase(text), text) << text;
  }
}

TEST(TextTest, InvalidUtf8BytesSurviveUnchanged) {
  const std::string cases[] = {
      "a\x80z",            // Stray continuation byte.
      "a\xC3",             // Truncated at the end.
      "\xC0\x80x",         // Overlong NUL.
      "\xED\xA0\x80",      // Encoded surrogate.
      "\xF4\x90\x80\x80",  // Above U+10FFFF.
      "\xE9t\xE9",         // Latin-1 bytes, not UTF-8.
      std::string("a\0b", 3),
  };
  for (const std::string& text : cases) {
    std::string upper = UpperCase(text);
    // Only the ASCII letters change; every other byte stays.
    ASSERT_EQ(upper.size(), text.size());
    for (size_t i = 0; i < text.size(); ++i) {
      char expected = text[i] >= 'a' && text[i] <= 'z' ? text[i] - 32 : text[i];
      EXPECT_EQ(upper[i], expected) << "byte " << i;
    }
  }
  // Each invalid byte is one character of its own.
  std::string text = "\xC3\xA9\xE9\x80";
  size_t pos = 0;
  std::vector<uint32_t> chars;
  while (pos < text.size()) chars.push_back(utf8::NextChar(text, &pos));
  EXPECT_EQ(chars, (std::vector<uint32_t>{0xE9, utf8::kInvalidByteBase + 0xE9,
                                          utf8::kInvalidByteBase + 0x80}));
}

TEST(TextTest, CaseInsensitiveComparisons) {
  struct Row {
    const char* a;
    const char* b;
    int compare;
  } rows[] = {
      {"Hello", "hELLO", 0},
      {"Éclair", "éCLAIR", 0},
      {"ÿ", "Ÿ", 0},
      {"abc", "abd", -1},
      {"abd", "ABC", 1},
      {"ab", "abc", -1},
      {"", "", 0},
      {"", "a", -1},
      {"a", "_", -1},
      {"straße", "STRASSE", 1},  // ß does not fold to SS.
      {"\xE9", "\xC3\xA9", 1},   // An invalid byte is not é.
  };
  for (const Row& row : rows) {
    EXPECT_EQ(CompareIgnoreCase(row.a, row.b), row.compare)
        << row.a << " vs " << row.b;
    EXPECT_EQ(CompareIgnoreCase(row.b, row.a), -row.compare)
        << row.b << " vs " << row.a;
    EXPECT_EQ(EqualsIgnoreCase(row.a, row.b), row.compare == 0) << row.a;
  }
}

TEST(TextTest, FindIgnoreCaseReturnsByteOffsets) {
  struct Row {
    const char* haystack;
    const char* needle;
    size_t offset;
  } rows[] = {
      {"Hello World", "WORLD", 6},
      {"Hello", "", 0},
      {"", "", 0},
      {"", "a", std::string_view::npos},
      {"xÉé", "éÉ", 1},
      {"éaÉ", "A", 2},  // After the two bytes of "é".
      {"aaab", "AAB", 1},
      {"abc", "abcd", std::string_view::npos},
      {"Straße", "SSE", std::string_view::npos},
  };
  for (const Row& row : rows) {
    EXPECT_EQ(FindIgnoreCase(row.haystack, row.needle), row.offset)
        << row.haystack << " / " << row.needle;
    EXPECT_EQ(ContainsIgnoreCase(row.haystack, row.needle),
              row.offset != std::string_view::npos)
        << row.haystack << " / " << row.needle;
  }
  EXPECT_TRUE(StartsWithIgnoreCase("@POP[V1]", "@pop["));
  EXPECT_TRUE(StartsWithIgnoreCase("abc", ""));
  EXPECT_FALSE(StartsWithIgnoreCase("ab", "abc"));
  EXPECT_FALSE(StartsWithIgnoreCase("xabc", "abc"));
}

TEST(TextTest, LeadingNumberReadsTheNumberAtTheStart) {
  struct Row {
    const char* text;
    double value;
  } rows[] = {
      {"12.5abc", 12.5},  {"abc", 0},
      {"-.5", -0.5},      {"1e3x", 1000},
      {"1ex", 1},         {"1e+x", 1},
      {"  7", 7},         {"\t 7", 7},
      {"12,5x", 12},      {"", 0},
      {"   ", 0},         {"+4", 4},
      {"- 5", 0},         {"5.", 5},
      {".", 0},           {"-", 0},
      {"1.5D2", 150},     {"2d-1", 0.2},
      {"1E3", 1000},      {"007", 7},
      {"1 2", 1},         {"3.25 ", 3.25},
      {"1e-999", 0},      {"0.1e1", 1},
      {"&H1F", 31},       {"&h1fz", 31},
      {"&O17", 15},       {"&o19", 1},
      {"&H", 0},          {"&HFFFF", -1},
      {"&H8000", -32768}, {"&H10000", 65536},
      {"&HFFFFFFFF", -1}, {" &H10", 16},
      {"-&H10", 0},       {"&X1", 0},
  };
  for (const Row& row : rows) {
    EXPECT_EQ(LeadingNumber(row.text), row.value) << '"' << row.text << '"';
  }
  EXPECT_FALSE(std::signbit(LeadingNumber("-0")));
  EXPECT_FALSE(std::signbit(LeadingNumber("-1e-999")));
  // A long mantissa is read exactly as the nearest double.
  EXPECT_EQ(LeadingNumber("0.1000000000000000055511151231257827"), 0.1);
}

TEST(TextTest, LeadingNumberOverflowRaisesError6) {
  const char* cases[] = {"1e999", "-1e400x", "99999e305", "&H100000000"};
  for (const char* text : cases) {
    try {
      LeadingNumber(text);
      ADD_FAILURE() << text << " did not throw";
    } catch (const Error& error) {
      EXPECT_EQ(error.Number(), 6) << text;
      EXPECT_NE(error.Description().find(text), std::string::npos) << text;
    }
  }
  // Near the limit but inside it.
  EXPECT_EQ(LeadingNumber("1.7976931348623157e308"),
            std::numeric_limits<double>::max());
  EXPECT_EQ(LeadingNumber("0.01e310"), 1e308);
}

TEST(TextTest, IsNumericTextNeedsTheWholeTextToBeANumber) {
  struct Row {
    const char* text;
    bool numeric;
  } rows[] = {
      {" 3.25 ", true}, {"1e5", true},  {"-7", true},     {"+.5", true},
      {"5.", true},     {"1D2", true},  {"\t8\t", true},  {"12,5x", false},
      {"", false},      {"   ", false}, {".", false},     {"-", false},
      {"1e", false},    {"1e+", false}, {"&H10", false},  {"1 2", false},
      {"1e999", false}, {"abc", false}, {"1.2.3", false}, {"- 1", false},
  };
  for (const Row& row : rows) {
    EXPECT_EQ(IsNumericText(row.text), row.numeric) << '"' << row.text << '"';
  }
}

TEST(TextTest, ShortestNumberTextForms) {
  struct Row {
    double value;
    const char* text;
  } rows[] = {
      {0.1, "0.1"},
      {12.5, "12.5"},
      {-3, "-3"},
      {0, "0"},
      {-0.0, "0"},
      {100000000000000, "100000000000000"},
      {999999999999999.9, "999999999999999.9"},
      {1e15, "1E+15"},
      {1.5e-7, "1.5E-07"},
      {-2.5e20, "-2.5E+20"},
      {1e-5, "0.00001"},
      {9.99e-6, "9.99E-06"},
      {0.1 + 0.2, "0.30000000000000004"},
      {1e100, "1E+100"},
      {5e-324, "5E-324"},
  };
  for (const Row& row : rows) {
    EXPECT_EQ(ShortestNumberText(row.value), row.text) << row.text;
  }
}

TEST(TextTest, ShortestNumberTextReadsBackExactly) {
  std::mt19937_64 random(42);
  std::uniform_real_distribution<double> exponent(-300, 300);
  for (int i = 0; i < 20000; ++i) {
    double value = std::pow(10.0, exponent(random)) * (i % 2 ? -1 : 1);
    std::string text = ShortestNumberText(value);
    EXPECT_EQ(LeadingNumber(text), value) << text;
    EXPECT_TRUE(IsNumericText(text)) << text;
  }
}

TEST(TextTest, SplitKeepsEmptyItems) {
  using List = std::vector<std::string>;
  EXPECT_EQ(Split("a,,b,", ','), (List{"a", "", "b", ""}));
  EXPECT_EQ(Split("abc", ','), (List{"abc"}));
  EXPECT_EQ(Split(",", ','), (List{"", ""}));
  EXPECT_EQ(Split("", ','), List{});
}

TEST(TextTest, ReplaceAllOccurrencesWithoutOverlap) {
  struct Row {
    const char* text;
    const char* from;
    const char* to;
    const char* result;
  } rows[] = {
      {"a|b|c", "|", "\r\n", "a\r\nb\r\nc"},
      {"aaaa", "aa", "b", "bb"},
      {"aaa", "aa", "a", "aa"},
      {"abc", "", "x", "abc"},
      {"abc", "abc", "", ""},
      {"abab", "ab", "abab", "abababab"},  // The replacement is not rescanned.
      {"", "a", "b", ""},
  };
  for (const Row& row : rows) {
    EXPECT_EQ(Replace(row.text, row.from, row.to), row.result) << row.text;
  }
}

}  // namespace
}  // namespace rz
