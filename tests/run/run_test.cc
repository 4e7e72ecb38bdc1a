// Copyright 2026 The Veltmark authors.
//
// The run through the engine on a small application of the real
// application-file component: the stages' trace lines in order, the
// run-time questions and "@" values, the ReadOnly decision, and a template
// that changed since it was opened.

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <utime.h>

#include <memory>
#include <string>
#include <vector>

#include "core/error.h"
#include "engine/rzselect.h"
#include "platform/file_system.h"
#include "platform/repository.h"
#include "run/filter_parameters.h"
#include "support/component_platform.h"
#include "support/temp_folder.h"
#include "ui/input_dialog_form.h"
#include "view/result_field_types.h"
#include "view/where_types.h"

namespace rz {
namespace {

class RunTest : public ::testing::Test {
 protected:
  void SetUp() override {
    MakeApplication(*platform_, App(),
                    {{"Date", "T", 10, 0},
                     {"Time", "T", 8, 0},
                     {"Weight", "N", 5, 1},
                     {"Line", "T", 2, 0}},
                    {{"2024-03-01", "06:00:00", 10.5, "A"},
                     {"2024-03-01", "07:00:00", 12.0, "B"},
                     {"2024-03-02", "06:00:00", Variant::Null(), "A"},
                     {"2024-03-02", "09:30:00", 9.0, "C"}});
    Open(false);
  }

  void Open(bool hooks) {
    engine_ = RZselect::Create(platform_);
    engine_->SetFilename(App());
    engine_->SetDisplayPacifier(false);
    engine_->Initialize(hooks);
    engine_->SetCurrentViewName("Weights");
  }

  std::string App() const { return folder_.File("line.rzt"); }

  void Run() {
    platform_->ClearTraces();
    engine_->Refresh(repository_, false);
  }

  // The first trace message starting with `prefix`, or "(none)".
  std::string Traced(const std::string& prefix) const {
    for (const std::string& message : platform_->TraceMessages()) {
      if (message.rfind(prefix, 0) == 0) return message;
    }
    return "(none)";
  }

