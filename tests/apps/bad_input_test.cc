// Copyright 2026 The Veltmark authors.

// Bad input as a user gives it: the sample application written through the
// real application-file component into a temporary folder, then one file
// spoiled (a view file, the template, the data file, a CSV to import) and
// the commands and the engine run over it. Every failure must be a numbered
// error that names the file the user gave and the key or record concerned,
// never undefined behaviour (these run in the sanitizer build).

#include <gtest/gtest.h>
#include <sqlite3.h>

#include <functional>
#include <memory>
#include <sstream>
#include <string>
#include <vector>

#include "appfile/application_file.h"
#include "core/error.h"
#include "core/ini_line.h"
#include "engine/rzselect.h"
#include "platform/file_system.h"
#include "rzselect/commands.h"
#include "rzselect/views_command.h"
#include "support/fake_platform.h"
#include "support/temp_folder.h"

namespace rz {
namespace {

// The fakes, except that applications are real files.
class RealFilesPlatform : public FakePlatform {
 public:
  std::shared_ptr<AppFile> CreateAppFile() override {
    return std::make_shared<ApplicationFile>();
  }
};

// What an action raised: number 0 and no text when it raised nothing.
struct Raised {
  int32_t number = 0;
  std::string description;
  std::string file;
};

Raised Capture(const std::function<void()>& action) {
  try {
    action();
  } catch (const Error& error) {
    return {error.Number(), error.Description(), error.File()};
  }
  return {};
}

void Sql(const std::string& path, const std::string& sql) {
  sqlite3* db = nullptr;
  ASSERT_EQ(sqlite3_open(path.c_str(), &db), SQLITE_OK);
  char* message = nullptr;
  const int rc = sqlite3_exec(db, sql.c_str(), nullptr, nullptr, &message);
  const std::string error = message ? message : "";
  sqlite3_free(message);
  sqlite3_close(db);
  ASSERT_EQ(rc, SQLITE_OK) << error;
}

constexpr int kSampleRecords = 300;

// The sample application in a folder of its own, with ways to spoil it.
class SampleFolder {
 public:
  SampleFolder() {
    SampleOptions options;
    options.folder = folder_.File("");
    options.records = kSampleRecords;
    std::ostringstream ignored;
    RunSample(*platform_, options, ignored);
  }

  std::string Path(const std::string& extension) const {
    return folder_.File("line4" + extension);
  }

  Raised Initialize() {
    std::shared_ptr<RZselect> engine = RZselect::Create(platform_);
    engine->SetFilename(Path(".rzt"));
    return Capture([&] { engine->Initialize(); });
  }

  // The template with the first line of `key` in `section` replaced.
  void SpoilTemplate(const std::string& section, const std::string& key,
                     const std::string& value) {
    const std::string text = ReadBinaryFile(Path(".rzt"));
    std::string spoiled;
    std::string current;
    bool done = false;
    for (std::string_view line : SplitIniLines(text)) {
      const IniLine parsed = ParseIniLine(line);
      if (IsIniHeader(parsed)) current = parsed.key;
      if (!done && current == section && parsed.key == key) {
        spoiled += FormatIniKeyLine(key, value) + "\r\n";
        done = true;
      } else {
        spoiled += std::string(line) + "\r\n";
      }
    }
    ASSERT_TRUE(done) << section << " " << key;
    WriteBinaryFileAtomically(Path(".rzt"), spoiled);
  }

  // The default view's file holding one section with `key`; a [FIELD]
  // section gets a numeric column to hold it.
  void WriteDefaultView(const std::string& section, const std::string& key,
                        const std::string& value) {
    std::string text = section + "\r\n";
    if (section == "[FIELD]") text += "NAME = X\r\nTYPE = N\r\n";
    text += key + " = " + value + "\r\n";
    WriteBinaryFileAtomically(Path(".V1"), text);
  }

  Raised Import(const std::string& csv) {
    WriteBinaryFileAtomically(folder_.File("in.csv"), csv);
    ImportOptions options;
    options.csv_path = folder_.File("in.csv");
    options.template_path = folder_.File("new.rzt");
    std::ostringstream ignored;
    return Capture([&] { RunImport(*platform_, options, ignored); });
  }

