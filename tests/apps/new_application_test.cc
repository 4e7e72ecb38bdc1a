// Copyright 2026 The Veltmark authors.
//
// Writing a NewApplication through the real application-file component:
// every header item, rule and record reads back, a second rule with the
// same key is refused, and a failure half-way leaves nothing behind.

#include "rzselect/new_application.h"

#include <gtest/gtest.h>

#include <filesystem>

#include "appfile/application_file.h"
#include "core/error.h"
#include "platform/file_system.h"
#include "rzselect/sample_data.h"
#include "support/error_number.h"
#include "support/temp_folder.h"

namespace rz {
namespace {

std::vector<std::string> FolderEntries(const std::string& folder) {
  std::vector<std::string> names;
  for (const auto& entry : std::filesystem::directory_iterator(folder)) {
    names.push_back(entry.path().filename().string());
  }
  std::sort(names.begin(), names.end());
  return names;
}

NewApplication SmallApplication() {
  NewApplication app;
  app.title = "Small";
  app.rules = {
      {"A", "Beyond", {{"t1", "t2", "t3", "t4", "t5", "t, 6"}, {1, 2}}}};
  app.secured_functions = "EXPORT,DELETE";
  app.variables = {NewVariable("Date", "T", 10, 0, 1, 1),
                   NewVariable("Time", "T", 8, 0, 2, 1),
                   NewVariable("Weight", "N", 6, 2, 3, 1)};
  SetFixedLimit(*app.variables[2], LimitKind::kUsl, 12.25);
  for (int i = 0; i < 3; ++i) {
    app.records.push_back({Variant("2024-01-01"),
                           Variant("10:0" + std::to_string(i) + ":00"),
                           i == 1 ? Variant::Null() : Variant(1.25 * i)});
  }
  return app;
}

std::unique_ptr<ApplicationFile> Open(const std::string& path) {
  auto file = std::make_unique<ApplicationFile>();
  file->SetOpenMode(kOpenExisting);
  file->OpenApplication(path);
  return file;
}

class NewApplicationTest : public ::testing::Test {
 protected:
  TempFolder folder_;
};

TEST_F(NewApplicationTest, WritesTheWholeApplication) {
  const std::string path = folder_.File("small.rzt");
  NewApplication app = SmallApplication();
  app.rules.push_back({"b", "Run", {{"", "", "", "", "", ""}, {7, 0}}});
  {
    ApplicationFile file;
    WriteNewApplication(file, app, path, false);
  }

  auto file = Open(path);
  ASSERT_TRUE(file->ApplicationExists());
  EXPECT_EQ(file->AppTitle(), "Small");
  EXPECT_EQ(file->SecuredFunctions(), "EXPORT,DELETE");
  ASSERT_EQ(file->Rules().Count(), 2);
  EXPECT_EQ(file->Rules().Item(1), app.rules[0]);
  EXPECT_EQ(file->Rules().Item(2), app.rules[1]);
  // The rest of the template and the data are as written.
  EXPECT_EQ(file->Variables().Item(3)->GetLimit(LimitKind::kUsl),
            (Limit{"F", 12.25}));
  ASSERT_EQ(file->RecordCount(), 3);
  file->GotoRecord(2);
  EXPECT_TRUE(file->Value(3).IsNull());
}

TEST_F(NewApplicationTest, RefusesAnExistingApplicationAndKeepsIt) {
  const std::string path = folder_.File("small.rzt");
  {
    ApplicationFile file;
    WriteNewApplication(file, SmallApplication(), path, false);
  }
  const std::string before = ReadBinaryFile(path);
  NewApplication other = SmallApplication();
  other.title = "Other";
  ApplicationFile file;
  EXPECT_EQ(ErrorNumber([&] { WriteNewApplication(file, other, path, false); }),
            58);
  EXPECT_EQ(ReadBinaryFile(path), before);
  WriteNewApplication(file, other, path, true);
  EXPECT_EQ(Open(path)->AppTitle(), "Other");
}

TEST_F(NewApplicationTest, FailureHalfWayLeavesNothing) {
  NewApplication app = SmallApplication();
  app.records[2][2] = Variant("heavy");  // text for a numeric variable
  {
    ApplicationFile file;
    EXPECT_EQ(ErrorNumber([&] {
                WriteNewApplication(file, app, folder_.File("small.rzt"),
                                    false);
              }),
              13);
  }
  EXPECT_TRUE(FolderEntries(folder_.File("")).empty());
}

TEST_F(NewApplicationTest, BadRuleKeysAreRefusedBeforeAnythingIsWritten) {
  for (const char* key : {"a", "", "AB"}) {  // "a" repeats "A"
    NewApplication app = SmallApplication();
    app.rules.push_back({key, "Second", {}});
    ApplicationFile file;
    EXPECT_EQ(ErrorNumber([&] {
                WriteNewApplication(file, app, folder_.File("small.rzt"),
                                    false);
              }),
              5)
        << key;
    EXPECT_TRUE(FolderEntries(folder_.File("")).empty()) << key;
  }
}

}  // namespace
}  // namespace rz
