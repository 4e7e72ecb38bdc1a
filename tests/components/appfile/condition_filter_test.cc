// Copyright 2026 The Veltmark authors.

#include "appfile/condition_filter.h"

#include <gtest/gtest.h>

#include <atomic>
#include <cstdlib>
#include <new>
#include <random>
#include <set>
#include <string>
#include <vector>

#include "appfile/sqlite_data_store.h"
#include "components/appfile/data_file_helpers.h"
#include "core/date_time.h"
#include "core/error.h"
#include "core/text.h"
#include "support/error_number.h"
#include "support/temp_folder.h"

// Counts heap allocations, so a test can check that Matches makes none.
namespace {
std::atomic<long> allocations{0};
}  // namespace

// Kept out of line: inlined into callers, the compiler would pair each
// `new` with `free` and warn about a mismatch that is not one.
[[gnu::noinline]] void* operator new(std::size_t size) {
  ++allocations;
  if (void* block = std::malloc(size == 0 ? 1 : size)) return block;
  throw std::bad_alloc();
}
[[gnu::noinline]] void operator delete(void* block) noexcept {
  std::free(block);
}
[[gnu::noinline]] void operator delete(void* block, std::size_t) noexcept {
  std::free(block);
}

namespace rz {
namespace {

Condition C(int16_t and_or, const char* par1, int16_t variable, const char* op,
            const char* value, const char* par2) {
  return Condition{and_or, par1, variable, op, value, par2};
}

// One condition alone.
Condition Only(int16_t variable, const char* op, const char* value) {
  return C(0, "", variable, op, value, "");
}

std::string Describe(const std::vector<Condition>& conditions) {
  std::string text;
  for (const Condition& c : conditions) {
    text += "[" + std::to_string(c.and_or) + " " + c.par1 + "V" +
            std::to_string(c.variable) + " " + c.condition + " '" + c.value +
            "'" + c.par2 + "] ";
  }
  return text;
}

// Variables: 1 date, 2 time, 3 a number, 4 a text, 5 a number.
const std::vector<bool> kNumeric = {false, false, true, false, true};

class ConditionFilterTest : public ::testing::Test {
 protected:
  void SetUp() override {
    const Variant null = Variant::Null();
    WriteDataFile(path_, kNumeric,
                  {
                      {"2024-01-01", "08:00:00", 10.0, "Anna", 1.0},
                      {"2024-01-01", "12:00:00", 10.5, " bob ", null},
                      {"2024-01-02", "08:00:00", null, "", 3.0},
                      {"2024-01-02", "16:30:00", 100.0, null, 4.0},
                      {"2024-01-03", "00:00:00", -2.0, "Ærø", 5.0},
                      {"", "", 7.0, "carl", 6.0},  // no date-time
                  });
    store_ = SqliteDataStore::Open(path_, kNumeric);
  }

  std::set<int32_t> Selected(const std::vector<Condition>& conditions) {
    auto filter = ConditionFilter::Compile(conditions, *store_);
    std::set<int32_t> records;
    for (int32_t r = 1; r <= store_->RecordCount(); ++r) {
      if (filter->Matches(*store_, r)) records.insert(r);
    }
    return records;
  }

