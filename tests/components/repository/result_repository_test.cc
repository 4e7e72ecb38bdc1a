// Copyright 2026 The Veltmark authors.

#include "repository/result_repository.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <limits>
#include <set>
#include <string>
#include <vector>

#include "support/error_number.h"

namespace rz {
namespace {

Variant Long(int32_t value) { return Variant(value); }

class ResultRepositoryTest : public ::testing::Test {
 protected:
  ResultRepositoryTest() {
    repository_.Fields().Add("Date", 0, 10, 0, 0);
    repository_.Fields().Add("Weight", 4, 8, 2, 0);
  }
  ResultRepository repository_;
};

TEST_F(ResultRepositoryTest, ReadAndWritePastTheEndGrowTheStore) {
  EXPECT_EQ(repository_.RecordCount(), 0);
  EXPECT_TRUE(repository_.Value(3, 2).IsEmpty());
  EXPECT_EQ(repository_.RecordCount(), 3);
  repository_.SetValue(1, 1, "2006-10-10");
  EXPECT_EQ(repository_.RecordCount(), 3);  // inside: no growth
  repository_.SetValue(13, 1, "");          // the reserve a run writes ahead
  EXPECT_EQ(repository_.RecordCount(), 13);
  repository_.SetValue(5, 2, 7.5);
  EXPECT_EQ(repository_.RecordCount(), 13);
  EXPECT_EQ(repository_.Value(5, 2), Variant(7.5));
  EXPECT_EQ(repository_.Value(1, 1), Variant("2006-10-10"));
  EXPECT_TRUE(repository_.Value(12, 2).IsEmpty());
  EXPECT_EQ(repository_.SourceRecord(13), 0);  // new records have source 0
}

TEST_F(ResultRepositoryTest, BadCellAddressesFailWithoutGrowing) {
  struct Row {
    int32_t record;
    int32_t field;
  };
  const Row rows[] = {{0, 1},  {-1, 1},
                      {4, 0},  {4, 3},
                      {1, -2}, {std::numeric_limits<int32_t>::min(), 1}};
  for (const Row& row : rows) {
    EXPECT_EQ(ErrorNumber([&] { repository_.Value(row.record, row.field); }), 9)
        << row.record << "," << row.field;
    EXPECT_EQ(
        ErrorNumber([&] { repository_.SetValue(row.record, row.field, 1.0); }),
        9)
        << row.record << "," << row.field;
  }
  EXPECT_EQ(repository_.RecordCount(), 0);
}

TEST(ResultRepositoryNoFieldsTest, EveryCellAddressIsOutOfRange) {
  ResultRepository repository;
  EXPECT_EQ(ErrorNumber([&] { repository.Value(1, 1); }), 9);
  // Records exist without fields, through their source numbers.
  repository.SetSourceRecord(2, 7);
  EXPECT_EQ(repository.RecordCount(), 2);
  repository.Fields().Add("Late", 1, 5, 0, 0);
  EXPECT_TRUE(repository.Value(2, 1).IsEmpty());
  EXPECT_EQ(repository.SourceRecord(2), 7);
}

TEST_F(ResultRepositoryTest, DeleteRecordMovesLaterRecordsUp) {
  const std::string long_text(40, 'x');
  for (int32_t r = 1; r <= 5; ++r) {
    repository_.SetValue(r, 1, long_text + std::to_string(r));
    repository_.SetValue(r, 2, static_cast<double>(r));
    repository_.SetSourceRecord(r, 100 + r);
  }
  repository_.DeleteRecord(1);  // the first
  repository_.DeleteRecord(2);  // a middle one (was record 3)
  repository_.DeleteRecord(3);  // the last (was record 5)
  ASSERT_EQ(repository_.RecordCount(), 2);
  EXPECT_EQ(repository_.Value(1, 1), Variant(long_text + "2"));
  EXPECT_EQ(repository_.Value(1, 2), Variant(2.0));
  EXPECT_EQ(repository_.SourceRecord(1), 102);
  EXPECT_EQ(repository_.Value(2, 1), Variant(long_text + "4"));
  EXPECT_EQ(repository_.Value(2, 2), Variant(4.0));
  EXPECT_EQ(repository_.SourceRecord(2), 104);
  // The long texts of deleted records are given back.
  EXPECT_EQ(repository_.OutOfLineValues(), 2u);

  EXPECT_EQ(ErrorNumber([&] { repository_.DeleteRecord(3); }), 9);
  EXPECT_EQ(ErrorNumber([&] { repository_.DeleteRecord(0); }), 9);
  EXPECT_EQ(ErrorNumber([&] { repository_.SourceRecord(3); }), 9);
  EXPECT_EQ(ErrorNumber([&] { repository_.SourceRecord(0); }), 9);
  EXPECT_EQ(repository_.RecordCount(), 2);
}

// Records are stored in blocks; shifting, widening and regrowing must work
// across block boundaries.
TEST_F(ResultRepositoryTest, LargeStoresShiftWidenAndRegrowCorrectly) {
  const int32_t count = 2 * CellStore::kChunkRecords + 500;
  for (int32_t r = 1; r <= count; ++r) {
    repository_.SetValue(r, 1, Variant(r));
    repository_.SetValue(r, 2, std::string(20, 'w') + std::to_string(r));
    repository_.SetSourceRecord(r, -r);
  }
  repository_.Fields().Add("Extra", 1, 5, 0, 0);
  repository_.SetValue(count, 3, "last");
  repository_.DeleteRecord(CellStore::kChunkRecords);  // shifts the rest up
  ASSERT_EQ(repository_.RecordCount(), count - 1);
  for (int32_t r = 1; r < count; ++r) {
    const int32_t original = r < CellStore::kChunkRecords ? r : r + 1;
    ASSERT_EQ(repository_.Value(r, 1), Variant(original)) << r;
    ASSERT_EQ(repository_.Value(r, 2),
              Variant(std::string(20, 'w') + std::to_string(original)))
        << r;
    ASSERT_EQ(repository_.SourceRecord(r), -original) << r;
  }
  EXPECT_EQ(repository_.Value(count - 1, 3), Variant("last"));
  EXPECT_TRUE(repository_.Value(count - 2, 3).IsEmpty());

  // Trim to a few records, then grow again: the regrown records are empty.
  for (int32_t k = repository_.RecordCount(); k > 3; --k) {
    repository_.DeleteRecord(k);
  }
  EXPECT_EQ(repository_.OutOfLineValues(), 3u);
  repository_.SetValue(count, 1, "again");
  for (int32_t r = 4; r < count; ++r) {
    ASSERT_TRUE(repository_.Value(r, 1).IsEmpty()) << r;
    ASSERT_TRUE(repository_.Value(r, 2).IsEmpty()) << r;
    ASSERT_TRUE(repository_.Value(r, 3).IsEmpty()) << r;
    ASSERT_EQ(repository_.SourceRecord(r), 0) << r;
  }
  EXPECT_EQ(repository_.Value(3, 1), Variant(int32_t{3}));
}

TEST_F(ResultRepositoryTest, TrimmingTheReserveLeavesTheWrittenRecords) {
  // A run of one record: reserve to 11, then delete 11 down to 2.
  repository_.SetValue(11, 1, "");
  repository_.SetValue(1, 1, 39000.5);
  repository_.SetValue(1, 2, "12.50");
  repository_.SetSourceRecord(1, 42);
  for (int32_t k = repository_.RecordCount(); k >= 2; --k) {
    repository_.DeleteRecord(k);
  }
  ASSERT_EQ(repository_.RecordCount(), 1);
  EXPECT_EQ(repository_.Value(1, 1), Variant(39000.5));
  EXPECT_EQ(repository_.Value(1, 2), Variant("12.50"));
  EXPECT_EQ(repository_.SourceRecord(1), 42);
}

TEST_F(ResultRepositoryTest, EventModeRewritesRecordOneInPlace) {
  for (int32_t n = 1; n <= 500; ++n) {
    repository_.SetValue(1, 1, std::string(30, 'a') + std::to_string(n));
    repository_.SetValue(1, 2, std::string(20, 'b') + std::to_string(n));
    repository_.SetSourceRecord(1, n);
  }
  EXPECT_EQ(repository_.RecordCount(), 1);
  EXPECT_EQ(repository_.Value(1, 1), Variant(std::string(30, 'a') + "500"));
  EXPECT_EQ(repository_.SourceRecord(1), 500);
  // Each rewrite gave back the slot of the text it replaced.
  EXPECT_EQ(repository_.OutOfLineValues(), 2u);
  repository_.SetValue(1, 1, "short");
  repository_.SetValue(1, 2, Variant());
  EXPECT_EQ(repository_.OutOfLineValues(), 0u);
}

TEST_F(ResultRepositoryTest, SetSourceRecordGrowsAndChecksTheRecord) {
  repository_.SetSourceRecord(4, 17);
  EXPECT_EQ(repository_.RecordCount(), 4);
  EXPECT_EQ(repository_.SourceRecord(4), 17);
  EXPECT_EQ(repository_.SourceRecord(2), 0);
  repository_.SetSourceRecord(2, 0);  // a summary record
  EXPECT_EQ(repository_.SourceRecord(2), 0);
  EXPECT_EQ(ErrorNumber([&] { repository_.SetSourceRecord(0, 1); }), 9);
  EXPECT_EQ(ErrorNumber([&] { repository_.SetSourceRecord(-3, 1); }), 9);
  EXPECT_EQ(repository_.RecordCount(), 4);
}

TEST_F(ResultRepositoryTest, FieldAddedLaterKeepsEveryExistingCell) {
  for (int32_t r = 1; r <= 3; ++r) {
    repository_.SetValue(r, 1, "d" + std::to_string(r));
    repository_.SetValue(r, 2, static_cast<double>(r) / 4);
  }
  auto field = repository_.Fields().Add("Operator", 1, 12, 0, 0);
  EXPECT_EQ(repository_.Fields().Count(), 3);
  EXPECT_EQ(repository_.Fields().Item(3), field);
  for (int32_t r = 1; r <= 3; ++r) {
    EXPECT_EQ(repository_.Value(r, 1), Variant("d" + std::to_string(r))) << r;
    EXPECT_EQ(repository_.Value(r, 2), Variant(static_cast<double>(r) / 4))
        << r;
    EXPECT_TRUE(repository_.Value(r, 3).IsEmpty()) << r;
  }
  repository_.SetValue(2, 3, "Ann");
  EXPECT_EQ(repository_.Value(2, 3), Variant("Ann"));
  EXPECT_TRUE(repository_.Value(3, 1) == Variant("d3"));
  EXPECT_EQ(ErrorNumber([&] { repository_.Fields().Item(4); }), 5);
  EXPECT_EQ(ErrorNumber([&] { repository_.Fields().Item(0); }), 5);
}

TEST_F(ResultRepositoryTest, FieldsCarryAttributesLimitsAndRules) {
  RuleCatalogueList& rules = repository_.RuleCatalogue();
  auto a = rules.Add("A");
  a->attributes.texts[0] = "Above UCL";
  a->ordinal = 2;
  rules.Add("C")->ordinal = 1;

  std::shared_ptr<RepositoryField> weight = repository_.Fields().Item(2);
  weight->SetAttribute(FieldAttribute::kUnits, "kg");
  weight->Limit(LimitKind::kUsl) = {2, 12.5};
  weight->AddRule(*rules.Item("c"));
  weight->AddRule(*rules.Item("a"));

  // The same field object through the repository's Dispatch surface.
  Variant fields = repository_.Get("Fields");
  Variant field = fields.ToObject()->Get("", {Long(2)});
  ASSERT_TRUE(field.IsObject());
  EXPECT_EQ(field.ToObject(), std::shared_ptr<Dispatch>(weight));
  EXPECT_EQ(field.ToObject()->Get("UNITS"), Variant("kg"));
  EXPECT_EQ(field.ToObject()->Get("RULES"), Variant("CA"));
  EXPECT_EQ(field.ToObject()->Get("LimitValue", {"USL"}), Variant(12.5));
  EXPECT_EQ(weight->Rules()[1].attributes.texts[0], "Above UCL");
  EXPECT_EQ(weight->FieldType(), 4);
  EXPECT_EQ(weight->Length(), 8);
  EXPECT_EQ(weight->Decimals(), 2);
}

TEST_F(ResultRepositoryTest, RuleCatalogueFindsKeysWithoutRegardToCase) {
  RuleCatalogueList& rules = repository_.RuleCatalogue();
  auto a = rules.Add("A");
  rules.Add("b");
  EXPECT_EQ(rules.Item("a"), a);
  EXPECT_EQ(rules.ItemAt(2)->key, "b");
  EXPECT_EQ(ErrorNumber([&] { rules.Add("B"); }), 5);
  EXPECT_EQ(ErrorNumber([&] { rules.Add(""); }), 5);
  EXPECT_EQ(ErrorNumber([&] { rules.Item("C"); }), 5);
  EXPECT_EQ(ErrorNumber([&] { rules.ItemAt(0); }), 5);
  EXPECT_EQ(ErrorNumber([&] { rules.ItemAt(3); }), 5);
  EXPECT_EQ(rules.Count(), 2);

  // Scripts: by key or by position, and entries share the catalogue's data.
  std::shared_ptr<Dispatch> catalogue =
      repository_.Get("rulecatalogue").ToObject();
  catalogue->Get("", {"A"}).ToObject()->Put("Ordinal", Long(9));
  EXPECT_EQ(a->ordinal, 9);
  catalogue->Get("", {"a"}).ToObject()->Put("Text", "name", {Long(6)});
  EXPECT_EQ(a->attributes.texts[5], "name");
  catalogue->Get("Item", {Long(1)}).ToObject()->Put("Number", 2.5, {Long(2)});
  EXPECT_EQ(a->attributes.numbers[1], 2.5);
  EXPECT_EQ(catalogue->Get("", {Long(2)}).ToObject()->Get("Key"), Variant("b"));
  std::shared_ptr<Dispatch> entry = catalogue->Get("", {"A"}).ToObject();
  EXPECT_EQ(ErrorNumber([&] { entry->Get("Text", {Long(7)}); }), 9);
  EXPECT_EQ(ErrorNumber([&] { entry->Get("Number", {Long(0)}); }), 9);
  EXPECT_EQ(ErrorNumber([&] { entry->Put("Key", "Z"); }), 438);
  EXPECT_EQ(catalogue->Call("Add", {"D"}).ToObject()->Get("Key"), Variant("D"));
  EXPECT_EQ(catalogue->Enumerate().size(), 3u);
}

TEST(StatisticsCatalogueTest, EntriesAreNumberedUniquelyAndDescribed) {
  ResultRepository repository;
  const StatisticsCatalogueList& statistics = repository.StatisticsCatalogue();
  ASSERT_GE(statistics.Count(), 10);
  std::set<int16_t> references;
  std::set<std::string> descriptions;
  int selected = 0;
  for (int32_t i = 1; i <= statistics.Count(); ++i) {
    const StatisticEntry entry = statistics.Item(i);
    EXPECT_GT(entry.reference, 0) << i;
    EXPECT_FALSE(entry.description.empty()) << i;
    references.insert(entry.reference);
    descriptions.insert(entry.description);
    selected += entry.selected ? 1 : 0;
  }
  EXPECT_EQ(references.size(), static_cast<size_t>(statistics.Count()));
  EXPECT_EQ(descriptions.size(), static_cast<size_t>(statistics.Count()));
  EXPECT_GT(selected, 0);
  EXPECT_LT(selected, statistics.Count());
  EXPECT_EQ(statistics.Item(1).description, "Count");
  EXPECT_EQ(ErrorNumber([&] { statistics.Item(0); }), 5);
  EXPECT_EQ(ErrorNumber([&] { statistics.Item(statistics.Count() + 1); }), 5);

  std::shared_ptr<Dispatch> list =
      repository.Get("StatisticsCatalogue").ToObject();
  EXPECT_EQ(list->Get("Count"), Variant(statistics.Count()));
  std::shared_ptr<Dispatch> second = list->Get("", {Long(2)}).ToObject();
  EXPECT_EQ(second->Get("Description"),
            Variant(statistics.Item(2).description));
  EXPECT_EQ(second->Get("Reference"), Variant(statistics.Item(2).reference));
  EXPECT_EQ(second->Get("selected"), Variant(statistics.Item(2).selected));
  EXPECT_EQ(ErrorNumber([&] { second->Put("Selected", false); }), 438);
  EXPECT_EQ(list->Enumerate().size(), static_cast<size_t>(statistics.Count()));
}

TEST_F(ResultRepositoryTest, ResetDropsTheRunAndKeepsCatalogueAndLists) {
  repository_.SetValue(3, 1, std::string(50, 'z'));
  repository_.SetSourceRecord(2, 5);
  repository_.SetTitle("Line 4");
  repository_.SetSpecialColumn1(3);
  repository_.SetSpecialColumn2(4);
  repository_.SetSpecialColumn3(5);
  repository_.SetLeadingColumnCount(2);
  repository_.SetFileSetting1(7);
  repository_.SetFileSetting2(-8);
  repository_.SetFileSetting3(2.5);
  repository_.RuleCatalogue().Add("A");
  std::shared_ptr<RepositoryField> old_field = repository_.Fields().Item(2);
  RepositoryFieldList* fields_before = &repository_.Fields();
  std::shared_ptr<Dispatch> fields_object =
      repository_.Get("Fields").ToObject();

  repository_.ResetRepository();

  EXPECT_EQ(repository_.RecordCount(), 0);
  EXPECT_EQ(repository_.Fields().Count(), 0);
  EXPECT_EQ(repository_.RuleCatalogue().Count(), 0);
  EXPECT_EQ(repository_.OutOfLineValues(), 0u);
  EXPECT_EQ(repository_.Title(), "");
  EXPECT_EQ(repository_.SpecialColumn1(), 0);
  EXPECT_EQ(repository_.SpecialColumn2(), 0);
  EXPECT_EQ(repository_.SpecialColumn3(), 0);
  EXPECT_EQ(repository_.LeadingColumnCount(), 0);
  EXPECT_EQ(repository_.FileSetting1(), 0);
  EXPECT_EQ(repository_.FileSetting2(), 0);
  EXPECT_EQ(repository_.FileSetting3(), 0);
  EXPECT_EQ(repository_.StatisticsCatalogue().Count(),
            static_cast<int32_t>(ReportableStatistics().size()));
  EXPECT_EQ(repository_.DateFormat(), "yyyy-mm-dd");
  EXPECT_EQ(repository_.TimeFormat(), "hh:mm:ss");
  EXPECT_EQ(&repository_.Fields(), fields_before);
  EXPECT_EQ(fields_object->Get("Count"), Variant(int32_t{0}));
  EXPECT_EQ(old_field->Name(), "Weight");  // detached, still a valid object
  EXPECT_EQ(ErrorNumber([&] { repository_.Value(1, 1); }), 9);

  // A new run on the same repository.
  repository_.Fields().Add("Date", 0, 10, 0, 0);
  repository_.SetValue(2, 1, "x");
  EXPECT_EQ(repository_.RecordCount(), 2);
  EXPECT_TRUE(repository_.Value(1, 1).IsEmpty());
  repository_.RuleCatalogue().Add("A");  // the old key is free again
}

TEST_F(ResultRepositoryTest, DispatchReachesEveryMemberInAnyCase) {
  struct Row {
    const char* name;
    Variant value;
  };
  const Row header_items[] = {
      {"title", "Line 4"},
      {"SPECIALCOLUMN1", Long(3)},
      {"specialColumn2", Long(4)},
      {"SpecialColumn3", Long(5)},
      {"leadingcolumncount", Long(2)},
      {"FileSetting1", Long(-1)},
      {"FILESETTING2", Long(65536)},
      {"filesetting3", 2.5},
  };
  for (const Row& row : header_items) {
    repository_.Put(row.name, row.value);
    EXPECT_EQ(repository_.Get(row.name), row.value) << row.name;
  }
  EXPECT_EQ(repository_.Title(), "Line 4");
  EXPECT_EQ(repository_.FileSetting2(), 65536);
  repository_.Put("FileSetting1", "12");  // converted like any property
  EXPECT_EQ(repository_.FileSetting1(), 12);
  EXPECT_EQ(ErrorNumber([&] { repository_.Put("FileSetting1", "twelve"); }),
            13);
  EXPECT_EQ(repository_.FileSetting1(), 12);

  repository_.Put("value", 4.5, {Long(2), Long(2)});
  EXPECT_EQ(repository_.Get("VALUE", {Long(2), Long(2)}), Variant(4.5));
  EXPECT_EQ(repository_.Get("recordcount"), Long(2));
  repository_.Call("setsourcerecord", {Long(2), Long(77)});
  EXPECT_EQ(repository_.Get("SourceRecord", {Long(2)}), Long(77));
  repository_.Call("DELETERECORD", {Long(1)});
  EXPECT_EQ(repository_.RecordCount(), 1);
  EXPECT_EQ(repository_.SourceRecord(1), 77);
  EXPECT_EQ(repository_.Get("dateformat"), Variant("yyyy-mm-dd"));
  EXPECT_EQ(repository_.Get("TimeFormat"), Variant("hh:mm:ss"));
  EXPECT_EQ(repository_.Get("fields").ToObject()->Get("count"), Long(2));
  // A list read with arguments goes to its default member.
  EXPECT_EQ(repository_.Get("Fields", {Long(2)}).ToObject()->Get("NAME"),
            Variant("Weight"));
  repository_.Call("resetrepository");
  EXPECT_EQ(repository_.Fields().Count(), 0);
  EXPECT_EQ(repository_.Title(), "");

  EXPECT_EQ(ErrorNumber([&] { repository_.Get("Value", {Long(1)}); }), 450);
  EXPECT_EQ(ErrorNumber([&] { repository_.Call("DeleteRecord"); }), 450);
  EXPECT_EQ(ErrorNumber([&] { repository_.Put("DateFormat", "dd"); }), 438);
  EXPECT_EQ(ErrorNumber([&] { repository_.Put("RecordCount", Long(3)); }), 438);
  EXPECT_EQ(ErrorNumber([&] { repository_.Get("Colour"); }), 438);
  EXPECT_EQ(repository_.ClassName(), "RzRep");
  const std::vector<std::string> names = repository_.MemberNames();
  for (const char* name :
       {"ResetRepository", "RecordCount", "Value", "DeleteRecord",
        "SetSourceRecord", "Title", "SpecialColumn1", "SpecialColumn2",
        "SpecialColumn3", "LeadingColumnCount", "FileSetting1", "FileSetting2",
        "FileSetting3", "DateFormat", "TimeFormat", "Fields", "RuleCatalogue",
        "StatisticsCatalogue"}) {
    EXPECT_NE(std::find(names.begin(), names.end(), name), names.end()) << name;
    // Every listed member answers (a read, or 450 for a missing argument).
    const int32_t error = ErrorNumber([&] { repository_.Get(name); });
    EXPECT_TRUE(error == 0 || error == 450) << name << " " << error;
  }
}

TEST(ResultRepositoryOwnershipTest, AListObjectKeepsItsRepositoryAlive) {
  auto repository = std::make_shared<ResultRepository>();
  repository->Fields().Add("Date", 0, 10, 0, 0);
  std::shared_ptr<Dispatch> fields = repository->Get("Fields").ToObject();
  std::weak_ptr<ResultRepository> watch = repository;
  repository.reset();
  EXPECT_FALSE(watch.expired());
  EXPECT_EQ(fields->Get("Count"), Long(1));
  fields.reset();
  EXPECT_TRUE(watch.expired());
}

// Every kind of value reads back exactly as written, in each storage form
// (inline, out of line) and when overwritten by another form.
TEST(CellRoundTripTest, EveryVariantKindReadsBackExactly) {
  const std::string fourteen = "abcdefghijklmn";  // inline limit
  const std::string fifteen = "abcdefghijklmno";  // first long one
  const std::string utf8_fourteen =
      "\xC3\xA9\xC3\xA9\xC3\xA9\xC3\xA9\xC3\xA9"
      "\xC3\xA9\xC3\xA9";  // 7 x é
  const std::string utf8_sixteen = utf8_fourteen + "\xC3\xA9";
  const std::string with_nul("a\0b", 3);
  auto object = std::make_shared<ResultRepository>();
  const Variant values[] = {
      Variant(),
      Variant::Null(),
      Variant(true),
      Variant(false),
      Variant(int16_t{-32768}),
      Variant(int16_t{32767}),
      Long(std::numeric_limits<int32_t>::min()),
      Long(std::numeric_limits<int32_t>::max()),
      Variant(0.1),
      Variant(-1e308),
      Variant(std::numeric_limits<double>::denorm_min()),
      Variant(std::numeric_limits<double>::infinity()),
      Variant::Date(39000.5),
      Variant::Date(-657434.0),
      Variant(""),
      Variant(fourteen),
      Variant(fifteen),
      Variant(utf8_fourteen),
      Variant(utf8_sixteen),
      Variant(with_nul),
      Variant(std::string(10000, 'q')),
      Variant(std::shared_ptr<Dispatch>(object)),
      Variant(VariantArray{Long(1), "two", Variant::Null()}),
  };
  ResultRepository repository;
  repository.Fields().Add("A", 1, 10, 0, 0);
  repository.Fields().Add("B", 1, 10, 0, 0);
  int32_t record = 0;
  for (const Variant& value : values) {
    ++record;
    repository.SetValue(record, 2, value);
    EXPECT_EQ(repository.Value(record, 2), value) << "record " << record;
    EXPECT_EQ(repository.Value(record, 2).Type(), value.Type()) << record;
  }
  // Overwrite each with the next kind and back: no value leaks into another.
  for (int32_t r = 1; r < record; ++r) {
    const Variant& next = values[r];
    repository.SetValue(r, 2, next);
    EXPECT_EQ(repository.Value(r, 2), next) << r;
    repository.SetValue(r, 2, values[r - 1]);
    EXPECT_EQ(repository.Value(r, 2), values[r - 1]) << r;
    EXPECT_TRUE(repository.Value(r, 1).IsEmpty()) << r;
  }
  // Out of line: the long text, the 15-byte, the 16-byte UTF-8 text, the
  // object and the array.
  EXPECT_EQ(repository.OutOfLineValues(), 5u);
}

TEST(CellRoundTripTest, DoublesKeepTheirBits) {
  const double values[] = {-0.0, std::numeric_limits<double>::quiet_NaN(),
                           -std::numeric_limits<double>::quiet_NaN(),
                           std::numeric_limits<double>::signaling_NaN()};
  ResultRepository repository;
  repository.Fields().Add("X", 4, 8, 2, 0);
  for (double value : values) {
    repository.SetValue(1, 1, value);
    const double back = repository.Value(1, 1).ToDouble();
    EXPECT_EQ(std::memcmp(&back, &value, sizeof value), 0) << value;
  }
  repository.SetValue(1, 1, Variant::Date(-0.0));
  const Variant date = repository.Value(1, 1);
  EXPECT_EQ(date.Type(), VariantType::kDate);
  EXPECT_TRUE(std::signbit(date.ToDate()));
}

}  // namespace
}  // namespace rz
