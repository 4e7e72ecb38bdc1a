// Copyright 2026 The Veltmark authors.
//
// The scripting commands of `rzselect`, each opening the application
// through the engine (Initialize, which also loads the security script):
//   - `scripts APP.rzt`: the procedures of the application's hook script
//     (the system folder's and the application folder's RZscript.rzx and
//     APP.rzt.rzx), one name a line;
//   - `script APP.rzt NAME`: runs one procedure with the engine, its
//     application and a fresh repository as RZselect, RZfile and RZrep,
//     and prints its answer;
//   - `check APP.rzt FUNCTION`: asks whether FUNCTION may be used, prints
//     the user identification the security script answered (empty for an
//     unsecured function) and returns whether it is allowed; a refusal
//     because there is no security script says so on `err`, naming the
//     file looked for.
// `hook_timeout` (seconds, "" = not given) is the time limit of the hooks
// and the security script, winning over the template's HOOKTIMEOUT; error
// 5 when it is not a number of seconds (hook_timeout.h).
// Script errors are shown by the toolkit (on the console) and give an
// empty answer; errors of the engine (53 for a missing application, ...)
// propagate as rz::Error.

#ifndef RZ_APPS_RZSELECT_SCRIPT_COMMANDS_H_
#define RZ_APPS_RZSELECT_SCRIPT_COMMANDS_H_

#include <memory>
#include <ostream>
#include <string>
#include <string_view>

#include "platform/platform.h"

namespace rz {

class RZselect;

// The option's name in errors.
inline constexpr std::string_view kHookTimeoutOption = "--hook-timeout";

struct ScriptCommandOptions {
  std::string template_path;
  std::string name;          // the procedure (script) or the function (check)
  std::string hook_timeout;  // seconds; "" = the template's
};

// The engine for `template_path`, initialised, with the hook time limit of
// `hook_timeout` (seconds; "" = the template's) set before.
std::shared_ptr<RZselect> OpenScriptedEngine(std::shared_ptr<Platform> platform,
                                             const std::string& template_path,
                                             const std::string& hook_timeout);

void RunScriptList(std::shared_ptr<Platform> platform,
                   const ScriptCommandOptions& options, std::ostream& out);
void RunScriptProcedure(std::shared_ptr<Platform> platform,
                        const ScriptCommandOptions& options, std::ostream& out);
// True when the function is allowed.
bool RunSecurityCheck(std::shared_ptr<Platform> platform,
                      const ScriptCommandOptions& options, std::ostream& out,
                      std::ostream& err);

}  // namespace rz

#endif  // RZ_APPS_RZSELECT_SCRIPT_COMMANDS_H_