  TempFolder folder_;
  std::string path_ = folder_.File("filter.rzd");
  std::unique_ptr<SqliteDataStore> store_;
};

TEST_F(ConditionFilterTest, OneConditionOnEachKindOfVariable) {
  struct Case {
    Condition condition;
    std::set<int32_t> expected;
  } cases[] = {
      // Numbers.
      {Only(3, "=", "10"), {1}},
      {Only(3, "<>", "10"), {2, 3, 4, 5, 6}},
      {Only(3, ">", "10"), {2, 4}},
      {Only(3, "<", "10"), {5, 6}},
      {Only(3, ">=", "10.5"), {2, 4}},
      {Only(3, "<=", "10"), {1, 5, 6}},
      {Only(3, "=", "10abc"), {1}},
      {Only(3, "=", "NULL"), {3}},
      {Only(3, "=", ""), {3}},
      {Only(3, "=", " null "), {3}},
      {Only(3, "<>", "NULL"), {1, 2, 4, 5, 6}},
      {Only(3, ">", "NULL"), {}},
      {Only(3, "<=", "NULL"), {}},
      {Only(3, "LIKE", "1#"), {1}},
      {Only(3, "LIKE", "10*"), {1, 2, 4}},
      {Only(3, "LIKE", "10%"), {1, 2, 4}},
      {Only(3, "LIKE", "1_"), {1}},
      {Only(3, "LIKE", "10.?"), {2}},
      {Only(3, "LIKE", "-*"), {5}},
      {Only(3, "LIKE", "[!1]*"), {5, 6}},
      {Only(3, "LIKE", "[0-9]"), {6}},
      {Only(3, "LIKE", "*"), {1, 2, 4, 5, 6}},
      {Only(3, "LIKE", "NULL"), {3}},
      {Only(3, "like", "1#"), {1}},
      // Texts: trimmed, without regard to case; blank is no value.
      {Only(4, "=", "anna"), {1}},
      {Only(4, "=", "BOB"), {2}},
      {Only(4, "=", "  bob  "), {2}},
      {Only(4, "<>", "anna"), {2, 3, 4, 5, 6}},
      {Only(4, ">", "b"), {2, 5, 6}},
      {Only(4, "<", "b"), {1}},
      {Only(4, ">=", "carl"), {5, 6}},
      {Only(4, "<=", "bob"), {1, 2}},
      {Only(4, "=", "NULL"), {3, 4}},
      {Only(4, "<>", "NULL"), {1, 2, 5, 6}},
      {Only(4, "=", "æRØ"), {5}},
      {Only(4, "LIKE", "a*"), {1}},
      {Only(4, "LIKE", "%O%"), {2}},
      {Only(4, "LIKE", "[a-c]*"), {1, 2, 6}},
      {Only(4, "LIKE", "[!a-c]*"), {5}},
      {Only(4, "LIKE", "?ob"), {2}},
      {Only(4, "LIKE", "_ARL"), {6}},
      {Only(4, "LIKE", "ærø"), {5}},
      {Only(4, "LIKE", "*"), {1, 2, 5, 6}},
      {Only(4, "<>", "10"), {1, 2, 3, 4, 5, 6}},
      // The record's date-time.
      {Only(0, ">=", "2024-01-02 00:00:00"), {3, 4, 5}},
      {Only(0, "<", "2024-01-02 00:00:00"), {1, 2}},
      {Only(0, "=", "2024-01-01 12:00:00"), {2}},
      {Only(0, "<>", "2024-01-01 12:00:00"), {1, 3, 4, 5, 6}},
      {Only(0, "<=", "2024-01-02 16:30:00"), {1, 2, 3, 4}},
      {Only(0, ">", "2024-01-02 16:30:00"), {5}},
      {Only(0, ">", "2024-01-02 16:29:59"), {4, 5}},
      {Only(0, "=", "2024-01-03"), {5}},
      {Only(0, "=", "NULL"), {6}},
      {Only(0, "LIKE", "2024-01-02*"), {3, 4}},
      {Only(0, "LIKE", "* 08:00:00"), {1, 3}},
      // Date and time texts are texts.
      {Only(1, "=", "2024-01-02"), {3, 4}},
      {Only(1, ">", "2024-01-01"), {3, 4, 5}},
      {Only(2, "=", "NULL"), {6}},
      {Only(5, "<>", "3"), {1, 2, 4, 5, 6}},
  };
  for (const Case& c : cases) {
    EXPECT_EQ(Selected({c.condition}), c.expected) << Describe({c.condition});
  }
}

TEST_F(ConditionFilterTest, BracketsPrecedenceAndTheLeadingGroup) {
  const Condition from = C(0, "(", 0, ">=", "2024-01-02 00:00:00", "");
  const Condition to = C(1, "", 0, "<=", "2024-01-02 23:59:59", ")");
  struct Case {
    std::vector<Condition> conditions;
    std::set<int32_t> expected;
  } cases[] = {
      {{}, {1, 2, 3, 4, 5, 6}},
      // And binds tighter than Or, on either side.
      {{Only(3, "=", "100"), C(2, "", 3, "=", "10", ""),
        C(1, "", 5, "=", "1", "")},
       {1, 4}},
      {{Only(3, "=", "10"), C(1, "", 5, "=", "4", ""),
        C(2, "", 4, "=", "carl", "")},
       {6}},
      // Brackets group.
      {{Only(5, "=", "4"), C(2, "(", 3, "=", "10", ""),
        C(2, "", 3, "=", "10.5", ")"), C(1, "", 4, "LIKE", "b*", "")},
       {2, 4}},
      {{Only(5, "=", "4"), C(2, " ( ", 3, "=", "10", ""),
        C(2, "", 3, "=", "10.5", " )"), C(1, "", 4, "LIKE", "b*", "")},
       {2, 4}},
      // "none" after the first condition is And; unknown connectives Or.
      {{Only(3, ">", "0"), C(0, "", 5, "<", "5", "")}, {1, 4}},
      {{Only(3, "=", "10"), C(3, "", 3, "=", "100", "")}, {1, 4}},
      // The leading group is joined with And to everything after it.
      {{from, to, C(2, "", 3, "=", "100", ""), C(2, "", 3, "=", "10", "")},
       {4}},
      {{from, to, C(0, "(", 3, "=", "10", ""), C(2, "", 4, "=", "NULL", ")"),
        C(2, "", 5, "=", "5", "")},
       {3, 4}},
      {{from, to}, {3, 4}},
      {{C(0, "(", 3, ">", "0", ""), C(2, "", 5, "=", "3", ")")},
       {1, 2, 3, 4, 6}},
      {{C(0, "((", 3, ">", "0", ")"), C(2, "", 5, "=", "3", ")"),
        C(2, "", 4, "=", "carl", "")},
       {6}},
      {{C(0, "(", 3, ">", "0", ")"), C(2, "", 5, "=", "3", "")}, {}},
      {{C(0, "(", 5, "=", "1", ")"), C(2, "(", 5, "=", "3", ")"),
        C(2, "", 3, "=", "10", "")},
       {1}},
      // A group that does not open the list is an ordinary group.
      {{Only(5, "=", "3"), C(2, "(", 3, ">", "50", ")"),
        C(2, "", 4, "=", "anna", "")},
       {1, 3, 4}},
  };
  for (const Case& c : cases) {
    EXPECT_EQ(Selected(c.conditions), c.expected) << Describe(c.conditions);
  }
}

TEST_F(ConditionFilterTest, CompileRefusesBadConditions) {
  struct Case {
    std::vector<Condition> conditions;
    int32_t number;
    const char* text;  // part of the description
  } cases[] = {
      {{C(0, "(", 3, "=", "1", "")}, 5, "Filter brackets do not balance"},
      {{C(0, "", 3, "=", "1", ")"), C(1, "(", 3, "=", "1", "")},
       5,
       "Filter brackets do not balance"},
      {{C(0, "(", 3, "=", "1", "))")}, 5, "Filter brackets do not balance"},
      {{C(0, "((", 3, "=", "1", ")"), C(2, "", 3, "=", "1", "")},
       5,
       "Filter brackets do not balance"},
      {{C(0, "[", 3, "=", "1", "")}, 5, "'['"},
      {{Only(3, "=>", "1")}, 5, "'=>'"},
      {{Only(3, "", "1")}, 5, "operator"},
      {{Only(3, "=", "1"), C(1, "", 3, "BETWEEN", "1", "")}, 5, "BETWEEN"},
      {{Only(4, "LIKE", "[z-a]")}, 5, "[z-a]"},
      {{Only(4, "LIKE", "[abc")}, 5, "[abc"},
      {{Only(0, "=", "2024-13-01 00:00:00")}, 13, "2024-13-01"},
      {{Only(3, "=", "1"), C(1, "", 0, ">", "yesterday", "")}, 13, "yesterday"},
      {{Only(0, "<", "2024-01-01 25:00:00")}, 13, "25:00"},
      {{Only(6, "=", "1")}, 9, "6"},
      {{Only(-1, "=", "1")}, 9, "-1"},
  };
  for (const Case& c : cases) {
    try {
      ConditionFilter::Compile(c.conditions, *store_);
      ADD_FAILURE() << Describe(c.conditions) << ": no error";
    } catch (const Error& error) {
      EXPECT_EQ(error.Number(), c.number) << Describe(c.conditions);
      EXPECT_NE(error.Description().find(c.text), std::string::npos)
          << Describe(c.conditions) << ": " << error.Description();
    }
  }
  // Not an error: a pattern for the date-time, NULL for a date-time.
  EXPECT_EQ(ErrorNumber([&] {
              ConditionFilter::Compile(
                  {Only(0, "LIKE", "yesterday"), C(1, "", 0, "=", "NULL", "")},
                  *store_);
            }),
            0);
}

TEST_F(ConditionFilterTest, MatchesAllocatesNothing) {
  auto filter = ConditionFilter::Compile(
      {C(0, "(", 0, ">=", "2023-01-01 00:00:00", ""),
       C(1, "", 0, "<=", "2025-01-01 00:00:00", ")"),
       C(2, "(", 3, "LIKE", "1#", ""), C(2, "", 3, "LIKE", "-*", ""),
       C(2, "", 0, "LIKE", "2024*", ""), C(2, "", 4, "LIKE", "*o*", ""),
       C(2, "", 4, ">", "ærø and a long text beyond any small buffer", ")")},
      *store_);
  const long before = allocations.load();
  int matched = 0;
  for (int round = 0; round < 100; ++round) {
    for (int32_t r = 1; r <= store_->RecordCount(); ++r) {
      matched += filter->Matches(*store_, r) ? 1 : 0;
    }
  }
  EXPECT_EQ(allocations.load(), before);
  EXPECT_GT(matched, 0);
}

// A number is matched by LIKE through its shortest text, exponent forms
// included.
TEST(ConditionFilterNumberTextTest, LikeSeesTheShortestText) {
  const std::vector<double> values = {
      1e20,    1.5e-7, -2.5e20, 123456789012345,   1e15,    0.00001, 1e-6, 0.1,
      1.0 / 3, -0.5,   1e100,   999999999999999.9, 4.2e-300};
  TempFolder folder;
  const std::string path = folder.File("numbers.rzd");
  std::vector<Row> rows;
  for (double value : values) rows.push_back({"2024-01-01", "08:00:00", value});
  WriteDataFile(path, {false, false, true}, rows);
  auto store = SqliteDataStore::Open(path, {false, false, true});
  for (size_t i = 0; i < values.size(); ++i) {
    const std::string text = ShortestNumberText(values[i]);
    auto filter =
        ConditionFilter::Compile({Only(3, "LIKE", text.c_str())}, *store);
    std::vector<bool> matched;
    matched.reserve(values.size());
    const long before = allocations.load();
    for (size_t j = 0; j < values.size(); ++j) {
      matched.push_back(filter->Matches(*store, static_cast<int32_t>(j + 1)));
    }
    EXPECT_EQ(allocations.load(), before) << text;
    for (size_t j = 0; j < values.size(); ++j) {
      EXPECT_EQ(matched[j], i == j)
          << text << " against " << ShortestNumberText(values[j]);
    }
  }
}

// --- FindDateRange ---

class FindDateRangeTest : public ::testing::Test {
 protected:
  std::unique_ptr<SqliteDataStore> Store(
      const std::vector<std::pair<const char*, const char*>>& times) {
    const std::string path = folder_.File("d" + std::to_string(++files_));
    std::vector<Row> rows;
    for (const auto& [date, time] : times) rows.push_back({date, time});
    WriteDataFile(path, {false, false}, rows);
    return SqliteDataStore::Open(path, {false, false});
  }

