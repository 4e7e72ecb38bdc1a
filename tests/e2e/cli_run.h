// Copyright 2026 The Veltmark authors.
//
// Test helper for the command-line tests: runs the real rzselect binary
// (RZSELECT_PATH) with arguments, waits for it and returns its exit status
// and what it wrote on standard output and standard error.

#ifndef RZ_E2E_CLI_RUN_H_
#define RZ_E2E_CLI_RUN_H_

#include <chrono>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

#include "support/child_process.h"
#include "support/temp_folder.h"

#ifndef RZSELECT_PATH
#error "RZSELECT_PATH must name the rzselect executable"
#endif

namespace rz {

struct CliResult {
  int status = -1;  // -1: did not finish in time
  std::string out;
  std::string err;
};

inline std::string ReadWholeFile(const std::string& path) {
  std::ifstream file(path, std::ios::binary);
  std::ostringstream text;
  text << file.rdbuf();
  return text.str();
}

inline CliResult RunRzselect(const std::vector<std::string>& args) {
  TempFolder logs;
  std::vector<std::string> argv = {RZSELECT_PATH};
  argv.insert(argv.end(), args.begin(), args.end());
  CliResult result;
  {
    Child child(argv, logs.File("out"), logs.File("err"));
    if (!child.started()) return result;
    result.status = child.WaitExit(std::chrono::seconds(60)).value_or(-1);
  }
  result.out = ReadWholeFile(logs.File("out"));
  result.err = ReadWholeFile(logs.File("err"));
  return result;
}

}  // namespace rz

#endif  // RZ_E2E_CLI_RUN_H_