  TempFolder folder_;
  std::shared_ptr<ComponentPlatform> platform_ =
      std::make_shared<ComponentPlatform>();
  std::shared_ptr<Repository> repository_ = platform_->CreateRepository();
  std::shared_ptr<RZselect> engine_;
};

TEST_F(RunTest, TheStagesTraceInTheirOrder) {
  Run();
  const std::vector<std::string> stages = {
      "Starting...",
      "LastRZDdateTime=",
      "BegFileDateTime=2024-03-01 06:00:00",
      "EndFileDateTime=2024-03-02 09:30:00",
      "SetupForPrompting",
      "Filter=None,(,V0 >= '2024-03-01 06:00:00',",
      "Filter=And,,V0 <= '2024-03-02 09:30:00',)",
      "Determine Resulting Variables",
      "ResultFieldsCount=4",
      "ReadOnly=False",
      "Setup Variables",
      "Reconcile @POP and @XBAR Variables",
      "Start Extracting Data...",
      "RecordsToProcess=4",
      "Done Extracting...",
      "Ending...",
  };
  const std::vector<std::string> messages = platform_->TraceMessages();
  size_t at = 0;
  for (const std::string& stage : stages) {
    while (at < messages.size() && messages[at].rfind(stage, 0) != 0) ++at;
    ASSERT_LT(at, messages.size()) << "missing or out of order: " << stage;
  }
  EXPECT_EQ(Traced("ReadOnly="), "ReadOnly=False");
  EXPECT_EQ(repository_->RecordCount(), 4);
  EXPECT_EQ(repository_->Value(1, 3).ToString(), "10.5");
}

// The question of a "?" row, as the dialog shows it, for each operator; the
// answer goes into the filter, and the next run asks nothing.
TEST_F(RunTest, QuestionsNameTheVariableAndTheOperator) {
  const struct Case {
    int16_t variable;
    const char* op;
    const char* question;
  } cases[] = {
      {3, "=", "Where  [Weight]  Is Equal To ..."},
      {3, ">", "Where  [Weight]  Is Greater Than ..."},
      {3, ">=", "Where  [Weight]  Is Greater Than Or Equal To ..."},
      {3, "<", "Where  [Weight]  Is Less Than ..."},
      {3, "<=", "Where  [Weight]  Is Less Than Or Equal To ..."},
      {3, "<>", "Where  [Weight]  Is Not Equal To ..."},
      {4, "LIKE", "Where  [Line]  Looks Like ..."},
      {1, "=", "Where  [Date]  (YYYY-MM-DD HH:MM:SS) Is Equal To ..."},
      {2, ">", "Where  [Time]  (HH:MM:SS) Is Greater Than ..."},
  };
  // An operator the question has no words for adds none.
  EXPECT_EQ(OperatorWording("=<"), "");
  for (const Case& c : cases) {
    engine_->Where()->Clear();
    engine_->Where()->Add(0, "", c.variable, c.op, "?", "");
    engine_->State().PromptValues.clear();
    std::vector<std::string> asked;
    platform_->Toolkit().SetModalHandler([&](DialogModel& model) {
      auto& form = dynamic_cast<InputDialogForm&>(model);
      asked.push_back(form.lblPrompt());
      EXPECT_EQ(form.Caption(), "Enter Run Time Parameters");
      EXPECT_FALSE(form.cmdCancelVisible());
      form.cboInputText() = "";
      form.Ok();
    });
    Run();
    ASSERT_EQ(asked.size(), 1u) << c.question;
    EXPECT_EQ(asked[0],
              "Test line\r\nWeights\r\n\r\n" + std::string(c.question));
    EXPECT_EQ(Traced("PromptValue(1)="), "PromptValue(1)=NULL") << c.question;
    Run();
    EXPECT_EQ(asked.size(), 1u) << "asked again: " << c.question;
    EXPECT_EQ(Traced("PromptValue("), "(none)");
  }
}

TEST_F(RunTest, AnswersAndInputFilesFillTheFilter) {
  engine_->Where()->Add(0, "", 4, "=", "?", "");
  engine_->Where()->Add(2, "", 4, "=", "@line.txt", "");
  engine_->Where()->Add(2, "", 4, "=", "@missing.txt", "");
  platform_->SetInputFile("line.txt", "C");
  platform_->Toolkit().SetModalHandler([](DialogModel& model) {
    auto& form = dynamic_cast<InputDialogForm&>(model);
    form.cboInputText() = "B";
    form.Ok();
  });
  Run();
  EXPECT_EQ(Traced("Filter=None,,V4"), "Filter=None,,V4 = 'B',");
  EXPECT_EQ(Traced("Filter=Or,,V4 = 'C'"), "Filter=Or,,V4 = 'C',");
  EXPECT_EQ(Traced("Filter=Or,,V4 = ''"), "Filter=Or,,V4 = '',");
  EXPECT_EQ(Traced("PromptValue(2)="), "PromptValue(2)=C");
  EXPECT_EQ(Traced("PromptValue(3)="), "PromptValue(3)=");
  ASSERT_EQ(repository_->RecordCount(), 2);  // lines B and C
  EXPECT_EQ(repository_->Value(2, 4).ToString(), "C");
}

TEST_F(RunTest, ReadOnlyTellsWhy) {
  const struct Case {
    const char* what;
    int16_t sum_by;
    int16_t pivot;
    int16_t statistic;
    int16_t length;
    const char* traced;
  } cases[] = {
      {"plain", 0, 0, 0, 5, "ReadOnly=False"},
      {"summary", 5, 0, 0, 5, "ReadOnly=True"},
      {"statistic", 0, 0, 1, 5, "ReadOnly=True,V3 Statistic"},
      {"pivot and statistic", 0, 4, 1, 5,
       // one column per line value: A, B, C
       "ReadOnly=True,V3 Pivoted,V3 Statistic,V3 Pivoted,V3 Statistic,"
       "V3 Pivoted,V3 Statistic"},
      {"another length", 0, 0, 0, 7, "ReadOnly=True,V3 FieldLength"},
  };
  for (const Case& c : cases) {
    ResultFieldTypes& fields = *engine_->ResultField();
    while (fields.Count() > 2) fields.Remove(fields.Count());
    std::shared_ptr<ResultFieldType> weight =
        fields.Add(c.pivot, 3, c.statistic, "W_*");
    weight->RZfield()->Set(FieldAttribute::kLength, Variant(c.length));
    weight->RZfield()->Set(FieldAttribute::kDecimals, Variant(int16_t{1}));
    engine_->SetSumBy(c.sum_by);
    Run();
    EXPECT_EQ(Traced("ReadOnly="), c.traced) << c.what;
    EXPECT_EQ(engine_->ReadOnly(), c.traced != std::string("ReadOnly=False"))
        << c.what;
  }
}

// The second Refresh of an open engine starts where the first left the
// application file (summary mode on) and must give the same result.
TEST_F(RunTest, ASecondRunOfASummaryWithAPivotGivesTheSameResult) {
  ResultFieldTypes& fields = *engine_->ResultField();
  while (fields.Count() > 2) fields.Remove(fields.Count());
  fields.Add(4, 3, 9, "W_[*]");
  engine_->SetSumBy(5);
  std::vector<std::string> runs;
  for (int run = 0; run < 2; ++run) {
    Run();
    std::string cells = Traced("ResultFieldsCount=");
    for (int32_t r = 1; r <= repository_->RecordCount(); ++r) {
      for (int32_t f = 1; f <= repository_->Fields().Count(); ++f) {
        cells += "|" + repository_->Value(r, f).ToString();
      }
    }
    runs.push_back(cells);
  }
  EXPECT_EQ(runs[0].substr(0, 19), "ResultFieldsCount=5");  // A, B, C
  EXPECT_EQ(runs[1], runs[0]);
}

TEST_F(RunTest, AResultFieldOnAVariableTheApplicationLacksIsNamed) {
  engine_->ResultField()->Add(0, 9, 0, "Gone");
  try {
    Run();
    FAIL() << "no error";
  } catch (const Error& error) {
    EXPECT_EQ(error.Number(), 9);
    EXPECT_NE(error.Description().find("view 'Weights', result field 5"),
              std::string::npos)
        << error.Description();
  }
  engine_->ResultField()->Remove(5);
  engine_->Where()->Add(0, "", 12, "=", "1", "");
  try {
    Run();
    FAIL() << "no error";
  } catch (const Error& error) {
    EXPECT_NE(error.Description().find("filter row 1"), std::string::npos)
        << error.Description();
  }
  engine_->Where()->Clear();
  Run();  // the engine stays usable
  EXPECT_EQ(repository_->RecordCount(), 4);
}

// A template changed since it was opened is opened again once, and the
// after-open hook runs once for it.
TEST_F(RunTest, AChangedTemplateIsOpenedAgainWithItsHook) {
  WriteTextFileAtomically(
      App() + ".rzx",
      "Function RZ_AfterOpenFile()\r\n"
      "  RZselect.ReportFooter = RZselect.ReportFooter & \"x\"\r\n"
      "End Function\r\n");
  Open(true);
  engine_->SetReportFooter("");
  Run();
  Run();
  EXPECT_EQ(engine_->ReportFooter(), "");
  struct stat status {};
  ASSERT_EQ(::stat(App().c_str(), &status), 0);
  utimbuf later{status.st_atime, status.st_mtime + 60};
  ASSERT_EQ(::utime(App().c_str(), &later), 0);
  Run();
  Run();
  EXPECT_EQ(engine_->ReportFooter(), "x");
  EXPECT_EQ(repository_->RecordCount(), 4);
}

}  // namespace
}  // namespace rz
