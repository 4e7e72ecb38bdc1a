// Copyright 2026 The Veltmark authors.
//
// ScriptHost runs the site's scripts for one engine object:
//   - RunHook builds the hook script afresh (script_text.h: the three hook
//     files joined), makes a new script engine, adds the named objects
//     "RZfile", "RZselect" and "RZrep" (those given; their members are not
//     globals), finds the procedure by name without regard to case, runs
//     it without arguments and answers its value as text;
//   - ScriptModules lists the hook script's procedures (no objects added);
//   - SetupForScripting loads the security script "rzsecure.rzx" of the
//     system folder into an engine the host keeps until the next setup;
//     RunSecurityHook runs a procedure of it with one text argument, and
//     keeps the engine (and so the script's globals) afterwards.
//
// No script failure leaves the host: a loading or running error (and an
// rz::Error while reading the files) is shown in a message box titled with
// the error's source,
//   "Error N: description\r\n\r\nProcedure: P\r\n\r\nLine L: text"
// (P "Loading Script ..." for a loading error, else the procedure; "No
// Line" for line 0), and the call answers "". No script, no such
// procedure and an empty script answer "" silently, as does a platform
// that has no script engine.
//
// The host refers to the platform, which must outlive it. Not thread-safe.

#ifndef RZ_SCRIPT_SCRIPT_HOST_H_
#define RZ_SCRIPT_SCRIPT_HOST_H_

#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "core/dispatch.h"
#include "platform/script_engine.h"
#include "script/script_text.h"

namespace rz {

class Platform;

// The objects a hook sees; null ones are not added.
struct HookObjects {
  std::shared_ptr<Dispatch> app_file;    // "RZfile"
  std::shared_ptr<Dispatch> engine;      // "RZselect"
  std::shared_ptr<Dispatch> repository;  // "RZrep"
};

class ScriptHost {
 public:
  explicit ScriptHost(Platform& platform) : platform_(platform) {}
  ~ScriptHost();
  ScriptHost(const ScriptHost&) = delete;
  ScriptHost& operator=(const ScriptHost&) = delete;

  std::string RunHook(std::string_view procedure, const HookScriptFiles& files,
                      const HookObjects& objects);

  // The procedures of the hook script in the engine's order; empty when
  // there is none (or no engine, or it failed to load: a message shown).
  std::vector<std::string> ScriptModules(const HookScriptFiles& files);

  // (Re)loads the security script from `system_folder`.
  void SetupForScripting(const std::string& system_folder);
  std::string RunSecurityHook(std::string_view procedure,
                              std::string_view argument);

 private:
  // An engine with the hook script loaded, or null (nothing to run, or a
  // loading error already shown). `text` receives the joined script.
  std::unique_ptr<ScriptEngine> LoadHookScript(const HookScriptFiles& files,
                                               const HookObjects& objects,
                                               std::string& text);
  // Set the language chosen by `text` (with no time limit) and add `text`
  // as code; false after showing a loading error.
  bool ChooseLanguageOf(ScriptEngine& engine, const std::string& text);
  bool AddCode(ScriptEngine& engine, const std::string& text);
  // Runs `procedure` when the engine has it; "" otherwise or after showing
  // a running error.
  std::string RunProcedure(ScriptEngine& engine, std::string_view procedure,
                           DispatchArgs& args, const std::string& text);
  void ShowError(const ScriptError& error, std::string_view procedure,
                 const std::string& text);

  Platform& platform_;
  std::unique_ptr<ScriptEngine> security_engine_;
  std::string security_text_;
};

// The message of a script error as the host shows it.
std::string ScriptErrorMessage(const ScriptError& error,
                               std::string_view procedure,
                               std::string_view script_text);

}  // namespace rz

#endif  // RZ_SCRIPT_SCRIPT_HOST_H_
