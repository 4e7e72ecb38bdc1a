// Copyright 2026 The Veltmark authors.
//
// rzselect: the command line a user meets first. It runs the selection
// engine over a Veltmark application. Exit status 0 on success, 1 on an
// engine error ("error N: description (source)" on stderr), 2 on bad
// usage.

#include <CLI/CLI.hpp>
#include <iostream>

#include "core/error.h"
#include "engine/rzselect.h"

namespace {

constexpr int kExitEngineError = 1;
constexpr int kExitUsage = 2;

std::string VersionText() {
  return "rzselect " + std::string(rz::RZselect::Version());
}

}  // namespace

int main(int argc, char** argv) {
  CLI::App app{
      "Veltmark selection engine: turns the saved views of a Veltmark\n"
      "application into result data sets.",
      "rzselect"};
  app.set_version_flag("--version", VersionText(),
                       "Print the engine version and exit");
  app.footer(
      "Read docs/ for the user guide; commands arrive with the parts of the\n"
      "engine they drive.");
  try {
    app.parse(argc, argv);
  } catch (const CLI::ParseError& error) {
    const int code = app.exit(error);
    return code == 0 ? 0 : kExitUsage;
  }
  try {
    if (argc == 1) {
      std::cout << app.help();
    }
  } catch (const rz::Error& error) {
    std::cerr << error.what() << "\n";
    return kExitEngineError;
  }
  return 0;
}
