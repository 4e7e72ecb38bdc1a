// Copyright 2026 The Veltmark authors.
//
// The script host with the real engines behind a LanguageSwitch: the same
// hooks written in VBScript and in JScript give the same answers, and the
// host's loading rules hold with real compilers (two Option Explicit
// statements, a first line that names JScript, includes).

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <memory>
#include <string>

#include "jscript/jscript_engine.h"
#include "script/language_switch.h"
#include "script/script_host.h"
#include "support/fake_platform.h"
#include "support/fake_repository.h"
#include "support/temp_folder.h"
#include "vbscript/vbscript_engine.h"

namespace rz {
namespace {

class ScriptEnginesTest : public ::testing::Test {
 protected:
  ScriptEnginesTest() {
    std::filesystem::create_directories(folder_.File("system"));
    std::filesystem::create_directories(folder_.File("app"));
    Toolkit* toolkit = &platform_.Headless();
    platform_.SetScriptEngineFactory([toolkit] {
      return std::make_unique<LanguageSwitch>(
          [toolkit] { return std::make_unique<VBScriptEngine>(toolkit); },
          [toolkit] { return std::make_unique<JScriptEngine>(toolkit); });
    });
    files_ = {folder_.File("system"), folder_.File("app/"),
              folder_.File("app/line4.rzt")};
    repository_->SetTitle("Line 4");
  }

  void Write(const std::string& name, const std::string& text) {
    std::ofstream(folder_.File(name), std::ios::binary) << text;
  }

  std::string Run(const std::string& procedure) {
    return host_.RunHook(procedure, files_, {nullptr, nullptr, repository_});
  }

  TempFolder folder_;
  FakePlatform platform_;
  ScriptHost host_{platform_};
  HookScriptFiles files_;
  std::shared_ptr<FakeRepository> repository_ =
      std::make_shared<FakeRepository>();
};

TEST_F(ScriptEnginesTest, TheSameHooksGiveTheSameAnswersInBothLanguages) {
  struct Case {
    const char* what;
    const char* vbscript;  // the body of Function Hook()
    const char* jscript;   // the body of function Hook()
    const char* answer;
  };
  const Case cases[] = {
      {"text", "Hook = \"a\" & \"b\" & 3", "return 'a' + 'b' + 3;", "ab3"},
      {"arithmetic", "Hook = (7 + 5) * 2 / 8", "return (7 + 5) * 2 / 8;", "3"},
      {"loop",
       "Dim i, s\r\n  s = 0\r\n  For i = 1 To 10\r\n    s = s + i\r\n  Next\r\n"
       "  Hook = s",
       "var s = 0;\r\n  for (var i = 1; i <= 10; i++) s += i;\r\n  return s;",
       "55"},
      {"condition",
       "If Len(\"line4\") > 3 Then\r\n    Hook = \"long\"\r\n  Else\r\n"
       "    Hook = \"short\"\r\n  End If",
       "return 'line4'.length > 3 ? 'long' : 'short';", "long"},
      {"a named object", "Hook = UCase(RZrep.Title)",
       "return RZrep.Title.toUpperCase();", "LINE 4"},
      {"no answer", "", "", ""},
  };
  for (const Case& c : cases) {
    Write("app/RZscript.rzx", std::string("Function Hook()\r\n  ") +
                                  c.vbscript + "\r\nEnd Function\r\n");
    EXPECT_EQ(Run("hook"), c.answer) << "VBScript: " << c.what;
    Write("app/RZscript.rzx",
          std::string("// JScript\r\nfunction Hook() {\r\n  ") + c.jscript +
              "\r\n}\r\n");
    EXPECT_EQ(Run("HOOK"), c.answer) << "JScript: " << c.what;
  }
  EXPECT_TRUE(platform_.Headless().Log().empty());
}

TEST_F(ScriptEnginesTest, TwoOptionExplicitStatementsStillLoad) {
  Write("system/RZscript.rzx",
        "Option Explicit\r\nFunction Shared()\r\n  Shared = \"s\"\r\n"
        "End Function\r\n");
  Write("app/RZscript.rzx",
        "Option Explicit\r\nFunction Own()\r\n  Dim x\r\n  x = \"o\"\r\n"
        "  Own = x\r\nEnd Function\r\n");
  EXPECT_EQ(Run("Own"), "o");
  EXPECT_EQ(Run("Shared"), "s");
  EXPECT_EQ(host_.ScriptModules(files_),
            (std::vector<std::string>{"Shared", "Own"}));
  EXPECT_TRUE(platform_.Headless().Log().empty());
}

TEST_F(ScriptEnginesTest, AFirstLineNamingJScriptRunsTheTextAsJScript) {
  Write("app/RZscript.rzx",
        "' not JScript, only a comment that names it\r\nFunction A()\r\n"
        "  A = 1\r\nEnd Function\r\n");
  EXPECT_EQ(Run("A"), "");
  ASSERT_EQ(platform_.Headless().Log().size(), 1u);
  EXPECT_EQ(platform_.Headless().Log()[0].title, "JScript compilation error");
  EXPECT_NE(
      platform_.Headless().Log()[0].text.find("Procedure: Loading Script ..."),
      std::string::npos);
}

TEST_F(ScriptEnginesTest, IncludedFilesAndTheirErrorLines) {
  Write("app/lib.rzx",
        "Function Twice(x)\r\n  Twice = x * 2\r\nEnd Function\r\n");
  Write("app/RZscript.rzx",
        "$INCLUDE lib.rzx\r\nFunction Hook()\r\n  Hook = Twice(21)\r\n"
        "End Function\r\nFunction Bad()\r\n  Bad = Twice(\"x\")\r\n"
        "End Function\r\n");
  EXPECT_EQ(Run("Hook"), "42");
  EXPECT_EQ(Run("Bad"), "");
  ASSERT_EQ(platform_.Headless().Log().size(), 1u);
  // Line 2 of the joined text: the included function's body.
  EXPECT_NE(platform_.Headless().Log()[0].text.find("Line 2:   Twice = x * 2"),
            std::string::npos)
      << platform_.Headless().Log()[0].text;
}

}  // namespace
}  // namespace rz
