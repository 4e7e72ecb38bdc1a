// Copyright 2026 The Veltmark authors.

#include "rzselect/script_commands.h"

#include "core/variant.h"
#include "engine/rzselect.h"
#include "platform/app_file.h"
#include "platform/file_system.h"
#include "platform/repository.h"
#include "script/script_host.h"

namespace rz {
namespace {

std::shared_ptr<RZselect> OpenEngine(std::shared_ptr<Platform> platform,
                                     const std::string& template_path) {
  std::shared_ptr<RZselect> engine = RZselect::Create(std::move(platform));
  engine->SetFilename(template_path);
  engine->Initialize();
  return engine;
}

}  // namespace

void RunScriptList(std::shared_ptr<Platform> platform,
                   const ScriptCommandOptions& options, std::ostream& out) {
  std::shared_ptr<RZselect> engine =
      OpenEngine(platform, options.template_path);
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
      OpenEngine(platform, options.template_path);
  ScriptHost host(*platform);
  HookScriptFiles files;
  files.system_folder = SystemFolder();
  files.application_folder = engine->RZaccess()->AppFolder();
  files.filename = options.template_path;
  HookObjects objects;
  objects.app_file = engine->RZaccess();
  objects.engine = engine;
  objects.repository = platform->CreateRepository();
  out << host.RunHook(options.name, files, objects) << "\n";
  engine->ReleaseObject();
}

bool RunSecurityCheck(std::shared_ptr<Platform> platform,
                      const ScriptCommandOptions& options, std::ostream& out) {
  std::shared_ptr<RZselect> engine =
      OpenEngine(platform, options.template_path);
  const bool allowed = engine->CheckSecurity(options.name);
  out << engine->UserIdentification() << "\n";
  engine->ReleaseObject();
  return allowed;
}

}  // namespace rz
