// Copyright 2026 The Veltmark authors.

#include "repository/repository_writers.h"

#include <gtest/gtest.h>

#include <limits>
#include <sstream>
#include <string>

#include "core/error.h"
#include "repository/result_repository.h"

namespace rz {
namespace {

// Fields 1 and 2 hold a run's date-time; the rest hold awkward values:
// separators, quotes, tabs, line breaks, UTF-8, Null and a duplicate name.
class RepositoryWritersTest : public ::testing::Test {
 protected:
  RepositoryWritersTest() {
    for (const char* name :
         {"Date", "Time", "Name", "Weight", "Name", "Note"}) {
      repository_.Fields().Add(name, 1, 10, 0, 0);
    }
    const Variant rows[3][6] = {
        {39000.5, 39000.5, "Smith, J.", "12.50", "say \"hi\"", Variant::Null()},
        {Variant(), Variant(), "tab\there", Variant(int32_t{3}), "two\nlines",
         "\xC3\xA9t\xC3\xA9"},
        {"2006-10-11", Variant::Date(39001.25), true, 0.1, "back\\slash", 1e20},
    };
    for (int32_t r = 0; r < 3; ++r) {
      for (int32_t f = 0; f < 6; ++f) {
        repository_.SetValue(r + 1, f + 1, rows[r][f]);
      }
    }
  }

  template <typename Writer>
  std::string Written(Writer writer, bool date_time) {
    std::ostringstream out;
    writer(repository_, out, DateTimeColumns{date_time});
    return out.str();
  }

