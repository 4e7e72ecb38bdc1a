// Copyright 2026 The Veltmark authors.

// The view catalogue, the filter, fresh records and the scripts' surface
// of ApplicationFile.

#include <gtest/gtest.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <filesystem>
#include <functional>
#include <memory>
#include <set>
#include <string>
#include <vector>

#include "appfile/application_file.h"
#include "components/appfile/application_test_fixture.h"
#include "components/appfile/data_file_helpers.h"
#include "core/error.h"
#include "support/error_number.h"

namespace rz {
namespace {

namespace fs = std::filesystem;

// --- The view catalogue ---

class CatalogueTest : public ApplicationFileTest {
 protected:
  void SetUp() override {
    Export("line4.rzt");
    // A template touched by hand: comments and spacing of its own.
    std::string text = ReadBinaryFile(Path("line4.rzt"));
    text.replace(text.find("[VIEWS]\r\n"), 9,
                 "; the views\r\n[VIEWS]\r\n  Sort=name\r\n");
    text.insert(0, "; made by hand\r\n");
    WriteBinaryFileAtomically(Path("line4.rzt"), text);
    file_ = Open("line4.rzt");
    ViewCatalogue& views = file_->Views();
    views.Add("Daily", 1);
    views.Add("Weekly", 2);
    views.Add("By shift", 5);
    views.SetDefaultView(3);
    views.Save();
  }

  // The template's lines that are not catalogue lines.
  std::vector<std::string> OtherLines() const {
    const std::string text = ReadBinaryFile(Path("line4.rzt"));
    std::vector<std::string> lines;
    size_t start = 0;
    while (start < text.size()) {
      const size_t end = text.find('\n', start);
      const std::string line = text.substr(start, end - start);
      if (line.find("VIEW ") == std::string::npos &&
          line.find("DEFAULT ") == std::string::npos) {
        lines.push_back(line);
      }
      start = end + 1;
    }
    return lines;
  }

  std::vector<ViewEntry> Entries(ViewCatalogue& views) const {
    std::vector<ViewEntry> entries;
    for (int32_t i = 1; i <= views.Count(); ++i) {
      entries.push_back(views.Item(i));
    }
    return entries;
  }