  TempFolder folder_;
  std::shared_ptr<RealFilesPlatform> platform_ =
      std::make_shared<RealFilesPlatform>();
};

class BadInputTest : public ::testing::Test, public SampleFolder {};

enum class Kind { kView, kTemplate, kData, kCsv, kAsOf };

struct BadValue {
  Kind kind;
  std::string section;  // view, template: the section; data: the column
  std::string key;      // data: "first" or "last" record
  std::string value;
  int32_t number;
  std::string part;  // a text the description must hold
};

TEST_F(BadInputTest, BadValuesAreNumberedErrorsNamingFileAndKey) {
  const std::string huge = "1e999";
  const std::string csv_head = "Date,Time,Weight\r\n";
  const BadValue rows[] = {
      // Amounts, counts and types too large for their field in a view.
      {Kind::kView, "[SELECTION]", "BWDAMOUNT", "99999999999", 6, "BWDAMOUNT"},
      {Kind::kView, "[SELECTION]", "FWDAMOUNT", "-2147483649", 6, "FWDAMOUNT"},
      {Kind::kView, "[SELECTION]", "FILTERTYPE", huge, 6, "FILTERTYPE"},
      {Kind::kView, "[OPTIONS]", "SUMMARIZEDBY", "40000", 6, "SUMMARIZEDBY"},
      {Kind::kView, "[OPTIONS]", "SHIFTDURATION", huge, 6, "SHIFTDURATION"},
      {Kind::kView, "[FIELD]", "RAWFIELD", "32768", 6, "RAWFIELD"},
      {Kind::kView, "[FIELD]", "DECIMALS", huge, 6, "DECIMALS"},
      {Kind::kView, "[FIELD]", "LENGTH", "400", 6, "LENGTH 400"},
      {Kind::kView, "[FIELD]", "MAX", "-" + huge, 6, "MAX"},
      {Kind::kView, "[FIELD]", "USL", "F" + huge, 6, "USL"},
      {Kind::kView, "[FIELD]", "LIMITMETHOD", "3000000000", 6, "LIMITMETHOD"},
      {Kind::kView, "[STATISTICS]", "STATISTIC", "70000,1", 6, "STATISTIC"},
      {Kind::kView, "[FILTERING]", "WHERE",
       "\"AND\",\"\",70000,\"=\",\"1\",\"\"", 6, "WHERE"},
      {Kind::kView, "[SELECTION]", "TODATETIME", "2026-02-30 00:00:00", 13,
       "TODATETIME"},
      // Numbers out of range in the template.
      {Kind::kTemplate, "[GENERAL]", "LOOKBACK", "40000", 75, "LOOKBACK"},
      {Kind::kTemplate, "[GENERAL]", "SHIFTHOURS", huge, 75, "SHIFTHOURS"},
      {Kind::kTemplate, "[FIELD]", "LENGTH", huge, 75, "LENGTH"},
      {Kind::kTemplate, "[FIELD]", "DECIMALS", huge, 75, "DECIMALS"},
      {Kind::kTemplate, "[FIELD]", "MAX", huge, 75, "MAX"},
      {Kind::kTemplate, "[FIELD]", "USL", "F" + huge, 75, "USL"},
      {Kind::kTemplate, "[VIEWS]", "VIEW", "99999999999,Big", 75, "VIEW"},
      // The first and last record bound the default range.
      {Kind::kData, "v1", "first", "2026-13-01", 13, "record 1: date"},
      {Kind::kData, "v1", "first", "", 13, "record 1: no date"},
      {Kind::kData, "v2", "last", "25:00:00", 13, "record 300: time"},
      {Kind::kData, "v2", "last", "NULL", 13, "record 300: no time"},
      // A CSV to import.
      {Kind::kCsv, "", "Date", csv_head + "2026-02-30,06:00,1\r\n", 13,
       "'2026-02-30' in column 'Date'"},
      {Kind::kCsv, "", "Time", csv_head + "2026-02-01,24:00,1\r\n", 13,
       "'24:00' in column 'Time'"},
      // A moment given on the command line.
      {Kind::kAsOf, "", "--as-of", "99999-01-01 00:00:00", 13, "--as-of"},
  };
  for (const BadValue& row : rows) {
    SCOPED_TRACE(row.section + " " + row.key + " = " + row.value);
    SampleFolder fresh;  // each row spoils its own copy
    Raised raised;
    std::string file;
    switch (row.kind) {
      case Kind::kView:
        fresh.WriteDefaultView(row.section, row.key, row.value);
        raised = fresh.Initialize();
        file = fresh.Path(".V1");
        break;
      case Kind::kTemplate:
        fresh.SpoilTemplate(row.section, row.key, row.value);
        raised = fresh.Initialize();
        file = fresh.Path(".rzt");
        break;
      case Kind::kData: {
        const std::string value =
            row.value == "NULL" ? "NULL" : "'" + row.value + "'";
        const std::string record = row.key == "first"
                                       ? "(SELECT MIN(recno) FROM records)"
                                       : "(SELECT MAX(recno) FROM records)";
        Sql(fresh.Path(".rzd"), "UPDATE records SET " + row.section + " = " +
                                    value + " WHERE recno = " + record);
        raised = fresh.Initialize();
        file = fresh.Path(".rzd");
        break;
      }
      case Kind::kCsv:
        raised = fresh.Import(row.value);
        file = fresh.folder_.File("in.csv");
        break;
      case Kind::kAsOf: {
        ViewsOptions options;
        options.template_path = fresh.Path(".rzt");
        options.as_of = row.value;
        std::ostringstream out;
        raised = Capture([&] { RunViews(*fresh.platform_, options, out); });
        file = row.value;
        break;
      }
    }
    EXPECT_EQ(raised.number, row.number) << raised.description;
    EXPECT_NE(raised.description.find(file), std::string::npos)
        << raised.description;
    EXPECT_NE(raised.description.find(row.part), std::string::npos)
        << raised.description;
  }
}

TEST_F(BadInputTest, ATemplateThatIsNotAnApplicationSaysWhy) {
  const struct Case {
    const char* name;
    std::string bytes;
    std::string cause;
  } cases[] = {
      {"empty", "", "the file is empty"},
      {"blank", "\r\n  \r\n", "the file is empty"},
      {"binary", std::string("SQLite format 3\0\x10\x00", 18),
       "binary data (a NUL byte at offset 15)"},
      {"no [GENERAL]", "[OTHER]\r\nA = 1\r\n", "no [GENERAL] section"},
      {"no VERSION", "[GENERAL]\r\nTITLE = x\r\n",
       "no VERSION key in its [GENERAL] section"},
      {"LF alone, no VERSION", "[GENERAL]\nTITLE = x\n",
       "no VERSION key in its [GENERAL] section"},
  };
  for (const Case& c : cases) {
    WriteBinaryFileAtomically(Path(".rzt"), c.bytes);
    const Raised raised = Initialize();
    EXPECT_EQ(raised.number, 53) << c.name;
    EXPECT_EQ(raised.description,
              "not a Veltmark application: " + Path(".rzt") + ": " + c.cause)
        << c.name;
  }
}

TEST_F(BadInputTest, AMissingApplicationKeepsTheMessageAndCarriesTheFile) {
  std::shared_ptr<RZselect> engine = RZselect::Create(platform_);
  engine->SetFilename(folder_.File("none.rzt"));
  const Raised raised = Capture([&] { engine->Initialize(); });
  EXPECT_EQ(raised.number, 53);
  EXPECT_EQ(raised.description,
            "The Veltmark Application specified does not exist");
  EXPECT_EQ(raised.file, folder_.File("none.rzt"));
  EXPECT_EQ(LookedForText(Error::ApplicationMissing().WithFile("/a.rzt")),
            "; file looked for: /a.rzt");
}

TEST_F(BadInputTest, TooManyColumnsForTheDataFileSaysTheLimit) {
  std::string header = "Date,Time";
  std::string record = "2026-01-05,06:00";
  for (int i = 1; i <= 2100; ++i) {
    header += ",c" + std::to_string(i);
    record += "," + std::to_string(i);
  }
  const Raised raised = Import(header + "\r\n" + record + "\r\n");
  EXPECT_EQ(raised.number, 6);
  EXPECT_NE(raised.description.find(folder_.File("new.rzd")), std::string::npos)
      << raised.description;
  EXPECT_NE(raised.description.find("2103 columns"), std::string::npos)
      << raised.description;
  EXPECT_NE(raised.description.find("limit of 2000 columns"), std::string::npos)
      << raised.description;
  EXPECT_FALSE(FileExists(folder_.File("new.rzt")));
  EXPECT_FALSE(FileExists(folder_.File("new.rzd")));
}

TEST_F(BadInputTest, ViewsListingSurvivesABadDefaultView) {
  WriteDefaultView("[SELECTION]", "BWDAMOUNT", "99999999999");
  ViewsOptions options;
  options.template_path = Path(".rzt");
  options.as_of = "2026-01-20 10:00:00";
  std::ostringstream out;
  ASSERT_EQ(Capture([&] { RunViews(*platform_, options, out); }).number, 0);
  const std::string table = out.str();
  EXPECT_NE(table.find("error 6: " + Path(".V1") + ":2: BWDAMOUNT: Overflow"),
            std::string::npos)
      << table;
  EXPECT_NE(table.find("Daily averages by line  from/to"), std::string::npos)
      << table;
}

}  // namespace
}  // namespace rz
