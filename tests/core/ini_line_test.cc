// Copyright 2026 The Veltmark authors.

#include "core/ini_line.h"

#include <gtest/gtest.h>

#include <string>
#include <string_view>
#include <vector>

namespace rz {
namespace {

TEST(ParseIniLineTest, ReadsKeysValuesAndHeaders) {
  struct Row {
    std::string line;
    std::string key;
    std::string value;
  };
  const Row rows[] = {
      {"", "", ""},
      {"   \t  ", "", ""},
      {"[General]", "[GENERAL]", ""},
      {"  [field]  \r", "[FIELD]", ""},
      {"[a] = b", "[A] = B", ""},  // a header keeps everything in its key
      {"x=1", "X", "1"},
      {"   Title        = Line 4  ", "TITLE", "Line 4"},
      {"y = a=b", "Y", "a=b"},  // later "=" belong to the value
      {"KEY\t=\t5", "KEY", "5"},
      {"key =", "KEY", ""},
      {"= value", "", "value"},  // no key: the caller finds nothing to apply
      {"; a comment", "", ""},
      {"no equals sign", "", ""},
      {"line\rbreak = v\nw", "LINE BREAK", "v w"},
      {"\xC3\xa9t\xC3\xa9 = \xE2\x82\xAC 5", "\xC3\x89T\xC3\x89",
       "\xE2\x82\xAC 5"},  // "été" upper-cases to "ÉTÉ"; "€ 5" stays
  };
  for (const Row& row : rows) {
    const IniLine parsed = ParseIniLine(row.line);
    EXPECT_EQ(parsed.key, row.key) << "[" << row.line << "]";
    EXPECT_EQ(parsed.value, row.value) << "[" << row.line << "]";
  }
}

TEST(ParseIniLineTest, HeaderTestLooksAtTheKey) {
  EXPECT_TRUE(IsIniHeader(ParseIniLine(" [VIEWS]")));
  EXPECT_FALSE(IsIniHeader(ParseIniLine("VIEW = 1,[x]")));
  EXPECT_FALSE(IsIniHeader(ParseIniLine("")));
}

TEST(SplitIniLinesTest, EveryLfEndsALineWithOrWithoutItsCr) {
  using Lines = std::vector<std::string_view>;
  const struct Case {
    const char* name;
    std::string_view text;
    Lines lines;
  } cases[] = {
      {"CR LF", "a\r\nb\r\n", {"a", "b"}},
      {"LF alone", "a\nb\n", {"a", "b"}},
      {"mixed", "a\r\nb\nc\r\n", {"a", "b", "c"}},
      {"empty lines", "\n\r\n", {"", ""}},
      {"lone CR stays in its line", "a\rb\r\n", {"a\rb"}},
      {"CR CR LF keeps one CR", "a\r\r\n", {"a\r"}},
      {"unended last line is dropped", "a\nb", {"a"}},
      {"only an unended line", "a", {}},
      {"only a CR", "\r", {}},
      {"empty", "", {}},
  };
  for (const Case& c : cases) {
    EXPECT_EQ(SplitIniLines(c.text), c.lines) << c.name;
  }
}

TEST(FormatIniKeyLineTest, PadsToTheEqualColumn) {
  struct Row {
    std::string key;
    std::string value;
    int leading;
    int equal_pos;
    std::string line;
  };
  const Row rows[] = {
      {"X", "1", 3, 17, "   X            = 1"},
      {"TITLE", "", 3, 17, "   TITLE        ="},
      // Exactly filling the width: "=" follows at once in column 17.
      {"ABCDEFGHIJKLM", "v", 3, 17, "   ABCDEFGHIJKLM= v"},
      // Too long: not cut.
      {"ABCDEFGHIJKLMNOP", "v", 3, 17, "   ABCDEFGHIJKLMNOP= v"},
      {"K", "v", 0, 1, "K= v"},
      {"K", "v", 0, 4, "K  = v"},
      // A two-byte character counts once.
      {"\xC3\x89T", "v", 3, 8, "   \xC3\x89T  = v"},
      {"K", " spaced ", 1, 3,
       " K= "
       " spaced "},  // written as given
  };
  for (const Row& row : rows) {
    EXPECT_EQ(FormatIniKeyLine(row.key, row.value, row.leading, row.equal_pos),
              row.line)
        << row.key << " " << row.leading << "/" << row.equal_pos;
  }
}

TEST(FormatIniKeyLineTest, WrittenLinesParseBack) {
  const std::string key = "SHIFTSTART";
  const std::string value = "a = b";
  const IniLine parsed = ParseIniLine(FormatIniKeyLine(key, value));
  EXPECT_EQ(parsed, (IniLine{key, value}));
}

}  // namespace
}  // namespace rz
