// Copyright 2026 The Veltmark authors.
//
// The README's "Try it" commands run as written on a fresh checkout: each
// command of its first shell block, run by /bin/sh with the rzselect just
// built, from a private folder holding a copy of the source's examples (so
// the tree is not touched) and with another one in place of /tmp, must
// succeed. A command that names a file the tree does not ship fails here.

#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

#include "e2e/cli_run.h"

#ifndef RZ_SOURCE_DIR
#error "RZ_SOURCE_DIR must name the source folder"
#endif

namespace rz {
namespace {

constexpr std::string_view kBuiltRzselect = "build/apps/rzselect/rzselect";

// The lines of the first ```sh block after the "## Try it" heading, with
// backslash-continued lines joined into one command each.
std::vector<std::string> TryItCommands(const std::string& readme) {
  std::vector<std::string> commands;
  const size_t section = readme.find("## Try it");
  if (section == std::string::npos) return commands;
  const size_t open = readme.find("```sh\n", section);
  if (open == std::string::npos) return commands;
  const size_t close = readme.find("```", open + 6);
  const std::string block = readme.substr(open + 6, close - open - 6);
  std::string command;
  size_t start = 0;
  for (size_t end; (end = block.find('\n', start)) != std::string::npos;
       start = end + 1) {
    std::string line = block.substr(start, end - start);
    const bool continued = !line.empty() && line.back() == '\\';
    if (continued) line.pop_back();
    command += line;
    if (!continued && !command.empty()) {
      commands.push_back(command);
      command.clear();
    }
  }
  return commands;
}

void ReplaceAll(std::string& text, std::string_view from, std::string_view to) {
  for (size_t at = 0; (at = text.find(from, at)) != std::string::npos;
       at += to.size()) {
    text.replace(at, from.size(), to);
  }
}

CliResult RunShell(const std::string& command) {
  TempFolder logs;
  CliResult result;
  {
    Child child({"/bin/sh", "-c", command}, logs.File("out"), logs.File("err"));
    if (!child.started()) return result;
    result.status = child.WaitExit(std::chrono::seconds(120)).value_or(-1);
  }
  result.out = ReadWholeFile(logs.File("out"));
  result.err = ReadWholeFile(logs.File("err"));
  return result;
}

TEST(ReadmeTryItTest, EveryCommandRunsAsWritten) {
  const std::string source = RZ_SOURCE_DIR;
  const std::vector<std::string> commands =
      TryItCommands(ReadWholeFile(source + "/README.md"));
  ASSERT_GE(commands.size(), 4u) << "no Try it block in README.md";
  TempFolder checkout;
  std::filesystem::copy(source + "/examples", checkout.File("examples"),
                        std::filesystem::copy_options::recursive);
  TempFolder tmp;
  for (std::string command : commands) {
    const std::string as_written = command;
    // /tmp first: the build folder itself may lie below /tmp.
    ReplaceAll(command, "/tmp/", tmp.File(""));
    ReplaceAll(command, kBuiltRzselect, RZSELECT_PATH);
    const CliResult run =
        RunShell("cd '" + checkout.File("") + "' && " + command);
    EXPECT_EQ(run.status, 0) << as_written << "\n" << run.out << run.err;
  }
}

}  // namespace
}  // namespace rz
