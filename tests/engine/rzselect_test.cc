// Copyright 2026 The Veltmark authors.

#include "engine/rzselect.h"

#include <gtest/gtest.h>

#include <thread>

#include "core/date_time.h"
#include "platform/app_file.h"
#include "support/error_number.h"
#include "support/fake_platform.h"
#include "support/fresh_thread.h"

namespace rz {
namespace {

class RZselectTest : public ::testing::Test {
 protected:
  std::shared_ptr<FakePlatform> platform_ = std::make_shared<FakePlatform>();
  std::shared_ptr<RZselect> engine_ = RZselect::Create(platform_);

  // An application object opened on a fake application with `rules` rules
  // and the given secured-function text.
  std::shared_ptr<AppFile> OpenApplication(int rules,
                                           std::string secured = "") {
    FakeApplication& app = platform_->AddApplication("/apps/line4.rzt");
    app.secured_functions = std::move(secured);
    for (int i = 0; i < rules; ++i) {
      app.rules.push_back(
          {std::string(1, static_cast<char>('A' + i)), "Rule", {}});
    }
    auto file = platform_->CreateAppFile();
    file->SetOpenMode(2);
    file->OpenApplication("/apps/line4.rzt");
    return file;
  }
};

TEST_F(RZselectTest, ANewObjectHasTheStartingValues) {
  struct Case {
    const char* property;
    Variant expected;
  } cases[] = {
      {"DisplayPacifier", true},
      {"RunCaption", "Run"},
      {"RunTooltip", "Execute the current View"},
      {"Filename", ""},
      {"CurrentViewName", ""},
      {"Cancel", false},
      {"ReadOnly", false},
      {"UserIdentification", ""},
      {"SumBy", int16_t{0}},
      {"PlusMinus", int16_t{0}},
      {"ShiftDuration", 0.0},
      {"Interval", 0.0},
      {"ReturnScreen", int32_t{0}},
      {"BegDateTime", ""},
      {"EndDateTime", ""},
      {"FromDateTime", Variant::Date(0)},
      {"FilterRangeType", int32_t{0}},
      {"ReportHeader", ""},
      {"ReportNumericOnly", false},
      {"LastRZTdateTime", Variant::Date(0)},
  };
  for (const Case& c : cases) {
    EXPECT_EQ(engine_->Get(c.property), c.expected) << c.property;
  }
  for (const char* list : {"Where", "ResultField", "ReportStatistics"}) {
    EXPECT_EQ(engine_->Get(list).ToObject()->Get("Count"), Variant(int32_t{0}))
        << list;
  }
  EXPECT_EQ(engine_->Get("RZaccess"), Variant(std::shared_ptr<Dispatch>()));
  EXPECT_EQ(engine_->Get("DataSource"), Variant(std::shared_ptr<Dispatch>()));
}

TEST_F(RZselectTest, PropertiesConvertWhatIsWritten) {
  struct Case {
    const char* property;
    Variant written;
    Variant read;
  } cases[] = {
      {"SumBy", "3", int16_t{3}},
      {"SumBy", 2.5, int16_t{2}},
      {"WeekDays", 3.5, int16_t{4}},
      {"ReportType", "12", int32_t{12}},
      {"FromType", 14.0, int32_t{14}},
      {"ShiftDuration", "12", 12.0},
      {"ShiftStart", 0.25, 0.25},
      {"Interval", int16_t{1}, 1.0},
      {"Filename", 12, "12"},
      {"CurrentViewName", 2.5, "2.5"},
      {"DisplayPacifier", 0, false},
      {"Cancel", "True", true},
      {"FromDateTime", "2024-03-01 06:00:00",
       Variant::Date(DateSerial(2024, 3, 1) + 0.25)},
      {"ToDateTime", 45000.5, Variant::Date(45000.5)},
      {"ReportIncludeFilter", true, true},
      {"ReturnScreen", int32_t{scrSummary}, int32_t{7}},
  };
  for (const Case& c : cases) {
    engine_->Put(c.property, c.written);
    EXPECT_EQ(engine_->Get(c.property), c.read) << c.property;
  }
  // A flag written true is stored as -1, as view files show it.
  EXPECT_EQ(engine_->State().ReportIncludeFilter, -1);
}

TEST_F(RZselectTest, BadValuesRaiseBeforeAnythingIsStored) {
  engine_->SetSumBy(4);
  engine_->SetFromDateTime(100);
  struct Case {
    const char* property;
    Variant written;
    int error;
  } cases[] = {
      {"SumBy", "12.5abc", 13},
      {"SumBy", 40000, 6},
      {"SumBy", Variant::Null(), 94},
      {"FromDateTime", "yesterday", 13},
      {"FromDateTime", "2024-02-30 00:00:00", 13},
      {"ReportType", "", 13},
      {"RZaccess", "text", 13},
      {"Where", Variant(std::shared_ptr<Dispatch>()), 91},
      {"Where", std::shared_ptr<Dispatch>(std::make_shared<StatTypes>()), 13},
  };
  for (const Case& c : cases) {
    EXPECT_EQ(ErrorNumber([&] { engine_->Put(c.property, c.written); }),
              c.error)
        << c.property;
  }
  EXPECT_EQ(engine_->SumBy(), 4);
  EXPECT_EQ(engine_->FromDateTime(), 100);
  EXPECT_NE(engine_->Where(), nullptr);
  try {
    engine_->Put("SumBy", "12.5abc");
  } catch (const Error& error) {
    EXPECT_NE(error.Description().find("12.5abc"), std::string::npos);
  }
}

TEST_F(RZselectTest, BegDateTimeReadsTheTextAndWritesTheDate) {
  engine_->State().BegText = "2024-01-01 00:00:00";
  engine_->Put("BegDateTime", "2024-06-30 12:00:00");
  EXPECT_EQ(engine_->Get("BegDateTime"), Variant("2024-01-01 00:00:00"));
  EXPECT_DOUBLE_EQ(engine_->State().BegDate, DateSerial(2024, 6, 30) + 0.5);
  engine_->Put("EndDateTime", 45000.0);
  EXPECT_EQ(engine_->EndDateTime(), "");
  EXPECT_DOUBLE_EQ(engine_->State().EndDate, 45000.0);
}

TEST_F(RZselectTest, ListsAreLentByReferenceAndReplacedOnlyByAssignment) {
  auto where = engine_->Where();
  engine_->Get("Where").ToObject()->Call("Add", {1, "", 3, "=", "5", ""});
  EXPECT_EQ(where->Count(), 1);
  // Where(1).Value: the property's arguments go to the list's default.
  EXPECT_EQ(engine_->Get("Where", {1}).ToObject()->Get("Value"), Variant("5"));
  auto replacement = std::make_shared<WhereTypes>();
  engine_->PutRef("Where", std::shared_ptr<Dispatch>(replacement));
  EXPECT_EQ(engine_->Where(), replacement);
  EXPECT_EQ(engine_->Get("Where").ToObject()->Get("Count"),
            Variant(int32_t{0}));
}

TEST_F(RZselectTest, NewColumnsNameEveryRuleOfTheApplication) {
  engine_->SetRZaccess(OpenApplication(3));
  auto columns = engine_->ResultField();
  auto column = columns->Add(0, 5, 0, "Weight");
  EXPECT_EQ(column->RZfield()->Text(FieldAttribute::kRules), "ABC");
  // A list the host keeps after the engine is gone still works.
  engine_.reset();
  EXPECT_EQ(columns->Add(0, 6, 0, "x")->RZfield()->Text(FieldAttribute::kRules),
            "");
}

TEST_F(RZselectTest, MethodsThatNeedAnApplicationRefuseBeforeInitialize) {
  auto repository = platform_->CreateRepository();
  const std::function<void()> calls[] = {
      [&] { engine_->Show(repository); },
      [&] { engine_->Refresh(repository, true); },
      [&] { engine_->SaveRepository(repository, "/tmp/x.rzt"); },
      [&] { engine_->Call("Show", {std::shared_ptr<Dispatch>(repository)}); },
  };
  for (const auto& call : calls) EXPECT_EQ(ErrorNumber(call), 81);
  EXPECT_EQ(engine_->DataSource(), nullptr);
  try {
    engine_->Refresh(repository);
  } catch (const Error& error) {
    EXPECT_EQ(error.Source(), "RZSelect.Refresh");
  }
}

TEST_F(RZselectTest, SaveRepositoryWithoutARepositoryIsRefused) {
  engine_->SetRZaccess(OpenApplication(0));
  EXPECT_EQ(ErrorNumber([&] { engine_->SaveRepository(nullptr, "x.rzt"); }),
            81);
  EXPECT_EQ(ErrorNumber([&] {
              engine_->Call("SaveRepository", {Variant(), "x.rzt"});
            }),
            81);
}

TEST_F(RZselectTest, TheWizardIsNotAvailableYet) {
  engine_->SetRZaccess(OpenApplication(0));
  try {
    engine_->Show(platform_->CreateRepository());
    ADD_FAILURE() << "no error";
  } catch (const Error& error) {
    EXPECT_EQ(error.Number(), 5);
    EXPECT_NE(error.Description().find("not available yet"), std::string::npos)
        << error.Description();
  }
}

TEST_F(RZselectTest, UnsecuredFunctionsAreAllowed) {
  engine_->SetRZaccess(OpenApplication(0, "EXPORT,PRINT"));
  engine_->SetUserIdentification("left over");
  EXPECT_TRUE(engine_->CheckSecurity("Delete"));
  EXPECT_EQ(engine_->UserIdentification(), "");
  EXPECT_EQ(engine_->Call("CheckSecurity", {"Import"}), Variant(true));
  // A listed name, in any case, is secured: the security script decides,
  // and without one (this platform has no script engine) it refuses.
  EXPECT_FALSE(engine_->CheckSecurity("export"));
  EXPECT_FALSE(engine_->CheckSecurity("PORT"));
  EXPECT_EQ(engine_->UserIdentification(), "");
}

TEST_F(RZselectTest, CheckSecurityWithoutAnApplicationObjectFails) {
  EXPECT_EQ(ErrorNumber([&] { engine_->CheckSecurity("Export"); }), 91);
}

TEST_F(RZselectTest, EmptySecuredListAllowsEverything) {
  engine_->SetRZaccess(OpenApplication(0, ""));
  EXPECT_TRUE(engine_->CheckSecurity(""));
  EXPECT_TRUE(engine_->CheckSecurity("Export"));
}

TEST_F(RZselectTest, TheHostsLastReleaseDestroysTheEngine) {
  std::weak_ptr<RZselect> weak = engine_;
  EXPECT_EQ(engine_->SelfRef(), engine_);
  engine_->ReleaseObject();
  EXPECT_EQ(engine_->SelfRef(), nullptr);
  engine_.reset();
  EXPECT_TRUE(weak.expired());
}

TEST_F(RZselectTest, DestructionClosesTheApplication) {
  auto file = OpenApplication(0);
  engine_->SetRZaccess(file);
  engine_.reset();
  EXPECT_FALSE(file->ApplicationExists());
}

class RecordingHandler : public RZselectEvents {
 public:
  explicit RecordingHandler(std::string name, std::string* log,
                            bool cancel_on_write = false)
      : name_(std::move(name)), log_(log), cancel_on_write_(cancel_on_write) {}
  void OpenDataSource(bool& cancel) override { Note("open", cancel); }
  void WriteDataSource(bool& cancel) override {
    Note("write", cancel);
    if (cancel_on_write_) cancel = true;
  }
  void CloseDataSource(bool& cancel) override { Note("close", cancel); }

