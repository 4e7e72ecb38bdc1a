// Copyright 2026 The Veltmark authors.

// The engine's script methods over the fake script engine: CheckSecurity
// with the security script, GetScriptModules, ExecuteScriptModule, the
// after-open hook of Initialize, the hook time limit, and the view methods
// a script may not point at another application. The system folder is a
// temporary folder
// ($VELTMARK_SYSTEM_DIR).

#include <gtest/gtest.h>
#include <stdlib.h>

#include <filesystem>
#include <fstream>
#include <memory>
#include <optional>
#include <string>

#include "core/error.h"
#include "engine/rzselect.h"
#include "platform/script_reachable.h"
#include "support/error_number.h"
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

TEST_F(ScriptMethodsTest, TheHookTimeLimitComesFromTheHostOrTheTemplate) {
  Write("system/rzsecure.rzx", "Function RZ_Security = \"ann\"\r\n");
  FakeApplication& app = platform_->Disk()[folder_.File("line4.rzt")];
  struct Case {
    const char* template_value;
    std::optional<int32_t> host;
    int32_t expected;
  };
  const Case cases[] = {
      {"", std::nullopt, -1},      {"2.5", std::nullopt, 2500},
      {"0", std::nullopt, -1},     {" 30 ", std::nullopt, 30000},
      {"0.0001", std::nullopt, 1}, {"2.5", 700, 700},
      {"soon", 700, 700},  // the host's wins; the key is not read
  };
  for (const Case& c : cases) {
    app.hook_timeout = c.template_value;
    engine_->SetHookTimeout(c.host);
    engine_->Initialize();
    EXPECT_EQ(log_->timeouts.back(), c.expected) << c.template_value;
  }
}

TEST_F(ScriptMethodsTest, ABadTemplateTimeLimitFailsClosed) {
  Write("system/rzsecure.rzx", "Function RZ_Security = \"ann\"\r\n");
  engine_->Initialize();
  ASSERT_TRUE(engine_->CheckSecurity("EXPORT"));
  FakeApplication& app = platform_->Disk()[folder_.File("line4.rzt")];
  for (const char* value : {"-1", "abc", "86400.5", "1e3", "nan"}) {
    app.hook_timeout = value;
    try {
      engine_->Initialize();
      ADD_FAILURE() << value << ": no error";
    } catch (const Error& error) {
      EXPECT_EQ(error.Number(), 5) << value;
      EXPECT_EQ(error.Description(),
                folder_.File("line4.rzt") + ": HOOKTIMEOUT '" + value +
                    "' is not a number of seconds from 0 (no time limit) to "
                    "86400");
    }
    EXPECT_FALSE(engine_->CheckSecurity("EXPORT")) << value;
  }
}

TEST_F(ScriptMethodsTest, AScriptMayNotPointViewMethodsAtAnotherApplication) {
  std::filesystem::create_directories(folder_.File("other"));
  const std::string other = folder_.File("other/line9");
  engine_->Initialize();
  {
    ScriptHold hold(engine_);
    EXPECT_EQ(ErrorNumber([&] {
                engine_->Call("SaveView", {"V", other});
              }),
              70);
    EXPECT_FALSE(std::filesystem::exists(other + ".V1"));
    // Its own application is the script's to use, by either name.
    engine_->Call("SaveView", {"Mine", folder_.File("line4")});
    engine_->Call("SaveView", {"Mine"});
    engine_->Call("LoadView", {"Mine"});
    // The host keeps full control in C++ while a script runs.
    engine_->SaveView("Host", other);
    // An application opened under the script's hands is not its own.
    platform_->AddApplication(other + ".rzt");
    engine_->SetFilename(other + ".rzt");
    engine_->Initialize();
    EXPECT_EQ(ErrorNumber([&] { engine_->Call("LoadView", {"Mine"}); }), 70);
    EXPECT_EQ(ErrorNumber([&] { engine_->Call("SaveView", {"Mine"}); }), 70);
  }
  // Once no script holds the engine, late-bound calls are the host's.
  engine_->Call("SaveView", {"Free", folder_.File("line4")});
}

}  // namespace
}  // namespace rz
