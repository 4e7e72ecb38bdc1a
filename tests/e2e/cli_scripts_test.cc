// Copyright 2026 The Veltmark authors.
//
// The scripting commands as a user runs them, with the real script
// engines: the example application's VBScript hooks and security script
// (copies, in a temporary application folder and system folder), a
// JScript hook beside them, broken and hostile scripts, LF-only scripts
// and the hook time limit.

#include <gtest/gtest.h>
#include <stdlib.h>

#include <chrono>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

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
  // Puts `line` into the template's [GENERAL] section.
  void AddGeneralLine(const std::string& line) {
    std::string text = ReadWholeFile(App());
    text.insert(text.find('\n') + 1, line + "\r\n");
    Write("app/line4.rzt", text);
  }

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

TEST_F(CliScriptsTest, ASecurityScriptThatFailsToLoadRefusesEverything) {
  struct Case {
    const char* what;
    std::string script;
    const char* shown;  // part of the error shown
  };
  const std::string grant =
      "Function RZ_Security(r)\r\n  RZ_Security = "
      "\"anyone\"\r\nEnd Function\r\n";
  const Case cases[] = {
      {"runtime error in top-level code", grant + "x = 1 / 0\r\n",
       "Error 11: Division by zero"},
      {"compile error after the function", grant + "If Then\r\n",
       "VBScript compilation error"},
      {"JScript throwing at the top",
       "// JScript\nfunction RZ_Security(r) { return 'anyone'; }\n"
       "throw new Error('setup failed');\n",
       "setup failed"},
      {"an include outside the system folder",
       grant + "$INCLUDE /proc/self/environ\r\n",
       "'$INCLUDE /proc/self/environ' in"},
  };
  for (const Case& c : cases) {
    Write("system/rzsecure.rzx", c.script);
    const CliResult check = RunRzselect({"check", App(), "EXPORT"});
    EXPECT_EQ(check.status, 3) << c.what << "\n" << check.err;
    EXPECT_EQ(check.out, "\n") << c.what;
    EXPECT_NE(check.err.find("Procedure: Loading Script ..."),
              std::string::npos)
        << c.what << "\n"
        << check.err;
    EXPECT_NE(check.err.find(c.shown), std::string::npos) << c.what << "\n"
                                                          << check.err;
  }
}

TEST_F(CliScriptsTest, AHookScriptThatFailsToLoadDefinesNoHook) {
  Write("app/line4.rzt.rzx",
        "Function Half()\r\n  Half = \"ran\"\r\nEnd Function\r\n"
        "x = 1 / 0\r\n");
  const CliResult run = RunRzselect({"script", App(), "Half"});
  EXPECT_EQ(run.status, 0) << run.err;
  EXPECT_EQ(run.out, "\n");
  EXPECT_NE(run.err.find("Procedure: Loading Script ..."), std::string::npos)
      << run.err;
}

TEST_F(CliScriptsTest, IncludesReachOnlyTheApplicationAndSystemFolders) {
  namespace fs = std::filesystem;
  fs::create_directories(folder_.File("app/lib"));
  fs::create_directories(folder_.File("outside"));
  Write("outside/secret.rzx",
        "Function Secret()\r\n  Secret = "
        "\"TOP-SECRET\"\r\nEnd Function\r\n");
  Write("app/lib/twice.rzx",
        "Function Twice(x)\r\n  Twice = x * 2\r\nEnd Function\r\n");
  Write("system/shared.rzx",
        "Function Shared()\r\n  Shared = Twice(21)\r\nEnd Function\r\n");
  // A name with folders is relative to the including file, not to the
  // working folder; the system folder's libraries may be included too.
  Write("app/line4.rzt.rzx", "$INCLUDE lib/twice.rzx\r\n$INCLUDE " +
                                 folder_.File("system/shared.rzx") + "\r\n");
  const CliResult shared = RunRzselect({"script", App(), "Shared"});
  EXPECT_EQ(shared.status, 0) << shared.err;
  EXPECT_EQ(shared.out, "42\n") << shared.err;

  Write("app/line4.rzt.rzx", "$INCLUDE ../outside/secret.rzx\r\n");
  const CliResult escape = RunRzselect({"script", App(), "Secret"});
  EXPECT_EQ(escape.status, 0) << escape.err;
  EXPECT_EQ(escape.out, "\n");
  EXPECT_NE(escape.err.find("Error 70: Permission denied: '$INCLUDE "
                            "../outside/secret.rzx' in"),
            std::string::npos)
      << escape.err;
  EXPECT_EQ(escape.err.find("TOP-SECRET"), std::string::npos) << escape.err;
}

