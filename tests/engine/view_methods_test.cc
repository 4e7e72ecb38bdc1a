// Copyright 2026 The Veltmark authors.

// Initialize, LoadView and SaveView of the engine object over the fake
// application file, with view files on a real temporary folder.

#include <gtest/gtest.h>

#include <memory>
#include <string>

#include "core/date_time.h"
#include "core/error.h"
#include "engine/rzselect.h"
#include "platform/file_system.h"
#include "support/error_number.h"
#include "support/fake_platform.h"
#include "support/temp_folder.h"

namespace rz {
namespace {

class ViewMethodsTest : public ::testing::Test {
 protected:
  ViewMethodsTest() {
    FakeApplication& app = platform_->AddApplication(TemplatePath());
    app.template_date_time = 45000.5;
    app.AddVariable("Date", "T", 10);
    app.AddVariable("Time", "T", 8);
    app.AddVariable("Weight", "N", 8, 2);
    for (int i = 0; i < 5; ++i) {
      app.AddRecord("2024-03-0" + std::to_string(i + 1), "08:00:00",
                    {100.0 + i});
    }
    app.views = {{"Daily", 1}, {"Weekly", 2}};
    engine_->SetFilename(TemplatePath());
  }

  std::string TemplatePath() const { return folder_.File("line4.rzt"); }
  FakeApplication& App() { return platform_->Disk()[TemplatePath()]; }

  TempFolder folder_;
  std::shared_ptr<FakePlatform> platform_ = std::make_shared<FakePlatform>();
  std::shared_ptr<RZselect> engine_ = RZselect::Create(platform_);
};

TEST_F(ViewMethodsTest, InitializeOpensAndResetsToTheDefaults) {
  engine_->Initialize();
  EXPECT_TRUE(engine_->RZaccess()->ApplicationExists());
  EXPECT_EQ(engine_->CurrentViewName(), "");
  EXPECT_EQ(engine_->ResultField()->Count(), 3);
  EXPECT_EQ(engine_->LastRZTdateTime(), 45000.5);
  EXPECT_EQ(engine_->BegDateTime(), "2024-03-01 08:00:00");
  EXPECT_EQ(engine_->EndDateTime(), "2024-03-05 08:00:00");
  EXPECT_GT(engine_->ReportStatistics()->Count(), 0);
}

TEST_F(ViewMethodsTest, AMissingApplicationRaises53WithoutResetting) {
  engine_->SetFilename(folder_.File("none.rzt"));
  try {
    engine_->Initialize();
    ADD_FAILURE() << "no error";
  } catch (const Error& error) {
    EXPECT_EQ(error.Number(), 53);
    EXPECT_EQ(error.Source(), "RZSelect.Initialize");
  }
  EXPECT_NE(engine_->RZaccess(), nullptr);  // the new object stays
  EXPECT_EQ(engine_->ResultField()->Count(), 0);
}

TEST_F(ViewMethodsTest, ASavedViewLoadsBack) {
  engine_->Initialize();
  engine_->SetSumBy(15);
  engine_->SetReportFooter("Line 4");
  engine_->ResultField()->Remove(3);
  engine_->SaveView("Weekly");
  const std::string file = folder_.File("line4.V2");
  ASSERT_TRUE(FileExists(file));

  engine_->Initialize();  // back to the defaults
  EXPECT_EQ(engine_->SumBy(), 0);
  engine_->LoadView("weekly");  // names compare without regard to case
  EXPECT_EQ(engine_->CurrentViewName(), "weekly");
  EXPECT_EQ(engine_->SumBy(), 15);
  EXPECT_EQ(engine_->ReportFooter(), "Line 4");
  EXPECT_EQ(engine_->ResultField()->Count(), 2);
}

TEST_F(ViewMethodsTest, SaveViewWritesBesideTheGivenBasePath) {
  engine_->Initialize();
  const std::string other = folder_.File("other");
  engine_->SaveView("Daily", other);
  EXPECT_TRUE(FileExists(other + ".V1"));
  EXPECT_FALSE(FileExists(folder_.File("line4.V1")));
  engine_->SaveView("Daily", "");  // empty: the application's own
  EXPECT_TRUE(FileExists(folder_.File("line4.V1")));
}

TEST_F(ViewMethodsTest, AMissingViewLeavesTheEngineUsable) {
  engine_->Initialize();
  engine_->SaveView("Daily");
  engine_->LoadView("Daily");
  engine_->SetSumBy(3);
  EXPECT_EQ(ErrorNumber([&] { engine_->LoadView("Weekly"); }),
            Error::kViewNotFound);
  EXPECT_EQ(engine_->CurrentViewName(), "Daily");  // unchanged
  EXPECT_EQ(engine_->SumBy(), 0);                  // the defaults
  EXPECT_TRUE(engine_->RZaccess()->ApplicationExists());
}

TEST_F(ViewMethodsTest, InitializeLoadsTheDefaultView) {
  engine_->Initialize();
  engine_->SetSumBy(15);
  engine_->SaveView("Weekly");
  App().default_view = 2;
  engine_->SetSumBy(0);
  engine_->Initialize();
  EXPECT_EQ(engine_->CurrentViewName(), "Weekly");
  EXPECT_EQ(engine_->SumBy(), 15);

  // The default view's file gone: the error, the application open, the
  // defaults in force and no current view.
  DeleteFileQuietly(folder_.File("line4.V2"));
  EXPECT_EQ(ErrorNumber([&] { engine_->Initialize(); }), Error::kViewNotFound);
  EXPECT_EQ(engine_->CurrentViewName(), "");
  EXPECT_EQ(engine_->SumBy(), 0);
  EXPECT_TRUE(engine_->RZaccess()->ApplicationExists());
}

TEST_F(ViewMethodsTest, ViewsNeedAnApplication) {
  EXPECT_EQ(ErrorNumber([&] { engine_->LoadView("Daily"); }), 81);
  EXPECT_EQ(ErrorNumber([&] { engine_->SaveView("Daily"); }), 81);
}

}  // namespace
}  // namespace rz
