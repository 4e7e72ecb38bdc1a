// Copyright 2026 The Veltmark authors.

// The script host over the fake script engine: hooks, the module list,
// the security script, and the error message of a failing script.

#include "script/script_host.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <memory>
#include <string>

#include "support/fake_platform.h"
#include "support/fake_repository.h"
#include "support/fake_script_engine.h"
#include "support/temp_folder.h"

namespace rz {
namespace {

class ScriptHostTest : public ::testing::Test {
 protected:
  ScriptHostTest() {
    std::filesystem::create_directories(folder_.File("system"));
    std::filesystem::create_directories(folder_.File("app"));
    platform_.SetScriptEngineFactory(
        [log = log_] { return std::make_unique<FakeScriptEngine>(log); });
    files_ = {folder_.File("system"), folder_.File("app/"),
              folder_.File("app/line4.rzt")};
  }

  void Write(const std::string& name, const std::string& text) {
    std::ofstream(folder_.File(name), std::ios::binary) << text;
  }

  const std::vector<HeadlessToolkit::ShownEntry>& Shown() {
    return platform_.Headless().Log();
  }

  TempFolder folder_;
  FakePlatform platform_;
  std::shared_ptr<FakeScriptLog> log_ = std::make_shared<FakeScriptLog>();
  ScriptHost host_{platform_};
  HookScriptFiles files_;
};

TEST_F(ScriptHostTest, WithoutScriptsHooksAnswerNothingSilently) {
  EXPECT_EQ(host_.RunHook("RZ_BeforeOpenView", files_, {}), "");
  EXPECT_TRUE(host_.ScriptModules(files_).empty());
  EXPECT_TRUE(Shown().empty());
  EXPECT_TRUE(log_->code.empty());  // nothing was added
}

TEST_F(ScriptHostTest, AHookIsFoundWithoutRegardToCase) {
  Write("app/RZscript.rzx",
        "Function rz_beforeopenview = \"SKIPREAD\"\r\n"
        "Function Other = \"x\"\r\n");
  EXPECT_EQ(host_.RunHook("RZ_BeforeOpenView", files_, {}), "SKIPREAD");
  EXPECT_EQ(log_->runs.back(), "rz_beforeopenview");
  EXPECT_EQ(host_.RunHook("RZ_AfterOpenView", files_, {}), "");  // none
  EXPECT_EQ(host_.ScriptModules(files_),
            (std::vector<std::string>{"rz_beforeopenview", "Other"}));
  EXPECT_EQ(log_->timeouts.back(), -1);
  EXPECT_TRUE(Shown().empty());
}

TEST_F(ScriptHostTest, EachHookCallBuildsAFreshEngine) {
  Write("app/line4.rzt.rzx", "Function Counter = COUNT\r\n");
  EXPECT_EQ(host_.RunHook("Counter", files_, {}), "1");
  EXPECT_EQ(host_.RunHook("Counter", files_, {}), "1");
  EXPECT_EQ(log_->engines_made, 2);
}

TEST_F(ScriptHostTest, OnlyTheGivenObjectsAreAdded) {
  Write("app/RZscript.rzx", "Function Names = OBJECTS\r\n");
  auto object = std::make_shared<FakeRepository>();
  EXPECT_EQ(host_.RunHook("Names", files_, {object, object, object}),
            "RZfile,RZselect,RZrep");
  EXPECT_EQ(host_.RunHook("Names", files_, {nullptr, object, nullptr}),
            "RZselect");
  // A JScript script gets them too: the language is chosen before the
  // objects are added (a change of language discards what was added).
  Write("app/RZscript.rzx", "// JScript\r\nFunction Names = OBJECTS\r\n");
  EXPECT_EQ(host_.RunHook("Names", files_, {object, object, object}),
            "RZfile,RZselect,RZrep");
}

TEST_F(ScriptHostTest, TheFirstLineDecidesTheLanguage) {
  Write("system/RZscript.rzx",
        "' JScript on the first line\r\n"
        "Function A = \"a\"\r\n");
  EXPECT_EQ(host_.RunHook("A", files_, {}), "a");
  EXPECT_EQ(log_->languages.back(), "JSCRIPT");
}

TEST_F(ScriptHostTest, ErrorsAreShownAndAnswerNothing) {
  Write("app/RZscript.rzx", "' hooks\r\nFunction Broken = FAIL\r\n");
  EXPECT_EQ(host_.RunHook("Broken", files_, {}), "");
  ASSERT_EQ(Shown().size(), 1u);
  EXPECT_EQ(Shown()[0].title, "VBScript runtime error");
  EXPECT_EQ(Shown()[0].text,
            "Error 13: Type mismatch\r\n\r\nProcedure: Broken\r\n\r\n"
            "Line 2: Function Broken = FAIL");
  EXPECT_EQ(Shown()[0].buttons, MessageButtons::kOk);

  Write("app/line4.rzt.rzx", "x\r\nSYNTAX ERROR here\r\n");
  EXPECT_EQ(host_.RunHook("Broken", files_, {}), "");
  ASSERT_EQ(Shown().size(), 2u);
  EXPECT_EQ(Shown()[1].title, "VBScript compilation error");
  // Lines count in the joined script: two from the first file.
  EXPECT_EQ(Shown()[1].text,
            "Error 1002: Syntax error\r\n\r\nProcedure: Loading Script ..."
            "\r\n\r\nLine 4: SYNTAX ERROR here");
}

TEST_F(ScriptHostTest, ATextWithoutLineEndsIsALoadingError) {
  Write("app/RZscript.rzx", "Function A = \"a\"");
  EXPECT_EQ(host_.RunHook("A", files_, {}), "");
  ASSERT_EQ(Shown().size(), 1u);
  EXPECT_NE(Shown()[0].text.find("Procedure: Loading Script ..."),
            std::string::npos);
  EXPECT_NE(Shown()[0].text.find("No Line"), std::string::npos);
}

TEST_F(ScriptHostTest, TheSecurityScriptIsKeptUntilTheNextSetup) {
  Write("system/rzsecure.rzx",
        "Function RZ_Security = ARG\r\nFunction Calls = COUNT\r\n");
  host_.SetupForScripting(folder_.File("system"));
  EXPECT_EQ(host_.RunSecurityHook("rz_security", "EXPORT,/data/line4"),
            "EXPORT,/data/line4");
  EXPECT_EQ(host_.RunSecurityHook("Calls", ""), "1");
  EXPECT_EQ(host_.RunSecurityHook("Calls", ""), "2");  // state is kept
  EXPECT_EQ(host_.RunSecurityHook("Missing", ""), "");

  // Editing the file changes nothing until the next setup.
  Write("system/rzsecure.rzx", "Function RZ_Security = \"Ann\"\r\n");
  EXPECT_EQ(host_.RunSecurityHook("RZ_Security", "x"), "x");
  host_.SetupForScripting(folder_.File("system"));
  EXPECT_EQ(host_.RunSecurityHook("RZ_Security", "x"), "Ann");
  EXPECT_TRUE(Shown().empty());
}

TEST_F(ScriptHostTest, WithoutASecurityScriptEveryCheckAnswersNothing) {
  host_.SetupForScripting(folder_.File("system"));
  EXPECT_EQ(host_.RunSecurityHook("RZ_Security", "EXPORT,x"), "");
  Write("system/rzsecure.rzx", "Function RZ_Security = FAIL\r\n");
  host_.SetupForScripting(folder_.File("system"));
  EXPECT_EQ(host_.RunSecurityHook("RZ_Security", "EXPORT,x"), "");
  ASSERT_EQ(Shown().size(), 1u);
  EXPECT_NE(Shown()[0].text.find("Procedure: RZ_Security"), std::string::npos);
}

TEST_F(ScriptHostTest, ASecurityScriptThatFailsToLoadLeavesNoEngine) {
  struct Case {
    const char* what;
    std::string text;
  };
  const Case cases[] = {
      {"compile error", "Function RZ_Security = \"ann\"\r\nSYNTAX ERROR\r\n"},
      {"refused include",
       "Function RZ_Security = \"ann\"\r\n$INCLUDE /dev/zero\r\n"},
      {"no line end", "Function RZ_Security = \"ann\""},
  };
  for (const Case& c : cases) {
    Write("system/rzsecure.rzx", "Function RZ_Security = \"ann\"\r\n");
    host_.SetupForScripting(folder_.File("system"));
    ASSERT_TRUE(host_.HasSecurityScript()) << c.what;
    const size_t shown = Shown().size();
    Write("system/rzsecure.rzx", c.text);
    host_.SetupForScripting(folder_.File("system"));
    EXPECT_FALSE(host_.HasSecurityScript()) << c.what;
    EXPECT_EQ(host_.RunSecurityHook("RZ_Security", "EXPORT,x"), "") << c.what;
    ASSERT_EQ(Shown().size(), shown + 1) << c.what;
    EXPECT_NE(Shown().back().text.find("Procedure: Loading Script ..."),
              std::string::npos)
        << c.what;
  }
}

TEST_F(ScriptHostTest, TheSecurityScriptMayIncludeOnlyFromTheSystemFolder) {
  Write("app/lib.rzx", "Function RZ_Security = \"ann\"\r\n");
  Write("system/rzsecure.rzx",
        "' security\r\n$INCLUDE " + folder_.File("app/lib.rzx") + "\r\n");
  host_.SetupForScripting(folder_.File("system"));
  EXPECT_FALSE(host_.HasSecurityScript());
  ASSERT_EQ(Shown().size(), 1u);
  EXPECT_NE(Shown()[0].text.find("Error 70: Permission denied: '$INCLUDE " +
                                 folder_.File("app/lib.rzx") + "'"),
            std::string::npos)
      << Shown()[0].text;
  // The same file is a hook script's to include: the application folder is
  // the hooks' own.
  Write("app/RZscript.rzx",
        "' hooks\r\n$INCLUDE " + folder_.File("app/lib.rzx") + "\r\n");
  EXPECT_EQ(host_.RunHook("RZ_Security", files_, {}), "ann");
}

TEST_F(ScriptHostTest, TheTimeLimitReachesEveryEngine) {
  Write("app/RZscript.rzx", "Function A = \"a\"\r\n");
  Write("system/rzsecure.rzx", "Function RZ_Security = \"ann\"\r\n");
  EXPECT_EQ(host_.RunHook("A", files_, {}), "a");
  EXPECT_EQ(log_->timeouts.back(), -1);  // none by default
  host_.SetTimeout(1500);
  EXPECT_EQ(host_.RunHook("A", files_, {}), "a");
  EXPECT_EQ(log_->timeouts.back(), 1500);
  host_.SetTimeout(250);
  host_.SetupForScripting(folder_.File("system"));
  EXPECT_EQ(log_->timeouts.back(), 250);
}

TEST_F(ScriptHostTest, APlatformWithoutScriptEnginesAnswersNothing) {
  FakePlatform bare;
  ScriptHost host(bare);
  Write("app/RZscript.rzx", "Function A = \"a\"\r\n");
  EXPECT_EQ(host.RunHook("A", files_, {}), "");
  host.SetupForScripting(folder_.File("system"));
  EXPECT_EQ(host.RunSecurityHook("RZ_Security", ""), "");
  EXPECT_TRUE(bare.Headless().Log().empty());
}

}  // namespace
}  // namespace rz
