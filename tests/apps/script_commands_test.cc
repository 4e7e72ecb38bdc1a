// Copyright 2026 The Veltmark authors.

// `rzselect scripts`, `script` and `check` over the fake application file
// and the fake script engine.

#include "rzselect/script_commands.h"

#include <gtest/gtest.h>
#include <stdlib.h>

#include <filesystem>
#include <fstream>
#include <sstream>

#include "support/error_number.h"
#include "support/fake_platform.h"
#include "support/fake_script_engine.h"
#include "support/temp_folder.h"

namespace rz {
namespace {

class ScriptCommandsTest : public ::testing::Test {
 protected:
  ScriptCommandsTest() {
    std::filesystem::create_directories(folder_.File("system"));
    ::setenv("VELTMARK_SYSTEM_DIR", folder_.File("system").c_str(), 1);
    platform_->SetScriptEngineFactory(
        [log = log_] { return std::make_unique<FakeScriptEngine>(log); });
    FakeApplication& app = platform_->AddApplication(folder_.File("line4.rzt"));
    app.secured_functions = "EXPORT";
    app.AddVariable("Date", "T", 10);
    app.AddVariable("Time", "T", 8);
    app.AddRecord("2024-03-01", "08:00:00");
    options_.template_path = folder_.File("line4.rzt");
  }
  ~ScriptCommandsTest() override { ::unsetenv("VELTMARK_SYSTEM_DIR"); }

  void Write(const std::string& name, const std::string& text) {
    std::ofstream(folder_.File(name), std::ios::binary) << text;
  }

  TempFolder folder_;
  std::shared_ptr<FakePlatform> platform_ = std::make_shared<FakePlatform>();
  std::shared_ptr<FakeScriptLog> log_ = std::make_shared<FakeScriptLog>();
  ScriptCommandOptions options_;
  std::ostringstream out_;
  std::ostringstream err_;
};

TEST_F(ScriptCommandsTest, ListsTheHookProcedures) {
  Write("system/RZscript.rzx", "Function Shared = \"\"\r\n");
  Write("line4.rzt.rzx", "Function Own = \"\"\r\n");
  RunScriptList(platform_, options_, out_);
  EXPECT_EQ(out_.str(), "Shared\nOwn\n");
}

TEST_F(ScriptCommandsTest, RunsOneProcedureWithTheThreeObjects) {
  Write("RZscript.rzx", "Function Objects = OBJECTS\r\n");
  options_.name = "objects";
  RunScriptProcedure(platform_, options_, out_);
  EXPECT_EQ(out_.str(), "RZfile,RZselect,RZrep\n");
  out_.str("");
  options_.name = "Missing";
  RunScriptProcedure(platform_, options_, out_);
  EXPECT_EQ(out_.str(), "\n");
}

TEST_F(ScriptCommandsTest, CheckPrintsTheUserAndAnswersTheDecision) {
  Write("system/rzsecure.rzx", "Function RZ_Security = \"ann\"\r\n");
  options_.name = "Export";
  EXPECT_TRUE(RunSecurityCheck(platform_, options_, out_, err_));
  EXPECT_EQ(out_.str(), "ann\n");

  Write("system/rzsecure.rzx", "Function RZ_Security = \"\"\r\n");
  out_.str("");
  EXPECT_FALSE(RunSecurityCheck(platform_, options_, out_, err_));
  EXPECT_EQ(out_.str(), "\n");

  out_.str("");
  options_.name = "Print";  // not secured: allowed, no user
  EXPECT_TRUE(RunSecurityCheck(platform_, options_, out_, err_));
  EXPECT_EQ(out_.str(), "\n");
}

TEST_F(ScriptCommandsTest, ARefusalForWantOfASecurityScriptSaysSo) {
  options_.name = "Export";
  EXPECT_FALSE(RunSecurityCheck(platform_, options_, out_, err_));
  EXPECT_EQ(err_.str(), "rzselect: no security script: " +
                            folder_.File("system/rzsecure.rzx") +
                            " (set VELTMARK_SYSTEM_DIR)\n");
  // A script that answers nothing refuses without that note.
  Write("system/rzsecure.rzx", "Function RZ_Security = \"\"\r\n");
  err_.str("");
  EXPECT_FALSE(RunSecurityCheck(platform_, options_, out_, err_));
  EXPECT_EQ(err_.str(), "");
}

TEST_F(ScriptCommandsTest, TheTimeLimitOptionReachesTheScripts) {
  Write("RZscript.rzx", "Function A = \"a\"\r\n");
  options_.name = "A";
  options_.hook_timeout = "1.5";
  RunScriptProcedure(platform_, options_, out_);
  EXPECT_EQ(log_->timeouts.back(), 1500);
  options_.hook_timeout = "-2";
  EXPECT_EQ(ErrorNumber([&] { RunScriptProcedure(platform_, options_, out_); }),
            5);
}

TEST_F(ScriptCommandsTest, AMissingApplicationIsError53) {
  options_.template_path = folder_.File("none.rzt");
  EXPECT_EQ(ErrorNumber([&] { RunScriptList(platform_, options_, out_); }), 53);
}

}  // namespace
}  // namespace rz