TEST_F(CliScriptsTest, ScriptsWithLineFeedEndsReadLikeCrLfOnes) {
  Write("app/lib.rzx", "Function Lib()\n  Lib = \"lib\"\nEnd Function\n");
  Write("app/line4.rzt.rzx",
        "' VBScript hooks\n$INCLUDE lib.rzx\nFunction Both()\n"
        "  Both = Lib() & \"+own\"\nEnd Function\n");
  const CliResult run = RunRzselect({"script", App(), "Both"});
  EXPECT_EQ(run.status, 0) << run.err;
  EXPECT_EQ(run.out, "lib+own\n") << run.err;

  Write("app/line4.rzt.rzx", "");
  Write("app/RZscript.rzx", "// JScript\nfunction Js() {\n  return 'js';\n}\n");
  const CliResult js = RunRzselect({"script", App(), "Js"});
  EXPECT_EQ(js.out, "js\n") << js.err;

  Write("system/rzsecure.rzx",
        "Function RZ_Security(r)\n  RZ_Security = \"ann\"\nEnd Function\n");
  const CliResult check = RunRzselect({"check", App(), "EXPORT"});
  EXPECT_EQ(check.status, 0) << check.err;
  EXPECT_EQ(check.out, "ann\n");
}

TEST_F(CliScriptsTest, RunawayHooksStopAtTheTimeLimit) {
  struct Case {
    const char* what;
    const char* file;
    const char* script;
    std::vector<std::string> args;
  };
  const Case cases[] = {
      {"VBScript, the option",
       "app/line4.rzt.rzx",
       "Function Spin()\r\n  Do: Loop\r\nEnd Function\r\n",
       {"script", App(), "Spin", "--hook-timeout", "1"}},
      {"JScript, the template key",
       "app/RZscript.rzx",
       "// JScript\r\nfunction Spin() {\r\n  for (;;) {}\r\n}\r\n",
       {"script", App(), "Spin"}},
  };
  AddGeneralLine("HOOKTIMEOUT = 1");
  for (const Case& c : cases) {
    Write("app/line4.rzt.rzx", "");
    Write(c.file, c.script);
    const auto start = std::chrono::steady_clock::now();
    const CliResult run = RunRzselect(c.args);
    const auto took = std::chrono::steady_clock::now() - start;
    EXPECT_EQ(run.status, 0) << c.what << "\n" << run.err;
    EXPECT_EQ(run.out, "\n") << c.what;
    EXPECT_NE(run.err.find("Error -2147467260"), std::string::npos)
        << c.what << "\n"
        << run.err;
    EXPECT_NE(run.err.find("Procedure: Spin"), std::string::npos) << c.what;
    EXPECT_LT(took, std::chrono::seconds(30)) << c.what;
  }
}

TEST_F(CliScriptsTest, TheOptionWinsOverTheTemplateKey) {
  AddGeneralLine("HOOKTIMEOUT = 1");
  std::filesystem::remove(folder_.File("app/line4.rzt.rzx"));
  Write("app/RZscript.rzx",
        "// JScript\nfunction Slow() {\n  var end = new Date().getTime() + "
        "1500;\n  while (new Date().getTime() < end) {}\n  return 'done';\n"
        "}\n");
  const CliResult limited = RunRzselect({"script", App(), "Slow"});
  EXPECT_EQ(limited.out, "\n") << limited.err;
  EXPECT_NE(limited.err.find("Error -2147467260"), std::string::npos)
      << limited.err;
  const CliResult longer =
      RunRzselect({"script", App(), "Slow", "--hook-timeout", "20"});
  EXPECT_EQ(longer.out, "done\n") << longer.err;
}