  TempFolder folder_;
  int files_ = 0;
};

TEST_F(FindDateRangeTest, FindsTheBoundsInOrderedAndUnorderedData) {
  auto ordered = Store({{"2024-01-01", "08:00:00"},
                        {"2024-01-01", "12:00:00"},
                        {"2024-01-02", "08:00:00"},
                        {"2024-01-02", "08:00:00"},
                        {"2024-01-02", "16:30:00"},
                        {"2024-01-03", "00:00:00"}});
  auto unordered = Store({{"2024-01-02", "08:00:00"},
                          {"2024-01-01", "08:00:00"},
                          {"2024-01-03", "00:00:00"},
                          {"2024-01-01", "12:00:00"},
                          {"2024-01-02", "16:30:00"},
                          {"", ""}});
  ASSERT_TRUE(ordered->InTimeOrder());
  ASSERT_FALSE(unordered->InTimeOrder());
  struct Case {
    const char* begin;
    const char* end;
    bool found;
    int32_t first;  // ordered
    int32_t last;
    int32_t unordered_first;
    int32_t unordered_last;
  } cases[] = {
      {"2024-01-02 00:00:00", "2024-01-02 23:59:59", true, 3, 5, 1, 5},
      {"2024-01-01 12:00:00", "2024-01-02 16:30:00", true, 2, 5, 1, 5},
      {"2024-01-02 08:00:00", "2024-01-02 08:00:00", true, 3, 4, 1, 1},
      {"2024-01-01 12:00:01", "2024-01-02 07:59:59", false, 0, 0, 0, 0},
      {"2023-01-01 00:00:00", "2024-01-01 07:59:59", false, 0, 0, 0, 0},
      {"2024-01-03 00:00:01", "2025-01-01 00:00:00", false, 0, 0, 0, 0},
      {"2000-01-01 00:00:00", "2100-01-01 00:00:00", true, 1, 6, 1, 5},
      {"2024-01-03 00:00:00", "2024-01-01 00:00:00", false, 0, 0, 0, 0},
      {"2024-01-03", "2024-01-03 00:00:00", true, 6, 6, 3, 3},
  };
  for (const Case& c : cases) {
    int32_t first = -1;
    int32_t last = -1;
    EXPECT_EQ(FindDateRange(*ordered, c.begin, c.end, first, last), c.found)
        << c.begin << " .. " << c.end;
    EXPECT_EQ(first, c.first) << c.begin << " .. " << c.end;
    EXPECT_EQ(last, c.last) << c.begin << " .. " << c.end;
    EXPECT_EQ(FindDateRange(*unordered, c.begin, c.end, first, last), c.found)
        << "unordered " << c.begin << " .. " << c.end;
    EXPECT_EQ(first, c.unordered_first) << "unordered " << c.begin;
    EXPECT_EQ(last, c.unordered_last) << "unordered " << c.begin;
  }
  int32_t first = 0;
  int32_t last = 0;
  EXPECT_EQ(ErrorNumber([&] {
              FindDateRange(*ordered, "yesterday", "2024-01-01 00:00:00", first,
                            last);
            }),
            13);
  EXPECT_EQ(ErrorNumber([&] {
              FindDateRange(*ordered, "2024-01-01 00:00:00", "", first, last);
            }),
            13);
  auto empty = Store({});
  EXPECT_FALSE(FindDateRange(*empty, "2000-01-01 00:00:00",
                             "2100-01-01 00:00:00", first, last));
}

// The binary search against a plain count in whole seconds, over many
// ranges on data with repeated times.
TEST_F(FindDateRangeTest, SearchAgreesWithAScan) {
  std::mt19937 random(7);
  std::vector<int> seconds;  // of each record, from 2024-01-01 00:00:00
  std::vector<std::string> dates;
  std::vector<std::string> times;
  int now = 0;
  for (int i = 0; i < 300; ++i) {
    now += static_cast<int>(random() % 3) * 1800;  // repeats when 0
    seconds.push_back(now);
    const double when = DateSerial(2024, 1, 1) + now / 86400.0;
    dates.push_back(FormatDate(when));
    times.push_back(FormatTime(when));
  }
  std::vector<std::pair<const char*, const char*>> texts;
  for (size_t i = 0; i < seconds.size(); ++i) {
    texts.emplace_back(dates[i].c_str(), times[i].c_str());
  }
  auto store = Store(texts);
  ASSERT_TRUE(store->InTimeOrder());
  for (int trial = 0; trial < 500; ++trial) {
    int from = static_cast<int>(random() % (now + 7200)) - 3600;
    int to = from + static_cast<int>(random() % 20000) - 2000;
    if (trial % 5 == 0) from = seconds[random() % seconds.size()];
    if (trial % 7 == 0) to = seconds[random() % seconds.size()];
    int32_t expected_first = 0;
    int32_t expected_last = 0;
    for (size_t i = 0; i < seconds.size(); ++i) {
      if (seconds[i] < from || seconds[i] > to) continue;
      if (expected_first == 0) expected_first = static_cast<int32_t>(i + 1);
      expected_last = static_cast<int32_t>(i + 1);
    }
    const std::string begin =
        FormatDateTime(DateSerial(2024, 1, 1) + TimeSerial(0, 0, from));
    const std::string end =
        FormatDateTime(DateSerial(2024, 1, 1) + TimeSerial(0, 0, to));
    int32_t first = -1;
    int32_t last = -1;
    EXPECT_EQ(FindDateRange(*store, begin, end, first, last),
              expected_first != 0)
        << begin << " .. " << end;
    EXPECT_EQ(first, expected_first) << begin << " .. " << end;
    EXPECT_EQ(last, expected_last) << begin << " .. " << end;
  }
}

// Select gives the records Matches passes, whether the date range is
// answered by search (records in time order) or not, for ranges joined to
// other conditions in every way the list allows.
TEST_F(FindDateRangeTest, SelectAgreesWithMatches) {
  std::mt19937 random(11);
  for (bool in_order : {true, false}) {
    std::vector<Row> rows;
    for (int i = 0; i < 200; ++i) {
      const int minutes = in_order ? i * 30 : (i * 7919) % 6000;
      const double when = DateSerial(2024, 1, 1) + minutes / 1440.0;
      rows.push_back({FormatDate(when), FormatTime(when),
                      static_cast<double>(random() % 10),
                      i % 5 == 0 ? Variant::Null() : Variant("x")});
    }
    const std::string path = folder_.File(in_order ? "in.rzd" : "out.rzd");
    WriteDataFile(path, {false, false, true, false}, rows);
    auto store = SqliteDataStore::Open(path, {false, false, true, false});
    ASSERT_EQ(store->InTimeOrder(), in_order);
    auto when = [&](int minutes) {
      return FormatDateTime(DateSerial(2024, 1, 1) + minutes / 1440.0);
    };
    const char* bounds[] = {">=", ">", "<=", "<"};
    for (int trial = 0; trial < 300; ++trial) {
      const int from = static_cast<int>(random() % 7000) - 500;
      const int to = from + static_cast<int>(random() % 4000);
      std::vector<Condition> list = {
          C(0, "(", 0, bounds[random() % 2], when(from).c_str(), ""),
          C(1, "", 0, bounds[2 + random() % 2], when(to).c_str(), ")")};
      const int shape = trial % 4;
      if (shape == 1) list.push_back(C(1, "", 3, ">", "4", ""));
      if (shape == 2) {
        list.push_back(C(1, "(", 3, "<", "3", ""));
        list.push_back(C(2, "", 4, "=", "NULL", ")"));
      }
      if (shape == 3) list.push_back(C(2, "", 3, "=", "7", ""));
      auto filter = ConditionFilter::Compile(list, *store);
      RecordList expected;
      for (int32_t r = 1; r <= store->RecordCount(); ++r) {
        if (filter->Matches(*store, r)) expected.push_back(r - 1);
      }
      RecordList selected = {42};  // replaced
      filter->Select(*store, &selected);
      EXPECT_EQ(selected, expected) << Describe(list);
    }
  }
}

}  // namespace
}  // namespace rz
