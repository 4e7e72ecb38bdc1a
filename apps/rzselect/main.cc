// Copyright 2026 The Veltmark authors.
//
// rzselect: the command line a user meets first. It runs the selection
// engine over a Veltmark application. The commands that read an
// application hold its folder for reading (ApplicationReadLock: an
// interrupted replacement is finished first, and none switches files
// while they read). Exit status 0 on success, 1 on an engine error
// ("error N: description (source)" on stderr; memory running out is
// "error 7: Out of memory (rzselect)", any other failure of the program
// itself "error 51: Internal error: ... (rzselect)"), 2 on bad usage.

#include <unistd.h>

#include <CLI/CLI.hpp>
#include <charconv>
#include <cstdint>
#include <exception>
#include <iostream>
#include <limits>
#include <memory>
#include <new>
#include <string>

#include "common/console_toolkit.h"
#include "common/system_platform.h"
#include "core/error.h"
#include "engine/rzselect.h"
#include "platform/application_replace.h"
#include "rzselect/commands.h"
#include "rzselect/run_command.h"
#include "rzselect/script_commands.h"
#include "rzselect/views_command.h"
#include "script/hook_timeout.h"

namespace {

constexpr int kExitEngineError = 1;
constexpr int kExitUsage = 2;
constexpr int kExitRefused = 3;  // `check`: the function is not allowed

std::string VersionText() {
  return "rzselect " + std::string(rz::RZselect::Version());
}

// A seed is a whole number from 0 to 2^64 - 1 in decimal digits; anything
// else (a sign, hexadecimal, an exponent, a larger number) is bad usage
// rather than a seed wrapped or cut to fit.
CLI::Validator SeedText() {
  return CLI::Validator(
      [](std::string& text) -> std::string {
        uint64_t seed = 0;
        const char* end = text.data() + text.size();
        const auto [stop, error] = std::from_chars(text.data(), end, seed);
        if (text.empty() || error != std::errc() || stop != end) {
          return "'" + text + "' is not a whole number from 0 to " +
                 std::to_string(std::numeric_limits<uint64_t>::max());
        }
        return "";
      },
      "UINT64");
}

void AddSample(CLI::App& app, rz::SampleOptions& options) {
  CLI::App* sample = app.add_subcommand(
      "sample", "Write the example application line4 (line4.rzt, line4.rzd)");
  sample->add_option("DIR", options.folder, "Folder to write into (created)")
      ->required();
  sample->add_option("--records", options.records, "Number of records")
      ->default_val(rz::kDefaultSampleRecords)
      ->check(CLI::Range(1, 1000000));
  sample->add_option("--seed", options.seed, "Seed of the random data")
      ->default_val(rz::kDefaultSampleSeed)
      ->check(SeedText());
  sample->add_flag("--force", options.force,
                   "Replace an application already in DIR");
}

void AddImport(CLI::App& app, rz::ImportOptions& options) {
  CLI::App* import =
      app.add_subcommand("import", "Make an application from a CSV file");
  import->add_option("DATA.csv", options.csv_path, "CSV file with a header row")
      ->required();
  import
      ->add_option("--to", options.template_path,
                   "The new application's template (APP.rzt)")
      ->required();
  import->add_option("--title", options.title,
                     "Title (default: the CSV file's name)");
  import->add_flag("--force", options.force,
                   "Replace an application already at --to");
  CLI::Option* date =
      import->add_option("--date-column", options.date_column,
                         "The column of the dates (name or number)");
  CLI::Option* time =
      import->add_option("--time-column", options.time_column,
                         "The column of the times (name or number)");
  CLI::Option* combined = import->add_option(
      "--datetime-column", options.datetime_column,
      "The column of the dates and times together (name or number)");
  date->needs(time);
  time->needs(date);
  combined->excludes(date)->excludes(time);
}

// --hook-timeout SECONDS on a command that loads scripts.
void AddHookTimeout(CLI::App& command, std::string& seconds) {
  command
      .add_option(std::string(rz::kHookTimeoutOption), seconds,
                  "Time limit of hooks and the security script in seconds "
                  "(0: none; default: the template's HOOKTIMEOUT, else none)")
      ->check(
          [](const std::string& value) -> std::string {
            if (value.empty()) {
              return std::string(rz::kHookTimeoutOption) +
                     " needs a number of seconds";
            }
            try {
              rz::HookTimeoutMilliseconds(value, "", rz::kHookTimeoutOption);
            } catch (const rz::Error& error) {
              // CLI11 puts the option's name before the message.
              const std::string prefix =
                  std::string(rz::kHookTimeoutOption) + " ";
              std::string text = error.Description();
              if (text.rfind(prefix, 0) == 0) text.erase(0, prefix.size());
              return text;
            }
            return "";
          },
          "SECONDS");
}

void AddViews(CLI::App& app, rz::ViewsOptions& options) {
  CLI::App* views = app.add_subcommand(
      "views", "List an application's views and the ranges they resolve to");
  views->add_option("APP.rzt", options.template_path, "The application")
      ->required();
  views->add_option("--as-of", options.as_of,
                    "Resolve the ranges as of \"yyyy-mm-dd hh:mm:ss\" "
                    "(default: now)");
  views->add_option("--format", options.format, "table or json")
      ->default_val("table")
      ->check(CLI::IsMember({"table", "json"}));
  AddHookTimeout(*views, options.hook_timeout);
}

void AddScriptCommands(CLI::App& app, rz::ScriptCommandOptions& options) {
  CLI::App* scripts = app.add_subcommand(
      "scripts", "List the procedures of an application's hook script");
  scripts->add_option("APP.rzt", options.template_path, "The application")
      ->required();
  CLI::App* script = app.add_subcommand(
      "script", "Run one script procedure and print its answer");
  script->add_option("APP.rzt", options.template_path, "The application")
      ->required();
  script->add_option("NAME", options.name, "The procedure")->required();
  CLI::App* check = app.add_subcommand(
      "check",
      "Ask the security script whether a function may be used (exit 0 "
      "allowed, 3 refused); prints the user identification");
  check->add_option("APP.rzt", options.template_path, "The application")
      ->required();
  check->add_option("FUNCTION", options.name, "The function")->required();
  for (CLI::App* command : {scripts, script, check}) {
    AddHookTimeout(*command, options.hook_timeout);
  }
}

// The options `run` and `export` share.
void AddViewRunOptions(CLI::App& command, rz::ViewRunOptions& options) {
  command.add_option("APP.rzt", options.template_path, "The application")
      ->required();
  command.add_option("--view", options.view,
                     "The view: its name or its number in `rzselect views` "
                     "(default: the application's default view)");
  command.add_option("--as-of", options.as_of,
                     "Resolve the range as of \"yyyy-mm-dd hh:mm:ss\" "
                     "(default: now)");
  command.add_option("--param", options.params,
                     "Answer the run-time question of filter row ROW "
                     "(ROW=VALUE; repeatable)");
  command.add_flag("--no-hooks", options.no_hooks,
                   "Do not run the application's hook scripts");
  AddHookTimeout(command, options.hook_timeout);
}

void AddRun(CLI::App& app, rz::RunOptions& options) {
  CLI::App* run = app.add_subcommand("run", "Run a view and write its result");
  AddViewRunOptions(*run, options);
  run->add_option("--format", options.format, "table, csv, tsv, json or jsonl")
      ->default_val("table")
      ->check(CLI::IsMember({"table", "csv", "tsv", "json", "jsonl"}));
  run->add_option("-o,--output", options.output,
                  "Write to FILE (replaced only when the run succeeds)");
  run->add_flag("--events", options.events,
                "Write each record as the run delivers it (event mode)");
  run->add_flag("--quiet", options.quiet, "Show no progress");
}

void AddExport(CLI::App& app, rz::ExportOptions& options) {
  CLI::App* export_command = app.add_subcommand(
      "export", "Run a view and save its result as a new application");
  AddViewRunOptions(*export_command, options);
  export_command
      ->add_option("--to", options.target,
                   "The new application's template (NEW.rzt)")
      ->required();
  export_command->add_flag("--force", options.force,
                           "Replace an application already at --to");
  export_command->add_flag("--quiet", options.quiet, "Show no progress");
}

}  // namespace

