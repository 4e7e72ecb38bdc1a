// Copyright 2026 The Veltmark authors.

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cmath>
#include <ctime>
#include <filesystem>
#include <fstream>
#include <memory>
#include <string>
#include <vector>

#include "appfile/column_cache.h"
#include "appfile/data_writer.h"
#include "appfile/record_columns.h"
#include "appfile/sqlite_data_store.h"
#include "components/appfile/data_file_helpers.h"
#include "core/date_time.h"
#include "core/error.h"
#include "core/text.h"
#include "support/error_number.h"
#include "support/temp_folder.h"

namespace rz {
namespace {

// date, time, a number, a text, a number.
const std::vector<bool> kNumeric = {false, false, true, false, true};

std::string ErrorDescription(const std::function<void()>& action) {
  try {
    action();
  } catch (const Error& error) {
    return error.Description();
  }
  return "";
}

class DataStoreTest : public ::testing::Test {
 protected:
  TempFolder folder_;
  std::string path_ = folder_.File("line4.rzd");

  std::unique_ptr<SqliteDataStore> Load() {
    return SqliteDataStore::Open(path_, kNumeric);
  }

  void Write(const std::vector<Row>& rows) {
    WriteDataFile(path_, kNumeric, rows);
  }
};

TEST_F(DataStoreTest, ReadsBackEveryKindOfCell) {
  Write({
      {"2024-03-01", "08:00:00", 12.5, "Größe €", Variant::Null()},
      {"2024-03-01", "08:00:05", Variant::Null(), "", -0.25},
      {"2024-03-02", "23:59:59", 1e300, Variant::Null(), 0.0},
  });
  auto store = Load();
  ASSERT_EQ(store->RecordCount(), 3);
  EXPECT_EQ(store->VariableCount(), 5);
  EXPECT_TRUE(store->IsNumeric(3));
  EXPECT_FALSE(store->IsNumeric(4));

  EXPECT_EQ(store->Number(1, 3), 12.5);
  EXPECT_FALSE(store->IsNull(1, 3));
  EXPECT_TRUE(store->IsNull(2, 3));
  EXPECT_EQ(store->Number(3, 3), 1e300);
  EXPECT_EQ(store->Number(2, 5), -0.25);
  EXPECT_FALSE(store->IsNull(3, 5));  // zero is a value

  EXPECT_EQ(store->Text(1, 4), "Größe €");
  EXPECT_FALSE(store->IsNull(2, 4));  // empty text is not NULL
  EXPECT_EQ(store->Text(2, 4), "");
  EXPECT_TRUE(store->IsNull(3, 4));
  EXPECT_EQ(store->Text(1, 1), "2024-03-01");
  EXPECT_EQ(store->Text(3, 2), "23:59:59");

  EXPECT_EQ(store->Value(1, 3), Variant(12.5));
  EXPECT_EQ(store->Value(2, 3), Variant::Null());
  EXPECT_EQ(store->Value(1, 4), Variant("Größe €"));
  EXPECT_EQ(store->Value(2, 4), Variant(""));
  EXPECT_EQ(store->Value(3, 4), Variant::Null());
  EXPECT_EQ(store->Value(1, 5), Variant::Null());

  const double first = DateSerial(2024, 3, 1) + TimeSerial(8, 0, 0);
  EXPECT_EQ(store->DateTime(1), first);
  EXPECT_EQ(store->DateTime(2), first + TimeSerial(0, 0, 5));
  EXPECT_EQ(store->Value(3, 0),
            Variant::Date(DateSerial(2024, 3, 2) + TimeSerial(23, 59, 59)));
  EXPECT_TRUE(store->InTimeOrder());
}

TEST_F(DataStoreTest, EmptyDataFileHasNoRecords) {
  Write({});
  auto store = Load();
  EXPECT_EQ(store->RecordCount(), 0);
  EXPECT_TRUE(store->InTimeOrder());
  EXPECT_TRUE(store->DistinctValues(4).empty());
  EXPECT_FALSE(store->Refresh());
}

TEST_F(DataStoreTest, RecordDateTimeAgreesWithTheLenientRule) {
  struct Case {
    const char* date;
    const char* time;
  } cases[] = {
      {"2024-02-29", "13:45:10"},
      {"2024-01-05", "00:00:00"},
      {" 2024-01-05 ", " 23:59:59"},
      {"2024-1-5", "8:5"},
      {"2024-13-01", "24:00:00"},
      {"2024/02/30", "08.30.15"},
      {"2024-01-05", ""},
      {"9999-12-31", "23:59:59"},
  };
  for (const Case& c : cases) {
    EXPECT_EQ(RecordDateTime(c.date, c.time),
              DateTimeFromRecordText(Trim(c.date), Trim(c.time)))
        << c.date << " " << c.time;
  }
  // No date at all: the lenient rule overflows, the store keeps NaN.
  EXPECT_TRUE(std::isnan(RecordDateTime("", "08:00:00")));
  EXPECT_TRUE(std::isnan(RecordDateTime("0000-01-01", "08:00:00")));
  EXPECT_TRUE(std::isnan(RecordDateTime("abc", "")));
}

TEST_F(DataStoreTest, TimeOrderFollowsTheRecords) {
  struct Case {
    std::vector<Row> rows;
    bool in_order;
  } cases[] = {
      {{{"2024-01-01", "08:00:00"},
        {"2024-01-01", "08:00:00"},
        {"2024-01-02", "00:00:00"}},
       true},
      {{{"2024-01-02", "08:00:00"}, {"2024-01-01", "09:00:00"}}, false},
      {{{"2024-01-01", "08:00:01"}, {"2024-01-01", "08:00:00"}}, false},
      {{{"2024-01-01", "08:00:00"}, {Variant::Null(), "09:00:00"}}, false},
  };
  int index = 0;
  for (const Case& c : cases) {
    const std::string path = folder_.File("order" + std::to_string(++index));
    WriteDataFile(path, {false, false}, c.rows);
    EXPECT_EQ(SqliteDataStore::Open(path, {false, false})->InTimeOrder(),
              c.in_order)
        << "case " << index;
  }
}

TEST_F(DataStoreTest, RecordWithoutDateHasNoDateTime) {
  Write({{"", "08:00:00", 1.0}, {"2024-01-01", "08:00:00", 2.0}});
  auto store = Load();
  EXPECT_TRUE(std::isnan(store->DateTime(1)));
  EXPECT_EQ(store->Value(1, 0), Variant::Null());
  EXPECT_FALSE(store->InTimeOrder());
}

TEST_F(DataStoreTest, DistinctValuesAreSortedTrimmedAndUnique) {
  Write({
      {"d", "t", 3.0, "  bob"},
      {"d", "t", Variant::Null(), "Anna "},
      {"d", "t", -1.5, "BOB"},
      {"d", "t", 3.0, ""},
      {"d", "t", 0.0, "   "},
      {"d", "t", 10.0, Variant::Null()},
      {"d", "t", 2.0, "anna"},
      {"d", "t", 2.0, "élan"},
      {"d", "t", 2.0, "Émile"},
      {"d", "t", 2.0, "carl"},
  });
  auto store = Load();
  EXPECT_EQ(store->DistinctValues(3),
            (std::vector<Variant>{-1.5, 0.0, 2.0, 3.0, 10.0}));
  // Case-insensitive order and uniqueness; the spelling met first stays.
  EXPECT_EQ(store->DistinctValues(4),
            (std::vector<Variant>{"Anna", "bob", "carl", "élan", "Émile"}));
  EXPECT_TRUE(store->DistinctValues(5).empty());
  EXPECT_EQ(ErrorNumber([&] { store->DistinctValues(6); }), 9);
}

TEST_F(DataStoreTest, TextInANumericColumnReadsAsItsLeadingNumber) {
  ExecSql(path_,
          "CREATE TABLE records(recno INTEGER PRIMARY KEY, v1 TEXT, v2 TEXT, "
          "v3, v4 TEXT, v5);"
          "INSERT INTO records VALUES(1, 'd', 't', '12abc', 'x', '  ');"
          "INSERT INTO records VALUES(2, 'd', 't', 7, 42, 'abc');");
  auto store = Load();
  EXPECT_EQ(store->Value(1, 3), Variant(12.0));
  EXPECT_EQ(store->Value(1, 5), Variant::Null());
  EXPECT_EQ(store->Value(2, 5), Variant(0.0));
  EXPECT_EQ(store->Value(2, 4), Variant("42"));  // a number in a text column
}

TEST_F(DataStoreTest, RecordsComeInRecordNumberOrder) {
  ExecSql(path_,
          "CREATE TABLE records(recno INTEGER PRIMARY KEY, v1 TEXT, v2 TEXT, "
          "v3 REAL, v4 TEXT, v5 REAL);"
          "INSERT INTO records(recno, v3) VALUES(30, 3), (-5, 1), (7, 2);");
  auto store = Load();
  ASSERT_EQ(store->RecordCount(), 3);
  EXPECT_EQ(store->Number(1, 3), 1);
  EXPECT_EQ(store->Number(2, 3), 2);
  EXPECT_EQ(store->Number(3, 3), 3);
}

TEST_F(DataStoreTest, BadFilesRaiseFileErrorsNamingTheFile) {
  struct Case {
    const char* name;
    const char* sql;      // run on the file first, when set
    const char* content;  // written as the file, when set
    int32_t number;
    const char* detail;
  } cases[] = {
      {"missing", nullptr, nullptr, 53, ""},
      {"text", nullptr, "this is not a database, just some text\n", 75,
       "not a database"},
      {"norecords", "CREATE TABLE other(x);", nullptr, 75, "no records table"},
      {"fewer",
       "CREATE TABLE records(recno INTEGER PRIMARY KEY, v1, v2, v3, v4);",
       nullptr, 75, "the data file has 4 variables, the template 5"},
      {"more",
       "CREATE TABLE records(recno INTEGER PRIMARY KEY, v1, v2, v3, v4, v5, "
       "v6);",
       nullptr, 75, "the data file has 6 variables, the template 5"},
      {"renamed",
       "CREATE TABLE records(recno INTEGER PRIMARY KEY, v1, v2, v3, v4, x5);",
       nullptr, 75, "no column v5"},
      {"norecno", "CREATE TABLE records(v1, v2, v3, v4, v5);", nullptr, 75,
       "no recno column"},
  };
  for (const Case& c : cases) {
    const std::string path = folder_.File(c.name);
    if (c.sql) ExecSql(path, c.sql);
    if (c.content) std::ofstream(path) << c.content;
    try {
      SqliteDataStore::Open(path, kNumeric);
      ADD_FAILURE() << c.name << ": no error";
    } catch (const Error& error) {
      EXPECT_EQ(error.Number(), c.number) << c.name;
      EXPECT_NE(error.Description().find(path), std::string::npos)
          << c.name << ": " << error.Description();
      EXPECT_NE(error.Description().find(c.detail), std::string::npos)
          << c.name << ": " << error.Description();
    }
  }
}

TEST_F(DataStoreTest, FolderIsNotADataFile) {
  const std::string path = folder_.File("folder.rzd");
  std::filesystem::create_directory(path);
  EXPECT_EQ(ErrorNumber([&] { SqliteDataStore::Open(path, kNumeric); }), 75);
}

TEST_F(DataStoreTest, UnreadableFileRaises70) {
  if (geteuid() == 0) GTEST_SKIP() << "root reads every file";
  Write({{"2024-01-01", "08:00:00"}});
  chmod(path_.c_str(), 0);
  EXPECT_EQ(ErrorNumber([&] { Load(); }), 70);
}

// --- Refresh ---

class DataStoreRefreshTest : public DataStoreTest {
 protected:
  void SetUp() override {
    Write({{"2024-01-01", "08:00:00", 1.0, "a", 1.0},
           {"2024-01-01", "09:00:00", 2.0, "b", 2.0},
           {"2024-01-01", "10:00:00", 3.0, "c", 3.0}});
    store_ = Load();
    ASSERT_EQ(store_->RecordsRead(), 3);
  }

