// Copyright 2026 The Veltmark authors.

#include "script/engine_hook.h"

#include <utility>

#include "core/error.h"
#include "platform/app_file.h"
#include "platform/file_system.h"

namespace rz {

HookScriptFiles EngineHookFiles(const AppFile* app_file,
                                const std::string& filename) {
  HookScriptFiles files;
  files.system_folder = SystemFolder();
  if (app_file != nullptr) files.application_folder = app_file->AppFolder();
  files.filename = filename;
  return files;
}

std::string RunEngineHook(ScriptHost& scripts, std::string_view procedure,
                          std::shared_ptr<Dispatch> engine,
                          std::shared_ptr<Dispatch> repository,
                          const AppFile* app_file,
                          const std::string& filename) {
  HookObjects objects;
  objects.engine = engine;
  objects.repository = std::move(repository);
  // "RZfile" is the application of the engine handed over, when it has one.
  if (engine) {
    try {
      const Variant value = engine->Get("RZaccess");
      if (value.IsObject()) objects.app_file = value.ToObject();
    } catch (const Error&) {
      // An object without an application: no "RZfile".
    }
  }
  return scripts.RunHook(procedure, EngineHookFiles(app_file, filename),
                         objects);
}

}  // namespace rz
