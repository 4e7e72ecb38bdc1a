// Copyright 2026 The Veltmark authors.

#include "engine/rzselect.h"

#include "core/error.h"
#include "core/text.h"
#include "output/repository_export.h"
#include "platform/app_file.h"
#include "platform/file_system.h"
#include "platform/platform.h"
#include "platform/repository.h"
#include "platform/trace.h"
#include "run/run_driver.h"
#include "script/engine_hook.h"
#include "script/hook_timeout.h"
#include "ui/splash_model.h"
#include "view/view_defaults.h"
#include "view/view_file.h"

#ifndef RZ_VERSION
#error "RZ_VERSION must be defined by the build"
#endif

namespace rz {
namespace {

constexpr std::string_view kStarted = "Started";
constexpr std::string_view kEnded = "Ended";

}  // namespace

std::shared_ptr<RZselect> RZselect::Create(std::shared_ptr<Platform> platform) {
  std::shared_ptr<RZselect> engine(new RZselect(std::move(platform)));
  engine->state_->SelfRef = engine;
  return engine;
}

RZselect::RZselect(std::shared_ptr<Platform> platform)
    : state_(NewViewState(std::move(platform))),
      scripts_(std::make_unique<ScriptHost>(*state_->platform)) {
  TraceMethod("Class_Initialize", "Started  V" + std::string(Version()));
  TraceMethod("Class_Initialize", kEnded);
}

RZselect::~RZselect() {
  TraceMethod("Class_Terminate", kStarted);
  state_->Where.reset();
  state_->ResultField.reset();
  state_->ReportStatistics.reset();
  state_->WorkFields.reset();
  state_->WorkWhere.reset();
  if (state_->AppFile) {
    // A destructor cannot report: a failing close leaves the files as the
    // component left them.
    try {
      state_->AppFile->CloseApplication();
    } catch (const std::exception&) {
    }
    state_->AppFile.reset();
  }
  state_->DataSource.reset();
  scripts_.reset();  // the security script's engine
  TraceMethod("Class_Terminate", kEnded);
}

std::string_view RZselect::Version() { return RZ_VERSION; }

void RZselect::SetWhere(std::shared_ptr<WhereTypes> list) {
  if (!list) throw Error::ObjectNotSet("Where");
  state_->Where = std::move(list);
}

void RZselect::SetReportStatistics(std::shared_ptr<StatTypes> list) {
  if (!list) throw Error::ObjectNotSet("ReportStatistics");
  state_->ReportStatistics = std::move(list);
}

void RZselect::SetResultField(std::shared_ptr<ResultFieldTypes> list) {
  if (!list) throw Error::ObjectNotSet("ResultField");
  state_->ResultField = std::move(list);
}

void RZselect::Initialize(bool RunFromRZ) {
  TraceMethod("Initialize", kStarted);
  ViewState& state = *state_;
  state.RunFromRZ = RunFromRZ;
  if (state.AppFile) {
    state.AppFile->CloseApplication();
    state.AppFile.reset();
  }
  state.AppFile = state.platform->CreateAppFile();
  state.AppFile->SetOpenMode(kOpenExisting);
  state.AppFile->OpenApplication(state.Filename);
  TraceMethod("Initialize", "SetupForScripting");
  // No security script stays in force while the time limit is read: a
  // template with a bad HOOKTIMEOUT fails closed.
  scripts_->DiscardSecurityScript();
  scripts_->SetTimeout(HookTimeout());
  scripts_->SetupForScripting(SystemFolder());
  if (!state.AppFile->ApplicationExists()) throw NotOpenedError();
  if (RunFromRZ) {
    std::shared_ptr<Repository> repository = state.platform->CreateRepository();
    TraceMethod("Initialize", "Script: RZ_AfterOpenFile");
    RunHook("RZ_AfterOpenFile", state.SelfRef.lock(), repository);
  }
  state.LastRZTdateTime = state.AppFile->TemplateDateTime();
  state.AppFile->RefreshViews();
  SetDefaults(state);
  FillStatisticsCatalogue(state);
  state.CurrentViewName.clear();
  ViewCatalogue& views = state.AppFile->Views();
  const int32_t default_view = views.DefaultView();
  if (default_view > 0 && default_view <= views.Count()) {
    const std::string name = views.Item(default_view).name;
    TraceMethod("Initialize", "LoadFromView=" + name);
    LoadFromView(state, name, ViewHooks());
  }
  TraceMethod("Initialize", kEnded);
}

Error RZselect::NotOpenedError() const {
  const std::string cause = state_->AppFile->NotApplicationCause();
  if (cause.empty())
    return Error::ApplicationMissing().WithFile(state_->Filename);
  return Error::NotAnApplication(state_->Filename, cause);
}

void RZselect::LoadView(const std::string& ViewName) {
  TraceMethod("LoadView", "LoadView=" + ViewName);
  RequireApplication("LoadView");
  RefuseDuringRun("LoadView");
  SetDefaults(*state_);
  FillStatisticsCatalogue(*state_);
  LoadFromView(*state_, ViewName, ViewHooks());
}

void RZselect::SaveView(const std::string& ViewName,
                        const std::string& Filename) {
  TraceMethod("SaveView", "SaveView=" + ViewName);
  RequireApplication("SaveView");
  const std::string base_path =
      Filename.empty() ? state_->AppFile->BasePath() : Filename;
  SaveFromView(*state_, ViewName, base_path);
}

ViewFileHooks RZselect::ViewHooks() {
  ViewFileHooks hooks;
  hooks.set_defaults = [](ViewState& state) { SetDefaults(state); };
  return hooks;
}

void RZselect::Show(std::shared_ptr<Repository> DataSource,
                    rzSelectTabs MyGotoTab) {
  TraceMethod("Show", kStarted);
  RequireApplication("Show");
  (void)DataSource;
  (void)MyGotoTab;
  throw Error::NotAvailableYet("Show", "the view wizard");
}

void RZselect::Refresh(std::shared_ptr<Repository> DataSource, bool FireEvent) {
  TraceMethod("Refresh", kStarted);
  RequireApplication("Refresh");
  RefuseDuringRun("Refresh");
  if (!DataSource) throw Error::ObjectNotSet("DataSource");
  state_->DataSource = std::move(DataSource);
  {
    const RunInProgress running(run_in_progress_);
    ExecuteCurrentView(RunContext{*state_, *scripts_, handlers_}, FireEvent);
  }
  state_->Cancel = false;
  TraceMethod("Refresh", kEnded);
}

void RZselect::SaveRepository(std::shared_ptr<Repository> DataSource,
                              const std::string& Filename) {
  TraceMethod("SaveRepository", kStarted);
  RequireApplication("SaveRepository");
  if (!DataSource) throw Error::NoApplication("SaveRepository");
  RefuseDuringRun("SaveRepository");
  SplashModel splash(state_->platform->UserInterface());
  if (state_->DisplayPacifier) splash.Show();
  ExportRepository(*state_, *DataSource, Filename, splash);
  splash.Close();
  TraceMethod("SaveRepository", kEnded);
}

void RZselect::RefuseDuringRun(std::string_view method) const {
  if (run_in_progress_) {
    throw Error::InvalidArgument(
        "a run is in progress: " + std::string(method) +
        " cannot be called until it ends")
        .WithSource("RZSelect." + std::string(method));
  }
}

bool RZselect::CheckSecurity(const std::string& RZFunction) {
  TraceMethod("CheckSecurity", "Function=" + RZFunction);
  state_->UserIdentification.clear();
  if (!state_->AppFile) throw Error::ObjectNotSet("RZaccess");
  const std::string secured = state_->AppFile->SecuredFunctions();
  // A plain substring test: a listed name also protects every name it
  // contains. The empty name is contained in any non-empty list.
  const bool is_secured =
      !secured.empty() && ContainsIgnoreCase(secured, RZFunction);
  bool allowed = true;
  if (is_secured) {
    TraceMethod("CheckSecurity", "Script: RZ_Security");
    state_->UserIdentification = scripts_->RunSecurityHook(
        "RZ_Security", RZFunction + "," + state_->AppFile->BasePath());
    allowed = !Trim(state_->UserIdentification).empty();
  }
  TraceMethod("CheckSecurity", "UserID=" + state_->UserIdentification);
  return allowed;
}

Variant RZselect::GetScriptModules() {
  TraceMethod("GetScriptModules", kStarted);
  std::vector<std::string> names;
  if (state_->AppFile) {
    names = scripts_->ScriptModules(
        EngineHookFiles(state_->AppFile.get(), state_->Filename));
  }
  VariantArray list = {Variant(static_cast<int32_t>(names.size()))};
  for (std::string& name : names) list.emplace_back(std::move(name));
  TraceMethod("GetScriptModules", kEnded);
  return Variant(std::move(list));
}

void RZselect::ExecuteScriptModule(const std::string& ModuleName,
                                   std::shared_ptr<Dispatch> objSelect,
                                   std::shared_ptr<Dispatch> objRep) {
  RunScriptModule(ModuleName, std::move(objSelect), std::move(objRep));
}

std::string RZselect::RunScriptModule(const std::string& ModuleName,
                                      std::shared_ptr<Dispatch> objSelect,
                                      std::shared_ptr<Dispatch> objRep) {
  TraceMethod("ExecuteScriptModule", "Script: " + ModuleName);
  return RunHook(ModuleName, std::move(objSelect), std::move(objRep));
}

void RZselect::SetHookTimeout(std::optional<int32_t> milliseconds) {
  host_hook_timeout_ = milliseconds;
  if (milliseconds) scripts_->SetTimeout(*milliseconds);
}

int32_t RZselect::HookTimeout() const {
  if (host_hook_timeout_) return *host_hook_timeout_;
  if (!state_->AppFile || !state_->AppFile->ApplicationExists()) {
    return kNoHookTimeout;
  }
  return HookTimeoutMilliseconds(state_->AppFile->HookTimeout(),
                                 state_->Filename, kHookTimeoutKey);
}

void RZselect::OnScriptEntered() {
  script_home_ = state_->AppFile ? ComparablePath(state_->AppFile->BasePath())
                                 : std::string();
}

void RZselect::RefuseOtherApplicationToScripts(
    std::string_view member, const std::string& base_path) const {
  if (!HeldByScript() || !state_->AppFile) return;
  const std::string path =
      base_path.empty() ? state_->AppFile->BasePath() : base_path;
  if (script_home_.empty() || ComparablePath(path) != script_home_) {
    throw Error::RefusedToScripts(member, path)
        .WithSource("RZSelect." + std::string(member));
  }
}

std::string RZselect::RunHook(std::string_view procedure,
                              std::shared_ptr<Dispatch> engine,
                              std::shared_ptr<Dispatch> repository) {
  return RunEngineHook(*scripts_, procedure, std::move(engine),
                       std::move(repository), state_->AppFile.get(),
                       state_->Filename);
}

void RZselect::ReleaseObject() {
  TraceMethod("ReleaseObject", kStarted);
  state_->SelfRef.reset();
  TraceMethod("ReleaseObject", kEnded);
}

std::shared_ptr<RZselect> RZselect::SelfRef() const {
  return std::static_pointer_cast<RZselect>(state_->SelfRef.lock());
}

void RZselect::AddEventHandler(RZselectEvents* handler) {
  handlers_.Add(handler);
}

void RZselect::RemoveEventHandler(RZselectEvents* handler) {
  handlers_.Remove(handler);
}

void RZselect::RaiseOpenDataSource(bool& cancel) {
  handlers_.RaiseOpenDataSource(cancel);
}

void RZselect::RaiseWriteDataSource(bool& cancel) {
  handlers_.RaiseWriteDataSource(cancel);
}

void RZselect::RaiseCloseDataSource(bool& cancel) {
  handlers_.RaiseCloseDataSource(cancel);
}

void RZselect::TraceMethod(std::string_view procedure,
                           std::string_view message) {
  Trace(*state_->platform, kWriterClass, procedure, message);
}

void RZselect::RequireApplication(std::string_view method) const {
  if (!state_->AppFile) throw Error::NoApplication(method);
}

}  // namespace rz
