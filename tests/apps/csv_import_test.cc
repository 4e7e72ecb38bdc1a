// Copyright 2026 The Veltmark authors.

#include "rzselect/csv_import.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "core/error.h"
#include "platform/field_definition.h"

namespace rz {
namespace {

NewApplication Import(std::string_view text, std::string_view title = "t") {
  return ApplicationFromCsv(ParseCsv(text, "in.csv"), "in.csv", title);
}

std::vector<std::string> Names(const NewApplication& application) {
  std::vector<std::string> names;
  for (const auto& variable : application.variables) {
    names.push_back(variable->Name());
  }
  return names;
}

// Numbers of many digits: a plain number of up to 300 digits before and
// after the point always fits a double; a longer one is read to tell.
const std::string kDigits300 = "1" + std::string(299, '0');
const std::string kDigits400 = "1" + std::string(399, '0');
const std::string kTiny400 = "0." + std::string(399, '0') + "1";

TEST(CsvImportTest, InfersTypeLengthAndDecimals) {
  struct Case {
    const char* name;
    std::vector<std::string_view> values;
    ColumnShape expected;
  } cases[] = {
      {"integers", {"7", "120", "15"}, {"N", 3, 0}},
      {"most decimals win", {"1.5", "2.25", "10"}, {"N", 5, 2}},
      {"negative adds a sign", {"-1.5", "22.5"}, {"N", 5, 1}},
      {"minus on the narrow value still counts", {"-1", "100"}, {"N", 4, 0}},
      {"plus sign is not a width", {"+5", "6"}, {"N", 1, 0}},
      {"leading point reads as 0.x", {".5"}, {"N", 3, 1}},
      {"trailing point has no decimals", {"5."}, {"N", 1, 0}},
      {"leading zeros are digits", {"007"}, {"N", 3, 0}},
      {"empty values ignored", {"", "3.0", ""}, {"N", 3, 1}},
      {"one text makes text", {"1", "2", "n/a"}, {"T", 3, 0}},
      {"exponent is text", {"1e5"}, {"T", 3, 0}},
      {"thousands separator is text", {"1,000"}, {"T", 5, 0}},
      {"lone sign is text", {"-"}, {"T", 1, 0}},
      {"lone point is text", {"."}, {"T", 1, 0}},
      {"two points are text", {"1.2.3"}, {"T", 5, 0}},
      {"text length counts characters", {"caf\xC3\xA9", "ab"}, {"T", 4, 0}},
      {"a short text after a long one",
       {"caf\xC3\xA9s", "\xC3\xA9"},
       {"T", 5, 0}},
      {"300 digits are still a number",
       {std::string_view(kDigits300)},
       {"N", 300, 0}},
      {"a number beyond the double range is text",
       {std::string_view(kDigits400)},
       {"T", 400, 0}},
      {"400 decimals of a small number are text",
       {std::string_view(kTiny400)},
       {"T", 402, 0}},
      {"no values at all", {"", ""}, {"T", 1, 0}},
      {"no rows", {}, {"T", 1, 0}},
  };
  for (const auto& row : cases) {
    EXPECT_EQ(InferColumnShape(row.values), row.expected) << row.name;
  }
}

TEST(CsvImportTest, ReadsDatesAndTimes) {
  struct Case {
    const char* text;
    std::optional<std::string> date;
    std::optional<std::string> time;
  } cases[] = {
      {"2024-02-29", "2024-02-29", std::nullopt},
      {"2023-02-29", std::nullopt, std::nullopt},  // no leap day
      {"2024-13-01", std::nullopt, std::nullopt},
      {"2024-1-01", std::nullopt, std::nullopt},
      {"24-01-01", std::nullopt, std::nullopt},
      {"2024/01/01", std::nullopt, std::nullopt},
      {"08:30", std::nullopt, "08:30:00"},
      {"8:30:05", std::nullopt, "08:30:05"},
      {"23:59:59", std::nullopt, "23:59:59"},
      {"24:00", std::nullopt, std::nullopt},
      {"12:60", std::nullopt, std::nullopt},
      {"12:00:60", std::nullopt, std::nullopt},
      {"12:5", std::nullopt, std::nullopt},
      {"123:00", std::nullopt, std::nullopt},
      {"12", std::nullopt, std::nullopt},
      {"12:00:00:00", std::nullopt, std::nullopt},
      {"", std::nullopt, std::nullopt},
  };
  for (const auto& row : cases) {
    EXPECT_EQ(ParseDateText(row.text), row.date) << row.text;
    EXPECT_EQ(ParseTimeText(row.text), row.time) << row.text;
  }
}

TEST(CsvImportTest, SplitsCombinedDateTimes) {
  using Pair = std::pair<std::string, std::string>;
  struct Case {
    const char* text;
    std::optional<Pair> expected;
  } cases[] = {
      {"2024-03-01 06:05", Pair{"2024-03-01", "06:05:00"}},
      {"2024-03-01 06:05:07", Pair{"2024-03-01", "06:05:07"}},
      {"2024-03-01T06:05:07", Pair{"2024-03-01", "06:05:07"}},
      {"2024-03-01  6:05", Pair{"2024-03-01", "06:05:00"}},
      {"2024-03-01", std::nullopt},
      {"2024-03-01X06:05", std::nullopt},
      {"2024-03-01 25:00", std::nullopt},
      {"2024-03-32 06:00", std::nullopt},
  };
  for (const auto& row : cases) {
    EXPECT_EQ(ParseDateTimeText(row.text), row.expected) << row.text;
  }
}

TEST(CsvImportTest, FindsDateAndTimeColumns) {
  struct Case {
    const char* name;
    std::vector<std::string> header;
    std::vector<std::string> first;  // empty: no record
    std::optional<DateTimeColumns> expected;
  } cases[] = {
      {"named, any case and place",
       {"x", " time ", "DATE"},
       {},
       DateTimeColumns{2, 1, -1}},
      {"named combined", {"v", "Timestamp"}, {}, DateTimeColumns{-1, -1, 1}},
      {"named Date/Time", {"Date/Time", "v"}, {}, DateTimeColumns{-1, -1, 0}},
      {"Date holding a time too",
       {"v", "Date"},
       {"1", "2024-01-01 10:00"},
       DateTimeColumns{-1, -1, 1}},
      {"first two by content",
       {"d", "t", "v"},
       {"2024-01-01", "10:00", "1"},
       DateTimeColumns{0, 1, -1}},
      {"first by content",
       {"when", "v"},
       {"2024-01-01T10:00:00", "1"},
       DateTimeColumns{-1, -1, 0}},
      {"a date and a time anywhere by content",
       {"v", "d", "t"},
       {"1", "2024-01-01", "10:00"},
       DateTimeColumns{1, 2, -1}},
      {"the time before the date",
       {"t", "id", "d"},
       {"10:00:05", "7", "2024-01-01"},
       DateTimeColumns{2, 0, -1}},
      {"a leading id before a combined value",
       {"id", "when", "v"},
       {"17", "2024-01-01 00:00:30", "1.5"},
       DateTimeColumns{-1, -1, 1}},
      {"date without time", {"Date", "v"}, {"2024-01-01", "1"}, std::nullopt},
      {"no record, no names", {"a", "b"}, {}, std::nullopt},
  };
  for (const auto& row : cases) {
    CsvRecord first{2, row.first};
    EXPECT_EQ(
        FindDateTimeColumns(row.header, row.first.empty() ? nullptr : &first),
        row.expected)
        << row.name;
  }
}

TEST(CsvImportTest, ChosenDateAndTimeColumns) {
  const std::vector<std::string> header = {"id", " Day ", "Clock", "v"};
  struct Case {
    DateTimeChoice choice;
    std::optional<DateTimeColumns> expected;  // nullopt: error 5
    const char* message;
  } cases[] = {
      {{"day", "CLOCK", ""}, DateTimeColumns{1, 2, -1}, ""},
      {{"2", "3", ""}, DateTimeColumns{1, 2, -1}, ""},
      {{"", "", "v"}, DateTimeColumns{-1, -1, 3}, ""},
      {{"", "", "4"}, DateTimeColumns{-1, -1, 3}, ""},
      {{"Day", "Hour", ""},
       std::nullopt,
       "in.csv:1: --time-column 'Hour': no column of that name or number"},
      {{"", "", "5"},
       std::nullopt,
       "in.csv:1: --datetime-column '5': no column of that name or number"},
      {{"Day", "2", ""},
       std::nullopt,
       "in.csv:1: the date and the time must be two columns"},
  };
  for (const Case& c : cases) {
    try {
      EXPECT_EQ(ChosenDateTimeColumns(header, c.choice, "in.csv", 1),
                c.expected)
          << c.message;
    } catch (const Error& error) {
      EXPECT_FALSE(c.expected) << error.Description();
      EXPECT_EQ(error.Number(), 5);
      EXPECT_EQ(error.Description(), c.message);
    }
  }
}

TEST(CsvImportTest, BuildsVariablesAndRecords) {
  const NewApplication app = Import(
      "Weight,Date,Time,Note,Count\n"
      "1.25,2024-05-01,06:00,ok,3\n"
      "-0.5,2024-05-01,06:10:30,,\n"
      ",2024-05-02,7:00,\"a, b\",12\n",
      "Run 7");
  EXPECT_EQ(app.title, "Run 7");
  EXPECT_EQ(Names(app), (std::vector<std::string>{"Date", "Time", "Weight",
                                                  "Note", "Count"}));
  const struct {
    int variable;
    const char* type;
    int16_t length;
    int16_t decimals;
  } expected[] = {{1, "T", 10, 0},
                  {2, "T", 8, 0},
                  {3, "N", 5, 2},
                  {4, "T", 4, 0},
                  {5, "N", 2, 0}};
  for (const auto& row : expected) {
    const FieldDefinition& v = *app.variables[row.variable - 1];
    EXPECT_EQ(v.TypeLetter(), row.type) << row.variable;
    EXPECT_EQ(v.Length(), row.length) << row.variable;
    EXPECT_EQ(v.Decimals(), row.decimals) << row.variable;
    EXPECT_EQ(v.Number(FieldAttribute::kPosition), row.variable);
    EXPECT_EQ(v.Text(FieldAttribute::kRules), "");
  }
  ASSERT_EQ(app.records.size(), 3u);
  EXPECT_EQ(app.records[0],
            (std::vector<Variant>{Variant("2024-05-01"), Variant("06:00:00"),
                                  Variant(1.25), Variant("ok"), Variant(3.0)}));
  EXPECT_EQ(
      app.records[1],
      (std::vector<Variant>{Variant("2024-05-01"), Variant("06:10:30"),
                            Variant(-0.5), Variant::Null(), Variant::Null()}));
  EXPECT_EQ(app.records[2][2], Variant::Null());
  EXPECT_EQ(app.records[2][3], Variant("a, b"));
}

TEST(CsvImportTest, SplitsACombinedColumnIntoDateAndTime) {
  const NewApplication app = Import(
      "Timestamp,Speed\n2024-05-01T23:59:59,240\n2024-05-02 00:00,241\n");
  EXPECT_EQ(Names(app), (std::vector<std::string>{"Date", "Time", "Speed"}));
  EXPECT_EQ(app.records[0][0], Variant("2024-05-01"));
  EXPECT_EQ(app.records[0][1], Variant("23:59:59"));
  EXPECT_EQ(app.records[1][1], Variant("00:00:00"));
}

TEST(CsvImportTest, NamesAreTrimmedFilledInAndMadeUnique) {
  const NewApplication app =
      Import("Date,Time, speed ,,SPEED,Speed\n2024-01-01,10:00,1,2,3,4\n");
  EXPECT_EQ(Names(app),
            (std::vector<std::string>{"Date", "Time", "speed", "Column 4",
                                      "SPEED (2)", "Speed (3)"}));
}

TEST(CsvImportTest, HeaderOnlyWithNamedColumnsGivesNoRecords) {
  const NewApplication app = Import("Date,Time,Weight\n");
  EXPECT_EQ(app.variables.size(), 3u);
  EXPECT_TRUE(app.records.empty());
  EXPECT_EQ(app.variables[2]->TypeLetter(), "T");
}

struct BadFileCase {
  const char* name;
  std::string text;
  int number;
  std::string message_start;
};

TEST(CsvImportTest, ReportsTheFirstBadRecordWithItsLine) {
  const BadFileCase cases[] = {
      {"empty file", "", 5, "in.csv:1: "},
      {"too few fields", "Date,Time,v\n2024-01-01,10:00,1\n2024-01-01,10:05\n",
       5, "in.csv:3: 2 fields where the header has 3"},
      {"too many fields", "Date,Time\n2024-01-01,10:00,1\n", 5,
       "in.csv:2: 3 fields where the header has 2"},
      {"no date columns", "a,b\n1,2\n", 5, "in.csv:1: no date and time"},
      {"bad date", "Date,Time\n2024-01-01,10:00\n2024-02-30,10:00\n", 13,
       "in.csv:3: '2024-02-30' in column 'Date' is not a date"},
      {"bad time", "Date,Time\n2024-01-01,10:00\n2024-01-01,10.05\n", 13,
       "in.csv:3: '10.05' in column 'Time' is not a time"},
      {"missing time", "Date,Time\n2024-01-01,\n", 13,
       "in.csv:2: the time in column 'Time' is missing"},
      {"bad combined", "Timestamp\n2024-01-01 10:00\nyesterday\n", 13,
       "in.csv:3: 'yesterday' in column 'Timestamp' is not a date and time"},
      {"line counts lines inside quotes",
       "Date,Time,Note\n2024-01-01,10:00,\"two\nlines\"\n2024-01-01,x,\n", 13,
       "in.csv:4: 'x' in column 'Time'"},
      {"first problem wins",
       "Date,Time\n2024-01-01,10:00\n2024-01-01,bad\n2024-01-01\n", 13,
       "in.csv:3: "},
  };
  for (const BadFileCase& row : cases) {
    try {
      Import(row.text);
      ADD_FAILURE() << row.name << ": no error";
    } catch (const Error& error) {
      EXPECT_EQ(error.Number(), row.number) << row.name;
      EXPECT_EQ(error.Description().rfind(row.message_start, 0), 0u)
          << row.name << ": " << error.Description();
    }
  }
}

// Whether a file is UTF-8 is settled by all of it: one byte that is not
// UTF-8, however late, makes every text of the file Windows-1252 (the
// header's names too), and text lengths count its bytes as characters.
TEST(CsvImportTest, ALateWindows1252ByteDecidesForTheWholeFile) {
  struct Case {
    std::string csv;
    const char* operator_name;  // variable 3's name
    int16_t length;             // its length
    const char* first;          // its value in the first record
  } cases[] = {
      {"Date,Time,Op\xC3\xA9\n2024-01-01,06:00,Ren\xC3\xA9\n"
       "2024-01-01,07:00,Ana\n",
       "Op\u00E9", 4, "Ren\u00E9"},
      {"Date,Time,Op\xC3\xA9\n2024-01-01,06:00,Ren\xC3\xA9\n"
       "2024-01-01,07:00,Ana\xB0\n",
       "Op\u00C3\u00A9", 5, "Ren\u00C3\u00A9"},
  };
  for (const Case& c : cases) {
    CsvTextSource source(c.csv, "in.csv");
    NewApplication app =
        ApplicationFromCsv(source, "in.csv", "t", DateTimeChoice());
    ASSERT_EQ(app.variables.size(), 3u);
    EXPECT_EQ(app.variables[2]->Name(), c.operator_name);
    EXPECT_EQ(app.variables[2]->Length(), c.length);
    std::vector<Variant> record;
    ASSERT_TRUE(app.record_source(&record));
    EXPECT_EQ(record[2], Variant(c.first));
    ASSERT_TRUE(app.record_source(&record));
    EXPECT_FALSE(app.record_source(&record));
    EXPECT_EQ(record[1], Variant("07:00:00"));  // left as the last
  }
}

}  // namespace
}  // namespace rz