int main(int argc, char** argv) {
  CLI::App app{
      "Veltmark selection engine: turns the saved views of a Veltmark\n"
      "application into result data sets.",
      "rzselect"};
  app.set_version_flag("--version", VersionText(),
                       "Print the engine version and exit");
  app.require_subcommand(0, 1);
  app.footer("Read docs/cli.md for the user guide.");
  rz::SampleOptions sample_options;
  rz::ImportOptions import_options;
  rz::ViewsOptions views_options;
  AddSample(app, sample_options);
  AddImport(app, import_options);
  AddViews(app, views_options);
  rz::ScriptCommandOptions script_options;
  AddScriptCommands(app, script_options);
  rz::RunOptions run_options;
  rz::ExportOptions export_options;
  AddRun(app, run_options);
  AddExport(app, export_options);
  try {
    app.parse(argc, argv);
  } catch (const CLI::ParseError& error) {
    const int code = app.exit(error);
    return code == 0 ? 0 : kExitUsage;
  }
  try {
    rz::ConsoleToolkit toolkit;
    auto shared_platform = std::make_shared<rz::SystemPlatform>(toolkit);
    rz::SystemPlatform& platform = *shared_platform;
    if (app.got_subcommand("sample")) {
      rz::RunSample(platform, sample_options, std::cout);
    } else if (app.got_subcommand("import")) {
      rz::RunImport(platform, import_options, std::cout);
    } else if (app.got_subcommand("run")) {
      run_options.interactive = toolkit.Interactive();
      toolkit.SetShowProgress(isatty(STDERR_FILENO) && !run_options.quiet);
      const rz::ApplicationReadLock reading(run_options.template_path);
      rz::RunViewCommand(platform, run_options, std::cout);
    } else if (app.got_subcommand("export")) {
      export_options.interactive = toolkit.Interactive();
      toolkit.SetShowProgress(isatty(STDERR_FILENO) && !export_options.quiet);
      rz::RunExportCommand(platform, export_options, std::cout);
    } else if (app.got_subcommand("views")) {
      const rz::ApplicationReadLock reading(views_options.template_path);
      rz::RunViews(platform, views_options, std::cout);
    } else if (app.got_subcommand("scripts")) {
      const rz::ApplicationReadLock reading(script_options.template_path);
      rz::RunScriptList(shared_platform, script_options, std::cout);
    } else if (app.got_subcommand("script")) {
      const rz::ApplicationReadLock reading(script_options.template_path);
      rz::RunScriptProcedure(shared_platform, script_options, std::cout);
    } else if (app.got_subcommand("check")) {
      const rz::ApplicationReadLock reading(script_options.template_path);
      if (!rz::RunSecurityCheck(shared_platform, script_options, std::cout,
                                std::cerr)) {
        return kExitRefused;
      }
    } else {
      std::cout << app.help();
    }
  } catch (const rz::UsageError& error) {
    std::cerr << "rzselect: " << error.what() << "\n";
    return kExitUsage;
  } catch (const rz::Error& error) {
    std::cerr << error.what() << rz::LookedForText(error) << "\n";
    return kExitEngineError;
  } catch (const std::bad_alloc&) {
    std::cerr << rz::Error::OutOfMemory().WithSource("rzselect").what() << "\n";
    return kExitEngineError;
  } catch (const std::exception& failure) {
    std::cerr
        << rz::Error::Internal(failure.what()).WithSource("rzselect").what()
        << "\n";
    return kExitEngineError;
  }
  return 0;
}