  ResultRepository repository_;
};

TEST_F(RepositoryWritersTest, CsvQuotesWhatRfc4180Requires) {
  EXPECT_EQ(Written(WriteCsv, false),
            "Date,Time,Name,Weight,Name,Note\n"
            "39000.5,39000.5,\"Smith, J.\",12.50,\"say \"\"hi\"\"\",\n"
            ",,tab\there,3,\"two\nlines\",\xC3\xA9t\xC3\xA9\n"
            "2006-10-11,2006-10-11 06:00:00,True,0.1,back\\slash,1E+20\n");
}

TEST_F(RepositoryWritersTest, CsvWithDateTimeColumns) {
  EXPECT_EQ(Written(WriteCsv, true),
            "Date,Time,Name,Weight,Name,Note\n"
            "2006-10-10,12:00:00,\"Smith, J.\",12.50,\"say \"\"hi\"\"\",\n"
            ",,tab\there,3,\"two\nlines\",\xC3\xA9t\xC3\xA9\n"
            "2006-10-11,06:00:00,True,0.1,back\\slash,1E+20\n");
}

TEST_F(RepositoryWritersTest, TsvEscapesTabsLineBreaksAndBackslashes) {
  EXPECT_EQ(Written(WriteTsv, true),
            "Date\tTime\tName\tWeight\tName\tNote\n"
            "2006-10-10\t12:00:00\tSmith, J.\t12.50\tsay \"hi\"\t\n"
            "\t\ttab\\there\t3\ttwo\\nlines\t\xC3\xA9t\xC3\xA9\n"
            "2006-10-11\t06:00:00\tTrue\t0.1\tback\\\\slash\t1E+20\n");
}

TEST_F(RepositoryWritersTest, JsonLinesKeepsTypesAndDuplicateNames) {
  EXPECT_EQ(
      Written(WriteJsonLines, false),
      "{\"Date\":39000.5,\"Time\":39000.5,\"Name\":\"Smith, J.\","
      "\"Weight\":\"12.50\",\"Name#2\":\"say \\\"hi\\\"\",\"Note\":null}\n"
      "{\"Date\":null,\"Time\":null,\"Name\":\"tab\\there\",\"Weight\":3,"
      "\"Name#2\":\"two\\nlines\",\"Note\":\"\xC3\xA9t\xC3\xA9\"}\n"
      "{\"Date\":\"2006-10-11\",\"Time\":\"2006-10-11 06:00:00\","
      "\"Name\":true,\"Weight\":0.1,\"Name#2\":\"back\\\\slash\","
      "\"Note\":1e+20}\n");
}

TEST_F(RepositoryWritersTest, JsonLinesWithDateTimeColumns) {
  const std::string text = Written(WriteJsonLines, true);
  const std::string first_line = text.substr(0, text.find('\n'));
  EXPECT_EQ(first_line,
            "{\"Date\":\"2006-10-10\",\"Time\":\"12:00:00\","
            "\"Name\":\"Smith, J.\",\"Weight\":\"12.50\","
            "\"Name#2\":\"say \\\"hi\\\"\",\"Note\":null}");
  EXPECT_NE(text.find("\"Time\":\"06:00:00\""), std::string::npos);
}

TEST_F(RepositoryWritersTest, TableAlignsNumbersRightAndTextsLeft) {
  EXPECT_EQ(Written(WriteTable, true),
            "Date        Time      Name       Weight  Name        Note\n"
            "----------  --------  ---------  ------  ----------  -----\n"
            "2006-10-10  12:00:00  Smith, J.   12.50  say \"hi\"\n"
            "                      tab\\there       3  two\\nlines  "
            "\xC3\xA9t\xC3\xA9\n"
            "2006-10-11  06:00:00  True          0.1  back\\slash  1E+20\n");
}

TEST_F(RepositoryWritersTest, JsonArrayHoldsTheJsonLinesSeparatedByCommas) {
  std::ostringstream json;
  WriteRecords(TextFormat::kJson, repository_, json, DateTimeColumns{true});
  std::string lines = Written(WriteJsonLines, true);
  lines.pop_back();  // the last line end
  for (size_t at = 0; (at = lines.find('\n', at)) != std::string::npos;
       at += 2) {
    lines.insert(at, ",");
  }
  EXPECT_EQ(json.str(), "[\n" + lines + "\n]\n");
}

// A run in event mode rewrites record 1 for every output record: the
// streamed text must equal the text of all records written at once.
TEST_F(RepositoryWritersTest, StreamedRecordsReadLikeAWholeRepository) {
  for (TextFormat format : {TextFormat::kCsv, TextFormat::kTsv,
                            TextFormat::kJson, TextFormat::kJsonLines}) {
    std::ostringstream whole;
    WriteRecords(format, repository_, whole, DateTimeColumns{true});
    ResultRepository working;
    for (int32_t f = 1; f <= repository_.Fields().Count(); ++f) {
      working.Fields().Add(repository_.Fields().Item(f)->Name(), 1, 10, 0, 0);
    }
    std::ostringstream streamed;
    RecordWriter writer(format, streamed, DateTimeColumns{true});
    writer.Begin(working);
    for (int32_t r = 1; r <= repository_.RecordCount(); ++r) {
      for (int32_t f = 1; f <= repository_.Fields().Count(); ++f) {
        working.SetValue(1, f, repository_.Value(r, f));
      }
      writer.Write(working, 1);
    }
    writer.End();
    EXPECT_EQ(streamed.str(), whole.str()) << static_cast<int>(format);
  }
}

// The writer hands its text over in blocks: records past a block arrive
// whole and in order, and a writer left before End (a run that stopped)
// still hands over every record it took.
TEST(RepositoryWritersEdgeTest, RecordsPastTheBufferArriveWholeAndInOrder) {
  ResultRepository repository;
  repository.Fields().Add("Text", 1, 10, 0, 0);
  std::string expected = "Text\n";
  for (int32_t r = 1; r <= 300; ++r) {
    const std::string text(static_cast<size_t>(r * 7 % 1000 + 1),
                           static_cast<char>('a' + r % 26));
    repository.SetValue(r, 1, text);
    expected += text + "\n";
  }
  std::ostringstream out;
  {
    RecordWriter writer(TextFormat::kCsv, out, {});
    writer.Begin(repository);
    for (int32_t r = 1; r <= 300; ++r) writer.Write(repository, r);
    EXPECT_GT(out.str().size(), 0u);  // blocks went out before the end
  }
  EXPECT_EQ(out.str(), expected);
}

TEST(RepositoryWritersEdgeTest, FormatNamesAndTheTableRefusesToStream) {
  EXPECT_EQ(TextFormatNamed("jsonl"), TextFormat::kJsonLines);
  EXPECT_EQ(TextFormatNamed("table"), TextFormat::kTable);
  EXPECT_EQ(TextFormatNamed("CSV"), std::nullopt);
  EXPECT_EQ(TextFormatNamed(""), std::nullopt);
  std::ostringstream out;
  try {
    RecordWriter writer(TextFormat::kTable, out, {});
    FAIL() << "a table cannot be streamed";
  } catch (const Error& error) {
    EXPECT_EQ(error.Number(), 5);
  }
}

TEST(RepositoryWritersEdgeTest, DuplicateKeysNeverCollide) {
  ResultRepository repository;
  for (const char* name : {"Name", "Name", "Name#2", "", ""}) {
    repository.Fields().Add(name, 1, 10, 0, 0);
  }
  EXPECT_EQ(JsonKeys(repository),
            (std::vector<std::string>{"Name", "Name#2", "Name#2#2", "", "#2"}));
}

TEST(RepositoryWritersEdgeTest, OddCellsAreWrittenAsStored) {
  struct Row {
    Variant value;
    int32_t field;
    bool date_time;
    const char* text;
  };
  auto object = std::make_shared<ResultRepository>();
  const Row rows[] = {
      {1e10, 1, true, "10000000000"},  // beyond the calendar: the number
      {-1e10, 2, true, "-10000000000"},
      {std::numeric_limits<double>::quiet_NaN(), 1, true, "NaN"},
      {std::numeric_limits<double>::infinity(), 3, false, "Infinity"},
      {-std::numeric_limits<double>::infinity(), 3, false, "-Infinity"},
      {-0.0, 3, false, "0"},
      {Variant::Date(39000), 3, false, "2006-10-10 00:00:00"},
      {Variant::Date(1e10), 3, false, "10000000000"},
      {Variant::Date(39000.75), 2, true, "18:00:00"},
      {Variant(int32_t{39000}), 1, true, "2006-10-10"},
      {Variant(true), 1, true, "True"},  // a Boolean is no date
      {"39000.5", 1, true, "39000.5"},   // a text stays a text
      {Variant(int16_t{-7}), 3, false, "-7"},
      {Variant(std::shared_ptr<Dispatch>(object)), 3, false, "[RzRep]"},
      {Variant(std::shared_ptr<Dispatch>()), 3, false, "[Nothing]"},
      {Variant(VariantArray{"", Variant(int32_t{1}), "two", Variant::Null()}),
       3, false, "; 1; two; "},
  };
  for (const Row& row : rows) {
    EXPECT_EQ(CellText(row.value, row.field, DateTimeColumns{row.date_time}),
              row.text)
        << row.text;
  }
}

TEST(RepositoryWritersEdgeTest, EmptyRepositoriesWriteOnlyWhatTheyHave) {
  ResultRepository repository;
  std::ostringstream table;
  WriteTable(repository, table);
  EXPECT_EQ(table.str(), "");
  repository.Fields().Add("A", 1, 10, 0, 0);
  repository.Fields().Add("B,C", 1, 10, 0, 0);
  std::ostringstream csv;
  WriteCsv(repository, csv);
  EXPECT_EQ(csv.str(), "A,\"B,C\"\n");
  std::ostringstream json_lines;
  WriteJsonLines(repository, json_lines);
  EXPECT_EQ(json_lines.str(), "");
  std::ostringstream json;
  WriteRecords(TextFormat::kJson, repository, json);
  EXPECT_EQ(json.str(), "[]\n");
  EXPECT_EQ(repository.RecordCount(), 0);  // writing never grows the store
}

TEST(RepositoryWritersEdgeTest, JsonReplacesBytesThatAreNotUtf8) {
  ResultRepository repository;
  repository.Fields().Add("T", 1, 10, 0, 0);
  repository.SetValue(1, 1,
                      "a\xFF"
                      "b");
  repository.SetValue(2, 1, std::numeric_limits<double>::quiet_NaN());
  std::ostringstream json;
  WriteJsonLines(repository, json);
  EXPECT_EQ(json.str(),
            "{\"T\":\"a\xEF\xBF\xBD"
            "b\"}\n{\"T\":null}\n");
}

}  // namespace
}  // namespace rz
