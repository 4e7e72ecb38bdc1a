// Copyright 2026 The Veltmark authors.
//
// A new application's rules and secured-function text have no setters in
// the application-file interface (an application receives them when it is
// made, and the engine only reads them). CompleteTemplate writes them into
// the template that WriteNewApplication has just put in place: it reads the
// template, sets the two, and replaces the file atomically, so a failure
// leaves the template as it was written.
//
// Errors: 53 when no application template is at the path; the read and
// write errors of the template (75 for a corrupt one, 70/76 for files).

#ifndef RZ_APPS_RZSELECT_TEMPLATE_COMPLETION_H_
#define RZ_APPS_RZSELECT_TEMPLATE_COMPLETION_H_

#include <string>

#include "rzselect/new_application.h"

namespace rz {

void CompleteTemplate(const std::string& template_path,
                      const NewApplication& application);

}  // namespace rz

#endif  // RZ_APPS_RZSELECT_TEMPLATE_COMPLETION_H_