TEST_F(CliScriptsTest, ASecurityScriptThatNeverEndsIsStoppedAndRefuses) {
  Write("system/rzsecure.rzx",
        "Function RZ_Security(r)\r\n  RZ_Security = \"ann\"\r\nEnd "
        "Function\r\nDo: Loop\r\n");
  const CliResult check =
      RunRzselect({"check", App(), "EXPORT", "--hook-timeout", "0.5"});
  EXPECT_EQ(check.status, 3) << check.err;
  EXPECT_NE(check.err.find("Error -2147467260"), std::string::npos)
      << check.err;
}

TEST_F(CliScriptsTest, BadTimeLimitsAreClearErrors) {
  for (const char* value : {"-1", "abc", "1e9", "86401", ""}) {
    for (const char* command : {"scripts", "check", "views"}) {
      std::vector<std::string> args = {command, App()};
      if (std::string(command) == "check") args.push_back("EXPORT");
      args.insert(args.end(), {"--hook-timeout", value});
      const CliResult run = RunRzselect(args);
      EXPECT_EQ(run.status, 2) << command << " " << value << "\n" << run.err;
      EXPECT_NE(run.err.find("--hook-timeout"), std::string::npos)
          << command << " " << value << "\n"
          << run.err;
    }
  }
  AddGeneralLine("HOOKTIMEOUT = soon");
  const CliResult run = RunRzselect({"views", App()});
  EXPECT_EQ(run.status, 1);
  EXPECT_NE(run.err.find(App() + ": HOOKTIMEOUT 'soon' is not a number of "
                                 "seconds"),
            std::string::npos)
      << run.err;
}

TEST_F(CliScriptsTest, ScriptsCannotSaveViewsIntoAnotherApplication) {
  std::filesystem::create_directories(folder_.File("other"));
  const std::string other = folder_.File("other/line9");
  Write("app/line4.rzt.rzx",
        "Function Steal()\r\n  On Error Resume Next\r\n"
        "  RZselect.SaveView \"Copied\", \"" +
            other +
            "\"\r\n  Steal = Err.Number & \": \" & Err.Description\r\n"
            "End Function\r\n"
            "Function Own()\r\n  RZselect.SaveView \"Copied\", "
            "RZfile.BasePath\r\n  Own = \"saved\"\r\nEnd Function\r\n"
            "Function Reopen()\r\n  On Error Resume Next\r\n"
            "  RZfile.OpenApplication \"" +
            other + ".rzt\"\r\n  Reopen = Err.Number\r\nEnd Function\r\n");
  const CliResult steal = RunRzselect({"script", App(), "Steal"});
  EXPECT_EQ(steal.out, "70: Permission denied: '" + other +
                           "' is not the script's own application (SaveView "
                           "from a script)\n")
      << steal.err;
  EXPECT_TRUE(std::filesystem::is_empty(folder_.File("other")));
  const CliResult own = RunRzselect({"script", App(), "Own"});
  EXPECT_EQ(own.out, "saved\n") << own.err;
  const CliResult reopen = RunRzselect({"script", App(), "Reopen"});
  EXPECT_EQ(reopen.out, "70\n") << reopen.err;
}

TEST_F(CliScriptsTest, CheckWithoutASecurityScriptSaysWhereItLooked) {
  std::filesystem::remove(folder_.File("system/rzsecure.rzx"));
  const CliResult check = RunRzselect({"check", App(), "EXPORT"});
  EXPECT_EQ(check.status, 3);
  EXPECT_NE(check.err.find("rzselect: no security script: " +
                           folder_.File("system/rzsecure.rzx") +
                           " (set VELTMARK_SYSTEM_DIR)"),
            std::string::npos)
      << check.err;
  // An unsecured function needs no script and says nothing.
  const CliResult free = RunRzselect({"check", App(), "PRINT"});
  EXPECT_EQ(free.status, 0);
  EXPECT_EQ(free.err, "");
}

}  // namespace
}  // namespace rz
