// Copyright 2026 The Veltmark authors.

// The sample's saved views and `rzselect views`, over fake application
// files with the view files in a real temporary folder.

#include "rzselect/views_command.h"

#include <gtest/gtest.h>

#include <nlohmann/json.hpp>
#include <sstream>
#include <string>
#include <vector>

#include "core/date_time.h"
#include "core/text.h"
#include "engine/rzselect.h"
#include "platform/app_file.h"
#include "platform/file_system.h"
#include "rzselect/commands.h"
#include "rzselect/sample_views.h"
#include "support/error_number.h"
#include "support/fake_platform.h"
#include "support/temp_folder.h"
#include "view/date_range.h"

namespace rz {
namespace {

// The sample is written into a staging folder that is then switched into
// place on the real disk; the fake disk still holds the application under
// its staged name, so it is moved to the template's own here.
void FollowSwitchIntoPlace(FakeDisk& disk, const std::string& template_path) {
  for (auto it = disk.begin(); it != disk.end(); ++it) {
    if (it->first != template_path && it->first.ends_with("/line4.rzt")) {
      FakeApplication staged = std::move(it->second);
      disk.erase(it);
      disk[template_path] = std::move(staged);
      return;
    }
  }
}

class ViewsCommandTest : public ::testing::Test {
 protected:
  ViewsCommandTest() {
    SampleOptions options;
    options.folder = folder_.File("");
    options.records = 300;  // 2026-01-05 06:00 to 2026-01-07 about 08:00
    std::ostringstream ignored;
    RunSample(*platform_, options, ignored);
    FollowSwitchIntoPlace(platform_->Disk(), TemplatePath());
  }

  std::string TemplatePath() const { return folder_.File("line4.rzt"); }

  std::string List(const std::string& as_of, const std::string& format) {
    ViewsOptions options;
    options.template_path = TemplatePath();
    options.as_of = as_of;
    options.format = format;
    std::ostringstream out;
    RunViews(*platform_, options, out);
    return out.str();
  }

  std::shared_ptr<RZselect> Engine() {
    auto engine = RZselect::Create(platform_);
    engine->SetFilename(TemplatePath());
    return engine;
  }

