// Copyright 2026 The Veltmark authors.
//
// RunEngineHook is the hook call of the engine object and of the run: it
// runs `procedure` of the open application's hook script (the system
// folder's, the application folder's and the application's own file,
// script_text.h) with the named objects "RZselect" (`engine`), "RZfile"
// (the engine's RZaccess, when it has one) and "RZrep" (`repository`), and
// answers the procedure's value as text. Like ScriptHost::RunHook it never
// throws for a script's failure: a hook that is not defined answers "", a
// failing one shows its message and answers "".

#ifndef RZ_SCRIPT_ENGINE_HOOK_H_
#define RZ_SCRIPT_ENGINE_HOOK_H_

#include <memory>
#include <string>
#include <string_view>

#include "core/dispatch.h"
#include "script/script_host.h"

namespace rz {

class AppFile;

// The hook files of the application `filename` opened as `app_file` (null:
// the system folder's file only).
HookScriptFiles EngineHookFiles(const AppFile* app_file,
                                const std::string& filename);

std::string RunEngineHook(ScriptHost& scripts, std::string_view procedure,
                          std::shared_ptr<Dispatch> engine,
                          std::shared_ptr<Dispatch> repository,
                          const AppFile* app_file, const std::string& filename);

}  // namespace rz

#endif  // RZ_SCRIPT_ENGINE_HOOK_H_
