// Copyright 2026 The Veltmark authors.

#include "run/run_driver.h"

#include <memory>
#include <string>
#include <vector>

#include "core/date_time.h"
#include "core/error.h"
#include "core/text.h"
#include "output/delivery.h"
#include "output/extraction.h"
#include "output/result_column.h"
#include "output/variable_setup.h"
#include "platform/app_file.h"
#include "platform/platform.h"
#include "platform/repository.h"
#include "platform/rzselect_events.h"
#include "platform/trace.h"
#include "run/filter_parameters.h"
#include "run/result_layout.h"
#include "script/engine_hook.h"
#include "ui/splash_model.h"
#include "view/date_range.h"
#include "view/record_bounds.h"
#include "view/view_state.h"

namespace rz {
namespace {

constexpr std::string_view kProcedure = "ExecuteCurrentView";

// Where the stages after the before-open hook continue.
enum class RunExit { kNone, kSkipRead, kCancelled };

class Run {
 public:
  Run(const RunContext& context, bool fire_event)
      : state_(context.state),
        scripts_(context.scripts),
        events_(context.events),
        fire_event_(fire_event),
        splash_(state_.platform->UserInterface()) {}

  void Execute() {
    Start();
    CheckTemplate();
    NoteDataDate();
    CopyRules();
    ReadBounds();
    RefreshRange();
    SetupForPrompting(state_);
    BuildFilter(state_);
    ShowProgress();
    std::vector<bool> excluded(
        state_.ResultField ? state_.ResultField->Count() : 0, false);
    if (state_.ExcludeEmpty == 1) excluded = ExcludeEmptyVariables(state_);
    layout_ = DetermineResultingVariables(state_, excluded);
    SetupOutput();
    const RunExit exit = ReadAndDeliver();
    if (exit != RunExit::kCancelled) AfterOpenView();
    End();
  }

 private:
  void Log(std::string_view message) {
    Trace(*state_.platform, kWriterModule, kProcedure, message);
  }

  AppFile& App() { return *state_.AppFile; }

  std::string Hook(std::string_view procedure) {
    return RunEngineHook(scripts_, procedure, state_.SelfRef.lock(),
                         state_.DataSource, state_.AppFile.get(),
                         state_.Filename);
  }

  // Stage 1.
  void Start() {
    Log("Starting...");
    state_.DataSource->ResetRepository();
  }

  // Stage 2: a template changed since the last open is opened again.
  void CheckTemplate() {
    if (App().TemplateDateTime() == state_.LastRZTdateTime) return;
    App().CloseApplication();
    App().SetOpenMode(kOpenExisting);
    App().OpenApplication(state_.Filename);
    if (!App().ApplicationExists()) {
      const std::string cause = App().NotApplicationCause();
      if (cause.empty()) {
        throw Error::ApplicationMissing().WithFile(state_.Filename);
      }
      throw Error::NotAnApplication(state_.Filename, cause);
    }
    state_.LastRZTdateTime = App().TemplateDateTime();
    if (state_.RunFromRZ) Hook("RZ_AfterOpenFile");
  }

  // Stage 3.
  void NoteDataDate() {
    state_.LastRZDdateTime = App().DataDateTime();
    Log("LastRZDdateTime=" + FormatDateTime(state_.LastRZDdateTime));
  }

  // Stage 4: rule i of n gets the ordinal n - i + 1.
  void CopyRules() {
    RuleList& rules = App().Rules();
    RuleCatalogueList& catalogue = state_.DataSource->RuleCatalogue();
    const int32_t count = rules.Count();
    for (int32_t i = 1; i <= count; ++i) {
      const Rule rule = rules.Item(i);
      std::shared_ptr<RuleEntry> entry = catalogue.Add(rule.key);
      entry->attributes = rule.attributes;
      entry->ordinal = count - i + 1;
    }
  }

  // Stage 5.
  void ReadBounds() {
    ReadRecordBounds(state_, App());
    Log("BegFileDateTime=" + FormatDateTime(state_.FirstRecordDateTime));
    Log("EndFileDateTime=" + FormatDateTime(state_.LastRecordDateTime));
  }

  // Stage 6.
  void RefreshRange() {
    const std::string_view kind = RangeKindTraceText(state_.FilterRangeType);
    if (!kind.empty()) Log(kind);
    RefreshRecordBoundRange(state_);
  }

  // Stage 9: the texts are set whether or not the window is shown.
  void ShowProgress() {
    if (state_.DisplayPacifier) splash_.Show();
    splash_.SetLabel("RZ 5");
    splash_.SetTotal(1);
    splash_.SetMessage(App().BasePath() +
                       ".rzt\r\nLoading Veltmark Data - Filtering...");
    splash_.SetPosition(0);
    splash_.YieldToUser();
  }

  // Stage 12.
  void SetupOutput() {
    Log("Setup Variables");
    SetupVariables(state_, layout_);
    Log("Reconcile @POP and @XBAR Variables");
    ReconcileReferences(state_, layout_);
    FillRepositoryHeader(state_, layout_);
  }

  // Stages 13 to 16.
  RunExit ReadAndDeliver() {
    if (state_.RunFromRZ) {
      Log("Script: RZ_BeforeOpenView");
      if (UpperCase(Hook("RZ_BeforeOpenView")) == "SKIPREAD") {
        return RunExit::kSkipRead;
      }
    }
    bool cancel = false;
    if (fire_event_) {
      events_.RaiseOpenDataSource(cancel);
      if (cancel) return RunExit::kCancelled;
    }
    if (ExtractRecords(state_, layout_, fire_event_, events_, splash_)) {
      return RunExit::kCancelled;
    }
    if (fire_event_) events_.RaiseCloseDataSource(cancel);
    return RunExit::kNone;
  }

  // Stage 17.
  void AfterOpenView() {
    if (!state_.RunFromRZ) return;
    Log("Script: RZ_AfterOpenView");
    Hook("RZ_AfterOpenView");
  }

  // Stage 18.
  void End() {
    Log("Ending...");
    splash_.Close();
    state_.Cancel = false;
  }

  ViewState& state_;
  ScriptHost& scripts_;
  const EventHandlerList& events_;
  const bool fire_event_;
  // Closes itself when the run ends by an error, so no window that refuses
  // a user's close is left behind.
  SplashModel splash_;
  ResultLayout layout_;
};

}  // namespace

void ExecuteCurrentView(const RunContext& run, bool fire_event) {
  Run(run, fire_event).Execute();
}

}  // namespace rz
