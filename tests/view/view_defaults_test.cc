// Copyright 2026 The Veltmark authors.

// The default view, the statistics catalogue fill and DeleteView, on the
// fake application file and repository.

#include "view/view_defaults.h"

#include <gtest/gtest.h>

#include <fstream>
#include <memory>
#include <string>
#include <vector>

#include "core/date_time.h"
#include "platform/app_file.h"
#include "platform/file_system.h"
#include "support/fake_platform.h"
#include "support/fake_repository.h"
#include "support/fresh_thread.h"
#include "support/temp_folder.h"
#include "view/view_state.h"

namespace rz {
namespace {

constexpr char kPath[] = "/apps/line4.rzt";

class ViewDefaultsTest : public ::testing::Test {
 protected:
  ViewDefaultsTest() {
    FakeApplication& app = platform_->AddApplication(kPath);
    app.AddVariable("Date", "D", 10);
    app.AddVariable("Time", "I", 8);
    auto weight = app.AddVariable("Weight", "N", 8, 2);
    weight->SetLimit(LimitKind::kUsl, {"F", 110.5});
    app.AddVariable("Operator", "T", 12);
  }

  FakeApplication& App() { return platform_->Disk()[kPath]; }

  // `count` records a minute apart from 2024-03-01 06:00:00.
  void AddRecords(int count) {
    for (int i = 0; i < count; ++i) {
      const double when =
          DateSerial(2024, 3, 1) + TimeSerial(6, 0, 0) + i / 1440.0;
      App().AddRecord(FormatDate(when), FormatTime(when), {100.0 + i, "Ann"});
    }
  }

  ViewState& Reset() {
    state_->AppFile = platform_->CreateAppFile();
    state_->AppFile->SetOpenMode(kOpenExisting);
    state_->AppFile->OpenApplication(kPath);
    SetDefaults(*state_);
    return *state_;
  }

