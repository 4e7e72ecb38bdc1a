// Copyright 2026 The Veltmark authors.
//
// RZselect is the selection engine object a host creates: it is handed
// the path of a Veltmark application and a repository, and loads, edits,
// saves and runs views. It owns the engine state record (ViewState) and
// exposes every field of the current view as a property; each method is a
// short sequence of calls into the engine's working parts.
//
// Create it with RZselect::Create; the host's last reference destroys it
// (the self reference handed to scripts is weak, and ReleaseObject clears
// it). Every public method traces "Started" and "Ended" (writer
// "RZselectClass"). Show, Refresh, SaveRepository, LoadView and SaveView
// raise error 81 until Initialize has opened an application; errors of the
// components reach the caller unchanged. Methods whose working parts are not
// built in this version raise error 5 naming what is missing.
//
// Scripts: hooks and the security script run without a time limit unless
// the host sets one (SetHookTimeout) or the template has a HOOKTIMEOUT key
// (hook_timeout.h); the host's setting wins. While a script holds the
// object (as "RZselect"), its LoadView and SaveView refuse, with error 70
// naming the path, any application other than the one open when the script
// started; C++ calls are never refused.
//
// Property setters here take typed values; the Dispatch surface (member
// names exactly as scripts write them: `RZselect.Where(2).Value`)
// converts Variants with the automation rules and raises error 13 naming a
// value that cannot be converted, before anything is stored.
//
// Single-threaded: all calls on the host's thread.

#ifndef RZ_ENGINE_RZSELECT_H_
#define RZ_ENGINE_RZSELECT_H_

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "core/dispatch.h"
#include "platform/rzselect_events.h"
#include "platform/script_reachable.h"
#include "script/script_host.h"
#include "view/view_file.h"
#include "view/view_state.h"

namespace rz {

class AppFile;
class Platform;
class Repository;

class RZselect : public Dispatch, public ScriptReachable {
 public:
  // A new engine object: empty lists, RunCaption "Run", RunTooltip
  // "Execute the current View", DisplayPacifier true. Traces
  // "Started  V<version>" from "Class_Initialize".
  static std::shared_ptr<RZselect> Create(std::shared_ptr<Platform> platform);

  // Closes the application if one is open. Never throws.
  ~RZselect() override;

  RZselect(const RZselect&) = delete;
  RZselect& operator=(const RZselect&) = delete;

  // The component version, "5.0.N".
  static std::string_view Version();

