// Copyright 2026 The Veltmark authors.
//
// The commands of `rzselect` that make applications: `sample` writes the
// example application line4 into a folder, `import` makes an application
// from a CSV file. Both write through the platform's application-file
// object and report what they wrote on `out`; both raise rz::Error (the
// caller prints it and exits with 1):
//   - 58 when an application is already at the target and `force` is off
//     (the existing files are left as they were);
//   - the file errors of the folder, the CSV file or the application file
//     (import: 76 naming the folder of the new template when it is
//     missing; sample makes its folder);
//   - errors of completing the template after the application was
//     written (the application is there then, without its rules);
//   - for import, 5 or 13 naming "FILE:LINE:" for a record that cannot be
//     used (csv_import.h), before anything is written.

#ifndef RZ_APPS_RZSELECT_COMMANDS_H_
#define RZ_APPS_RZSELECT_COMMANDS_H_

#include <cstdint>
#include <ostream>
#include <string>

#include "platform/platform.h"
#include "rzselect/sample_data.h"

namespace rz {

struct SampleOptions {
  std::string folder;  // created when missing
  int32_t records = kDefaultSampleRecords;
  uint64_t seed = kDefaultSampleSeed;
  bool force = false;
};

struct ImportOptions {
  std::string csv_path;
  std::string template_path;  // the new application's .rzt
  std::string title;          // empty: the CSV file's name without extension
  bool force = false;
};

void RunSample(Platform& platform, const SampleOptions& options,
               std::ostream& out);

void RunImport(Platform& platform, const ImportOptions& options,
               std::ostream& out);

}  // namespace rz

#endif  // RZ_APPS_RZSELECT_COMMANDS_H_
