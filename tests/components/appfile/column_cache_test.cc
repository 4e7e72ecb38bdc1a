// Copyright 2026 The Veltmark authors.
//
// The column cache beside a data file: a second open reads the cache
// instead of the data file, column by column, and sees exactly what a read
// of the data file gives; a cache that does not belong to the data file as
// it is now is never used.

#include "appfile/column_cache.h"

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cmath>
#include <filesystem>
#include <fstream>
#include <functional>
#include <string>
#include <vector>

#include "appfile/column_cache_builder.h"
#include "appfile/data_file_stamp.h"
#include "appfile/sqlite_data_store.h"
#include "components/appfile/data_file_helpers.h"
#include "core/error.h"
#include "support/temp_folder.h"

namespace rz {
namespace {

namespace fs = std::filesystem;

// date, time, a number, a text, a number.
const std::vector<bool> kNumeric = {false, false, true, false, true};

std::vector<Row> SampleRows() {
  return {
      {"2024-03-01", "08:00:00", 12.5, "Größe €", Variant::Null()},
      {"2024-03-01", "08:00:05", Variant::Null(), "", -0.25},
      {"2024-03-01", "08:00:09", -1e300, Variant::Null(), 0.0},
      {"", "", 4.0, "no date", 1.0},
      {"2024-03-02", " 23:59:59 ", 5e-324, "  spaced  ", 2.0},
  };
}

std::string ReadBytes(const std::string& path) {
  std::ifstream in(path, std::ios::binary);
  return std::string(std::istreambuf_iterator<char>(in), {});
}

void WriteBytes(const std::string& path, const std::string& bytes) {
  std::ofstream(path, std::ios::binary | std::ios::trunc) << bytes;
}

// Every cell, date-time and the distinct values of every variable, as
// text, so two stores can be compared in one line.
std::string Contents(DataStore& store) {
  std::string text = std::to_string(store.RecordCount()) +
                     (store.InTimeOrder() ? " in order\n" : " unordered\n");
  for (int32_t r = 1; r <= store.RecordCount(); ++r) {
    for (int v = 0; v <= store.VariableCount(); ++v) {
      const Variant value = store.Value(r, v);
      text += value.IsNull() ? "null" : value.ToString();
      text += "|";
    }
    text += "\n";
  }
  for (int v = 1; v <= store.VariableCount(); ++v) {
    for (const Variant& value : store.DistinctValues(v)) {
      text += value.ToString() + ";";
    }
    text += "\n";
  }
  return text;
}

class ColumnCacheTest : public ::testing::Test {
 protected:
  void SetUp() override {
    WriteDataFile(path_, kNumeric, SampleRows());
    expected_ = Contents(*Open());  // the first open reads the data file
  }

  std::unique_ptr<SqliteDataStore> Open() {
    return SqliteDataStore::Open(path_, kNumeric);
  }