  // ---- Properties (one ViewState field each) ----
  bool DisplayPacifier() const { return state_->DisplayPacifier; }
  void SetDisplayPacifier(bool value) { state_->DisplayPacifier = value; }
  // The lists are lent by reference; assigning replaces the list object.
  // Assigning null raises error 91.
  std::shared_ptr<WhereTypes> Where() const { return state_->Where; }
  void SetWhere(std::shared_ptr<WhereTypes> list);
  std::shared_ptr<StatTypes> ReportStatistics() const {
    return state_->ReportStatistics;
  }
  void SetReportStatistics(std::shared_ptr<StatTypes> list);
  std::shared_ptr<ResultFieldTypes> ResultField() const {
    return state_->ResultField;
  }
  void SetResultField(std::shared_ptr<ResultFieldTypes> list);
  std::shared_ptr<Repository> DataSource() const { return state_->DataSource; }
  void SetDataSource(std::shared_ptr<Repository> repository) {
    state_->DataSource = std::move(repository);
  }
  const std::string& Filename() const { return state_->Filename; }
  void SetFilename(std::string value) { state_->Filename = std::move(value); }
  bool Cancel() const { return state_->Cancel; }
  void SetCancel(bool value) { state_->Cancel = value; }
  int16_t PlusMinus() const { return state_->PlusMinus; }
  void SetPlusMinus(int16_t value) { state_->PlusMinus = value; }
  int16_t SumBy() const { return state_->SumBy; }
  void SetSumBy(int16_t value) { state_->SumBy = value; }
  int16_t NullPivots() const { return state_->NullPivots; }
  void SetNullPivots(int16_t value) { state_->NullPivots = value; }
  int16_t NullIntervals() const { return state_->NullIntervals; }
  void SetNullIntervals(int16_t value) { state_->NullIntervals = value; }
  int16_t ExcludeEmpty() const { return state_->ExcludeEmpty; }
  void SetExcludeEmpty(int16_t value) { state_->ExcludeEmpty = value; }
  double ShiftDuration() const { return state_->ShiftDuration; }
  void SetShiftDuration(double hours) { state_->ShiftDuration = hours; }
  double ShiftStart() const { return state_->ShiftStart; }
  void SetShiftStart(double days) { state_->ShiftStart = days; }
  int16_t YearBegins() const { return state_->YearBegins; }
  void SetYearBegins(int16_t value) { state_->YearBegins = value; }
  int16_t WeekDays() const { return state_->WeekDays; }
  void SetWeekDays(int16_t value) { state_->WeekDays = value; }
  double Interval() const { return state_->Interval; }
  void SetInterval(double days) { state_->Interval = days; }
  rzScreenTypes ReturnScreen() const {
    return static_cast<rzScreenTypes>(state_->ReturnScreen);
  }
  void SetReturnScreen(rzScreenTypes value) { state_->ReturnScreen = value; }
  // Reads the begin text; writes the begin date (the text is not updated).
  const std::string& BegDateTime() const { return state_->BegText; }
  void SetBegDateTime(double date) { state_->BegDate = date; }
  const std::string& EndDateTime() const { return state_->EndText; }
  void SetEndDateTime(double date) { state_->EndDate = date; }
  int32_t ReportType() const { return state_->ReportType; }
  void SetReportType(int32_t value) { state_->ReportType = value; }
  const std::string& ReportHeader() const { return state_->ReportHeader; }
  void SetReportHeader(std::string value) {
    state_->ReportHeader = std::move(value);
  }
  const std::string& ReportFooter() const { return state_->ReportFooter; }
  void SetReportFooter(std::string value) {
    state_->ReportFooter = std::move(value);
  }
  // The five report flags are 16-bit fields; true is stored as -1.
  bool ReportNumericOnly() const { return state_->ReportNumericOnly != 0; }
  void SetReportNumericOnly(bool value) {
    state_->ReportNumericOnly = FlagValue(value);
  }
  bool ReportIncludeDetails() const {
    return state_->ReportIncludeDetails != 0;
  }
  void SetReportIncludeDetails(bool value) {
    state_->ReportIncludeDetails = FlagValue(value);
  }
  bool ReportIncludeColumns() const {
    return state_->ReportIncludeColumns != 0;
  }
  void SetReportIncludeColumns(bool value) {
    state_->ReportIncludeColumns = FlagValue(value);
  }
  bool ReportIncludeStatistics() const {
    return state_->ReportIncludeStatistics != 0;
  }
  void SetReportIncludeStatistics(bool value) {
    state_->ReportIncludeStatistics = FlagValue(value);
  }
  bool ReportIncludeFilter() const { return state_->ReportIncludeFilter != 0; }
  void SetReportIncludeFilter(bool value) {
    state_->ReportIncludeFilter = FlagValue(value);
  }
  bool ReadOnly() const { return state_->ReadOnly; }
  void SetReadOnly(bool value) { state_->ReadOnly = value; }
  int32_t FilterRangeType() const { return state_->FilterRangeType; }
  void SetFilterRangeType(int32_t value) { state_->FilterRangeType = value; }
  int32_t FromType() const { return state_->FromType; }
  void SetFromType(int32_t value) { state_->FromType = value; }
  double FromDateTime() const { return state_->FromDateTime; }
  void SetFromDateTime(double date) { state_->FromDateTime = date; }
  int32_t ForwardAmount() const { return state_->ForwardAmount; }
  void SetForwardAmount(int32_t value) { state_->ForwardAmount = value; }
  int32_t ForwardUnits() const { return state_->ForwardUnits; }
  void SetForwardUnits(int32_t value) { state_->ForwardUnits = value; }
  int32_t ToType() const { return state_->ToType; }
  void SetToType(int32_t value) { state_->ToType = value; }
  double ToDateTime() const { return state_->ToDateTime; }
  void SetToDateTime(double date) { state_->ToDateTime = date; }
  int32_t BackwardAmount() const { return state_->BackwardAmount; }
  void SetBackwardAmount(int32_t value) { state_->BackwardAmount = value; }
  int32_t BackwardUnits() const { return state_->BackwardUnits; }
  void SetBackwardUnits(int32_t value) { state_->BackwardUnits = value; }
  const std::string& CurrentViewName() const { return state_->CurrentViewName; }
  void SetCurrentViewName(std::string value) {
    state_->CurrentViewName = std::move(value);
  }
  double LastRZTdateTime() const { return state_->LastRZTdateTime; }
  void SetLastRZTdateTime(double date) { state_->LastRZTdateTime = date; }
  double LastRZDdateTime() const { return state_->LastRZDdateTime; }
  void SetLastRZDdateTime(double date) { state_->LastRZDdateTime = date; }
  const std::string& UserIdentification() const {
    return state_->UserIdentification;
  }
  void SetUserIdentification(std::string value) {
    state_->UserIdentification = std::move(value);
  }
  std::shared_ptr<AppFile> RZaccess() const { return state_->AppFile; }
  void SetRZaccess(std::shared_ptr<AppFile> app_file) {
    state_->AppFile = std::move(app_file);
  }
  const std::string& RunCaption() const { return state_->RunCaption; }
  void SetRunCaption(std::string value) {
    state_->RunCaption = std::move(value);
  }
  const std::string& RunTooltip() const { return state_->RunTooltip; }
  void SetRunTooltip(std::string value) {
    state_->RunTooltip = std::move(value);
  }

