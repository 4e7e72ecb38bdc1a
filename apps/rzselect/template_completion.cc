// Copyright 2026 The Veltmark authors.

#include "rzselect/template_completion.h"

#include <optional>

#include "appfile/app_template.h"
#include "core/error.h"
#include "platform/file_system.h"

namespace rz {

void CompleteTemplate(const std::string& template_path,
                      const NewApplication& application) {
  std::optional<AppTemplate> stored = ReadAppTemplate(template_path);
  if (!stored) throw Error::FileNotFound(template_path);
  stored->rules = application.rules;
  stored->secured_functions = application.secured_functions;
  WriteTextFileAtomically(template_path, FormatAppTemplate(*stored));
}

}  // namespace rz
