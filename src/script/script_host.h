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
// Scripts fail closed: a script that fails while loading (its files or
// includes cannot be read or are refused, it does not compile, its
// top-level code fails or runs out of time) is never run in part. A hook
// script that fails to load defines no hook; a security script that fails
// to load leaves no security engine, so every security call answers ""
// (and CheckSecurity refuses every secured function). Hook files may come
// from the application folder and the system folder, the security script
// and its includes from the system folder only (script_text.h).
//
// Every engine gets the host's time limit (SetTimeout; none by default)
// before code is added; a script that runs past it fails with the
// engine's interrupt error, reported like any other script error. Named
// objects that are ScriptReachable are held (script_reachable.h) while the
// hook's engine lives, so they can refuse members to scripts.
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
#include "platform/script_reachable.h"
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

  // The time limit of every script engine made from now on (and of the
  // security engine at the next setup), in milliseconds; -1 = none.
  void SetTimeout(int32_t milliseconds) { timeout_ms_ = milliseconds; }
  int32_t Timeout() const { return timeout_ms_; }

  std::string RunHook(std::string_view procedure, const HookScriptFiles& files,
                      const HookObjects& objects);

  // The procedures of the hook script in the engine's order; empty when
  // there is none (or no engine, or it failed to load: a message shown).
  std::vector<std::string> ScriptModules(const HookScriptFiles& files);

  // (Re)loads the security script from `system_folder`; after a loading
  // error (shown) no security engine is left.
  void SetupForScripting(const std::string& system_folder);
  // Forgets the security script: every security call answers "" until
  // the next setup.
  void DiscardSecurityScript();
  // True while a security script is loaded.
  bool HasSecurityScript() const { return security_engine_ != nullptr; }
  std::string RunSecurityHook(std::string_view procedure,
                              std::string_view argument);

 private:
  // A hook script loaded into its engine, with the holds on its objects
  // (released after the engine: members go in reverse order).
  struct LoadedScript {
    std::vector<ScriptHold> holds;
    std::unique_ptr<ScriptEngine> engine;  // null: nothing to run
    std::string text;                      // the joined script
  };
  // The hook script loaded; no engine when there is nothing to run or a
  // loading error was shown.
  LoadedScript LoadHookScript(const HookScriptFiles& files,
                              const HookObjects& objects);
  bool AddObjects(LoadedScript& script, const HookObjects& objects);
  // The security script's text; false after showing a loading error.
  bool LoadSecurityText(const std::string& system_folder);
  // Set the language chosen by `text` (with the host's time limit) and add
  // `text` as code; false after showing a loading error.
  bool ChooseLanguageOf(ScriptEngine& engine, const std::string& text);
  bool AddCode(ScriptEngine& engine, const std::string& text);
  // Runs `procedure` when the engine has it; "" otherwise or after showing
  // a running error.
  std::string RunProcedure(ScriptEngine& engine, std::string_view procedure,
                           DispatchArgs& args, const std::string& text);
  void ShowError(const ScriptError& error, std::string_view procedure,
                 const std::string& text);

  Platform& platform_;
  int32_t timeout_ms_ = -1;
  std::unique_ptr<ScriptEngine> security_engine_;
  std::string security_text_;
};

// The message of a script error as the host shows it.
std::string ScriptErrorMessage(const ScriptError& error,
                               std::string_view procedure,
                               std::string_view script_text);

}  // namespace rz

#endif  // RZ_SCRIPT_SCRIPT_HOST_H_