  std::unique_ptr<ApplicationFile> file_;
};

TEST_F(CatalogueTest, ChangesPersistAcrossRefreshAndReopening) {
  const std::vector<std::string> other_lines = OtherLines();
  ViewCatalogue& views = file_->Views();
  views.Swap(1, 3);
  views.Remove(2);
  views.Add("Monthly", 7);
  views.SetDefaultView(1);
  const std::vector<ViewEntry> saved = {
      {"By shift", 5}, {"Daily", 1}, {"Monthly", 7}};
  EXPECT_EQ(Entries(views), saved);
  views.Save();
  EXPECT_EQ(OtherLines(), other_lines);

  views.Add("Unsaved", 9);
  views.SetDefaultView(4);
  file_->RefreshViews();
  EXPECT_EQ(Entries(views), saved);
  EXPECT_EQ(views.DefaultView(), 1);

  auto reopened = Open("line4.rzt");
  EXPECT_EQ(Entries(reopened->Views()), saved);
  EXPECT_EQ(reopened->Views().DefaultView(), 1);
  const std::string text = ReadBinaryFile(Path("line4.rzt"));
  EXPECT_EQ(text.rfind("; made by hand\r\n", 0), 0u);
  EXPECT_NE(text.find("; the views\r\n[VIEWS]\r\n  Sort=name\r\n"),
            std::string::npos);
}

TEST_F(CatalogueTest, ArgumentsAreChecked) {
  ViewCatalogue& views = file_->Views();
  struct Row {
    const char* what;
    std::function<void()> action;
  };
  const Row rows[] = {
      {"number 0", [&] { views.Add("x", 0); }},
      {"number in use", [&] { views.Add("x", 5); }},
      {"remove 0", [&] { views.Remove(0); }},
      {"remove 4", [&] { views.Remove(4); }},
      {"swap 4", [&] { views.Swap(1, 4); }},
      {"item 0", [&] { views.Item(0); }},
      {"default 4", [&] { views.SetDefaultView(4); }},
      {"default -1", [&] { views.SetDefaultView(-1); }},
  };
  for (const Row& row : rows) {
    EXPECT_EQ(ErrorNumber(row.action), 5) << row.what;
  }
  EXPECT_EQ(Entries(views).size(), 3u);  // nothing changed
  EXPECT_EQ(views.DefaultView(), 3);

  ApplicationFile closed;
  EXPECT_EQ(ErrorNumber([&] { closed.Views().Save(); }), 5);
  EXPECT_EQ(ErrorNumber([&] { closed.RefreshViews(); }), 5);
}

TEST_F(CatalogueTest, ANewApplicationWritesItsCatalogueWithItsTemplate) {
  ApplicationFile file;
  AddVariables(file);
  file.SetOpenMode(kOpenCreateNew);
  file.OpenApplication(Path("new.rzt"));
  file.Views().Add("First", 1);
  file.Views().SetDefaultView(1);
  file.Views().Save();  // nothing on disk yet
  EXPECT_FALSE(FileExists(Path("new.rzt")));
  file.CloseApplication();
  auto read = Open("new.rzt");
  EXPECT_EQ(Entries(read->Views()), (std::vector<ViewEntry>{{"First", 1}}));
  EXPECT_EQ(read->Views().DefaultView(), 1);
}

// --- Filter, freshness, distinct values ---

TEST_F(ApplicationFileTest, ConditionsDecideRecordIncluded) {
  Export("line4.rzt");
  auto file = Open("line4.rzt");
  ConditionList& conditions = file->Conditions();
  auto included = [&] {
    std::vector<int32_t> records;
    for (int32_t r = 1; r <= file->RecordCount(); ++r) {
      file->GotoRecord(r);
      EXPECT_FALSE(file->RecordExcluded());
      if (file->RecordIncluded()) records.push_back(r);
    }
    return records;
  };
  EXPECT_EQ(included(), (std::vector<int32_t>{1, 2, 3, 4}));  // no conditions

  conditions.Add(0, "(", 0, ">=", "2006-10-10 10:00:00", "");
  conditions.Add(1, "", 0, "<=", "2006-10-12 00:00:00", ")");
  EXPECT_EQ(included(), (std::vector<int32_t>{2, 3}));
  // The list changed: recompiled. Or stays inside the period (record 1
  // has "Ann" but lies before it).
  conditions.Add(1, "", 3, "<", "100", "");
  conditions.Add(2, "", 4, "=", "ann", "");
  EXPECT_EQ(included(), (std::vector<int32_t>{3}));
  conditions.Clear();
  conditions.Add(0, "", 4, "=", "NULL", "");
  EXPECT_EQ(included(), (std::vector<int32_t>{3, 4}));  // blank text is none

  // Unbalanced brackets: accepted by Add, raised where first used.
  conditions.Clear();
  EXPECT_EQ(ErrorNumber([&] { conditions.Add(0, "(", 3, ">", "1", ""); }), 0);
  EXPECT_EQ(conditions.Count(), 1);
  file->GotoRecord(1);
  try {
    file->RecordIncluded();
    ADD_FAILURE() << "no error";
  } catch (const Error& error) {
    EXPECT_EQ(error.Number(), 5);
    EXPECT_NE(error.Description().find("Filter brackets do not balance"),
              std::string::npos);
  }
  bool found = false;
  EXPECT_EQ(ErrorNumber([&] {
              file->FindDateRange("2006-10-10 00:00:00", "2006-10-12 00:00:00",
                                  found);
            }),
            5);
  EXPECT_EQ(ErrorNumber([&] { file->RecordIncluded(); }), 5);  // still
  conditions.Add(1, "", 3, "<", "200", ")");
  EXPECT_TRUE(file->RecordIncluded());

  file->MoveFirst();
  EXPECT_EQ(ErrorNumber([&] { file->RecordIncluded(); }), 5);  // no record
  EXPECT_EQ(ErrorNumber([&] { file->RecordExcluded(); }), 5);
}

TEST_F(ApplicationFileTest, FindDateRangeGivesTheBounds) {
  Export("line4.rzt");
  auto file = Open("line4.rzt");
  struct Row {
    std::string begin;
    std::string end;
    bool found;
    int32_t first;
    int32_t last;
  };
  const Row rows[] = {
      {"2006-10-10 08:00:00", "2006-10-12 23:59:59", true, 1, 4},
      {"2006-10-10 08:00:01", "2006-10-11 06:30:00", true, 2, 3},
      {"2006-10-13 00:00:00", "2006-10-14 00:00:00", false, 0, 0},
  };
  for (const Row& row : rows) {
    bool found = !row.found;
    file->FindDateRange(row.begin, row.end, found);
    EXPECT_EQ(found, row.found) << row.begin;
    EXPECT_EQ(file->RangeFirstRecord(), row.first) << row.begin;
    EXPECT_EQ(file->RangeLastRecord(), row.last) << row.begin;
  }
  bool found = false;
  EXPECT_EQ(ErrorNumber([&] { file->FindDateRange("soon", "later", found); }),
            13);
}

TEST_F(ApplicationFileTest, MoveFirstSeesRecordsAppendedElsewhere) {
  Export("line4.rzt");
  auto file = Open("line4.rzt");
  {
    OtherConnection other(Path("line4.rzd"));
    other.Exec(
        "INSERT INTO records (v1, v2, v3, v4, v5) VALUES "
        "('2006-10-13', '01:00:00', 150, 'Cy', 1)");
  }
  // The hot path does not look at the file.
  EXPECT_EQ(file->RecordCount(), 4);
  EXPECT_EQ(ErrorNumber([&] { file->GotoRecord(5); }), 9);
  file->MoveLast();
  EXPECT_EQ(file->RecordCount(), 5);
  ASSERT_TRUE(file->ReadPrevious());
  EXPECT_EQ(file->Value(4), Variant("Cy"));

  {
    OtherConnection other(Path("line4.rzd"));
    other.Exec(
        "INSERT INTO records (v1, v2, v3, v4, v5) VALUES "
        "('2006-10-14', '01:00:00', 160, 'Dee', 1)");
  }
  const std::vector<Variant> operators = file->DistinctValues(4);
  EXPECT_EQ(operators, (std::vector<Variant>{"Ann", "bob", "Cy", "Dee"}));
  EXPECT_EQ(file->RecordCount(), 6);
  EXPECT_EQ(file->DistinctValues(3),
            (std::vector<Variant>{-0.5, 99.0, 101.5, 150.0, 160.0}));
}

// --- Dispatch ---

TEST_F(ApplicationFileTest, ScriptsReachEveryPartByName) {
  Export("line4.rzt");
  auto file = std::make_shared<ApplicationFile>();
  file->Put("openmode", int16_t{2});
  file->Call("OPENAPPLICATION", {Path("line4.rzt")});
  EXPECT_EQ(file->Get("ApplicationExists"), Variant(true));
  EXPECT_EQ(file->Get("title"), Variant("Line 4 \xC3\xA9"));
  EXPECT_EQ(file->Get("AppTitle"), file->Get("Title"));
  EXPECT_EQ(file->Get("RecordCount"), Variant(int32_t{4}));
  EXPECT_EQ(file->Get("HeaderItem", {"item7"}), Variant(7.0));
  EXPECT_EQ(file->Get("DefaultLookBack"), Variant(int16_t{-1}));
  EXPECT_EQ(file->Get("ShiftStartText"), Variant("06:00"));

  file->Call("GotoRecord", {int32_t{2}});
  EXPECT_EQ(file->Get("Value", {int16_t{4}}), Variant(" bob "));
  EXPECT_EQ(file->Get("Variables", {int16_t{3}}).ToObject()->Get("NAME"),
            Variant("Weight"));
  const Variant variables = file->Get("Variables");
  EXPECT_EQ(variables.ToObject()->Get("Count"), Variant(int32_t{5}));
  EXPECT_EQ(variables.ToObject()->Get("", {int16_t{3}}).ToObject()->Get("NAME"),
            Variant("Weight"));
  EXPECT_EQ(file->Get("Rules").ToObject()->Get("Count"), Variant(int32_t{0}));

  const Variant views = file->Get("Views");
  views.ToObject()->Call("Add", {"Daily", int32_t{3}});
  views.ToObject()->Put("DefaultView", int32_t{1});
  EXPECT_EQ(views.ToObject()->Get("Item", {1}).ToObject()->Get("Number"),
            Variant(int32_t{3}));
  EXPECT_EQ(file->Views().DefaultView(), 1);

  const Variant conditions = file->Get("Conditions");
  conditions.ToObject()->Call("Add",
                              {int16_t{0}, "", int16_t{3}, ">", "100", ""});
  EXPECT_EQ(file->Conditions().Count(), 1);
  file->Call("GotoRecord", {int32_t{1}});
  EXPECT_EQ(file->Get("RecordIncluded"), Variant(true));

  DispatchArgs range = {"2006-10-11 00:00:00", "2006-10-12 00:00:00", false};
  EXPECT_EQ(file->Invoke("FindDateRange", InvokeKind::kCall, range),
            Variant(true));
  EXPECT_EQ(range[2], Variant(true));  // by reference
  EXPECT_EQ(file->Get("RangeFirstRecord"), Variant(int32_t{3}));

  const Variant distinct = file->Call("DistinctValues", {int16_t{5}});
  EXPECT_EQ(distinct.ToArray().size(), 3u);
  EXPECT_EQ(
      file->Call("SameStructure", {Variant(std::shared_ptr<Dispatch>(file))}),
      Variant(true));
  EXPECT_EQ(ErrorNumber([&] { file->Get("NoSuchMember"); }), 438);
  EXPECT_EQ(ErrorNumber([&] { file->Get("Summarize"); }), 438);  // write-only
  EXPECT_EQ(ErrorNumber([&] { file->Put("Summarize", true); }), 0);
  file->Call("SortFile");  // the condition above: Weight > 100
  EXPECT_EQ(file->Get("SummaryExtent"), Variant(int32_t{1}));
  DispatchArgs weight = {int16_t{3}};
  auto& statistics_list = dynamic_cast<Dispatch&>(file->ColumnStatistics());
  const Variant statistics =
      statistics_list.Invoke("Item", InvokeKind::kGet, weight);
  ASSERT_TRUE(statistics.IsObject());
  EXPECT_EQ(statistics.ToObject()->Get("count"), Variant(int32_t{1}));
  EXPECT_EQ(statistics.ToObject()->Get("Maximum"), Variant(101.5));
  EXPECT_EQ(ErrorNumber([&] { statistics.ToObject()->Get("Median"); }), 438);
  EXPECT_EQ(ErrorNumber([&] { statistics.ToObject()->Put("Sum", 1.0); }), 438);
  EXPECT_EQ(statistics.ToObject()->MemberNames().size(), 23u);

  const std::vector<std::string> names = file->MemberNames();
  for (const char* name : {"OpenMode",
                           "OpenApplication",
                           "AppTitle",
                           "Title",
                           "BasePath",
                           "AppFolder",
                           "TemplateDateTime",
                           "DataDateTime",
                           "RecordCount",
                           "MoveFirst",
                           "ReadNext",
                           "MoveLast",
                           "ReadPrevious",
                           "GotoRecord",
                           "Value",
                           "Variables",
                           "Conditions",
                           "SetValue",
                           "SaveRecord",
                           "AddRecord"}) {
    EXPECT_NE(std::find(names.begin(), names.end(), name), names.end()) << name;
  }
}

TEST_F(ApplicationFileTest, AListHeldByAScriptKeepsItsFileAlive) {
  Export("line4.rzt");
  Variant variables;
  {
    auto file = std::make_shared<ApplicationFile>();
    file->SetOpenMode(kOpenExisting);
    file->OpenApplication(Path("line4.rzt"));
    variables = file->Get("Variables");
  }
  EXPECT_EQ(variables.ToObject()->Get("Count"), Variant(int32_t{5}));
}

TEST_F(ApplicationFileTest, ScriptsWriteANewApplication) {
  auto file = std::make_shared<ApplicationFile>();
  file->Put("AppTitle", "Scripted");
  file->Put("HeaderItem", "x", {"ITEM2"});
  const Variant variables = file->Get("Variables");
  variables.ToObject()->Call("Add", {"Date", "T", int16_t{8}, int16_t{0}});
  variables.ToObject()->Call("Add", {"Time", "T", int16_t{8}, int16_t{0}});
  variables.ToObject()->Call("Add", {"Weight", "N", int16_t{8}, int16_t{2}});
  file->Put("OpenMode", int16_t{1});
  file->Call("OpenApplication", {Path("s.rzt")});
  file->Call("AddRecord");
  file->Call("SetValue", {int16_t{1}, "2006-10-10"});
  file->Call("SetValue", {int16_t{2}, "08:00:00"});
  file->Call("SetValue", {int16_t{3}, 1.5});
  file->Call("SaveRecord", {int32_t{0}});
  file->Call("CloseApplication");

  auto read = Open("s.rzt");
  EXPECT_EQ(read->AppTitle(), "Scripted");
  EXPECT_EQ(read->HeaderItem("ITEM2"), Variant("x"));
  read->GotoRecord(1);
  EXPECT_EQ(read->Value(3), Variant(1.5));
}

}  // namespace
}  // namespace rz