  // ---- Methods ----
  // Opens the application named by Filename, resets to the default view
  // and loads the application's default view when it has one. Error 53
  // when the application does not exist ("The Veltmark Application
  // specified does not exist", with Filename as the error's File()) or when
  // the file there is not one ("not a Veltmark application: FILE: no
  // [GENERAL] section"); the defaults are then not reset. A missing default
  // view file raises 0x80040001 with the application open and the defaults in
  // force.
  void Initialize(bool RunFromRZ = false);
  // Resets to defaults and reads the named view; error 0x80040001 when
  // its file is missing (the engine stays usable), 5 while a run is in
  // progress.
  void LoadView(const std::string& ViewName);
  // Writes the current view under ViewName, beside `Filename` when given,
  // else beside the application.
  void SaveView(const std::string& ViewName, const std::string& Filename = "");
  // Opens the view wizard on the given tab. Error 81 before Initialize.
  void Show(std::shared_ptr<Repository> DataSource,
            rzSelectTabs MyGotoTab = SelectTabViews);
  // Runs the current view into DataSource (which the engine keeps);
  // events only with FireEvent. Error 81 before Initialize, 91 without a
  // repository, 5 while a run is in progress (from an event handler or a
  // hook: the running one goes on). Cancel is false afterwards.
  void Refresh(std::shared_ptr<Repository> DataSource, bool FireEvent = false);
  // Exports a repository as a new application file. Error 81 before
  // Initialize or without a repository, 5 while a run is in progress.
  void SaveRepository(std::shared_ptr<Repository> DataSource,
                      const std::string& Filename);
  // True when the user may use the function. An unsecured function is
  // always allowed and leaves UserIdentification empty; a secured one is
  // allowed when the security script's RZ_Security answers a user id (not
  // only blanks), which UserIdentification then holds. Error 91 without
  // an application object.
  bool CheckSecurity(const std::string& RZFunction);
  // Element 0 the number n of script procedures, 1..n their names.
  Variant GetScriptModules();
  // Runs one script procedure with the given objects; its answer is
  // discarded.
  void ExecuteScriptModule(const std::string& ModuleName,
                           std::shared_ptr<Dispatch> objSelect,
                           std::shared_ptr<Dispatch> objRep);
  // ExecuteScriptModule answering the procedure's text (for host programs
  // that show it; not on the Dispatch surface).
  std::string RunScriptModule(const std::string& ModuleName,
                              std::shared_ptr<Dispatch> objSelect,
                              std::shared_ptr<Dispatch> objRep);
  // The time limit of hooks and the security script in milliseconds (-1
  // none), winning over the template's HOOKTIMEOUT; nullopt lets the
  // template decide at the next Initialize. Not on the Dispatch surface:
  // a script cannot lift its own limit.
  void SetHookTimeout(std::optional<int32_t> milliseconds);
  // Error 70 when a script holds this object and `base_path` (the view
  // files' base path a view method would use; "" for the application's)
  // is not the application open when the script started. Used by the
  // Dispatch surface.
  void RefuseOtherApplicationToScripts(std::string_view member,
                                       const std::string& base_path) const;
  // Clears the self reference handed to scripts.
  void ReleaseObject();

