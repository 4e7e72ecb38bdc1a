// Copyright 2026 The Veltmark authors.

// Opening, reading and writing applications through ApplicationFile.

#include "appfile/application_file.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <csignal>
#include <filesystem>
#include <functional>
#include <memory>
#include <set>
#include <string>
#include <vector>

#include "appfile/sqlite_data_store.h"
#include "components/appfile/application_test_fixture.h"
#include "core/error.h"
#include "platform/application_replace.h"
#include "platform/script_reachable.h"
#include "support/error_number.h"
#include "support/forked.h"

namespace rz {
namespace {

namespace fs = std::filesystem;

// --- Writing and reading back ---

TEST_F(ApplicationFileTest, AnExportReadsBackWhole) {
  Export("line4.rzt");
  EXPECT_EQ(FolderNames(),
            (std::set<std::string>{"line4.rzt", "line4.rzd", "line4.rzc"}));

  ApplicationFile expected;
  SetExportHeader(expected);
  AddVariables(expected);
  auto file = Open("line4.rzt");
  ASSERT_TRUE(file->ApplicationExists());
  EXPECT_EQ(file->AppTitle(), expected.AppTitle());
  EXPECT_EQ(file->LeadingVariableCount(), 2);
  EXPECT_EQ(file->DefaultLookBack(), -1);
  EXPECT_EQ(file->SpecialVariable1(), 2);
  EXPECT_EQ(file->SpecialVariable2(), 1);
  EXPECT_EQ(file->SpecialVariable3(), 3);
  EXPECT_EQ(file->FileSetting1(), Variant(1.0));
  EXPECT_EQ(file->FileSetting2(), Variant(0.0));
  EXPECT_EQ(file->FileSetting3(), Variant(2.5));
  EXPECT_EQ(file->ShiftHours(), 8.0);
  EXPECT_EQ(file->ShiftStartText(), "06:00");
  EXPECT_EQ(file->HeaderItem("VERSION"), Variant(5.0));
  for (int i = 1; i <= kHeaderItemCount; ++i) {
    EXPECT_EQ(file->HeaderItem(HeaderItemKey(i)),
              expected.HeaderItem(HeaderItemKey(i)))
        << "ITEM" << i;
  }
  EXPECT_EQ(file->Rules().Count(), 0);
  EXPECT_EQ(file->Views().Count(), 0);

  ASSERT_EQ(file->Variables().Count(), 5);
  for (int32_t i = 1; i <= 5; ++i) {
    EXPECT_TRUE(*file->Variables().Item(i) == *expected.Variables().Item(i))
        << "variable " << i;
  }
  EXPECT_EQ(file->Variables().Item(3)->GetLimit(LimitKind::kUsl),
            (Limit{"F", 110.25}));

  ASSERT_EQ(file->RecordCount(), 4);
  for (int32_t r = 1; r <= 4; ++r) {
    file->GotoRecord(r);
    const Record& record = Records()[static_cast<size_t>(r - 1)];
    for (int16_t k = 1; k <= 5; ++k) {
      EXPECT_EQ(file->Value(k), record[static_cast<size_t>(k - 1)])
          << "record " << r << " variable " << k;
    }
  }
  file->GotoRecord(1);
  const Variant when = file->Value(0);
  EXPECT_EQ(when.Type(), VariantType::kDate);
  EXPECT_NEAR(when.ToDate(), 39000 + 8.0 / 24, 1e-9);
}

TEST_F(ApplicationFileTest, NavigationStopsAtBothEnds) {
  Export("line4.rzt");
  auto file = Open("line4.rzt");
  file->MoveFirst();
  EXPECT_EQ(ErrorNumber([&] { file->Value(1); }), 5);  // before the first
  ASSERT_TRUE(file->ReadNext());
  EXPECT_EQ(file->Value(2), Variant("08:00:00"));
  EXPECT_FALSE(file->ReadPrevious());
  EXPECT_EQ(ErrorNumber([&] { file->Value(1); }), 5);
  ASSERT_TRUE(file->ReadNext());
  EXPECT_EQ(file->Value(2), Variant("08:00:00"));

  file->MoveLast();
  EXPECT_EQ(ErrorNumber([&] { file->Value(1); }), 5);  // after the last
  ASSERT_TRUE(file->ReadPrevious());
  EXPECT_EQ(file->Value(1), Variant("2006-10-12"));
  EXPECT_FALSE(file->ReadNext());
  EXPECT_FALSE(file->ReadNext());  // stays after the last
  ASSERT_TRUE(file->ReadPrevious());
  EXPECT_EQ(file->Value(1), Variant("2006-10-12"));

  // Reading forward from the start visits every record once.
  file->MoveFirst();
  int visited = 0;
  while (file->ReadNext()) ++visited;
  EXPECT_EQ(visited, 4);
}

TEST_F(ApplicationFileTest, RecordAndVariableNumbersAreChecked) {
  Export("line4.rzt");
  auto file = Open("line4.rzt");
  struct Row {
    const char* what;
    std::function<void()> action;
    int32_t error;
  };
  const Row rows[] = {
      {"record 0", [&] { file->GotoRecord(0); }, 9},
      {"record past the last", [&] { file->GotoRecord(5); }, 9},
      {"last record", [&] { file->GotoRecord(4); }, 0},
      {"variable -1", [&] { file->Value(-1); }, 9},
      {"variable 6", [&] { file->Value(6); }, 9},
      {"variable 5", [&] { file->Value(5); }, 0},
      {"distinct of variable 0", [&] { file->DistinctValues(0); }, 9},
      {"distinct of variable 6", [&] { file->DistinctValues(6); }, 9},
      {"variable item 6", [&] { file->Variables().Item(6); }, 5},
      {"header key", [&] { file->HeaderItem("ITEM19"); }, 5},
      {"setter while open", [&] { file->SetAppTitle("x"); }, 5},
      {"variable added while open",
       [&] { file->Variables().Add("x", "T", 5, 0); }, 5},
      {"AddRecord while reading", [&] { file->AddRecord(); }, 5},
  };
  for (const Row& row : rows) {
    EXPECT_EQ(ErrorNumber(row.action), row.error) << row.what;
  }
}

TEST_F(ApplicationFileTest, AnEmptyDataFileIsValid) {
  Export("empty.rzt", {});
  auto file = Open("empty.rzt");
  ASSERT_TRUE(file->ApplicationExists());
  EXPECT_EQ(file->RecordCount(), 0);
  file->MoveFirst();
  EXPECT_FALSE(file->ReadNext());
  EXPECT_EQ(file->Value(1), kNull);
  EXPECT_EQ(file->Value(0), kNull);
  file->MoveLast();
  EXPECT_FALSE(file->ReadPrevious());
  EXPECT_EQ(file->Value(3), kNull);
  EXPECT_EQ(ErrorNumber([&] { file->GotoRecord(1); }), 9);
  EXPECT_EQ(ErrorNumber([&] { file->Value(6); }), 9);
  EXPECT_TRUE(file->DistinctValues(3).empty());
  bool found = true;
  file->FindDateRange("2000-01-01 00:00:00", "2100-01-01 00:00:00", found);
  EXPECT_FALSE(found);
  EXPECT_EQ(file->RangeFirstRecord(), 0);
}

TEST_F(ApplicationFileTest, SetValueChecksKindAndNumber) {
  ApplicationFile file;
  AddVariables(file);
  file.SetOpenMode(kOpenCreateNew);
  file.OpenApplication(Path("types.rzt"));
  EXPECT_EQ(ErrorNumber([&] { file.SetValue(3, 1.0); }), 5);  // no record
  file.AddRecord();
  struct Row {
    int16_t variable;
    Variant value;
    int32_t error;
  };
  const Row rows[] = {
      {3, Variant("12.5"), 13},  // text for a numeric variable
      {3, Variant("heavy"), 13},
      {5, Variant(""), 13},
      {3, Variant(VariantArray{1.0}), 13},
      {0, Variant(1.0), 9},
      {6, Variant(1.0), 9},
      {-1, Variant(1.0), 9},
      {3, Variant(int16_t{7}), 0},
      {3, Variant(true), 0},
      {3, kNull, 0},
      {3, Variant(), 0},
      {4, Variant(12.5), 0},  // a number for a text variable is its text
      {1, Variant("2006-10-10"), 0},
  };
  for (const Row& row : rows) {
    EXPECT_EQ(ErrorNumber([&] { file.SetValue(row.variable, row.value); }),
              row.error)
        << "variable " << row.variable << " " << row.value.TypeName();
  }
  try {
    file.SetValue(3, "heavy");
    ADD_FAILURE() << "no error";
  } catch (const Error& error) {
    EXPECT_NE(error.Description().find("'heavy'"), std::string::npos);
    EXPECT_NE(error.Description().find("variable 3 'Weight'"),
              std::string::npos)
        << error.Description();
  }
  EXPECT_EQ(ErrorNumber([&] { file.SaveRecord(1); }), 5);
  EXPECT_EQ(ErrorNumber([&] { file.SaveRecord(0); }), 0);
  EXPECT_EQ(ErrorNumber([&] { file.SaveRecord(0); }), 5);  // none begun
  EXPECT_EQ(file.RecordCount(), 1);
  EXPECT_EQ(ErrorNumber([&] { file.MoveFirst(); }), 5);  // not readable yet
  file.CloseApplication();

  auto read = Open("types.rzt");
  read->GotoRecord(1);
  EXPECT_EQ(read->Value(3), kNull);  // the last value set wins
  EXPECT_EQ(read->Value(4), Variant("12.5"));
}

TEST_F(ApplicationFileTest, ANewApplicationNeedsValidVariables) {
  struct Row {
    const char* what;
    std::function<void(AppFile&)> setup;
    int32_t error;
  };
  const Row rows[] = {
      {"no variables", [](AppFile&) {}, 5},
      {"only the date",
       [](AppFile& f) { f.Variables().Add("Date", "T", 8, 0); }, 5},
      {"unknown type", [](AppFile& f) { f.Variables().Add("x", "Q", 8, 0); },
       5},
      {"no type", [](AppFile& f) { f.Variables().Add("x", "", 8, 0); }, 5},
      {"length 0", [](AppFile& f) { f.Variables().Add("x", "T", 0, 0); }, 5},
      {"type changed after Add",
       [](AppFile& f) {
         f.Variables().Add("Date", "T", 8, 0);
         f.Variables()
             .Add("Time", "T", 8, 0)
             ->Set(FieldAttribute::kType, Variant("Z"));
       },
       5},
  };
  for (const Row& row : rows) {
    ApplicationFile file;
    file.SetOpenMode(kOpenCreateNew);
    EXPECT_EQ(ErrorNumber([&] {
                row.setup(file);
                file.OpenApplication(Path("bad.rzt"));
              }),
              row.error)
        << row.what;
    EXPECT_FALSE(file.ApplicationExists()) << row.what;
  }
  EXPECT_TRUE(FolderNames().empty());
}

// --- A failed write leaves nothing behind ---

TEST_F(ApplicationFileTest, DestroyingAHalfWrittenApplicationLeavesNothing) {
  {
    ApplicationFile file;
    AddVariables(file);
    file.SetOpenMode(kOpenCreateNew);
    file.OpenApplication(Path("line4.rzt"));
    WriteRecords(file, Records());
    file.AddRecord();
    EXPECT_EQ(ErrorNumber([&] { file.SetValue(3, "not a number"); }), 13);
    // Only the temporary data file (and its journal) and the column
    // cache's spool exist so far.
    for (const std::string& name : FolderNames()) {
      EXPECT_TRUE(name.starts_with("line4.rzd.tmp-") ||
                  name.starts_with("line4.rzc.tmp-"))
          << name;
    }
  }
  EXPECT_TRUE(FolderNames().empty());
}

TEST_F(ApplicationFileTest, AFailedWriteLeavesTheExistingApplication) {
  Export("line4.rzt");
  const std::string template_bytes = ReadBinaryFile(Path("line4.rzt"));
  const std::string data_bytes = ReadBinaryFile(Path("line4.rzd"));
  {
    ApplicationFile file;
    AddVariables(file);
    file.SetOpenMode(kOpenCreateNew);
    file.OpenApplication(Path("line4.rzt"));
    WriteRecords(file, {Records()[0]});
    file.AddRecord();
    EXPECT_NE(ErrorNumber([&] { file.SetValue(3, "x"); }), 0);
  }
  EXPECT_EQ(FolderNames(),
            (std::set<std::string>{"line4.rzt", "line4.rzd", "line4.rzc"}));
  EXPECT_EQ(ReadBinaryFile(Path("line4.rzt")), template_bytes);
  EXPECT_EQ(ReadBinaryFile(Path("line4.rzd")), data_bytes);
}

// A new application over an old one replaces it as a whole: killed before
// the switch commits, the old one comes back whole (its view too); killed
// after, the new one is finished. The next open finds no leftover.
TEST_F(ApplicationFileTest, ANewApplicationOverAnOldOneIsSwitchedAsAWhole) {
  const struct Case {
    const char* crash_at;
    bool new_one;
  } cases[] = {{"staged", false},
               {"aside-1", false},
               {"committed", true},
               {"placed-1", true}};
  for (const Case& c : cases) {
    SCOPED_TRACE(c.crash_at);
    for (const std::string& name : FolderNames()) fs::remove_all(Path(name));
    Export("line4.rzt");
    WriteBinaryFileAtomically(Path("line4.V1"), "[GENERAL]\r\n");
    const int status = RunForked(
        [&] {
          Export("line4.rzt", {Records()[2]});
          return 0;
        },
        "RZ_TEST_CRASH_AT", c.crash_at);
    EXPECT_EQ(status, 128 + SIGKILL);
    RecoverApplication(Path("line4.rzt"));
    auto file = Open("line4.rzt");
    ASSERT_TRUE(file->ApplicationExists());
    EXPECT_EQ(file->RecordCount(),
              c.new_one ? 1 : static_cast<int32_t>(Records().size()));
    EXPECT_EQ(FileExists(Path("line4.V1")), !c.new_one);
    // The column cache beside the data file is that application's own.
    auto store = SqliteDataStore::Open(Path("line4.rzd"),
                                       {false, false, true, false, true});
    EXPECT_TRUE(store->UsesCache());
    EXPECT_EQ(store->RecordsRead(), 0);
    for (const std::string& name : FolderNames()) {
      for (const char* tag : {".tmp-", ".old-", ".new-"}) {
        EXPECT_EQ(name.find(tag), std::string::npos) << name;
      }
    }
  }
}

TEST_F(ApplicationFileTest, AnUnwritableFolderFailsAtOpen) {
  ApplicationFile file;
  AddVariables(file);
  file.SetOpenMode(kOpenCreateNew);
  EXPECT_EQ(ErrorNumber([&] { file.OpenApplication(Path("no/line4.rzt")); }),
            76);
  EXPECT_FALSE(file.ApplicationExists());
  if (::geteuid() != 0) {  // permissions do not stop the superuser
    fs::create_directory(Path("locked"));
    fs::permissions(Path("locked"),
                    fs::perms::owner_read | fs::perms::owner_exec);
    EXPECT_EQ(
        ErrorNumber([&] { file.OpenApplication(Path("locked/line4.rzt")); }),
        70);
    fs::permissions(Path("locked"), fs::perms::owner_all);
  }
  EXPECT_EQ(FolderNames().count("no"), 0u);
}

TEST_F(ApplicationFileTest, ATemplateMayNotTakeTheDataFilesName) {
  ApplicationFile file;
  AddVariables(file);
  file.SetOpenMode(kOpenCreateNew);
  EXPECT_EQ(ErrorNumber([&] { file.OpenApplication(Path("line4.rzd")); }), 5);
  EXPECT_TRUE(FolderNames().empty());
}

TEST_F(ApplicationFileTest, ANewApplicationReplacesAnOldOne) {
  Export("line4.rzt");
  Export("line4.rzt", {Records()[2]});
  auto file = Open("line4.rzt");
  ASSERT_EQ(file->RecordCount(), 1);
  file->GotoRecord(1);
  EXPECT_EQ(file->Value(1), Variant("2006-10-11"));
  // Nothing set aside or temporary is left (reading may leave the data
  // file's journal files).
  for (const std::string& name : FolderNames()) {
    EXPECT_EQ(name.find(".tmp-"), std::string::npos) << name;
    EXPECT_EQ(name.find(".old-"), std::string::npos) << name;
  }
}

// --- Opening ---

TEST_F(ApplicationFileTest, WhatOpeningFindsOrRaises) {
  Export("line4.rzt");
  WriteBinaryFileAtomically(Path("plain.rzt"), "[GENERAL]\r\nTITLE = x\r\n");
  WriteBinaryFileAtomically(
      Path("corrupt.rzt"),
      "[GENERAL]\r\nVERSION = 5\r\n[FIELD]\r\nNAME = d\r\nTYPE = X\r\n");
  fs::copy_file(Path("line4.rzt"), Path("nodata.rzt"));
  struct Row {
    std::string name;
    bool exists;
    int32_t error;
    std::string named;  // in the error's description
  };
  const Row rows[] = {
      {"line4.rzt", true, 0, ""},
      {"missing.rzt", false, 0, ""},
      {"plain.rzt", false, 0, ""},
      {"corrupt.rzt", false, 75, "line 5"},
      {"nodata.rzt", false, 53, "nodata.rzd"},
  };
  for (const Row& row : rows) {
    ApplicationFile file;
    file.SetOpenMode(kOpenExisting);
    try {
      file.OpenApplication(Path(row.name));
      EXPECT_EQ(row.error, 0) << row.name;
    } catch (const Error& error) {
      EXPECT_EQ(error.Number(), row.error) << row.name;
      EXPECT_NE(error.Description().find(row.named), std::string::npos)
          << error.Description();
    }
    EXPECT_EQ(file.ApplicationExists(), row.exists) << row.name;
  }
}

TEST_F(ApplicationFileTest, OpeningAgainClosesFirst) {
  Export("a.rzt");
  Export("b.rzt", {Records()[0]});
  auto file = Open("a.rzt");
  file->GotoRecord(4);
  file->OpenApplication(Path("b.rzt"));
  EXPECT_EQ(file->RecordCount(), 1);
  EXPECT_EQ(ErrorNumber([&] { file->Value(1); }), 5);  // nothing current
  file->OpenApplication(Path("missing.rzt"));
  EXPECT_FALSE(file->ApplicationExists());
  EXPECT_EQ(file->AppTitle(), "");
  EXPECT_EQ(ErrorNumber([&] { file->RecordCount(); }), 5);
  file->CloseApplication();  // closing a closed object does nothing

  ApplicationFile unset;
  EXPECT_EQ(ErrorNumber([&] { unset.OpenApplication(Path("a.rzt")); }), 5);
  EXPECT_EQ(ErrorNumber([&] { unset.SetOpenMode(3); }), 5);
}

TEST_F(ApplicationFileTest, PathsAndDates) {
  Export("line4.rzt");
  // An hour old, so a rewrite shows whatever the clock's resolution.
  fs::last_write_time(Path("line4.rzt"),
                      fs::file_time_type::clock::now() - std::chrono::hours(1));
  ApplicationFile file;
  file.SetOpenMode(kOpenExisting);
  file.OpenApplication(folder_ + "\\line4.rzt");  // a Windows separator
  ASSERT_TRUE(file.ApplicationExists());
  EXPECT_EQ(file.BasePath(), Path("line4"));
  EXPECT_EQ(file.AppFolder(), folder_ + "/");
  EXPECT_TRUE(file.TemplateWritable());
  EXPECT_EQ(file.TemplateQueries(), (std::array<std::string, 2>{"", ""}));
  EXPECT_EQ(ApplicationFile::DataPathFor("c:\\data\\line4.rzt"),
            "c:/data/line4.rzd");

  const double template_time = file.TemplateDateTime();
  const double data_time = file.DataDateTime();
  EXPECT_GT(template_time, 40000);  // after 2009
  EXPECT_GT(data_time, 40000);
  EXPECT_EQ(file.TemplateDateTime(), template_time);  // unchanged file
  EXPECT_EQ(file.DataDateTime(), data_time);
  file.Views().Add("x", 1);
  file.Views().Save();
  EXPECT_NE(file.TemplateDateTime(), template_time);
}

TEST_F(ApplicationFileTest, RulesComeFromTheTemplate) {
  Export("line4.rzt");
  std::string text = ReadTextFile(Path("line4.rzt"));
  text.replace(
      text.find("[RULES]\r\n"), 9,
      "[RULES]\r\nRULE = A,\"Outside, limits\",t1,,,,,\"t\"\"6\",1,2\r\n"
      "RULE = B,Run,,,,,,,7,0\r\n");
  WriteTextFileAtomically(Path("line4.rzt"), text);
  auto file = Open("line4.rzt");
  ASSERT_EQ(file->Rules().Count(), 2);
  EXPECT_EQ(
      file->Rules().Item(1),
      (Rule{"A", "Outside, limits", {{"t1", "", "", "", "", "t\"6"}, {1, 2}}}));
  EXPECT_EQ(file->Rules().Item(2).attributes.numbers[0], 7);
  EXPECT_EQ(ErrorNumber([&] { file->Rules().Item(3); }), 5);
}

TEST_F(ApplicationFileTest, TheHookTimeLimitKeyIsReadAsWritten) {
  Export("line4.rzt");
  Export("line9.rzt");
  std::string text = ReadTextFile(Path("line4.rzt"));
  text.insert(text.find('\n') + 1, "HookTimeout = 2.5\r\n");
  WriteTextFileAtomically(Path("line4.rzt"), text);
  EXPECT_EQ(Open("line4.rzt")->HookTimeout(), "2.5");
  EXPECT_EQ(Open("line9.rzt")->HookTimeout(), "");
  // Rewriting the template keeps it.
  auto file = Open("line4.rzt");
  file->Views().Add("x", 1);
  file->Views().Save();
  EXPECT_EQ(Open("line4.rzt")->HookTimeout(), "2.5");
}

TEST_F(ApplicationFileTest, AScriptMayReopenOnlyItsOwnApplication) {
  Export("line4.rzt");
  Export("line9.rzt");
  std::shared_ptr<ApplicationFile> file = Open("line4.rzt");
  const auto open = [&](const std::string& name) {
    file->Call("OpenApplication", {Path(name)});
  };
  {
    ScriptHold hold(file);
    EXPECT_EQ(ErrorNumber([&] { open("line9.rzt"); }), 70);
    EXPECT_EQ(file->BasePath(), Path("line4"));
    open("./line4.rzt");  // its own, again
    file->Put("OpenMode", Variant(kOpenCreateNew));
    EXPECT_EQ(ErrorNumber([&] { open("line4.rzt"); }), 70);
    file->SetOpenMode(kOpenExisting);
    file->OpenApplication(Path("line9.rzt"));  // the host, in C++
  }
  open("line4.rzt");  // no script holds it
  EXPECT_EQ(file->BasePath(), Path("line4"));
}

TEST_F(ApplicationFileTest, ANewApplicationTakesRulesAndSecuredFunctions) {
  {
    ApplicationFile file;
    SetExportHeader(file);
    AddVariables(file);
    // Through the scripting surface, as a site hook would make one.
    file.Put("SecuredFunctions", Variant("EXPORT, DELETE"));
    DispatchArgs rule = {
        "A", "Outside, limits", "t1", "", "", "", "", "t\"6", 1.0, 2.5};
    file.Call("AddRule", rule);
    file.AddRule({"b", "Run", {{}, {7, 0}}});
    for (const char* bad : {"a", "B", "", "AB"}) {
      EXPECT_EQ(ErrorNumber([&] { file.AddRule({bad, "x", {}}); }), 5) << bad;
    }
    file.SetOpenMode(kOpenCreateNew);
    file.OpenApplication(Path("line4.rzt"));
    EXPECT_EQ(ErrorNumber([&] { file.AddRule({"C", "late", {}}); }), 5);
    EXPECT_EQ(ErrorNumber([&] { file.SetSecuredFunctions("X"); }), 5);
    file.CloseApplication();
  }
  auto file = Open("line4.rzt");
  EXPECT_EQ(file->SecuredFunctions(), "EXPORT, DELETE");
  ASSERT_EQ(file->Rules().Count(), 2);
  EXPECT_EQ(
      file->Rules().Item(1),
      (Rule{
          "A", "Outside, limits", {{"t1", "", "", "", "", "t\"6"}, {1, 2.5}}}));
  EXPECT_EQ(file->Rules().Item(2), (Rule{"b", "Run", {{}, {7, 0}}}));
}

TEST_F(ApplicationFileTest, SameStructureComparesTypesInOrder) {
  Export("a.rzt");
  Export("b.rzt", {});
  auto a = Open("a.rzt");
  auto b = Open("b.rzt");
  EXPECT_TRUE(a->SameStructure(*b));
  ApplicationFile other;
  other.Variables().Add("Date", "T", 8, 0);
  other.Variables().Add("Time", "T", 8, 0);
  other.Variables().Add("Weight", "N", 8, 2);
  other.Variables().Add("Operator", "T", 12, 0);
  other.Variables().Add("Count", "N", 5, 0);  // A in the others
  EXPECT_FALSE(a->SameStructure(other));
}

}  // namespace
}  // namespace rz