  std::unique_ptr<SqliteDataStore> store_;
};

TEST_F(DataStoreRefreshTest, UnchangedFileReadsNothing) {
  EXPECT_FALSE(store_->Refresh());
  EXPECT_FALSE(store_->Refresh());
  EXPECT_EQ(store_->RecordsRead(), 3);
  EXPECT_EQ(store_->FullLoadCount(), 1);
}

TEST_F(DataStoreRefreshTest, AppendReadsOnlyTheNewRecords) {
  OtherConnection host(path_);  // stays open: the appends sit in the WAL
  host.Exec(
      "INSERT INTO records(v1, v2, v3, v4, v5) VALUES"
      "('2024-01-01', '11:00:00', 4, 'd', NULL),"
      "('2024-01-02', '08:00:00', NULL, 'e', 5)");
  EXPECT_TRUE(store_->Refresh());
  EXPECT_EQ(store_->RecordsRead(), 5);  // 3 + the 2 new ones
  EXPECT_EQ(store_->FullLoadCount(), 1);
  ASSERT_EQ(store_->RecordCount(), 5);
  EXPECT_EQ(store_->Value(3, 4), Variant("c"));  // held records intact
  EXPECT_EQ(store_->Value(4, 3), Variant(4.0));
  EXPECT_EQ(store_->Value(4, 5), Variant::Null());
  EXPECT_EQ(store_->Value(5, 4), Variant("e"));
  EXPECT_EQ(store_->DateTime(5), DateSerial(2024, 1, 2) + TimeSerial(8, 0, 0));
  EXPECT_TRUE(store_->InTimeOrder());

  host.Exec("INSERT INTO records(v1, v2) VALUES('2023-12-31', '08:00:00')");
  EXPECT_TRUE(store_->Refresh());
  EXPECT_EQ(store_->RecordsRead(), 6);
  EXPECT_FALSE(store_->InTimeOrder());
  EXPECT_FALSE(store_->Refresh());
  EXPECT_EQ(store_->RecordsRead(), 6);
}

TEST_F(DataStoreRefreshTest, AppendAfterTheHostClosedIsRead) {
  ExecSql(path_,
          "INSERT INTO records(v1, v2, v3) VALUES('2024-01-02', "
          "'00:00:00', 9)");
  EXPECT_TRUE(store_->Refresh());
  EXPECT_EQ(store_->FullLoadCount(), 1);
  EXPECT_EQ(store_->RecordsRead(), 4);
  EXPECT_EQ(store_->Value(4, 3), Variant(9.0));
}

TEST_F(DataStoreRefreshTest, EditsReloadEverything) {
  struct Case {
    const char* sql;
    int32_t count;   // records afterwards
    int32_t record;  // a record to check, and its variable 3
    double number;
  } cases[] = {
      {"UPDATE records SET v3 = 30 WHERE recno = 3", 3, 3, 30},
      {"DELETE FROM records WHERE recno = 1", 2, 1, 2},
      {"DELETE FROM records WHERE recno = 3", 2, 2, 2},
      {"INSERT INTO records(recno, v3) VALUES(0, 0.5)", 4, 1, 0.5},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.sql);
    std::filesystem::remove(path_);
    // The same records again: a cache of the last case would fit them.
    std::filesystem::remove(ColumnCache::PathFor(path_));
    Write({{"2024-01-01", "08:00:00", 1.0, "a", 1.0},
           {"2024-01-01", "09:00:00", 2.0, "b", 2.0},
           {"2024-01-01", "10:00:00", 3.0, "c", 3.0}});
    auto store = Load();
    ExecSql(path_, c.sql);
    EXPECT_TRUE(store->Refresh());
    EXPECT_EQ(store->FullLoadCount(), 2);
    EXPECT_EQ(store->RecordsRead(), 3 + c.count);
    ASSERT_EQ(store->RecordCount(), c.count);
    EXPECT_EQ(store->Number(c.record, 3), c.number);
  }
}

TEST_F(DataStoreRefreshTest, InsertBetweenRecordsKeepsPositions) {
  ExecSql(path_, "UPDATE records SET recno = recno * 10");
  auto store = Load();
  ExecSql(path_, "INSERT INTO records(recno, v3) VALUES(15, 1.5)");
  EXPECT_TRUE(store->Refresh());
  ASSERT_EQ(store->RecordCount(), 4);
  EXPECT_EQ(store->Number(2, 3), 1.5);
  EXPECT_EQ(store->Number(3, 3), 2.0);
}

TEST_F(DataStoreRefreshTest, ReplacedFileIsReloaded) {
  const std::string other = folder_.File("other.rzd");
  WriteDataFile(other, kNumeric,
                {{"2024-01-01", "08:00:00", 7.0},
                 {"2024-01-01", "08:00:00"},
                 {"2024-01-01", "08:00:00"},
                 {"2024-01-01", "08:00:00"}});
  std::filesystem::rename(other, path_);  // same edit generation 0
  EXPECT_TRUE(store_->Refresh());
  EXPECT_EQ(store_->FullLoadCount(), 2);
  EXPECT_EQ(store_->Value(1, 3), Variant(7.0));
}

TEST_F(DataStoreRefreshTest, FileWithoutMetaReloadsOnAnyChange) {
  ExecSql(
      path_,
      "DROP TABLE meta; DROP TRIGGER records_updated; "
      "DROP TRIGGER records_deleted; DROP TRIGGER records_inserted_between");
  auto store = Load();
  EXPECT_FALSE(store->Refresh());
  ExecSql(path_,
          "INSERT INTO records(v1, v2, v3) VALUES('2024-01-02', "
          "'00:00:00', 9)");
  EXPECT_TRUE(store->Refresh());
  EXPECT_EQ(store->FullLoadCount(), 2);
  EXPECT_EQ(store->RecordCount(), 4);
  ExecSql(path_, "UPDATE records SET v3 = 8 WHERE recno = 4");
  EXPECT_TRUE(store->Refresh());
  EXPECT_EQ(store->Value(4, 3), Variant(8.0));
}

TEST_F(DataStoreRefreshTest, FailedRefreshKeepsTheRecords) {
  std::filesystem::remove(path_);
  std::ofstream(path_) << "no longer a database, and longer than before....";
  EXPECT_EQ(ErrorNumber([&] { store_->Refresh(); }), 75);
  EXPECT_EQ(store_->RecordCount(), 3);
  EXPECT_EQ(store_->Value(2, 4), Variant("b"));
  std::filesystem::remove(path_);
  EXPECT_EQ(ErrorNumber([&] { store_->Refresh(); }), 53);
  EXPECT_EQ(store_->RecordCount(), 3);
}

TEST_F(DataStoreRefreshTest, FileDateTimeIsTheLocalModificationTime) {
  // 2021-06-15 10:20:30 local time.
  tm local{};
  local.tm_year = 121;
  local.tm_mon = 5;
  local.tm_mday = 15;
  local.tm_hour = 10;
  local.tm_min = 20;
  local.tm_sec = 30;
  local.tm_isdst = -1;
  const timespec times[2] = {{mktime(&local), 0}, {mktime(&local), 0}};
  ASSERT_EQ(utimensat(AT_FDCWD, path_.c_str(), times, 0), 0);
  EXPECT_EQ(store_->FileDateTime(),
            DateSerial(2021, 6, 15) + TimeSerial(10, 20, 30));

  // A newer WAL file counts.
  OtherConnection host(path_);
  host.Exec("INSERT INTO records(v1, v2) VALUES('2024-01-02', '00:00:00')");
  EXPECT_GT(store_->FileDateTime(), DateSerial(2024, 1, 1));
}

// --- Writer ---

class DataWriterTest : public DataStoreTest {};

TEST_F(DataWriterTest, ValuesRoundTrip) {
  struct Case {
    Variant value;
    bool numeric;
    Variant expected;
  } cases[] = {
      {12.25, true, 12.25},
      {int16_t{-7}, true, -7.0},
      {int32_t{100000}, true, 100000.0},
      {true, true, -1.0},
      {" 3.5 ", true, 3.5},
      {"1e3", true, 1000.0},
      {"", true, Variant::Null()},
      {"   ", true, Variant::Null()},
      {Variant(), true, Variant::Null()},
      {Variant::Null(), true, Variant::Null()},
      {Variant::Date(45000.5), true, 45000.5},
      {"Grüße, \"x\"", false, "Grüße, \"x\""},
      {"", false, ""},
      {Variant::Null(), false, Variant::Null()},
      {Variant(), false, Variant::Null()},
      {0.1, false, "0.1"},
      {int32_t{42}, false, "42"},
      {Variant::Date(45000.5), false, "2023-03-15 12:00:00"},
  };
  int index = 0;
  for (const Case& c : cases) {
    const std::string path = folder_.File("v" + std::to_string(++index));
    WriteDataFile(path, {false, false, c.numeric},
                  {{"2024-01-01", "08:00:00", c.value}});
    EXPECT_EQ(
        SqliteDataStore::Open(path, {false, false, c.numeric})->Value(1, 3),
        c.expected)
        << "case " << index << ": " << c.value.TypeName();
  }
}

TEST_F(DataWriterTest, MissingTrailingValuesAreNull) {
  Write({{"2024-01-01"}});
  auto store = Load();
  EXPECT_EQ(store->Value(1, 1), Variant("2024-01-01"));
  for (int k = 2; k <= 5; ++k) EXPECT_TRUE(store->IsNull(1, k)) << k;
}

TEST_F(DataWriterTest, WrongValuesAreRefused) {
  auto writer = DataWriter::Create(path_, kNumeric);
  const std::string text = ErrorDescription([&] {
    writer->Append({"2024-01-01", "08:00:00", "12 kg"});
  });
  EXPECT_NE(text.find("'12 kg'"), std::string::npos) << text;
  EXPECT_NE(text.find("variable 3"), std::string::npos) << text;
  EXPECT_EQ(ErrorNumber([&] {
              writer->Append({"d", "t", 1.0, "x", "abc"});
            }),
            13);
  EXPECT_EQ(ErrorNumber([&] { writer->Append(Row(6, Variant(1.0))); }), 9);
  // The refused records left nothing behind; the writer still works.
  writer->Append({"2024-01-01", "08:00:00", 1.0});
  writer->Commit();
  EXPECT_EQ(Load()->RecordCount(), 1);
  EXPECT_EQ(ErrorNumber([&] { writer->Append({}); }), 5);
}

TEST_F(DataWriterTest, UncommittedWriterLeavesNoFile) {
  {
    auto writer = DataWriter::Create(path_, kNumeric);
    writer->Append({"2024-01-01", "08:00:00", 1.0});
    EXPECT_TRUE(std::filesystem::exists(path_));
    EXPECT_EQ(ErrorNumber([&] { writer->Append({"d", "t", "x"}); }), 13);
  }
  for (const char* suffix : {"", "-wal", "-shm", "-journal"}) {
    EXPECT_FALSE(std::filesystem::exists(path_ + suffix)) << suffix;
  }
}

TEST_F(DataWriterTest, CommittedFileStandsAlone) {
  Write({{"2024-01-01", "08:00:00", 1.0}});
  EXPECT_FALSE(std::filesystem::exists(path_ + "-wal"));
  const std::string moved = folder_.File("moved.rzd");
  std::filesystem::rename(path_, moved);
  EXPECT_EQ(SqliteDataStore::Open(moved, kNumeric)->Value(1, 3), Variant(1.0));
}

TEST_F(DataWriterTest, RefusesAnExistingFileOrAMissingFolder) {
  std::ofstream(path_) << "keep me";
  EXPECT_EQ(ErrorNumber([&] { DataWriter::Create(path_, kNumeric); }), 75);
  std::ifstream in(path_);
  std::string content;
  std::getline(in, content);
  EXPECT_EQ(content, "keep me");
  EXPECT_EQ(ErrorNumber([&] {
              DataWriter::Create(folder_.File("no/such/folder.rzd"), kNumeric);
            }),
            76);
  EXPECT_EQ(ErrorNumber([&] { DataWriter::Create(folder_.File("x"), {}); }), 5);
}

TEST_F(DataWriterTest, CreatesMetaTriggersAndWal) {
  Write({{"2024-01-01", "08:00:00", 1.0}, {"2024-01-01", "09:00:00", 2.0}});
  OtherConnection db(path_);
  EXPECT_EQ(db.Query("PRAGMA journal_mode"), "wal");
  EXPECT_EQ(db.Query("SELECT value FROM meta WHERE key = 'variable_count'"),
            "5");
  EXPECT_EQ(db.Query("SELECT type FROM pragma_table_info('records') "
                     "WHERE name = 'v3'"),
            "REAL");
  EXPECT_EQ(db.Query("SELECT type FROM pragma_table_info('records') "
                     "WHERE name = 'v4'"),
            "TEXT");
  auto generation = [&] {
    return db.Query("SELECT value FROM meta WHERE key = 'edit_generation'");
  };
  EXPECT_EQ(generation(), "0");
  db.Exec("INSERT INTO records(v1) VALUES('2024-01-02')");
  EXPECT_EQ(generation(), "0");  // an append
  db.Exec("UPDATE records SET v3 = 5 WHERE recno = 1");
  EXPECT_EQ(generation(), "1");
  db.Exec("DELETE FROM records WHERE recno = 3");
  EXPECT_EQ(generation(), "2");
  db.Exec("INSERT INTO records(recno, v1) VALUES(-1, 'x')");
  EXPECT_EQ(generation(), "3");  // before the last record
}

// Pivot columns compare their texts by code: equal codes exactly for
// texts equal trimmed and without regard to case, blank and null alike,
// and records appended after the first use get theirs too.
TEST(FoldedCodesTest, EqualCodesForTextsEqualTrimmedWithoutCase) {
  RecordColumn column(false);
  for (const char* text :
       {"Line 1", " line 1 ", "LINE 2", "éclair", "ÉCLAIR", "", "  "}) {
    column.AppendText(text);
  }
  column.AppendNull();
  RecordList codes = column.FoldedCodes();
  ASSERT_EQ(codes.size(), 8u);
  EXPECT_EQ(codes[0], codes[1]);
  EXPECT_NE(codes[0], codes[2]);
  EXPECT_EQ(codes[3], codes[4]);
  EXPECT_EQ(codes[5], codes[6]);
  EXPECT_EQ(codes[5], codes[7]);
  EXPECT_EQ(column.FoldedCodeOf("line 1"), codes[0]);
  EXPECT_EQ(column.FoldedCodeOf("Éclair"), codes[3]);
  EXPECT_EQ(column.FoldedCodeOf(""), codes[7]);
  EXPECT_EQ(column.FoldedCodeOf("Line 3"), -1);
  column.AppendText("line 3");
  column.AppendText("line 2 ");
  codes = column.FoldedCodes();
  ASSERT_EQ(codes.size(), 10u);
  EXPECT_EQ(column.FoldedCodeOf("LINE 3"), codes[8]);
  EXPECT_EQ(codes[9], codes[2]);
}

// A column's values borrowed from memory another object keeps (the column
// cache's mapping) stay readable while any copy lives, and a change to one
// copy copies the values first: the memory and the other copies keep
// theirs.
TEST(ColumnBufferTest, BorrowedValuesAreCopiedOnChangeOnly) {
  auto memory =
      std::make_shared<std::vector<double>>(std::vector<double>{1.5, 2.5, 3.5});
  const double* values = memory->data();
  ColumnBuffer<double> borrowed(values, 3,
                                std::shared_ptr<const void>(memory, values));
  memory.reset();  // kept alive by the buffer
  ColumnBuffer<double> copy = borrowed;
  EXPECT_EQ(copy.data(), borrowed.data());  // shared, not copied
  copy.push_back(4.5);
  EXPECT_NE(copy.data(), borrowed.data());
  ASSERT_EQ(copy.size(), 4u);
  EXPECT_EQ(copy[0], 1.5);
  EXPECT_EQ(copy[3], 4.5);
  ASSERT_EQ(borrowed.size(), 3u);
  EXPECT_EQ(borrowed[2], 3.5);
  ColumnBuffer<double> held = copy;  // held values are copied
  held.back() = 9;
  EXPECT_EQ(copy[3], 4.5);
  ColumnBuffer<double> moved = std::move(held);
  EXPECT_EQ(moved[3], 9);
  // Room for more copies the borrowed values once, keeping them.
  borrowed.reserve(1000);
  EXPECT_GE(borrowed.capacity(), 1000u);
  EXPECT_EQ(borrowed[1], 2.5);
}

}  // namespace
}  // namespace rz