  TempFolder folder_;
  std::string path_ = folder_.File("line4.rzd");
  std::string cache_ = folder_.File("line4.rzc");
  std::string expected_;
};

TEST_F(ColumnCacheTest, ASecondOpenReadsTheCacheAndSeesTheSameRecords) {
  ASSERT_TRUE(fs::exists(cache_));
  auto store = Open();
  EXPECT_TRUE(store->UsesCache());
  EXPECT_EQ(store->FullLoadCount(), 0);
  EXPECT_EQ(store->RecordsRead(), 0);
  EXPECT_EQ(Contents(*store), expected_);
  EXPECT_FALSE(store->InTimeOrder());  // the record without a date
}

TEST_F(ColumnCacheTest, WhoMayReadTheDataFileMayReadTheCache) {
  for (mode_t mode : {0600, 0640, 0644}) {
    ASSERT_EQ(::chmod(path_.c_str(), mode), 0);
    fs::remove(cache_);
    Open();
    struct stat info {};
    ASSERT_EQ(::stat(cache_.c_str(), &info), 0);
    EXPECT_EQ(info.st_mode & 0777, mode);
  }
}

TEST_F(ColumnCacheTest, OnlyTheColumnsAskedForAreRead) {
  auto store = Open();
  for (int v = 1; v <= 5; ++v) EXPECT_FALSE(store->Columns().IsLoaded(v));
  EXPECT_EQ(store->DateTime(2), store->DateTime(2));  // date-times are held
  EXPECT_EQ(store->Value(2, 5), Variant(-0.25));
  EXPECT_TRUE(store->Columns().IsLoaded(5));
  for (int v = 1; v <= 4; ++v) EXPECT_FALSE(store->Columns().IsLoaded(v));
}

// The header of five variables takes 20 + 1 + 3 * 17 + 1 words; the
// date-times come first after it.
constexpr size_t kFirstSection = 73 * 8;

// A view's record bounds read the date and time of the first and last
// records: the cache answers those without reading the columns, and a
// damaged copy of them is not used.
TEST_F(ColumnCacheTest, TheFirstAndLastRecordsAreReadWithoutTheirColumns) {
  const std::string good = ReadBytes(cache_);
  std::string damaged = good;
  damaged[kFirstSection + 5 * sizeof(double) + 3] ^= 0x20;  // edge section
  for (const bool damage : {false, true}) {
    SCOPED_TRACE(damage ? "damaged" : "intact");
    WriteBytes(cache_, damage ? damaged : good);
    auto store = Open();
    ASSERT_TRUE(store->UsesCache());
    std::vector<Variant> values;
    for (int32_t record : {5, 1}) {
      for (int v = 1; v <= 5; ++v) values.push_back(store->Value(record, v));
    }
    for (int v = 1; v <= 5; ++v) {
      EXPECT_EQ(store->Columns().IsLoaded(v), damage) << v;
    }
    fs::remove(cache_);
    auto direct = Open();
    ASSERT_FALSE(direct->UsesCache());
    size_t i = 0;
    for (int32_t record : {5, 1}) {
      for (int v = 1; v <= 5; ++v, ++i) {
        EXPECT_EQ(values[i], direct->Value(record, v)) << record << "/" << v;
        EXPECT_EQ(values[i].TypeName(), direct->Value(record, v).TypeName());
      }
    }
  }
}

TEST_F(ColumnCacheTest, RecordsAppendedSinceTheCacheAreReadFromTheDataFile) {
  ExecSql(path_,
          "INSERT INTO records(v1, v2, v3, v4) VALUES"
          "('2024-03-03', '00:00:00', 6, 'new'), ('2024-03-03', "
          "'00:00:01', NULL, NULL)");
  auto store = Open();
  EXPECT_TRUE(store->UsesCache());
  EXPECT_EQ(store->RecordsRead(), 2);
  ASSERT_EQ(store->RecordCount(), 7);
  EXPECT_EQ(store->Value(6, 4), Variant("new"));
  EXPECT_EQ(store->Value(1, 4), Variant("Größe €"));
  EXPECT_EQ(store->Value(7, 3), Variant::Null());
  // Another append while the store is open reaches both the columns read
  // already and those read later.
  ExecSql(path_,
          "INSERT INTO records(v1, v2, v3, v4, v5) VALUES"
          "('2024-03-04', '00:00:00', 8, 'later', 9)");
  EXPECT_TRUE(store->Refresh());
  ASSERT_EQ(store->RecordCount(), 8);
  EXPECT_EQ(store->Value(8, 4), Variant("later"));  // read before
  EXPECT_EQ(store->Value(8, 5), Variant(9.0));      // read now
  EXPECT_EQ(store->Value(3, 5), Variant(0.0));
  EXPECT_EQ(Contents(*store),
            Contents(*SqliteDataStore::Open(path_, kNumeric)));
}

TEST_F(ColumnCacheTest, ACacheThatDoesNotFitIsNeverUsedAndIsMadeAgain) {
  auto flip = [](std::string bytes, size_t at) {
    bytes[at] ^= 0x40;
    return bytes;
  };
  struct Case {
    const char* name;
    std::function<void(const std::string& good)> spoil;
    const char* record_1_text;  // variable 4 of record 1 afterwards
    bool made_again = true;
  } cases[] = {
      {"empty", [&](auto&) { WriteBytes(cache_, ""); }, "Größe €"},
      {"cut in the header",
       [&](auto& good) { WriteBytes(cache_, good.substr(0, 40)); }, "Größe €"},
      {"cut in the columns",
       [&](auto& good) { WriteBytes(cache_, good.substr(0, good.size() - 9)); },
       "Größe €"},
      {"not a cache",
       [&](auto&) { WriteBytes(cache_, std::string(4096, 'x')); }, "Größe €"},
      {"record count changed",
       [&](auto& good) { WriteBytes(cache_, flip(good, 32)); }, "Größe €"},
      {"date-times changed",
       [&](auto& good) { WriteBytes(cache_, flip(good, kFirstSection + 3)); },
       "Größe €"},
      {"another layout",
       [&](auto&) {
         const std::string other = folder_.File("other.rzd");
         WriteDataFile(other, {false, false, false, false, true},
                       {{"2024-03-01", "08:00:00", "t", "u", 1.0}});
         SqliteDataStore::Open(other, {false, false, false, false, true});
         fs::copy_file(folder_.File("other.rzc"), cache_,
                       fs::copy_options::overwrite_existing);
       },
       "Größe €"},
      {"a folder",
       [&](auto&) {
         fs::remove(cache_);
         fs::create_directory(cache_);
       },
       "Größe €", false},
      {"records edited since",
       [&](auto&) {
         ExecSql(path_, "UPDATE records SET v4 = 'edited' WHERE recno = 1");
       },
       "edited"},
      {"data file replaced",
       [&](auto&) {
         std::vector<Row> rows = SampleRows();
         rows[0][3] = "replaced";
         WriteDataFile(folder_.File("new.rzd"), kNumeric, rows);
         fs::rename(folder_.File("new.rzd"), path_);
       },
       "replaced"},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.name);
    fs::remove_all(cache_);
    fs::remove(path_);
    WriteDataFile(path_, kNumeric, SampleRows());
    Open();
    c.spoil(ReadBytes(cache_));
    auto store = Open();
    EXPECT_FALSE(store->UsesCache());
    EXPECT_EQ(store->FullLoadCount(), 1);
    EXPECT_EQ(store->Value(1, 4), Variant(c.record_1_text));
    EXPECT_EQ(store->Value(5, 4), Variant("  spaced  "));
    auto next = Open();
    EXPECT_EQ(next->UsesCache(), c.made_again);
    EXPECT_EQ(Contents(*next), Contents(*store));
  }
}

TEST_F(ColumnCacheTest, ADamagedColumnIsReadFromTheDataFileAndTheCacheDropped) {
  std::string bytes = ReadBytes(cache_);
  bytes.back() ^= 0x10;  // the last number of variable 5
  WriteBytes(cache_, bytes);
  auto store = Open();
  ASSERT_TRUE(store->UsesCache());
  EXPECT_EQ(store->Value(5, 3), Variant(5e-324));  // an intact column
  EXPECT_TRUE(fs::exists(cache_));
  EXPECT_EQ(store->Number(5, 5), 2.0);
  EXPECT_FALSE(fs::exists(cache_));
  EXPECT_EQ(store->RecordsRead(), 5);
  EXPECT_EQ(Contents(*store), expected_);
}

TEST_F(ColumnCacheTest, AReaderKeepsTheCacheItOpenedWhenAnotherMakesANewOne) {
  auto before = Open();
  ASSERT_TRUE(before->UsesCache());
  ExecSql(path_, "UPDATE records SET v4 = 'edited' WHERE recno = 1");
  auto after = Open();  // reads the data file, replaces the cache
  EXPECT_EQ(after->FullLoadCount(), 1);
  EXPECT_EQ(after->Value(1, 4), Variant("edited"));
  EXPECT_EQ(before->Value(1, 4), Variant("Größe €"));  // its own state
  EXPECT_EQ(Open()->Value(1, 4), Variant("edited"));
}

TEST_F(ColumnCacheTest, FileWithoutMetaUsesTheCacheOnlyWhileUnchanged) {
  ExecSql(
      path_,
      "DROP TABLE meta; DROP TRIGGER records_updated; "
      "DROP TRIGGER records_deleted; DROP TRIGGER records_inserted_between");
  Open();  // the file changed: read whole, cache made again
  EXPECT_TRUE(Open()->UsesCache());
  ExecSql(path_, "INSERT INTO records(v1, v2, v3) VALUES('2024-03-05', '', 1)");
  auto store = Open();
  EXPECT_FALSE(store->UsesCache());
  EXPECT_EQ(store->RecordCount(), 6);
}

TEST(ColumnCachePathTest, SitsBesideTheDataFile) {
  EXPECT_EQ(ColumnCache::PathFor("/a/line4.rzd"), "/a/line4.rzc");
  EXPECT_EQ(ColumnCache::PathFor("/a/data.db"), "/a/data.db.rzc");
  EXPECT_EQ(ColumnCache::PathFor(".rzd"), ".rzd.rzc");
}

// --- Texts that repeat are kept coded ---

TEST(ColumnCacheCodedTest, RepeatedTextsAreCodedAndReadBackTheSame) {
  TempFolder folder;
  const std::string path = folder.File("line4.rzd");
  const Variant lines[] = {"Line 1", " line 1 ", "LINE 2", Variant::Null(), ""};
  std::vector<Row> rows;
  for (int i = 0; i < 400; ++i) {
    rows.push_back({"2024-03-0" + std::to_string(1 + i / 100),
                    "08:" + std::to_string(10 + i / 60) + ":" +
                        std::to_string(10 + i % 60),
                    1.0 * i, lines[i % 5], Variant::Null()});
  }
  WriteDataFile(path, kNumeric, rows);
  SqliteDataStore::Open(path, kNumeric);  // makes the cache
  auto cached = SqliteDataStore::Open(path, kNumeric);
  ASSERT_TRUE(cached->UsesCache());
  EXPECT_TRUE(cached->Columns().Column(1).Coded());   // four dates
  EXPECT_FALSE(cached->Columns().Column(2).Coded());  // 400 times
  EXPECT_TRUE(cached->Columns().Column(4).Coded());
  auto check = [&](const char* when) {
    SCOPED_TRACE(when);
    fs::remove(folder.File("line4.rzc"));
    auto direct = SqliteDataStore::Open(path, kNumeric);
    ASSERT_FALSE(direct->UsesCache());
    EXPECT_EQ(Contents(*cached), Contents(*direct));
    const RecordColumn& a = cached->Columns().Column(4);
    const RecordColumn& b = direct->Columns().Column(4);
    EXPECT_EQ(a.FoldedCodes(), b.FoldedCodes());
    EXPECT_EQ(a.FoldedTexts(), b.FoldedTexts());
    EXPECT_EQ(a.FoldedCodeOf("LINE 1"), b.FoldedCodeOf("LINE 1"));
  };
  check("opened");
  // Appended records reach the coded column: a new text, a known one in
  // other letters, a null.
  ExecSql(path,
          "INSERT INTO records(v1, v2, v3, v4) VALUES"
          "('2024-03-05', '00:00:00', 1, 'Line 3'),"
          "('2024-03-05', '00:00:01', 2, 'line 2'),"
          "('2024-03-05', '00:00:02', 3, NULL)");
  EXPECT_TRUE(cached->Refresh());
  check("after appends");
}

// A cache made to pass its checksums still cannot make a reader read
// outside a coded column's entries.
TEST(ColumnCacheCodedTest, CodesAndEntriesThatDoNotFitAreRefused) {
  TempFolder folder;
  const std::string data = folder.File("line4.rzd");
  WriteDataFile(data, {false}, {{"x"}});
  auto memory = [](const std::string& bytes) {
    return ColumnCache::SectionSource{
        bytes.size(), CacheChecksum(bytes.data(), bytes.size()),
        [&bytes](int fd, uint64_t offset) {
          return WriteAllAt(fd, bytes.data(), bytes.size(), offset);
        }};
  };
  auto words = [](std::vector<uint64_t> values) {
    return std::string(reinterpret_cast<const char*>(values.data()),
                       values.size() * sizeof(uint64_t));
  };
  const std::string date_times = words({0, 0});
  const std::string nulls = words({0});
  const struct Case {
    const char* what;
    std::vector<uint32_t> codes;
    std::string entries;
    bool usable;
  } cases[] = {
      {"fits", {0, 1}, ColumnCache::EntrySectionBytes({1, 3}, "abc"), true},
      {"a code past the entries",
       {0, 2},
       ColumnCache::EntrySectionBytes({1, 3}, "abc"),
       false},
      {"more entries than the section holds",
       {0, 0},
       words({1000, 1}) + "a",
       false},
      {"an end past the texts",
       {0, 1},
       ColumnCache::EntrySectionBytes({1, 9}, "abc"),
       false},
      {"ends that decrease",
       {0, 1},
       ColumnCache::EntrySectionBytes({2, 1}, "ab"),
       false},
      {"no entry count", {0, 0}, "", false},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.what);
    const std::string codes(reinterpret_cast<const char*>(c.codes.data()),
                            c.codes.size() * sizeof(uint32_t));
    const std::string cache = folder.File("line4.rzc");
    ASSERT_TRUE(ColumnCache::WriteSections(
        cache, {ColumnCache::Kind::kCodedText}, 2, 2, {}, data,
        {memory(date_times), memory(""), memory(nulls), memory(codes),
         memory(c.entries)}));
    auto opened = ColumnCache::Open(cache, {false});
    ASSERT_NE(opened, nullptr);
    const std::optional<RecordColumn> column = opened->ReadColumn(1);
    ASSERT_EQ(column.has_value(), c.usable);
    if (c.usable) {
      EXPECT_EQ(column->Text(1), "bc");
    }
  }
}

