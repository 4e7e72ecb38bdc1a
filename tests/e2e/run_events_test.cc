// Copyright 2026 The Veltmark authors.
//
// Refresh in event mode through the engine with the real components, as a
// host program drives it: the events in their order, a host cancelling in
// OpenDataSource or in WriteDataSource, the working record the host reads,
// and an engine call made from inside an event while the run goes on.

#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "common/system_platform.h"
#include "core/error.h"
#include "e2e/test_application.h"
#include "engine/rzselect.h"
#include "platform/headless_toolkit.h"
#include "platform/repository.h"
#include "platform/rzselect_events.h"

namespace rz {
namespace {

// Records the events; `on_write` runs in each WriteDataSource with the
// number of that event (from 1).
class Recorder : public RZselectEvents {
 public:
  void OpenDataSource(bool& Cancel) override {
    log.push_back("open");
    Cancel = cancel_open;
  }
  void WriteDataSource(bool& Cancel) override {
    log.push_back("write");
    if (on_write) on_write(++writes, Cancel);
  }
  void CloseDataSource(bool& Cancel) override {
    (void)Cancel;
    log.push_back("close");
  }

  std::vector<std::string> log;
  bool cancel_open = false;
  int writes = 0;
  std::function<void(int, bool&)> on_write;
};

class RunEventsTest : public ::testing::Test {
 protected:
  void SetUp() override {
    // Three summary records: 2024-03-01, 03-02 and 03-04.
    View daily{"Daily", {kDate, kTime, Numeric("Avg", 3, 9, 5, 2)}, {}, 5};
    ASSERT_TRUE(MakeTestApplication(folder_, {daily}));
    engine_ = RZselect::Create(platform_);
    engine_->SetFilename(TestApplicationPath(folder_));
    engine_->SetDisplayPacifier(false);
    engine_->Initialize();
    engine_->LoadView("Daily");
    engine_->AddEventHandler(&recorder_);
  }

  // The text of the working record's average.
  std::string WorkingAverage() { return repository_->Value(1, 3).ToString(); }

  TempFolder folder_;
  HeadlessToolkit toolkit_;
  std::shared_ptr<SystemPlatform> platform_ =
      std::make_shared<SystemPlatform>(toolkit_);
  std::shared_ptr<RZselect> engine_;
  std::shared_ptr<Repository> repository_ = platform_->CreateRepository();
  Recorder recorder_;
};

TEST_F(RunEventsTest, EachRecordIsHandedOverInTheWorkingRecord) {
  std::vector<std::string> averages;
  recorder_.on_write = [&](int, bool&) {
    averages.push_back(WorkingAverage());
  };
  engine_->Refresh(repository_, true);
  EXPECT_EQ(recorder_.log, (std::vector<std::string>{"open", "write", "write",
                                                     "write", "close"}));
  EXPECT_EQ(averages, (std::vector<std::string>{"12.00", "13.50", "11.00"}));
  EXPECT_EQ(repository_->RecordCount(), 1);
  EXPECT_FALSE(engine_->Cancel());
}

TEST_F(RunEventsTest, CancelInWriteDataSourceEndsTheRunAfterThatRecord) {
  recorder_.on_write = [](int write, bool& cancel) { cancel = write == 2; };
  engine_->SetCancel(true);
  engine_->Refresh(repository_, true);
  EXPECT_EQ(recorder_.log,
            (std::vector<std::string>{"open", "write", "write"}));
  EXPECT_EQ(WorkingAverage(), "13.50");
  EXPECT_FALSE(engine_->Cancel());
}

TEST_F(RunEventsTest, CancelInOpenDataSourceWritesNoRecord) {
  recorder_.cancel_open = true;
  engine_->Refresh(repository_, true);
  EXPECT_EQ(recorder_.log, (std::vector<std::string>{"open"}));
  EXPECT_EQ(repository_->RecordCount(), 0);
  EXPECT_EQ(repository_->Fields().Count(), 3);  // the fields are defined
}

TEST_F(RunEventsTest, StoreModeRaisesNoEvent) {
  engine_->Refresh(repository_, false);
  EXPECT_TRUE(recorder_.log.empty());
  ASSERT_EQ(repository_->RecordCount(), 3);
  EXPECT_EQ(repository_->Value(3, 3).ToString(), "11.00");
}

// A handler that calls back into the engine gets error 5 and the run it
// interrupted is not disturbed.
TEST_F(RunEventsTest, EngineCallsFromAnEventAreRefusedWhileTheRunGoesOn) {
  std::vector<int> refused;
  recorder_.on_write = [&](int, bool&) {
    for (const std::function<void()>& call : std::vector<std::function<void()>>{
             [&] { engine_->Refresh(repository_, false); },
             [&] { engine_->LoadView("Daily"); },
             [&] { engine_->SaveRepository(repository_, "/nowhere.rzt"); }}) {
      try {
        call();
        refused.push_back(0);
      } catch (const Error& error) {
        refused.push_back(error.Number());
        EXPECT_NE(error.Description().find("a run is in progress"),
                  std::string::npos)
            << error.Description();
      }
    }
  };
  engine_->Refresh(repository_, true);
  EXPECT_EQ(recorder_.writes, 3);
  EXPECT_EQ(refused, std::vector<int>(9, 5));
  EXPECT_EQ(recorder_.log.back(), "close");
  engine_->Refresh(repository_, false);  // accepted again afterwards
  EXPECT_EQ(repository_->RecordCount(), 3);
}

}  // namespace
}  // namespace rz