  // ---- Events ----
  // Registers a handler (not owned; it must outlive its registration).
  void AddEventHandler(RZselectEvents* handler);
  void RemoveEventHandler(RZselectEvents* handler);
  // Raises one event to every handler in registration order with the same
  // flag. Used by the run.
  void RaiseOpenDataSource(bool& cancel);
  void RaiseWriteDataSource(bool& cancel);
  void RaiseCloseDataSource(bool& cancel);

  // The engine state record, for the engine's working parts and tests.
  ViewState& State() { return *state_; }
  const ViewState& State() const { return *state_; }
  // The object scripts receive as objSelect; null after ReleaseObject.
  std::shared_ptr<RZselect> SelfRef() const;

  // ---- Dispatch ----
  std::string_view ClassName() const override { return "RZselect"; }
  Variant Invoke(std::string_view name, InvokeKind kind,
                 DispatchArgs& args) override;
  std::vector<std::string> MemberNames() const override;

 private:
  explicit RZselect(std::shared_ptr<Platform> platform);

  // Marks a run in progress for its lifetime (also when the run fails).
  class RunInProgress {
   public:
    explicit RunInProgress(bool& flag) : flag_(flag) { flag_ = true; }
    ~RunInProgress() { flag_ = false; }
    RunInProgress(const RunInProgress&) = delete;
    RunInProgress& operator=(const RunInProgress&) = delete;

   private:
    bool& flag_;
  };

  static int16_t FlagValue(bool value) { return value ? -1 : 0; }
  // Error 5 naming `method` while a run is in progress.
  void RefuseDuringRun(std::string_view method) const;
  void TraceMethod(std::string_view procedure, std::string_view message);
  void RequireApplication(std::string_view method) const;
  // The error 53 of an Initialize that found no application at Filename:
  // the system's "does not exist" (carrying Filename as its file) when no
  // file is there, else "not a Veltmark application: <Filename>: <cause>".
  Error NotOpenedError() const;
  // What the view file reader needs from the engine: the defaults reset.
  static ViewFileHooks ViewHooks();

  void OnScriptEntered() override;
  // The hook and security time limit the next Initialize uses: the host's,
  // else the open template's HOOKTIMEOUT (error 5 naming the template when
  // it is not a number of seconds), else none.
  int32_t HookTimeout() const;

  // Runs a hook with the engine, its application and `repository`.
  std::string RunHook(std::string_view procedure,
                      std::shared_ptr<Dispatch> engine,
                      std::shared_ptr<Dispatch> repository);

  std::shared_ptr<ViewState> state_;
  EventHandlerList handlers_;
  std::unique_ptr<ScriptHost> scripts_;
  std::optional<int32_t> host_hook_timeout_;
  std::string script_home_;  // the application open when a script started
  bool run_in_progress_ = false;
};

}  // namespace rz

#endif  // RZ_ENGINE_RZSELECT_H_
