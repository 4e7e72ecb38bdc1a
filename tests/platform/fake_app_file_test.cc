// Copyright 2026 The Veltmark authors.

#include "support/fake_app_file.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include "core/date_time.h"
#include "support/error_number.h"

namespace rz {
namespace {

constexpr const char* kPath = "/apps/line4.rzt";

class FakeAppFileTest : public ::testing::Test {
 protected:
  FakeAppFileTest() {
    FakeApplication& app = (*disk_)[kPath];
    app.app_title = "Line 4";
    app.AddVariable("Date", "T", 10);
    app.AddVariable("Time", "T", 8);
    app.AddVariable("Weight", "N", 8, 2);
    app.AddVariable("Operator", "T", 12);
    app.AddRecord("2006-10-10", "08:00:00", {12.5, "Ann"});
    app.AddRecord("2006-10-10", "12:00:00", {Variant::Null(), " bob "});
    app.AddRecord("2006-10-11", "06:30:00", {7.0, "ANN"});
    app.views = {{"Daily", 1}, {"Shift", 2}};
    app.default_view = 2;
  }

  std::shared_ptr<FakeAppFile> Open(const std::string& path = kPath) {
    auto file = std::make_shared<FakeAppFile>(disk_);
    file->SetOpenMode(kOpenExisting);
    file->OpenApplication(path);
    return file;
  }

