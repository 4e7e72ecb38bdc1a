// Copyright 2026 The Veltmark authors.

#include "rzselect/csv_reader.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "core/error.h"

namespace rz {
namespace {

using Fields = std::vector<std::string>;

struct ParseCase {
  const char* name;
  std::string text;
  std::vector<CsvRecord> expected;
};

TEST(CsvReaderTest, SplitsRecordsAndFields) {
  const ParseCase cases[] = {
      {"plain LF", "a,b\n1,2\n", {{1, {"a", "b"}}, {2, {"1", "2"}}}},
      {"CR LF", "a,b\r\n1,2\r\n", {{1, {"a", "b"}}, {2, {"1", "2"}}}},
      {"lone CR", "a,b\r1,2", {{1, {"a", "b"}}, {2, {"1", "2"}}}},
      {"no final line end", "a,b\n1,2", {{1, {"a", "b"}}, {2, {"1", "2"}}}},
      {"quoted comma", "a\n\"x,y\"\n", {{1, {"a"}}, {2, {"x,y"}}}},
      {"doubled quote",
       "a\n\"say \"\"hi\"\"\"\n",
       {{1, {"a"}}, {2, {"say \"hi\""}}}},
      {"quoted empty", "a,b\n\"\",x\n", {{1, {"a", "b"}}, {2, {"", "x"}}}},
      {"only a quoted empty", "a\n\"\"\n", {{1, {"a"}}, {2, {""}}}},
      {"embedded LF counts a line",
       "a,b\n\"one\ntwo\",3\n4,5\n",
       {{1, {"a", "b"}}, {2, {"one\ntwo", "3"}}, {4, {"4", "5"}}}},
      {"embedded CR LF counts one line",
       "a\r\n\"x\r\ny\"\r\nz\r\n",
       {{1, {"a"}}, {2, {"x\r\ny"}}, {4, {"z"}}}},
      {"trailing empty field",
       "a,b,\n1,2,\n",
       {{1, {"a", "b", ""}}, {2, {"1", "2", ""}}}},
      {"trailing comma at end of text", "a,b,", {{1, {"a", "b", ""}}}},
      {"empty fields in the middle", ",,\n", {{1, {"", "", ""}}}},
      {"blank lines skipped but counted",
       "a\n\n\nb\r\n\r\nc",
       {{1, {"a"}}, {4, {"b"}}, {6, {"c"}}}},
      {"quote inside an unquoted field is kept",
       "a\n5\" pipe\n",
       {{1, {"a"}}, {2, {"5\" pipe"}}}},
      {"spaces kept", " a , b \n", {{1, {" a ", " b "}}}},
      {"empty text", "", {}},
  };
  for (const ParseCase& row : cases) {
    EXPECT_EQ(ParseCsv(row.text, "f.csv"), row.expected) << row.name;
  }
}

struct MalformedCase {
  const char* name;
  std::string text;
  std::string message_start;
};

TEST(CsvReaderTest, ReportsMalformedQuotesWithTheirLine) {
  const MalformedCase cases[] = {
      {"unterminated at the end", "a\nb\n\"open,x\n", "d.csv:3: "},
      {"unterminated over lines", "a\n\"x\ny\nz", "d.csv:2: "},
      {"text after closing quote", "a,b\n1,2\n\"x\"y,3\n", "d.csv:3: "},
      {"text after a multi-line field", "a\n\"x\ny\"z\n", "d.csv:3: "},
      {"a field of more than 16 MiB",
       "a\nb\n" + std::string(16 << 20, 'x') + "y\n",
       "d.csv:3: a field longer than 16 MiB"},
      {"a quoted field of more than 16 MiB",
       "a\n\"" + std::string((16 << 20) + 1, '\n') + "\"\n",
       "d.csv:2: a field longer than 16 MiB"},
      {"a record of more than 32,767 fields", "a\n" + std::string(32767, ','),
       "d.csv:2: more than 32767 fields"},
  };
  for (const MalformedCase& row : cases) {
    try {
      ParseCsv(row.text, "d.csv");
      ADD_FAILURE() << row.name << ": no error";
    } catch (const Error& error) {
      EXPECT_EQ(error.Number(), 5) << row.name;
      EXPECT_EQ(error.Description().rfind(row.message_start, 0), 0u)
          << row.name << ": " << error.Description();
    }
  }
}

TEST(CsvReaderTest, ValidUtf8IsTakenAsItIs) {
  EXPECT_EQ(DecodeCsvText("Temp \xC2\xB0"
                          "C,\xE2\x82\xAC"),
            "Temp \xC2\xB0"
            "C,\xE2\x82\xAC");
}

TEST(CsvReaderTest, ByteOrderMarkIsDropped) {
  EXPECT_EQ(DecodeCsvText("\xEF\xBB\xBF"
                          "Date,Time"),
            "Date,Time");
  // Only at the start.
  EXPECT_EQ(DecodeCsvText("a\xEF\xBB\xBF"), "a\xEF\xBB\xBF");
}

TEST(CsvReaderTest, InvalidUtf8IsReadAsWindows1252) {
  // 0xB0 degree sign, 0x80 euro sign, 0xE9 e acute: not UTF-8.
  EXPECT_EQ(DecodeCsvText("\xB0"
                          "C,\x80,caf\xE9"),
            "\xC2\xB0"
            "C,\xE2\x82\xAC,caf\xC3\xA9");
  // One bad byte late in an otherwise UTF-8-looking file decides it all.
  EXPECT_EQ(DecodeCsvText("\xC3\xA9,\xE9"), "\xC3\x83\xC2\xA9,\xC3\xA9");
}

TEST(CsvReaderTest, Utf8Validity) {
  struct Case {
    const char* bytes;
    bool valid;
  } cases[] = {
      {"", true},
      {"plain", true},
      {"\xC3\xA9", true},
      {"\xF0\x9F\x98\x80", true},   // U+1F600
      {"\xC3", false},              // truncated
      {"\x80", false},              // stray continuation
      {"\xC0\xAF", false},          // overlong
      {"\xED\xA0\x80", false},      // surrogate
      {"\xF4\x90\x80\x80", false},  // above U+10FFFF
      // Plain ASCII is passed over before any decoding starts.
      {"plain then \xC3\xA9", true},
      {"plain then \x80", false},
      {"plain then cut \xE2\x82", false},
      {"\xC3\xA9 then plain", true},
  };
  for (const Case& row : cases) {
    EXPECT_EQ(IsValidUtf8(row.bytes), row.valid)
        << testing::PrintToString(std::string(row.bytes));
  }
}

// The parser gives the records one at a time, the same as ParseCsv
// gives them all, whatever the text's line ends and quotes; a field of
// exactly 16 MiB is still a field.
TEST(CsvReaderTest, RecordsOneAtATimeAsAll) {
  const std::string texts[] = {
      "a,b\r\n1,\"x\r\ny\"\r\n\r\n2,3",
      "a\n\n\n",
      "\"q\"\"\",b\r3,4\r",
      "a\n" + std::string(16 << 20, 'z') + "\n",
  };
  for (const std::string& text : texts) {
    CsvParser parser(text, "d.csv");
    std::vector<CsvRecord> records;
    CsvRecord record;
    while (parser.Next(&record)) records.push_back(record);
    EXPECT_EQ(records, ParseCsv(text, "d.csv")) << text.substr(0, 20);
    EXPECT_FALSE(parser.Next(&record));
    EXPECT_EQ(parser.Position(), text.size());
  }
}

}  // namespace
}  // namespace rz
