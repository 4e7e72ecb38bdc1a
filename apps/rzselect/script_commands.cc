// Copyright 2026 The Veltmark authors.

#include "rzselect/script_commands.h"

#include "core/variant.h"
#include "engine/rzselect.h"
#include "platform/app_file.h"
#include "platform/file_system.h"
#include "platform/repository.h"
#include "script/hook_timeout.h"
#include "script/script_text.h"

namespace rz {

std::shared_ptr<RZselect> OpenScriptedEngine(std::shared_ptr<Platform> platform,
                                             const std::string& template_path,
                                             const std::string& hook_timeout) {
  std::shared_ptr<RZselect> engine = RZselect::Create(std::move(platform));
  if (!hook_timeout.empty()) {
    engine->SetHookTimeout(
        HookTimeoutMilliseconds(hook_timeout, "", kHookTimeoutOption));
  }
  engine->SetFilename(template_path);
  engine->Initialize();
  return engine;
}

void RunScriptList(std::shared_ptr<Platform> platform,
                   const ScriptCommandOptions& options, std::ostream& out) {
  std::shared_ptr<RZselect> engine =
      OpenScriptedEngine(platform, options.template_path, options.hook_timeout);
  const VariantArray modules = engine->GetScriptModules().ToArray();
  for (size_t i = 1; i < modules.size(); ++i) {
    out << modules[i].ToString() << "\n";
  }
  engine->ReleaseObject();
}

void RunScriptProcedure(std::shared_ptr<Platform> platform,
                        const ScriptCommandOptions& options,
                        std::ostream& out) {
  std::shared_ptr<RZselect> engine =
      OpenScriptedEngine(platform, options.template_path, options.hook_timeout);
  out << engine->RunScriptModule(options.name, engine,
                                 platform->CreateRepository())
      << "\n";
  engine->ReleaseObject();
}

bool RunSecurityCheck(std::shared_ptr<Platform> platform,
                      const ScriptCommandOptions& options, std::ostream& out,
                      std::ostream& err) {
  std::shared_ptr<RZselect> engine =
      OpenScriptedEngine(platform, options.template_path, options.hook_timeout);
  const bool allowed = engine->CheckSecurity(options.name);
  // Only a secured function is refused; without the file that is why.
  const std::string script =
      JoinPath(SystemFolder(), std::string(kSecurityScriptName));
  if (!allowed && !FileExists(script)) {
    err << "rzselect: no security script: " << script
        << " (set VELTMARK_SYSTEM_DIR)\n";
  }
  out << engine->UserIdentification() << "\n";
  engine->ReleaseObject();
  return allowed;
}

}  // namespace rz