// --- The cache made while the records are written ---

struct BuiltCase {
  const char* what;
  std::vector<bool> numeric;
  std::vector<Row> rows;  // a row holding "refuse" in a numeric cell fails
};

std::vector<Row> NumberedRows(size_t count, size_t text_length) {
  std::vector<Row> rows;
  for (size_t i = 0; i < count; ++i) {
    rows.push_back({"2024-03-01", "08:00:" + std::to_string(10 + i % 50),
                    i % 7 == 0 ? Variant::Null() : Variant(0.5 * i),
                    std::string(text_length + i % 3, 'a' + i % 26),
                    Variant(static_cast<double>(i))});
  }
  return rows;
}

// Writes the case's data file with a builder beside it; returns what
// Finish said.
bool WriteWithBuilder(const std::string& data, const std::string& cache,
                      const BuiltCase& c) {
  ColumnCacheBuilder builder(cache + ".spool", c.numeric);
  std::unique_ptr<DataWriter> writer =
      DataWriter::Create(data, c.numeric, &builder);
  for (const Row& row : c.rows) {
    try {
      writer->Append(row);
    } catch (const Error&) {
      // refused: neither the data file nor the cache holds the record
    }
  }
  writer->Commit();
  return builder.Finish(cache, TakeDataFileStamp(data), data);
}