  std::shared_ptr<FakePlatform> platform_ = std::make_shared<FakePlatform>();
  std::shared_ptr<ViewState> state_ = NewViewState(platform_);
};

TEST_F(ViewDefaultsTest, RecordRangeFollowsTheLookBack) {
  struct Case {
    int16_t look_back;
    int records;
    int32_t range_type;
    int32_t backward_amount;
    int32_t first_record;
  };
  const Case cases[] = {
      {-1, 500, kRangeFromTo, 500, 1},   {100, 500, kRangeBackward, 100, 401},
      {100, 50, kRangeBackward, 100, 1}, {100, 100, kRangeBackward, 100, 1},
      {0, 20, kRangeBackward, 0, 20},  // a look-back of nothing: the last
  };
  for (const Case& c : cases) {
    App().records.clear();
    App().default_look_back = c.look_back;
    AddRecords(c.records);
    const ViewState& state = Reset();
    EXPECT_EQ(state.FilterRangeType, c.range_type) << c.look_back;
    EXPECT_EQ(state.BackwardAmount, c.backward_amount) << c.look_back;
    EXPECT_EQ(state.DefaultFirstRecord, c.first_record) << c.look_back;
    EXPECT_EQ(state.FileRecordCount, c.records);
    EXPECT_EQ(state.FromType, 14);
    EXPECT_EQ(state.ToType, 14);
    EXPECT_EQ(state.ForwardAmount, 1);
    EXPECT_EQ(state.ForwardUnits, 9);
    EXPECT_EQ(state.BackwardUnits, 9);
  }
}

TEST_F(ViewDefaultsTest, RangeDatesComeFromTheFirstAndLastRecords) {
  App().default_look_back = 3;
  AddRecords(10);
  // Record 8 (the first of the look-back) holds a time as a host stored it.
  App().records[7][1] = Variant("6:07");
  const ViewState& state = Reset();
  const double first = DateSerial(2024, 3, 1) + TimeSerial(6, 0, 0);
  EXPECT_DOUBLE_EQ(state.FirstRecordDateTime, first);
  EXPECT_DOUBLE_EQ(state.LastRecordDateTime, first + 9 / 1440.0);
  EXPECT_DOUBLE_EQ(state.BegDate, state.FirstRecordDateTime);
  EXPECT_DOUBLE_EQ(state.EndDate, state.LastRecordDateTime);
  EXPECT_DOUBLE_EQ(state.FromDateTime, state.FirstRecordDateTime);
  EXPECT_DOUBLE_EQ(state.ToDateTime, state.LastRecordDateTime);
  EXPECT_EQ(state.EndText, "2024-03-01 06:09:00");
  // The begin text is the stored texts of record 8, not reformatted.
  EXPECT_EQ(state.BegText, "2024-03-01 6:07");
  // Record 8 is left current.
  EXPECT_EQ(state.AppFile->Value(3), Variant(107.0));
}

TEST_F(ViewDefaultsTest, AnApplicationWithoutRecordsIsResetToo) {
  const ViewState& state = Reset();
  EXPECT_EQ(state.FirstRecordDateTime, 0);
  EXPECT_EQ(state.LastRecordDateTime, 0);
  EXPECT_EQ(state.BegDate, 0);
  EXPECT_EQ(state.EndDate, 0);
  EXPECT_EQ(state.BegText, "");
  EXPECT_EQ(state.EndText, "");
  EXPECT_EQ(state.DefaultFirstRecord, 1);
  EXPECT_EQ(state.FileRecordCount, 0);
  EXPECT_EQ(state.ResultField->Count(), 4);
}

TEST_F(ViewDefaultsTest, ShiftsComeFromTheApplication) {
  struct Case {
    double hours;
    const char* start;
    double duration;
    double start_days;
  };
  const Case cases[] = {
      {0, "06:00", 8, 0},
      {12, "06:00", 12, 0.25},
      {7.5, "22:30", 7.5, 22.5 / 24},
      {8, "6", 8, 0.25},  // hours only
  };
  AddRecords(2);
  for (const Case& c : cases) {
    App().shift_hours = c.hours;
    App().shift_start_text = c.start;
    const ViewState& state = Reset();
    EXPECT_EQ(state.ShiftDuration, c.duration) << c.hours << " " << c.start;
    EXPECT_NEAR(state.ShiftStart, c.start_days, 1e-12) << c.start;
  }
}

TEST_F(ViewDefaultsTest, OptionsAndReportStartOver) {
  AddRecords(2);
  state_->SumBy = 5;
  state_->PlusMinus = -1;
  state_->WeekDays = 3;
  state_->YearBegins = 7;
  state_->Interval = 0.5;
  state_->ReportFooter = "old";
  state_->ReadOnly = true;
  state_->PromptValues = {"x"};
  state_->CurrentViewName = "Daily";
  const ViewState& state = Reset();
  EXPECT_EQ(state.SumBy, 0);
  EXPECT_EQ(state.PlusMinus, 1);
  EXPECT_EQ(state.NullPivots, 1);
  EXPECT_EQ(state.NullIntervals, 0);
  EXPECT_EQ(state.ExcludeEmpty, 0);
  EXPECT_EQ(state.WeekDays, 0);
  EXPECT_EQ(state.YearBegins, 1);
  EXPECT_EQ(state.Interval, 0);
  EXPECT_EQ(state.ReturnScreen, 0);
  EXPECT_EQ(state.ReportHeader, "%App_Title%\r\n%View_Name%");
  EXPECT_EQ(state.ReportFooter, "");
  EXPECT_EQ(state.ReportType, 0);
  EXPECT_EQ(state.ReportNumericOnly, 1);
  EXPECT_EQ(state.ReportIncludeDetails, 0);
  EXPECT_EQ(state.ReportIncludeColumns, 1);
  EXPECT_EQ(state.ReportIncludeStatistics, 1);
  EXPECT_EQ(state.ReportIncludeFilter, 0);
  EXPECT_FALSE(state.ReadOnly);
  EXPECT_TRUE(state.PromptValues.empty());
  EXPECT_EQ(state.CurrentViewName, "Daily");  // not the reset's business
  EXPECT_EQ(state.DefaultsTime, platform_->Now());
}

TEST_F(ViewDefaultsTest,
       EveryVariableBecomesARawColumnWithACopyOfItsDefinition) {
  AddRecords(2);
  const auto result_list = state_->ResultField;
  const auto work_list = state_->WorkFields;
  result_list->Add(0, 9, 3, "old");
  state_->Where->Add(0, "", 3, ">", "1", "");
  const ViewState& state = Reset();
  EXPECT_EQ(state.ResultField, result_list);  // the same objects
  EXPECT_EQ(state.WorkFields, work_list);
  EXPECT_EQ(state.Where->Count(), 0);
  for (const auto& list : {state.ResultField, state.WorkFields}) {
    ASSERT_EQ(list->Count(), 4);
    for (int16_t i = 1; i <= 4; ++i) {
      const auto column = list->Item(i);
      EXPECT_EQ(column->RawField(), i);
      EXPECT_EQ(column->PivotField(), 0);
      EXPECT_EQ(column->Statistic(), 0);
      EXPECT_TRUE(*column->RZfield() == *App().variables[i - 1]) << i;
      EXPECT_NE(column->RZfield(), App().variables[i - 1]) << i;
    }
  }
  EXPECT_EQ(state.ResultField->Item(3)->RZfield()->GetLimit(LimitKind::kUsl),
            (Limit{"F", 110.5}));
}

TEST_F(ViewDefaultsTest, TheStatisticsCatalogueIsTheRepositorys) {
  state_->ReportStatistics->Add(99, "old", true);
  FillStatisticsCatalogue(*state_);
  const auto& repository = platform_->Repositories().back();
  const StatisticsCatalogueList& catalogue = repository->StatisticsCatalogue();
  ASSERT_EQ(state_->ReportStatistics->Count(), catalogue.Count());
  ASSERT_GT(catalogue.Count(), 0);
  for (int32_t i = 1; i <= catalogue.Count(); ++i) {
    const auto entry = state_->ReportStatistics->Item(i);
    EXPECT_EQ(entry->Reference(), catalogue.Item(i).reference);
    EXPECT_EQ(entry->Description(), catalogue.Item(i).description);
    EXPECT_EQ(entry->Selected(), catalogue.Item(i).selected);
  }
}

TEST_F(ViewDefaultsTest, ResetTracesStartAndEnd) {
  AddRecords(1);
  InFreshThread([&] {
    platform_->SetTraceSinkRunning(true);
    Reset();
    const auto& traces = platform_->TraceRecords();
    ASSERT_GE(traces.size(), 2u);
    EXPECT_EQ(traces.front()[1], "modRZselect");
    EXPECT_EQ(traces.front()[2], "SetDefaults");
    EXPECT_EQ(traces.front()[3], "Started");
    EXPECT_EQ(traces.back()[3], "Ended");
  });
}

TEST_F(ViewDefaultsTest, DeleteViewRemovesAnExistingFileOnly) {
  TempFolder folder;
  const std::string view = folder.File("line4.V3");
  std::ofstream(view) << "[GENERAL]\r\n";
  InFreshThread([&] {
    platform_->SetTraceSinkRunning(true);
    DeleteView(*state_, folder.File("line4.V4"));  // none: nothing happens
    EXPECT_TRUE(platform_->TraceRecords().empty());
    DeleteView(*state_, view);
    ASSERT_EQ(platform_->TraceRecords().size(), 1u);
    EXPECT_EQ(platform_->TraceRecords()[0][2], "DeleteView");
    EXPECT_EQ(platform_->TraceRecords()[0][3], view);
  });
  EXPECT_FALSE(FileExists(view));
}

}  // namespace
}  // namespace rz