  std::shared_ptr<FakeDisk> disk_ = std::make_shared<FakeDisk>();
};

TEST_F(FakeAppFileTest, NavigationStopsAtBothEnds) {
  auto file = Open();
  ASSERT_TRUE(file->ApplicationExists());
  file->MoveFirst();
  EXPECT_EQ(ErrorNumber([&] { file->Value(1); }), 5);  // before the first
  ASSERT_TRUE(file->ReadNext());
  EXPECT_EQ(file->Value(2), Variant("08:00:00"));
  EXPECT_FALSE(file->ReadPrevious());
  EXPECT_EQ(file->CurrentRecord(), 0);
  ASSERT_TRUE(file->ReadNext());  // back onto the first
  EXPECT_EQ(file->CurrentRecord(), 1);

  file->MoveLast();
  EXPECT_EQ(ErrorNumber([&] { file->Value(1); }), 5);  // after the last
  ASSERT_TRUE(file->ReadPrevious());
  EXPECT_EQ(file->Value(1), Variant("2006-10-11"));
  EXPECT_FALSE(file->ReadNext());
  EXPECT_FALSE(file->ReadNext());  // stays after the last
  ASSERT_TRUE(file->ReadPrevious());
  EXPECT_EQ(file->CurrentRecord(), 3);
}

TEST_F(FakeAppFileTest, EmptyApplicationHasNoFirstRecord) {
  FakeApplication& empty = (*disk_)["/apps/empty.rzt"];
  empty.AddVariable("Date", "T");
  empty.AddVariable("Time", "T");
  auto file = Open("/apps/empty.rzt");
  EXPECT_EQ(file->RecordCount(), 0);
  file->MoveFirst();
  EXPECT_FALSE(file->ReadNext());
  file->MoveLast();
  EXPECT_FALSE(file->ReadPrevious());
  EXPECT_EQ(ErrorNumber([&] { file->Value(0); }), 5);
  EXPECT_EQ(ErrorNumber([&] { file->GotoRecord(1); }), 9);
}

TEST_F(FakeAppFileTest, ValueByVariableKind) {
  auto file = Open();
  file->GotoRecord(2);
  EXPECT_EQ(file->Value(0),
            Variant::Date(DateTimeFromRecordText("2006-10-10", "12:00:00")));
  EXPECT_EQ(file->Value(1), Variant("2006-10-10"));
  EXPECT_TRUE(file->Value(3).IsNull());
  EXPECT_EQ(file->Value(4), Variant(" bob "));
  file->GotoRecord(1);
  EXPECT_EQ(file->Value(3), Variant(12.5));
  EXPECT_EQ(ErrorNumber([&] { file->Value(5); }), 9);
  EXPECT_EQ(ErrorNumber([&] { file->Value(-1); }), 9);
  EXPECT_EQ(ErrorNumber([&] { file->GotoRecord(0); }), 9);
  EXPECT_EQ(ErrorNumber([&] { file->GotoRecord(4); }), 9);
  EXPECT_EQ(file->CurrentRecord(), 1);  // a refused move stays put
}

TEST_F(FakeAppFileTest, MissingApplicationIsNotAnError) {
  auto file = Open("/apps/none.rzt");
  EXPECT_FALSE(file->ApplicationExists());
  EXPECT_EQ(ErrorNumber([&] { file->RecordCount(); }), 5);
}

TEST_F(FakeAppFileTest, OpenModeMustBeSetAndValid) {
  FakeAppFile file(disk_);
  EXPECT_EQ(ErrorNumber([&] { file.OpenApplication(kPath); }), 5);
  EXPECT_EQ(ErrorNumber([&] { file.SetOpenMode(0); }), 5);
  EXPECT_EQ(ErrorNumber([&] { file.SetOpenMode(3); }), 5);
}

TEST_F(FakeAppFileTest, PathGivesBasePathAndFolder) {
  auto file = Open();
  EXPECT_EQ(file->BasePath(), "/apps/line4");
  EXPECT_EQ(file->AppFolder(), "/apps/");
}

TEST_F(FakeAppFileTest, WritesANewApplicationOnlyWhenClosed) {
  FakeAppFile out(disk_);
  out.SetAppTitle("Export");
  out.SetHeaderItem("version", 5.0);
  out.SetHeaderItem(HeaderItemKey(6), int16_t{0});
  EXPECT_EQ(ErrorNumber([&] { out.SetHeaderItem("ITEM19", 1); }), 5);
  out.Variables().Add("Date", "T", 8, 0);
  out.Variables().Add("Time", "T", 8, 0);
  auto weight = out.Variables().Add("Weight", "N", 8, 2);
  EXPECT_EQ(weight->Get(FieldAttribute::kPosition), Variant(int16_t{3}));
  out.SetSecuredFunctions("EXPORT");
  out.AddRule({"A", "Beyond", {}});
  EXPECT_EQ(ErrorNumber([&] { out.AddRule({"a", "Again", {}}); }), 5);
  out.SetOpenMode(kOpenCreateNew);
  out.OpenApplication("/apps/export.rzt");
  EXPECT_EQ(ErrorNumber([&] { out.AddRule({"B", "Late", {}}); }), 5);

  // Header and variables are fixed once the application is open.
  EXPECT_EQ(ErrorNumber([&] { out.SetAppTitle("Other"); }), 5);
  EXPECT_EQ(ErrorNumber([&] { out.Variables().Add("x", "T", 1, 0); }), 5);

  out.AddRecord();
  out.SetValue(1, "2006-10-10");
  out.SetValue(2, "12:00:00");
  EXPECT_EQ(ErrorNumber([&] { out.SetValue(3, "heavy"); }), 13);
  EXPECT_EQ(ErrorNumber([&] { out.SetValue(4, 1.0); }), 9);
  out.SetValue(3, int32_t{7});
  EXPECT_EQ(ErrorNumber([&] { out.SaveRecord(1); }), 5);
  out.SaveRecord(0);
  EXPECT_EQ(ErrorNumber([&] { out.SaveRecord(0); }), 5);  // nothing begun
  out.AddRecord();
  out.SetValue(1, "2006-10-11");
  out.SetValue(2, "00:00:00");
  out.SaveRecord(0);
  EXPECT_EQ(disk_->count("/apps/export.rzt"), 0u);  // not before the close

  out.CloseApplication();
  auto back = Open("/apps/export.rzt");
  ASSERT_TRUE(back->ApplicationExists());
  EXPECT_EQ(back->AppTitle(), "Export");
  EXPECT_EQ(back->SecuredFunctions(), "EXPORT");
  ASSERT_EQ(back->Rules().Count(), 1);
  EXPECT_EQ(back->Rules().Item(1).name, "Beyond");
  EXPECT_EQ(back->HeaderItem("VERSION"), Variant(5.0));
  EXPECT_EQ(back->HeaderItem("ITEM6"), Variant(int16_t{0}));
  EXPECT_TRUE(back->HeaderItem("ITEM7").IsEmpty());
  ASSERT_EQ(back->RecordCount(), 2);
  back->GotoRecord(1);
  EXPECT_EQ(back->Value(3), Variant(7.0));
  back->GotoRecord(2);
  EXPECT_TRUE(back->Value(3).IsNull());
}

TEST_F(FakeAppFileTest, RecordsCanOnlyBeAddedToANewApplication) {
  auto file = Open();
  EXPECT_EQ(ErrorNumber([&] { file->AddRecord(); }), 5);
  EXPECT_EQ(ErrorNumber([&] { file->SetValue(3, 1.0); }), 5);
  FakeAppFile empty(disk_);
  empty.SetOpenMode(kOpenCreateNew);
  EXPECT_EQ(ErrorNumber([&] { empty.OpenApplication("/apps/x.rzt"); }), 5);
}

TEST_F(FakeAppFileTest, ViewCatalogueChangesReachTheDiskOnlyBySave) {
  auto file = Open();
  ViewCatalogue& views = file->Views();
  ASSERT_EQ(views.Count(), 2);
  EXPECT_EQ(views.DefaultView(), 2);
  views.Add("Weekly", 5);
  EXPECT_EQ(ErrorNumber([&] { views.Add("Again", 5); }), 5);
  EXPECT_EQ(ErrorNumber([&] { views.Add("Zero", 0); }), 5);
  views.Swap(1, 3);
  EXPECT_EQ(views.Item(1), (ViewEntry{"Weekly", 5}));
  EXPECT_EQ(views.Item(3), (ViewEntry{"Daily", 1}));
  EXPECT_EQ(views.DefaultView(), 2);  // the caller keeps it in step
  views.Remove(2);
  EXPECT_EQ(views.Count(), 2);
  EXPECT_EQ(ErrorNumber([&] { views.Item(3); }), 5);
  EXPECT_EQ(ErrorNumber([&] { views.SetDefaultView(3); }), 5);
  views.SetDefaultView(0);

  file->RefreshViews();  // unsaved changes are lost
  EXPECT_EQ(views.Count(), 2);
  EXPECT_EQ(views.Item(1).name, "Daily");

  views.Remove(1);
  views.SetDefaultView(1);
  views.Save();
  auto other = Open();
  ASSERT_EQ(other->Views().Count(), 1);
  EXPECT_EQ(other->Views().Item(1), (ViewEntry{"Shift", 2}));
  EXPECT_EQ(other->Views().DefaultView(), 1);
}

TEST_F(FakeAppFileTest, DistinctValuesInOrderWithoutBlanks) {
  FakeApplication& app = (*disk_)[kPath];
  app.AddRecord("2006-10-12", "00:00:00", {12.5, ""});
  app.AddRecord("2006-10-12", "00:00:01", {-3.0, "  "});
  auto file = Open();
  EXPECT_EQ(file->DistinctValues(3),
            (std::vector<Variant>{Variant(-3.0), Variant(7.0), Variant(12.5)}));
  // Trimmed, without regard to case, first spelling kept.
  EXPECT_EQ(file->DistinctValues(4),
            (std::vector<Variant>{Variant("Ann"), Variant("bob")}));
  EXPECT_EQ(ErrorNumber([&] { file->DistinctValues(0); }), 9);
  EXPECT_EQ(ErrorNumber([&] { file->DistinctValues(5); }), 9);
}

TEST_F(FakeAppFileTest, SortFileGroupsByValueWithNoValueFirst) {
  auto file = Open();
  file->SetExcludedRecords({1});
  file->SortKeys().Reset();
  file->SortKeys().Add(3, 3);
  file->SortFile();
  // Record 1 (12.5) is excluded: the no-value group (record 2), then 7.
  SummaryCursorList& cursor = file->SummaryCursor();
  ASSERT_EQ(cursor.Count(), 2);
  EXPECT_EQ(cursor.Item(1).record, 2);
  EXPECT_EQ(cursor.Item(2).record, 3);

  file->SetExcludedRecords({});
  file->SortKeys().Reset();
  file->SortKeys().Add(4, 3);
  file->SortFile();
  ASSERT_EQ(cursor.Count(), 2);  // "Ann" and "ANN" are one group
  EXPECT_EQ(cursor.Item(1).record, 1);
  EXPECT_EQ(cursor.Item(2).record, 2);

  file->SortKeys().Reset();
  file->SetExcludedRecords({1, 2});
  file->SortFile();
  ASSERT_EQ(cursor.Count(), 1);  // no key: one group over what passes
  EXPECT_EQ(cursor.Item(1).record, 3);
  cursor.Reset();
  EXPECT_EQ(cursor.Count(), 0);
}

TEST_F(FakeAppFileTest, SortFileRefusesWhatTheFakeDoesNotDo) {
  auto file = Open();
  file->SortKeys().Add(3, 1);
  EXPECT_EQ(ErrorNumber([&] { file->SortFile(); }), 5);
  file->SortKeys().Reset();
  file->SetSummarize(true);
  EXPECT_EQ(ErrorNumber([&] { file->SortFile(); }), 5);
  EXPECT_EQ(ErrorNumber([&] { file->NextSummary(); }), 5);
  EXPECT_EQ(ErrorNumber([&] { file->ColumnStatistics().Item(3); }), 5);
  // The list resets work.
  file->SummaryKeys().Add(-5);
  file->SummaryKeys().Reset();
  EXPECT_EQ(file->SummaryKeys().Count(), 0);
}

TEST_F(FakeAppFileTest, FindDateRangeIncludesBothBounds) {
  auto file = Open();
  bool found = false;
  file->FindDateRange("2006-10-10 12:00:00", "2006-10-11 06:30:00", found);
  EXPECT_TRUE(found);
  EXPECT_EQ(file->RangeFirstRecord(), 2);
  EXPECT_EQ(file->RangeLastRecord(), 3);

  file->FindDateRange("2006-10-10 12:00:01", "2006-10-11 06:29:59", found);
  EXPECT_FALSE(found);
  EXPECT_EQ(file->RangeFirstRecord(), 0);
  EXPECT_EQ(file->RangeLastRecord(), 0);

  EXPECT_EQ(ErrorNumber([&] {
              file->FindDateRange("2006-13-01 00:00:00", "2006-10-11 06:29:59",
                                  found);
            }),
            13);
}

TEST_F(FakeAppFileTest, ConditionsAreKeptAsGiven) {
  auto file = Open();
  ConditionList& conditions = file->Conditions();
  conditions.Add(0, "(", 0, ">=", "2006-10-10 00:00:00", "");
  conditions.Add(1, "", 0, "<=", "2006-10-11 00:00:00", ")");
  ASSERT_EQ(conditions.Count(), 2);
  EXPECT_EQ(conditions.Item(2),
            (Condition{1, "", 0, "<=", "2006-10-11 00:00:00", ")"}));
  EXPECT_EQ(ErrorNumber([&] { conditions.Item(3); }), 5);
  conditions.Clear();
  EXPECT_EQ(conditions.Count(), 0);
}

TEST_F(FakeAppFileTest, ExclusionSetDecidesBothRecordTests) {
  auto file = Open();
  file->SetExcludedRecords({2});
  file->GotoRecord(1);
  EXPECT_FALSE(file->RecordExcluded());
  EXPECT_TRUE(file->RecordIncluded());
  file->GotoRecord(2);
  EXPECT_TRUE(file->RecordExcluded());
  EXPECT_FALSE(file->RecordIncluded());
}

TEST_F(FakeAppFileTest, DispatchByNameWithoutRegardToCase) {
  auto file = Open();
  EXPECT_EQ(file->Get("apptitle"), Variant("Line 4"));
  EXPECT_EQ(file->Get("TITLE"), Variant("Line 4"));
  EXPECT_EQ(file->Get("recordcount"), Variant(int32_t{3}));
  file->Call("gotorecord", {Variant(int32_t{3})});
  EXPECT_EQ(file->Get("VALUE", {Variant(int32_t{4})}), Variant("ANN"));
  EXPECT_EQ(ErrorNumber([&] { file->Get("Colour"); }), 438);
  EXPECT_EQ(ErrorNumber([&] { file->Call("GotoRecord"); }), 450);
}

}  // namespace
}  // namespace rz
