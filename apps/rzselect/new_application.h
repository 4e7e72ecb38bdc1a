// Copyright 2026 The Veltmark authors.
//
// NewApplication is an application held in memory before it is written:
// the header, the rules, the variables and the records that `rzselect
// sample` generates and `rzselect import` reads from a CSV file.
// WriteNewApplication writes one through the application-file interface
// (OpenMode 1, Variables().Add, AddRecord/SetValue/SaveRecord,
// CloseApplication), so the files appear only when everything was written.
//
// Errors: WriteNewApplication raises Error::FileAlreadyExists (58) naming
// the file when a file of an application is at the path and `replace` is
// false, and passes on every
// error of the application file (a folder that cannot be written, a value
// of the wrong kind); nothing is left at the path then.

#ifndef RZ_APPS_RZSELECT_NEW_APPLICATION_H_
#define RZ_APPS_RZSELECT_NEW_APPLICATION_H_

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "core/variant.h"
#include "platform/app_file.h"
#include "platform/field_definition.h"

namespace rz {

struct NewApplication {
  std::string title;
  int16_t default_look_back = -1;  // records counted back; -1 = all
  double shift_hours = 0;          // 0 = not set
  std::string shift_start = "00:00";
  std::string secured_functions;
  std::vector<Rule> rules;
  // Variable k is variables[k - 1]: 1 the date, 2 the time. Each holds
  // every attribute to write (InitVariableDefaults and then its own).
  std::vector<std::shared_ptr<FieldDefinition>> variables;
  // Record r is records[r - 1]; its entry k - 1 is variable k: the date
  // text "yyyy-mm-dd", the time text "hh:mm:ss", then a Double or a String
  // per variable, Null for no value.
  std::vector<std::vector<Variant>> records;
  // When set, the records come from here instead, one at a time (the
  // values of the next record into its argument; false after the last,
  // leaving the argument as it was),
  // so an application of any size is written without holding its records.
  std::function<bool(std::vector<Variant>*)> record_source;
};

// A definition for variable `position` with the defaults of a new variable
// for `rule_count` rules, RULES empty (the caller names the rules that
// apply) and the four given attributes.
std::shared_ptr<FieldDefinition> NewVariable(std::string_view name,
                                             std::string_view type_letter,
                                             int16_t length, int16_t decimals,
                                             int position, int rule_count);

// Sets a limit to method "F" with `value`, or to "B" (blank) or "C"
// (calculated) with value 0.
void SetFixedLimit(FieldDefinition& variable, LimitKind limit, double value);
void SetLimitMethod(FieldDefinition& variable, LimitKind limit,
                    std::string_view method);

// The path of a file of the application at `template_path` that exists
// (application_replace.h lists them: template, hook script, data file and
// its journals, views), the template or the data file first; nullopt when
// there is none. An application is replaced only by choice (--force), so
// any of them counts.
std::optional<std::string> ExistingApplicationFile(
    std::string_view template_path);

// Raises Error::FileAlreadyExists (58) naming ExistingApplicationFile
// when there is one.
void RefuseExistingApplication(std::string_view template_path);

// What WriteNewApplication wrote: the number of records and the first
// and the last (empty when there were none).
struct WrittenRecords {
  int64_t count = 0;
  std::vector<Variant> first;
  std::vector<Variant> last;
};

// Writes `application` at `template_path` ("dir/name.rzt"; the data file
// is "dir/name.rzd") through `file`, a new closed application-file object.
WrittenRecords WriteNewApplication(AppFile& file,
                                   const NewApplication& application,
                                   std::string_view template_path,
                                   bool replace);

}  // namespace rz

#endif  // RZ_APPS_RZSELECT_NEW_APPLICATION_H_
