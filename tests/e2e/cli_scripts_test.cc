// Copyright 2026 The Veltmark authors.
//
// The scripting commands as a user runs them, with the real script
// engines: the example application's VBScript hooks and security script
// (copies, in a temporary application folder and system folder), a
// JScript hook beside them, and a broken script.

#include <gtest/gtest.h>
#include <stdlib.h>

#include <filesystem>
#include <fstream>
#include <string>

#include "e2e/cli_run.h"

#ifndef RZ_EXAMPLES_DIR
#error "RZ_EXAMPLES_DIR must name the examples folder"
#endif

namespace rz {
namespace {

class CliScriptsTest : public ::testing::Test {
 protected:
  CliScriptsTest() {
    namespace fs = std::filesystem;
    const std::string examples = RZ_EXAMPLES_DIR;
    fs::create_directories(folder_.File("app"));
    fs::create_directories(folder_.File("system"));
    for (const char* name :
         {"line4.rzt", "line4.rzd", "line4.V1", "line4.rzt.rzx"}) {
      fs::copy_file(examples + "/line4/" + name,
                    folder_.File(std::string("app/") + name));
    }
    fs::copy_file(examples + "/system/rzsecure.rzx",
                  folder_.File("system/rzsecure.rzx"));
    ::setenv("VELTMARK_SYSTEM_DIR", folder_.File("system").c_str(), 1);
  }
  ~CliScriptsTest() override { ::unsetenv("VELTMARK_SYSTEM_DIR"); }

  void Write(const std::string& name, const std::string& text) {
    std::ofstream(folder_.File(name), std::ios::binary) << text;
  }
  std::string App() const { return folder_.File("app/line4.rzt"); }

  TempFolder folder_;
};

TEST_F(CliScriptsTest, TheExampleHooksListAndRun) {
  const CliResult list = RunRzselect({"scripts", App()});
  ASSERT_EQ(list.status, 0) << list.err;
  EXPECT_EQ(list.out, "RZ_BeforeOpenView\nDescribe\n");

  const CliResult run = RunRzselect({"script", App(), "describe"});
  ASSERT_EQ(run.status, 0) << run.err;
  EXPECT_EQ(run.out,
            "View Last 100 records on 500 records of Line 4 - filling and "
            "capping\n");
}

TEST_F(CliScriptsTest, TheExampleSecurityScriptDecides) {
  const CliResult allowed = RunRzselect({"check", App(), "export"});
  EXPECT_EQ(allowed.status, 0) << allowed.err;
  EXPECT_EQ(allowed.out, "quality\n");

  Write("system/rzsecure.rzx",
        "Function RZ_Security(request)\r\n  RZ_Security = \"  \"\r\nEnd "
        "Function\r\n");
  const CliResult refused = RunRzselect({"check", App(), "EXPORT"});
  EXPECT_EQ(refused.status, 3) << refused.err;
  EXPECT_EQ(refused.out, "  \n");
}

TEST_F(CliScriptsTest, AJScriptHookRunsBesideTheVBScriptOnes) {
  // The application folder's RZscript.rzx comes first in the joined text
  // and so decides the language for the whole script.
  std::filesystem::remove(folder_.File("app/line4.rzt.rzx"));
  Write("app/RZscript.rzx",
        "// JScript hooks\r\nfunction Count() {\r\n"
        "  return 'records: ' + RZfile.RecordCount;\r\n}\r\n");
  const CliResult run = RunRzselect({"script", App(), "count"});
  ASSERT_EQ(run.status, 0) << run.err;
  EXPECT_EQ(run.out, "records: 500\n");
}

TEST_F(CliScriptsTest, ABrokenScriptIsReportedAndAnswersNothing) {
  Write("app/line4.rzt.rzx",
        "Function Broken()\r\n  Broken = 1 / 0\r\nEnd Function\r\n");
  const CliResult run = RunRzselect({"script", App(), "Broken"});
  EXPECT_EQ(run.status, 0) << run.err;
  const std::string shown = run.out + run.err;
  EXPECT_NE(shown.find("Error 11: Division by zero"), std::string::npos)
      << shown;
  EXPECT_NE(shown.find("Line 2:   Broken = 1 / 0"), std::string::npos) << shown;
}

}  // namespace
}  // namespace rz
