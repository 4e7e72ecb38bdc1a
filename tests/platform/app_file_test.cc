// Copyright 2026 The Veltmark authors.

#include "platform/app_file.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>

#include "support/error_number.h"
#include "support/fake_app_file.h"

namespace rz {
namespace {

TEST(HeaderItemKeyTest, NamesTheEighteenItemsAndRefusesOthers) {
  EXPECT_EQ(HeaderItemKey(1), "ITEM1");
  EXPECT_EQ(HeaderItemKey(kHeaderItemCount), "ITEM18");
  EXPECT_EQ(ErrorNumber([] { HeaderItemKey(0); }), 5);
  EXPECT_EQ(ErrorNumber([] { HeaderItemKey(kHeaderItemCount + 1); }), 5);
}

TEST(HeaderItemKeyTest, RecognisesExactlyTheDocumentedKeys) {
  struct Row {
    const char* key;
    bool valid;
  };
  const Row rows[] = {
      {"VERSION", true}, {"version", true},  {"ITEM1", true},
      {"item18", true},  {"Item9", true},    {"ITEM10", true},
      {"ITEM0", false},  {"ITEM19", false},  {"ITEM07", false},
      {"ITEM", false},   {"ITEMS", false},   {"ITEM1 ", false},
      {"XITEM1", false}, {"ITEM100", false}, {"", false},
      {"TITLE", false},  {"ITEM-1", false},  {"VERSIONS", false},
  };
  for (const Row& row : rows) {
    EXPECT_EQ(IsHeaderItemKey(row.key), row.valid) << "'" << row.key << "'";
  }
  for (int i = 1; i <= kHeaderItemCount; ++i) {
    EXPECT_TRUE(IsHeaderItemKey(HeaderItemKey(i))) << i;
  }
}

TEST(StatisticValueTest, NamesFollowTheSystemOrder) {
  // The engine maps statistic codes to these positions; the order is the
  // contract with the application-file component.
  const char* const expected[kStatisticValueCount] = {
      "Count",   "Tdev",    "Sum",        "SD",        "Maximum", "CalcUSL",
      "CalcUCL", "Average", "CalcLCL",    "CalcLSL",   "Minimum", "CR",
      "TZ",      "CPK",     "CV",         "Range",     "OOOLpct", "OOOLppm",
      "COOLpct", "COOLppm", "FirstValue", "LastValue", "AvgTBE"};
  for (int i = 0; i < kStatisticValueCount; ++i) {
    const auto value = static_cast<StatisticValue>(i);
    EXPECT_EQ(StatisticValueName(value), expected[i]) << i;
    EXPECT_EQ(StatisticValueForName(expected[i]), value) << expected[i];
  }
  EXPECT_EQ(StatisticValueForName("avgtbe"), StatisticValue::AvgTBE);
  EXPECT_EQ(StatisticValueForName("AvgTBEsecs"), std::nullopt);
  EXPECT_EQ(StatisticValueForName(""), std::nullopt);
}

TEST(ColumnStatisticTest, StartsNullAndKeepsEachValueInItsSlot) {
  ColumnStatistic statistic;
  for (const Variant& value : statistic.values) EXPECT_TRUE(value.IsNull());
  statistic[StatisticValue::Count] = Variant(int32_t{4});
  statistic[StatisticValue::AvgTBE] = Variant(90.0);
  EXPECT_EQ(statistic.values.front(), Variant(int32_t{4}));
  EXPECT_EQ(statistic.values.back(), Variant(90.0));
  EXPECT_TRUE(statistic[StatisticValue::Sum].IsNull());
}

// Two applications on one fake disk, opened, for the structure test.
class SameStructureTest : public ::testing::Test {
 protected:
  std::shared_ptr<FakeAppFile> Open(const std::string& path) {
    auto file = std::make_shared<FakeAppFile>(disk_);
    file->SetOpenMode(kOpenExisting);
    file->OpenApplication(path);
    return file;
  }
  FakeApplication& Add(const std::string& path,
                       std::initializer_list<const char*> letters) {
    FakeApplication& app = (*disk_)[path];
    int n = 0;
    for (const char* letter : letters) {
      app.AddVariable("v" + std::to_string(++n), letter);
    }
    return app;
  }

  std::shared_ptr<FakeDisk> disk_ = std::make_shared<FakeDisk>();
};

TEST_F(SameStructureTest, SameCountAndLettersInOrder) {
  Add("/a.rzt", {"T", "T", "N", "A"});
  Add("/b.rzt", {"T", "t", "n", "A"});  // letters compare upper-cased
  Add("/c.rzt", {"T", "T", "N"});
  Add("/d.rzt", {"T", "T", "N", "R"});
  Add("/e.rzt", {"T", "T", "A", "N"});
  auto a = Open("/a.rzt");
  auto b = Open("/b.rzt");
  auto c = Open("/c.rzt");
  auto d = Open("/d.rzt");
  auto e = Open("/e.rzt");
  EXPECT_TRUE(a->SameStructure(*b));
  EXPECT_TRUE(b->SameStructure(*a));
  EXPECT_FALSE(a->SameStructure(*c));  // one variable fewer
  EXPECT_FALSE(c->SameStructure(*a));
  EXPECT_FALSE(a->SameStructure(*d));  // last letter differs
  EXPECT_FALSE(a->SameStructure(*e));  // same letters, other order
}

}  // namespace
}  // namespace rz
