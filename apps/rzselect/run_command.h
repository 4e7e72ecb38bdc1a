// Copyright 2026 The Veltmark authors.
//
// `rzselect run APP.rzt` runs one view of an application and writes its
// result; `rzselect export APP.rzt --to NEW.rzt` runs it and saves the
// result as a new application (SaveRepository). The view is the one named
// by `view` — a view's name (without regard to case) or its position in
// the catalogue as `rzselect views` numbers it — or, without one, the
// application's default view (the defaults when it has none). The engine
// opens the application with the hooks on unless `no_hooks`, loads the
// view as a host does, and runs it (Refresh).
//
// Run-time questions: a filter row whose value is "?" is answered by a
// `params` entry "ROW=VALUE" (ROW the row's number; an empty VALUE is
// "NULL"). Without one the question is asked through the toolkit when
// `interactive` (a person at the terminal); otherwise the command stops
// before any record is read with a UsageError naming the row and its
// question.
//
// Output (`run`): the result's field names on the first line (csv, tsv,
// table), then one line per record; json is an array of objects, jsonl
// one object a line. Fields 1 and 2 hold the record's date and time.
// With `events` the records are written one at a time as the run hands
// them over (event mode: memory stays flat whatever the record count; not
// for the table, which needs every record for its widths). With `output`
// the text goes to a temporary file beside it that is renamed into place
// when the run has succeeded: a failed run leaves the file as it was and
// no temporary file behind.
//
// `export` refuses a target where a template already is (error 58) unless
// `force`; the new application then replaces the old one as a whole.
//
// Errors: UsageError (exit status 2) for bad usage — a malformed or
// unknown --param row, --param on a row that asks nothing, an unanswered
// question without a terminal, --events with the table; rz::Error for the
// rest (53 no application, 0x80040001 an unknown view, 13 a bad --as-of,
// the errors of the run and of writing the output).

#ifndef RZ_APPS_RZSELECT_RUN_COMMAND_H_
#define RZ_APPS_RZSELECT_RUN_COMMAND_H_

#include <memory>
#include <ostream>
#include <stdexcept>
#include <string>
#include <vector>

#include "platform/platform.h"

namespace rz {

class RZselect;

// Bad usage found after the command line was parsed (exit status 2).
class UsageError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

// What `run` and `export` share: which view, as of when, the answers.
struct ViewRunOptions {
  std::string template_path;
  std::string view;                 // name or position; "" = default view
  std::string as_of;                // "" = now
  std::vector<std::string> params;  // "ROW=VALUE"
  bool no_hooks = false;
  std::string hook_timeout;  // seconds; "" = the template's
  bool interactive = false;  // a person answers questions on the terminal
  bool quiet = false;        // no progress on the terminal
};

struct RunOptions : ViewRunOptions {
  std::string format = "table";  // table, csv, tsv, json, jsonl
  std::string output;            // "" = `out`
  bool events = false;
};

struct ExportOptions : ViewRunOptions {
  std::string target;  // the new application's template
  bool force = false;  // replace an application already at `target`
};

void RunViewCommand(Platform& platform, const RunOptions& options,
                    std::ostream& out);

// Reports the new application's path and record count on `out`.
void RunExportCommand(Platform& platform, const ExportOptions& options,
                      std::ostream& out);

// The engine with the application open and the view loaded, its
// run-time questions answered from `options.params` (the steps both
// commands share; exposed for tests).
std::shared_ptr<RZselect> PrepareViewRun(std::shared_ptr<Platform> platform,
                                         const ViewRunOptions& options);

}  // namespace rz

#endif  // RZ_APPS_RZSELECT_RUN_COMMAND_H_
