// Copyright 2026 The Veltmark authors.

#include "script/script_host.h"

#include <utility>

#include "core/error.h"
#include "core/text.h"
#include "platform/file_system.h"
#include "platform/platform.h"
#include "platform/toolkit.h"
#include "platform/trace.h"

namespace rz {
namespace {

constexpr std::string_view kLoading = "Loading Script ...";

// An rz::Error met while reading or checking the script text, as the
// error record a script engine would give.
ScriptError AsScriptError(const Error& error) {
  ScriptError record;
  record.number = error.Number();
  record.source = error.Source().empty() ? "Script" : error.Source();
  record.description = error.Description();
  return record;
}

std::unique_ptr<ScriptEngine> NewEngine(Platform& platform) {
  try {
    return platform.CreateScriptEngine();
  } catch (const Error&) {
    return nullptr;
  }
}

// The first procedure named `name` without regard to case, if any.
std::optional<std::string> FindProcedure(const ScriptEngine& engine,
                                         std::string_view name) {
  for (const std::string& procedure : engine.Procedures()) {
    if (EqualsIgnoreCase(procedure, name)) return procedure;
  }
  return std::nullopt;
}

}  // namespace

std::string ScriptErrorMessage(const ScriptError& error,
                               std::string_view procedure,
                               std::string_view script_text) {
  const std::string line = error.line == 0
                               ? "No Line"
                               : "Line " + std::to_string(error.line) + ": " +
                                     ScriptLine(script_text, error.line);
  return "Error " + std::to_string(error.number) + ": " + error.description +
         "\r\n\r\nProcedure: " + std::string(procedure) + "\r\n\r\n" + line;
}

ScriptHost::~ScriptHost() = default;

void ScriptHost::ShowError(const ScriptError& error, std::string_view procedure,
                           const std::string& text) {
  platform_.UserInterface().MessageBox(
      error.source, ScriptErrorMessage(error, procedure, text),
      MessageIcon::kNone, MessageButtons::kOk);
}

bool ScriptHost::ChooseLanguageOf(ScriptEngine& engine,
                                  const std::string& text) {
  try {
    engine.SetLanguage(ChooseLanguage(text));
    engine.SetTimeout(timeout_ms_);
  } catch (const Error& error) {
    ShowError(AsScriptError(error), kLoading, text);
    return false;
  }
  return true;
}

bool ScriptHost::AddCode(ScriptEngine& engine, const std::string& text) {
  if (engine.AddCode(text)) return true;
  ShowError(engine.LastError(), kLoading, text);
  return false;
}

ScriptHost::LoadedScript ScriptHost::LoadHookScript(
    const HookScriptFiles& files, const HookObjects& objects) {
  LoadedScript script;
  std::unique_ptr<ScriptEngine> engine = NewEngine(platform_);
  if (!engine) return script;
  try {
    script.text = JoinHookScript(files);
  } catch (const Error& error) {
    ShowError(AsScriptError(error), kLoading, "");
    return script;
  }
  engine->SetLanguage(kLanguageVBScript);
  engine->Reset();
  if (script.text.empty()) return script;
  // The language first: choosing it may give a fresh engine, which would
  // not know objects added before.
  if (!ChooseLanguageOf(*engine, script.text)) return script;
  script.engine = std::move(engine);
  if (!AddObjects(script, objects) || !AddCode(*script.engine, script.text)) {
    script.engine.reset();  // never run half a script
  }
  return script;
}

bool ScriptHost::AddObjects(LoadedScript& script, const HookObjects& objects) {
  const std::pair<std::string_view, const std::shared_ptr<Dispatch>*> named[] =
      {{"RZfile", &objects.app_file},
       {"RZselect", &objects.engine},
       {"RZrep", &objects.repository}};
  try {
    for (const auto& [name, object] : named) {
      if (!*object) continue;
      script.holds.emplace_back(*object);
      script.engine->AddObject(name, *object, false);
    }
  } catch (const Error& error) {
    ShowError(AsScriptError(error), kLoading, script.text);
    return false;
  }
  return true;
}

std::string ScriptHost::RunProcedure(ScriptEngine& engine,
                                     std::string_view procedure,
                                     DispatchArgs& args,
                                     const std::string& text) {
  const std::optional<std::string> found = FindProcedure(engine, procedure);
  if (!found) return "";
  const std::optional<Variant> answer = engine.Run(*found, args);
  if (!answer) {
    ShowError(engine.LastError(), *found, text);
    return "";
  }
  try {
    return answer->IsNull() ? "" : answer->ToString();
  } catch (const Error&) {
    return "";  // an answer that is no text (an object, an array)
  }
}

std::string ScriptHost::RunHook(std::string_view procedure,
                                const HookScriptFiles& files,
                                const HookObjects& objects) {
  LoadedScript script = LoadHookScript(files, objects);
  if (!script.engine) return "";
  DispatchArgs no_args;
  std::string answer =
      RunProcedure(*script.engine, procedure, no_args, script.text);
  script.engine->Reset();
  return answer;
}

std::vector<std::string> ScriptHost::ScriptModules(
    const HookScriptFiles& files) {
  LoadedScript script = LoadHookScript(files, {});
  if (!script.engine) return {};
  std::vector<std::string> names = script.engine->Procedures();
  script.engine->Reset();
  return names;
}

bool ScriptHost::LoadSecurityText(const std::string& system_folder) {
  try {
    security_text_ = LoadScriptText(
        JoinPath(system_folder, std::string(kSecurityScriptName)),
        {system_folder});
  } catch (const Error& error) {
    ShowError(AsScriptError(error), kLoading, "");
    security_text_.clear();
    return false;
  }
  return true;
}

void ScriptHost::DiscardSecurityScript() {
  security_engine_.reset();
  security_text_.clear();
}

void ScriptHost::SetupForScripting(const std::string& system_folder) {
  Trace(platform_, kWriterModule, "SetupForScripting", "");
  DiscardSecurityScript();
  std::unique_ptr<ScriptEngine> engine = NewEngine(platform_);
  if (!engine) return;
  // A security script that fails to load leaves no engine: every secured
  // function is then refused, as without a script.
  if (!LoadSecurityText(system_folder)) return;
  engine->SetLanguage(kLanguageVBScript);
  engine->Reset();
  if (!security_text_.empty() && (!ChooseLanguageOf(*engine, security_text_) ||
                                  !AddCode(*engine, security_text_))) {
    return;
  }
  security_engine_ = std::move(engine);
}

std::string ScriptHost::RunSecurityHook(std::string_view procedure,
                                        std::string_view argument) {
  if (!security_engine_) return "";
  DispatchArgs args = {Variant(std::string(argument))};
  return RunProcedure(*security_engine_, procedure, args, security_text_);
}

}  // namespace rz
