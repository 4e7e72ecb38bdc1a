// Copyright 2026 The Veltmark authors.
//
// The commands of `rzselect` that make applications: `sample` writes the
// example application line4 into a folder, `import` makes an application
// from a CSV file. Both first finish or undo a replacement of the
// application that was interrupted (RecoverApplication), then write the
// new application through the platform's application-file object into a
// staging folder beside the target and put it in place of the old one as
// a whole (application_replace.h): killed at any moment, the folder holds
// the complete old application (template, data file, views, hook script)
// or the complete new one. They report what they wrote on `out`; both
// raise rz::Error (the caller prints it and exits with 1):
//   - 58 naming the file when a file of an application is already at the
//     target and `force` is off (the existing files are left as they
//     were);
//   - 70 naming the target folder when it cannot be written;
//   - the file errors of the folder, the CSV file or the application file
//     (import: 76 naming the folder of the new template when it is
//     missing; sample makes its folder);
//   - errors of writing the sample's views (nothing is replaced then);
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
  // The date and time columns, when not found by the import's rules.
  std::string date_column;
  std::string time_column;
  std::string datetime_column;
};

void RunSample(Platform& platform, const SampleOptions& options,
               std::ostream& out);

void RunImport(Platform& platform, const ImportOptions& options,
               std::ostream& out);

}  // namespace rz

#endif  // RZ_APPS_RZSELECT_COMMANDS_H_
