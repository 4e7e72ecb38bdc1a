// Copyright 2026 The Veltmark authors.
//
// rzselect: the command line a user meets first. It runs the selection
// engine over a Veltmark application. Exit status 0 on success, 1 on an
// engine error ("error N: description (source)" on stderr), 2 on bad
// usage.

#include <CLI/CLI.hpp>
#include <iostream>

#include "common/console_toolkit.h"
#include "common/system_platform.h"
#include "core/error.h"
#include "engine/rzselect.h"
#include "rzselect/commands.h"
#include "rzselect/views_command.h"

namespace {

constexpr int kExitEngineError = 1;
constexpr int kExitUsage = 2;

std::string VersionText() {
  return "rzselect " + std::string(rz::RZselect::Version());
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
      ->check(CLI::NonNegativeNumber);
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
  try {
    app.parse(argc, argv);
  } catch (const CLI::ParseError& error) {
    const int code = app.exit(error);
    return code == 0 ? 0 : kExitUsage;
  }
  try {
    rz::ConsoleToolkit toolkit;
    rz::SystemPlatform platform(toolkit);
    if (app.got_subcommand("sample")) {
      rz::RunSample(platform, sample_options, std::cout);
    } else if (app.got_subcommand("import")) {
      rz::RunImport(platform, import_options, std::cout);
    } else if (app.got_subcommand("views")) {
      rz::RunViews(platform, views_options, std::cout);
    } else {
      std::cout << app.help();
    }
  } catch (const rz::Error& error) {
    std::cerr << error.what() << "\n";
    return kExitEngineError;
  }
  return 0;
}