 private:
  void Note(const char* event, bool cancel) {
    *log_ += name_ + ":" + event + (cancel ? "+" : "-") + " ";
  }
  std::string name_;
  std::string* log_;
  bool cancel_on_write_;
};

TEST_F(RZselectTest, EventsReachEveryHandlerWithTheSameCancelFlag) {
  std::string log;
  RecordingHandler first("a", &log, /*cancel_on_write=*/true);
  RecordingHandler second("b", &log);
  engine_->AddEventHandler(&first);
  engine_->AddEventHandler(&second);
  bool cancel = false;
  engine_->RaiseOpenDataSource(cancel);
  engine_->RaiseWriteDataSource(cancel);
  EXPECT_TRUE(cancel);
  engine_->RemoveEventHandler(&first);
  bool close_cancel = false;
  engine_->RaiseCloseDataSource(close_cancel);
  EXPECT_EQ(log, "a:open- b:open- a:write- b:write+ b:close- ");
  EXPECT_EQ(ErrorNumber([&] { engine_->AddEventHandler(nullptr); }), 91);
}

TEST_F(RZselectTest, MemberNamesFollowTheInterfaceOrder) {
  const std::vector<std::string> names = engine_->MemberNames();
  ASSERT_EQ(names.size(), 55u);
  EXPECT_EQ(names.front(), "DisplayPacifier");
  EXPECT_EQ(names[44], "RunTooltip");
  EXPECT_EQ(names[45], "Initialize");
  EXPECT_EQ(names.back(), "ReleaseObject");
}

TEST(RZselectTraceTest, ConstructionAndMethodsTrace) {
  InFreshThread([] {
    auto platform = std::make_shared<FakePlatform>();
    platform->SetTraceSinkRunning(true);
    auto engine = RZselect::Create(platform);
    engine->ReleaseObject();
    engine.reset();
    using Record = FakePlatform::TraceRecord;
    const std::vector<Record> expected = {
        {"rzselect", "RZselectClass", "Class_Initialize",
         "Started  V" + std::string(RZselect::Version())},
        {"rzselect", "RZselectClass", "Class_Initialize", "Ended"},
        {"rzselect", "RZselectClass", "ReleaseObject", "Started"},
        {"rzselect", "RZselectClass", "ReleaseObject", "Ended"},
        {"rzselect", "RZselectClass", "Class_Terminate", "Started"},
        {"rzselect", "RZselectClass", "Class_Terminate", "Ended"},
    };
    EXPECT_EQ(platform->TraceRecords(), expected);
  });
}

TEST(RZselectTraceTest, CheckSecurityTracesItsArgumentAndAnswer) {
  InFreshThread([] {
    auto platform = std::make_shared<FakePlatform>();
    platform->SetTraceSinkRunning(true);
    platform->AddApplication("/a.rzt").secured_functions = "EXPORT";
    auto engine = RZselect::Create(platform);
    auto file = platform->CreateAppFile();
    file->SetOpenMode(2);
    file->OpenApplication("/a.rzt");
    engine->SetRZaccess(file);
    engine->CheckSecurity("Print");
    const auto& records = platform->TraceRecords();
    ASSERT_GE(records.size(), 4u);
    EXPECT_EQ(records[2][2], "CheckSecurity");
    EXPECT_EQ(records[2][3], "Function=Print");
    EXPECT_EQ(records[3][3], "UserID=");
  });
}

TEST(RZselectTraceTest, VersionIsTheComponentVersion) {
  const std::string version(RZselect::Version());
  EXPECT_EQ(version.rfind("5.0.", 0), 0u) << version;
}

}  // namespace
}  // namespace rz