  TempFolder folder_;
  std::shared_ptr<FakePlatform> platform_ = std::make_shared<FakePlatform>();
};

TEST_F(ViewsCommandTest, TheSampleHasFourViewsTheFirstTheDefault) {
  const FakeApplication& app = platform_->Disk().begin()->second;
  ASSERT_EQ(app.views.size(), 4u);
  for (int32_t i = 0; i < 4; ++i) {
    EXPECT_EQ(app.views[i].name, kSampleViewNames[i]);
    EXPECT_EQ(app.views[i].number, i + 1);
    EXPECT_TRUE(FileExists(folder_.File("line4.V" + std::to_string(i + 1))));
  }
  EXPECT_EQ(app.default_view, 1);

  auto engine = Engine();
  engine->Initialize();  // loads the default view
  EXPECT_EQ(engine->CurrentViewName(), "Last 100 records");
  EXPECT_EQ(engine->FilterRangeType(), kRangeBackward);
  EXPECT_EQ(engine->BackwardAmount(), 100);

  engine->LoadView("Daily averages by line");
  EXPECT_EQ(engine->SumBy(), 5);
  ASSERT_EQ(engine->ResultField()->Count(), 6);
  const auto pivoted = engine->ResultField()->Item(4);
  EXPECT_EQ(pivoted->PivotField(), 3);  // Line
  EXPECT_EQ(pivoted->RawField(), 5);    // Fill Weight
  EXPECT_EQ(pivoted->Statistic(), 9);   // Average
  EXPECT_EQ(pivoted->RZfield()->Get(FieldAttribute::kName),
            Variant("Line_[*]_Fill Weight_[Average]"));

  engine->LoadView("Previous week by shift");
  EXPECT_EQ(engine->SumBy(), 6);
  EXPECT_EQ(engine->FromType(), 3);
  EXPECT_EQ(engine->ToType(), 3);
  EXPECT_EQ(engine->ResultField()->Item(6)->Statistic(), 19);  // CPK

  engine->LoadView("Operator query");
  ASSERT_EQ(engine->Where()->Count(), 1);
  EXPECT_EQ(engine->Where()->Item(1)->Value(), "?");
  EXPECT_EQ(engine->Where()->Item(1)->Variable(), 4);  // Operator
}

TEST_F(ViewsCommandTest, TheTableShowsEachRangeAsOfTheGivenMoment) {
  const std::string table = List("2026-01-20 10:00:00", "table");
  std::vector<std::string> lines;
  std::istringstream in(table);
  for (std::string line; std::getline(in, line);) lines.push_back(line);
  ASSERT_EQ(lines.size(), 5u) << table;
  EXPECT_EQ(lines[1].rfind("*  1  Last 100 records", 0), 0u) << lines[1];
  EXPECT_NE(lines[1].find("100 Record(s) back"), std::string::npos);
  // The whole file.
  EXPECT_NE(lines[2].find("2026-01-05 06:00:00"), std::string::npos);
  // Tuesday 2026-01-20 with weeks from Sunday and days from 06:00: the
  // previous week ran from Sunday the 11th 06:00 to the 18th 05:59:59.
  EXPECT_NE(lines[3].find("2026-01-11 06:00:00  2026-01-18 05:59:59"),
            std::string::npos)
      << lines[3];
  EXPECT_EQ(lines[4].rfind("   4  Operator query", 0), 0u) << lines[4];
}

TEST_F(ViewsCommandTest, JsonCarriesTheStateFieldNames) {
  const nlohmann::json views =
      nlohmann::json::parse(List("2026-01-20 10:00:00", "json"));
  ASSERT_EQ(views.size(), 4u);
  EXPECT_EQ(views[0]["Default"], true);
  EXPECT_EQ(views[1]["Default"], false);
  EXPECT_EQ(views[2]["FilterRangeType"], kRangeFromTo);
  EXPECT_EQ(views[2]["FromType"], 3);
  EXPECT_EQ(views[2]["BegText"], "2026-01-11 06:00:00");
  EXPECT_EQ(views[2]["EndText"], "2026-01-18 05:59:59");
  EXPECT_EQ(views[0]["BackwardAmount"], 100);
  EXPECT_EQ(views[0]["BackwardUnits"], kUnitRecords);
  // The last 100 of 300 records: records 201 to 300.
  const std::vector<Variant>& record_201 =
      platform_->Disk().begin()->second.records[200];
  EXPECT_EQ(views[0]["BegText"],
            record_201[0].ToString() + " " + record_201[1].ToString());
}

TEST_F(ViewsCommandTest, AViewWithoutItsFileIsListedWithItsError) {
  DeleteFileQuietly(folder_.File("line4.V3"));
  DeleteFileQuietly(folder_.File("line4.V1"));  // the default view too
  const nlohmann::json views =
      nlohmann::json::parse(List("2026-01-20 10:00:00", "json"));
  ASSERT_EQ(views.size(), 4u);
  EXPECT_EQ(views[0]["Error"]["Number"], Error::kViewNotFound);
  EXPECT_EQ(views[2]["Error"]["Description"],
            "Error - View 'Previous week by shift' not found!");
  EXPECT_EQ(views[1]["FromType"], kTypeRecordBound);
  EXPECT_FALSE(views[3].contains("Error"));
  EXPECT_NE(List("2026-01-20 10:00:00", "table")
                .find("error 0x80040001: Error - View 'Previous week by "
                      "shift' not found!"),
            std::string::npos);
}

TEST_F(ViewsCommandTest, AMissingViewNamesTheFileLookedFor) {
  DeleteFileQuietly(folder_.File("line4.V3"));
  // Not const: a key that is missing reads as null, not undefined.
  nlohmann::json views =
      nlohmann::json::parse(List("2026-01-20 10:00:00", "json"));
  EXPECT_EQ(views[2]["Error"]["File"], folder_.File("line4.V3"));
  EXPECT_FALSE(views[1].contains("Error"));
  EXPECT_NE(
      List("2026-01-20 10:00:00", "table")
          .find("not found!; file looked for: " + folder_.File("line4.V3")),
      std::string::npos);
}

TEST_F(ViewsCommandTest, ViewFilesWithLfLineEndsListLikeCrLfOnes) {
  const std::string with_cr_lf = List("2026-01-20 10:00:00", "json");
  for (const char* name : {"line4.V1", "line4.V2", "line4.V3", "line4.V4"}) {
    const std::string path = folder_.File(name);
    WriteBinaryFileAtomically(path,
                              Replace(ReadBinaryFile(path), "\r\n", "\n"));
  }
  EXPECT_EQ(List("2026-01-20 10:00:00", "json"), with_cr_lf);
}

// Which files hold no view is the reader's business (view_file_test); the
// listing shows the reader's cause with the file and goes on.
TEST_F(ViewsCommandTest, AFileThatHoldsNoViewIsListedAsAnError) {
  WriteBinaryFileAtomically(folder_.File("line4.V2"),
                            std::string("[OPTIONS]\r\n\0\x01\r\n", 14));
  // Not const: a key that is missing reads as null, not undefined.
  nlohmann::json views =
      nlohmann::json::parse(List("2026-01-20 10:00:00", "json"));
  ASSERT_EQ(views.size(), 4u);
  EXPECT_EQ(views[1]["Error"]["Number"], 75);
  const std::string description = views[1]["Error"]["Description"];
  EXPECT_NE(description.find(folder_.File("line4.V2")), std::string::npos)
      << description;
  EXPECT_NE(description.find("binary data (a NUL byte at offset 11)"),
            std::string::npos)
      << description;
  EXPECT_FALSE(views[0].contains("Error"));
}

TEST_F(ViewsCommandTest, ABadDefaultViewIsListedAndTheOthersStill) {
  WriteBinaryFileAtomically(folder_.File("line4.V1"),
                            "[SELECTION]\r\nBWDAMOUNT = 99999999999\r\n");
  // Not const: a key that is missing reads as null, not undefined.
  nlohmann::json views =
      nlohmann::json::parse(List("2026-01-20 10:00:00", "json"));
  ASSERT_EQ(views.size(), 4u);
  EXPECT_EQ(views[0]["Default"], true);
  EXPECT_EQ(views[0]["Error"]["Number"], 6);
  EXPECT_EQ(
      views[0]["Error"]["Description"],
      folder_.File("line4.V1") + ":2: BWDAMOUNT: Overflow: '99999999999'");
  EXPECT_FALSE(views[1].contains("Error"));
  EXPECT_FALSE(views[3].contains("Error"));
}

TEST_F(ViewsCommandTest, TwoEntriesWithOneNameAreBothErrorsNamingBoth) {
  {
    auto engine = Engine();
    engine->Initialize();
    ViewCatalogue& views = engine->RZaccess()->Views();
    views.Add("DAILY AVERAGES BY LINE", 7);
    views.Save();
  }
  // Not const: a key that is missing reads as null, not undefined.
  nlohmann::json views =
      nlohmann::json::parse(List("2026-01-20 10:00:00", "json"));
  ASSERT_EQ(views.size(), 5u);
  const std::string both =
      "names both entry 2 (line4.V2) and entry 5 (line4.V7)";
  for (int i : {1, 4}) {
    EXPECT_EQ(views[i]["Error"]["Number"], 457) << i;
    const std::string description = views[i]["Error"]["Description"];
    EXPECT_NE(description.find(both), std::string::npos) << description;
  }
  EXPECT_FALSE(views[0].contains("Error"));
  EXPECT_FALSE(views[2].contains("Error"));
  EXPECT_NE(List("2026-01-20 10:00:00", "table").find("error 457: "),
            std::string::npos);
}

TEST_F(ViewsCommandTest, BadOptionsAreRefused) {
  EXPECT_EQ(ErrorNumber([&] { List("20.01.2026", "table"); }), 13);
  EXPECT_EQ(ErrorNumber([&] { List("2026-13-01 00:00:00", "table"); }), 13);
  EXPECT_EQ(ErrorNumber([&] { List("2026-01-20", "table"); }), 0);  // midnight
  EXPECT_EQ(ErrorNumber([&] { List("", "xml"); }), 5);
  ViewsOptions options;
  options.template_path = folder_.File("none.rzt");
  std::ostringstream out;
  EXPECT_EQ(ErrorNumber([&] { RunViews(*platform_, options, out); }), 53);
}

}  // namespace
}  // namespace rz
