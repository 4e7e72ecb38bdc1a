// Copyright 2026 The Veltmark authors.

#include "support/fake_repository.h"

#include <gtest/gtest.h>

#include "support/error_number.h"

namespace rz {
namespace {

class FakeRepositoryTest : public ::testing::Test {
 protected:
  FakeRepositoryTest() {
    repository_.Fields().Add("Date", 0, 10, 0, 0);
    repository_.Fields().Add("Weight", 4, 8, 2, 0);
  }
  FakeRepository repository_;
};

TEST_F(FakeRepositoryTest, ReadPastTheEndGrowsTheStore) {
  EXPECT_EQ(repository_.RecordCount(), 0);
  EXPECT_TRUE(repository_.Value(5, 2).IsEmpty());
  EXPECT_EQ(repository_.RecordCount(), 5);
  EXPECT_EQ(repository_.GrowthCount(), 1);
  repository_.Value(5, 1);
  repository_.Value(3, 2);
  EXPECT_EQ(repository_.GrowthCount(), 1);  // within the store: no growth
  EXPECT_EQ(repository_.SourceRecord(5), 0);
}

TEST_F(FakeRepositoryTest, WritePastTheEndGrowsTheStore) {
  repository_.SetValue(1, 1, "2006-10-10");
  repository_.SetValue(11, 1, "");  // the reserve a run writes ahead
  repository_.SetValue(3, 2, 7.5);
  EXPECT_EQ(repository_.RecordCount(), 11);
  EXPECT_EQ(repository_.GrowthCount(), 2);
  EXPECT_EQ(repository_.Value(3, 2), Variant(7.5));
  EXPECT_EQ(repository_.Value(1, 1), Variant("2006-10-10"));
  EXPECT_TRUE(repository_.Value(2, 2).IsEmpty());
}

TEST_F(FakeRepositoryTest, BadCellAddressesFailWithoutGrowing) {
  struct Row {
    int32_t record;
    int32_t field;
  };
  const Row rows[] = {{0, 1}, {-1, 1}, {4, 0}, {4, 3}, {1, -2}};
  for (const Row& row : rows) {
    EXPECT_EQ(ErrorNumber([&] { repository_.Value(row.record, row.field); }), 9)
        << row.record << "," << row.field;
    EXPECT_EQ(
        ErrorNumber([&] { repository_.SetValue(row.record, row.field, 1.0); }),
        9)
        << row.record << "," << row.field;
  }
  EXPECT_EQ(repository_.RecordCount(), 0);
  EXPECT_EQ(repository_.GrowthCount(), 0);
}

TEST_F(FakeRepositoryTest, DeleteRecordMovesLaterRecordsUp) {
  for (int32_t r = 1; r <= 4; ++r) {
    repository_.SetValue(r, 2, static_cast<double>(r));
    repository_.SetSourceRecord(r, 100 + r);
  }
  repository_.DeleteRecord(2);
  ASSERT_EQ(repository_.RecordCount(), 3);
  EXPECT_EQ(repository_.Value(2, 2), Variant(3.0));
  EXPECT_EQ(repository_.SourceRecord(2), 103);
  repository_.DeleteRecord(3);  // the last one
  EXPECT_EQ(repository_.RecordCount(), 2);
  EXPECT_EQ(ErrorNumber([&] { repository_.DeleteRecord(3); }), 9);
  EXPECT_EQ(ErrorNumber([&] { repository_.DeleteRecord(0); }), 9);
  EXPECT_EQ(ErrorNumber([&] { repository_.SourceRecord(3); }), 9);
  EXPECT_EQ(ErrorNumber([&] { repository_.SetSourceRecord(0, 1); }), 9);
}

TEST_F(FakeRepositoryTest, FieldAddedLaterGetsEmptyCellsInOldRecords) {
  repository_.SetValue(2, 2, 1.0);
  auto field = repository_.Fields().Add("Operator", 1, 12, 0, 0);
  EXPECT_EQ(repository_.Fields().Count(), 3);
  EXPECT_EQ(repository_.Fields().Item(3), field);
  EXPECT_TRUE(repository_.Value(2, 3).IsEmpty());
  EXPECT_EQ(ErrorNumber([&] { repository_.Fields().Item(4); }), 5);
  EXPECT_EQ(ErrorNumber([&] { repository_.Fields().Item(0); }), 5);
}

TEST_F(FakeRepositoryTest, RuleCatalogueByKeyWithoutRegardToCase) {
  RuleCatalogueList& rules = repository_.RuleCatalogue();
  auto a = rules.Add("A");
  a->ordinal = 2;
  rules.Add("B")->ordinal = 1;
  EXPECT_EQ(rules.Item("a"), a);
  EXPECT_EQ(rules.ItemAt(2)->key, "B");
  EXPECT_EQ(ErrorNumber([&] { rules.Add("b"); }), 5);
  EXPECT_EQ(ErrorNumber([&] { rules.Add(""); }), 5);
  EXPECT_EQ(ErrorNumber([&] { rules.Item("C"); }), 5);
  EXPECT_EQ(ErrorNumber([&] { rules.ItemAt(3); }), 5);
  EXPECT_EQ(rules.Count(), 2);
}

TEST_F(FakeRepositoryTest, ResetKeepsOnlyTheStatisticsCatalogue) {
  repository_.SetValue(3, 1, "x");
  repository_.SetTitle("Line 4");
  repository_.SetSpecialColumn3(4);
  repository_.SetFileSetting3(2.5);
  repository_.RuleCatalogue().Add("A");
  const int32_t statistics = repository_.StatisticsCatalogue().Count();
  ASSERT_GT(statistics, 0);

  repository_.ResetRepository();

  EXPECT_EQ(repository_.RecordCount(), 0);
  EXPECT_EQ(repository_.Fields().Count(), 0);
  EXPECT_EQ(repository_.RuleCatalogue().Count(), 0);
  EXPECT_EQ(repository_.Title(), "");
  EXPECT_EQ(repository_.SpecialColumn3(), 0);
  EXPECT_EQ(repository_.FileSetting3(), 0);
  EXPECT_EQ(repository_.StatisticsCatalogue().Count(), statistics);
  EXPECT_EQ(repository_.DateFormat(), "yyyy-mm-dd");
  EXPECT_EQ(repository_.TimeFormat(), "hh:mm:ss");
  EXPECT_EQ(ErrorNumber([&] { repository_.StatisticsCatalogue().Item(0); }), 5);
}

TEST_F(FakeRepositoryTest, DispatchByNameWithoutRegardToCase) {
  repository_.Put("value", 4.5, {Variant(int32_t{2}), Variant(int32_t{2})});
  EXPECT_EQ(
      repository_.Get("VALUE", {Variant(int32_t{2}), Variant(int32_t{2})}),
      Variant(4.5));
  EXPECT_EQ(repository_.Get("recordcount"), Variant(int32_t{2}));
  repository_.Put("TITLE", "Line 4");
  EXPECT_EQ(repository_.Title(), "Line 4");
  repository_.Put("filesetting3", "2.5");
  EXPECT_EQ(repository_.FileSetting3(), 2.5);
  repository_.Call("deleterecord", {Variant(int32_t{1})});
  EXPECT_EQ(repository_.RecordCount(), 1);
  EXPECT_EQ(ErrorNumber([&] { repository_.Get("Value", {Variant(1)}); }), 450);
  EXPECT_EQ(ErrorNumber([&] { repository_.Put("DateFormat", "dd"); }), 438);
  EXPECT_EQ(ErrorNumber([&] { repository_.Get("Colour"); }), 438);
}

}  // namespace
}  // namespace rz
