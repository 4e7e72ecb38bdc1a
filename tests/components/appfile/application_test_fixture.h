// Copyright 2026 The Veltmark authors.
//
// The fixture of the ApplicationFile tests: a folder of its own for each
// test, and applications written through the AppFile interface the way an
// export writes them (header, five variables, four records with Nulls).

#ifndef RZ_COMPONENTS_APPFILE_APPLICATION_TEST_FIXTURE_H_
#define RZ_COMPONENTS_APPFILE_APPLICATION_TEST_FIXTURE_H_

#include <gtest/gtest.h>
#include <stdlib.h>

#include <filesystem>
#include <memory>
#include <set>
#include <string>
#include <vector>

#include "appfile/application_file.h"
#include "platform/field_format.h"
#include "platform/file_system.h"

namespace rz {

// One record as the export hands it over: variables 1, 2, 3, ...
using Record = std::vector<Variant>;

inline const Variant kNull = Variant::Null();

class ApplicationFileTest : public ::testing::Test {
 protected:
  ApplicationFileTest() {
    std::string pattern =
        (std::filesystem::temp_directory_path() / "rzapp-XXXXXX").string();
    folder_ = ::mkdtemp(pattern.data());
  }
  ~ApplicationFileTest() override { std::filesystem::remove_all(folder_); }

  std::string Path(const std::string& name) const {
    return JoinPath(folder_, name);
  }

  // The names in the test folder, sorted.
  std::set<std::string> FolderNames() const {
    std::set<std::string> names;
    for (const auto& entry : std::filesystem::directory_iterator(folder_)) {
      names.insert(entry.path().filename().string());
    }
    return names;
  }

  // Sets the header a new application receives from an export, in that
  // order, with values that differ from the defaults.
  static void SetExportHeader(AppFile& file) {
    file.SetHeaderItem("VERSION", 5.0);
    file.SetAppTitle("Line 4 \xC3\xA9");
    file.SetLeadingVariableCount(2);
    file.SetDefaultLookBack(-1);
    file.SetSpecialVariable1(2);
    file.SetSpecialVariable2(1);
    file.SetSpecialVariable3(3);
    for (int i = 1; i <= 3; ++i) file.SetHeaderItem(HeaderItemKey(i), "");
    file.SetHeaderItem("ITEM4", 0.0);
    file.SetHeaderItem("ITEM5", "");
    file.SetFileSetting3(2.5);
    file.SetFileSetting1(1.0);
    file.SetFileSetting2(0.0);
    file.SetHeaderItem("ITEM6", 0.0);
    for (int i = 7; i <= 16; ++i) {
      file.SetHeaderItem(HeaderItemKey(i),
                         i % 2 == 0 ? Variant("note " + std::to_string(i))
                                    : Variant(static_cast<double>(i)));
    }
    file.SetShiftHours(8.0);
    file.SetShiftStartText("06:00");
    file.SetHeaderItem("ITEM17", "");
    file.SetHeaderItem("ITEM18", 0.0);
  }

  // Date, time, Weight (N, every attribute), Operator (T), Count (A).
  static void AddVariables(AppFile& file) {
    VariableList& variables = file.Variables();
    variables.Add("Date", "T", 8, 0);
    variables.Add("Time", "T", 8, 0);
    auto weight = variables.Add("Weight", "N", 8, 2);
    InitVariableDefaults(*weight, 2);
    weight->Set(FieldAttribute::kUnits, Variant("kg"));
    weight->Set(FieldAttribute::kCategory, Variant("Mass"));
    weight->Set(FieldAttribute::kMax, Variant(120.5));
    weight->SetLimit(LimitKind::kUsl, {"F", 110.25});
    weight->SetLimit(LimitKind::kLsl, {"F", 90});
    weight->SetLimit(LimitKind::kTgt, {"B", 0});
    weight->Set(FieldAttribute::kCalc, Variant("@XBAR[V3..V4]"));
    variables.Add("Operator", "T", 12, 0);
    variables.Add("Count", "A", 5, 0);
  }

  static const std::vector<Record>& Records() {
    static const std::vector<Record> records = {
        {"2006-10-10", "08:00:00", 101.5, "Ann", 3.0},
        {"2006-10-10", "12:00:00", kNull, " bob ", kNull},
        {"2006-10-11", "06:30:00", 99.0, kNull, 0.0},
        {"2006-10-12", "23:59:59", -0.5, "", 7.0},
    };
    return records;
  }

  static void WriteRecords(AppFile& file, const std::vector<Record>& records) {
    for (const Record& record : records) {
      file.AddRecord();
      for (size_t k = 0; k < record.size(); ++k) {
        file.SetValue(static_cast<int16_t>(k + 1), record[k]);
      }
      file.SaveRecord(0);
    }
  }

  // Writes a new application at `name` the way an export does.
  void Export(const std::string& name,
              const std::vector<Record>& records = Records()) {
    ApplicationFile file;
    SetExportHeader(file);
    AddVariables(file);
    file.SetOpenMode(kOpenCreateNew);
    file.OpenApplication(Path(name));
    WriteRecords(file, records);
    file.CloseApplication();
  }

  std::unique_ptr<ApplicationFile> Open(const std::string& name) {
    auto file = std::make_unique<ApplicationFile>();
    file->SetOpenMode(kOpenExisting);
    file->OpenApplication(Path(name));
    return file;
  }

  std::string folder_;
};

}  // namespace rz

#endif  // RZ_COMPONENTS_APPFILE_APPLICATION_TEST_FIXTURE_H_