TEST(ColumnCacheBuilderTest, MakesTheCacheAReadOfTheDataFileMakes) {
  const double nan = std::nan("");
  const BuiltCase cases[] = {
      {"the sample records", kNumeric, SampleRows()},
      {"one record", kNumeric, {SampleRows()[0]}},
      {"64 records: whole null words", kNumeric, NumberedRows(64, 3)},
      {"65 records", kNumeric, NumberedRows(65, 3)},
      {"texts longer than a buffer", kNumeric, NumberedRows(70, 9000)},
      {"many records", kNumeric, NumberedRows(20000, 5)},
      {"NaN, negative zero and numbers as text",
       kNumeric,
       {{"2024-03-01", "08:00:00", nan, "a", -0.0},
        {"2024-03-01", "08:00:01", " 12.5 ", "b", "  "},
        {"2024-03-01", "08:00:02", 1e308, "c", 3}}},
      {"a text with a NUL byte",
       kNumeric,
       {{"2024-03-01", "08:00:00", 1.0, std::string("a\0b", 3), 2.0}}},
      {"a refused record in between",
       kNumeric,
       {SampleRows()[0],
        {"2024-03-01", "08:00:01", "refuse", "x", 1.0},
        SampleRows()[1]}},
      {"numeric date and time variables",
       {true, true, false},
       {{20240301, 800, "x"}, {Variant::Null(), 801, "y"}}},
  };
  for (const BuiltCase& c : cases) {
    SCOPED_TRACE(c.what);
    TempFolder folder;
    const std::string data = folder.File("line4.rzd");
    const std::string cache = folder.File("line4.rzc");
    ASSERT_TRUE(WriteWithBuilder(data, cache, c));
    const std::string built = ReadBytes(cache);
    EXPECT_FALSE(fs::exists(cache + ".spool"));
    {
      auto store = SqliteDataStore::Open(data, c.numeric);
      EXPECT_TRUE(store->UsesCache());
      EXPECT_EQ(store->RecordsRead(), 0);
    }
    fs::remove(cache);
    SqliteDataStore::Open(data, c.numeric);  // reads the data file
    EXPECT_EQ(ReadBytes(cache), built);
  }
}

TEST(ColumnCacheBuilderTest, GivesUpQuietlyWhenItCannotSpoolOrEndTheLast) {
  TempFolder folder;
  const std::string data = folder.File("line4.rzd");
  const std::string cache = folder.File("line4.rzc");
  {
    ColumnCacheBuilder builder(folder.File("no/such/folder/spool"), kNumeric);
    EXPECT_FALSE(builder.Usable());
    std::unique_ptr<DataWriter> writer =
        DataWriter::Create(data, kNumeric, &builder);
    writer->Append(SampleRows()[0]);
    writer->Commit();
    EXPECT_FALSE(builder.Finish(cache, TakeDataFileStamp(data), data));
  }
  fs::remove(data);
  // The last record was refused: the last stored record's cells are not
  // known any more, so no cache is written (the first reader makes it).
  const BuiltCase refused_last = {
      "",
      kNumeric,
      {SampleRows()[0], {"2024-03-01", "08:00:01", "refuse", "x", 1.0}}};
  EXPECT_FALSE(WriteWithBuilder(data, cache, refused_last));
  EXPECT_FALSE(fs::exists(cache));
  EXPECT_FALSE(fs::exists(cache + ".spool"));
}

}  // namespace
}  // namespace rz
