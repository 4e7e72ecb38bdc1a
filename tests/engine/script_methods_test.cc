// Copyright 2026 The Veltmark authors.

// The engine's script methods over the fake script engine: CheckSecurity
// with the security script, GetScriptModules, ExecuteScriptModule and the
// after-open hook of Initialize. The system folder is a temporary folder
// ($VELTMARK_SYSTEM_DIR).

#include <gtest/gtest.h>
#include <stdlib.h>

#include <filesystem>
#include <fstream>
#include <memory>
#include <string>

#include "engine/rzselect.h"
#include "support/fake_platform.h"
#include "support/fake_script_engine.h"
#include "support/temp_folder.h"

namespace rz {
namespace {

class ScriptMethodsTest : public ::testing::Test {
 protected:
  ScriptMethodsTest() {
    std::filesystem::create_directories(folder_.File("system"));
    ::setenv("VELTMARK_SYSTEM_DIR", folder_.File("system").c_str(), 1);
    platform_->SetScriptEngineFactory(
        [log = log_] { return std::make_unique<FakeScriptEngine>(log); });
    FakeApplication& app = platform_->AddApplication(folder_.File("line4.rzt"));
    app.secured_functions = "EXPORT,PRINT";
    app.AddVariable("Date", "T", 10);
    app.AddVariable("Time", "T", 8);
    app.AddRecord("2024-03-01", "08:00:00");
    engine_->SetFilename(folder_.File("line4.rzt"));
  }
  ~ScriptMethodsTest() override { ::unsetenv("VELTMARK_SYSTEM_DIR"); }

  void Write(const std::string& name, const std::string& text) {
    std::ofstream(folder_.File(name), std::ios::binary) << text;
  }

  TempFolder folder_;
  std::shared_ptr<FakePlatform> platform_ = std::make_shared<FakePlatform>();
  std::shared_ptr<FakeScriptLog> log_ = std::make_shared<FakeScriptLog>();
  std::shared_ptr<RZselect> engine_ = RZselect::Create(platform_);
};

TEST_F(ScriptMethodsTest, SecuredFunctionsAskTheSecurityScript) {
  Write("system/rzsecure.rzx", "Function RZ_Security = ARG\r\n");
  engine_->Initialize();
  // The argument: the function, a comma and the base path.
  EXPECT_TRUE(engine_->CheckSecurity("export"));
  EXPECT_EQ(engine_->UserIdentification(), "export," + folder_.File("line4"));
  EXPECT_TRUE(engine_->CheckSecurity("Port"));  // a substring is secured
  EXPECT_TRUE(engine_->CheckSecurity("Delete"));
  EXPECT_EQ(engine_->UserIdentification(), "");  // not secured: no script
}

TEST_F(ScriptMethodsTest, BlankAnswersRefuse) {
  Write("system/rzsecure.rzx", "Function RZ_Security = \"   \"\r\n");
  engine_->Initialize();
  EXPECT_FALSE(engine_->CheckSecurity("PRINT"));
  EXPECT_EQ(engine_->UserIdentification(), "   ");
}

TEST_F(ScriptMethodsTest, TheModuleListAndRunningOneModule) {
  Write("RZscript.rzx",
        "Function First = OBJECTS\r\nFunction Second = \"\"\r\n");
  engine_->Initialize();
  const VariantArray modules = engine_->GetScriptModules().ToArray();
  ASSERT_EQ(modules.size(), 3u);
  EXPECT_EQ(modules[0], Variant(int32_t{2}));
  EXPECT_EQ(modules[1], Variant("First"));
  EXPECT_EQ(modules[2], Variant("Second"));

  log_->objects.clear();
  engine_->ExecuteScriptModule("first", engine_, nullptr);
  // The engine given brings its application as RZfile.
  EXPECT_EQ(log_->objects, (std::vector<std::string>{"RZfile", "RZselect"}));
  EXPECT_EQ(log_->runs.back(), "First");
}

TEST_F(ScriptMethodsTest, WithoutScriptsTheModuleListHoldsZero) {
  engine_->Initialize();
  const VariantArray modules = engine_->GetScriptModules().ToArray();
  ASSERT_EQ(modules.size(), 1u);
  EXPECT_EQ(modules[0], Variant(int32_t{0}));
}

TEST_F(ScriptMethodsTest, InitializeRunsTheAfterOpenHookOnlyWhenAsked) {
  Write("line4.rzt.rzx", "Function RZ_AfterOpenFile = OBJECTS\r\n");
  engine_->Initialize(false);
  EXPECT_TRUE(log_->runs.empty());
  engine_->Initialize(true);
  ASSERT_EQ(log_->runs.size(), 1u);
  EXPECT_EQ(log_->runs[0], "RZ_AfterOpenFile");
  EXPECT_EQ(log_->objects,
            (std::vector<std::string>{"RZfile", "RZselect", "RZrep"}));
  EXPECT_TRUE(engine_->State().RunFromRZ);
}

}  // namespace
}  // namespace rz
