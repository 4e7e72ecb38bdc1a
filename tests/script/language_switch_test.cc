// Copyright 2026 The Veltmark authors.

// LanguageSwitch over two fake engines.

#include "script/language_switch.h"

#include <gtest/gtest.h>

#include <memory>

#include "support/error_number.h"
#include "support/fake_script_engine.h"

namespace rz {
namespace {

TEST(LanguageSwitchTest, EachLanguageGetsAFreshEngineOfItsOwn) {
  auto vb_log = std::make_shared<FakeScriptLog>();
  auto js_log = std::make_shared<FakeScriptLog>();
  LanguageSwitch engine(
      [vb_log] { return std::make_unique<FakeScriptEngine>(vb_log); },
      [js_log] { return std::make_unique<FakeScriptEngine>(js_log); });
  EXPECT_EQ(engine.Language(), "VBSCRIPT");
  EXPECT_EQ(vb_log->engines_made, 1);
  engine.SetTimeout(250);
  ASSERT_TRUE(engine.AddCode("Function A = \"a\"\r\n"));
  EXPECT_EQ(engine.Procedures(), (std::vector<std::string>{"A"}));

  engine.SetLanguage("VBScript");  // the same language: nothing changes
  EXPECT_EQ(vb_log->engines_made, 1);
  EXPECT_EQ(engine.Procedures(), (std::vector<std::string>{"A"}));

  engine.SetLanguage("jscript");
  EXPECT_EQ(engine.Language(), "JSCRIPT");
  EXPECT_EQ(js_log->engines_made, 1);
  EXPECT_EQ(js_log->timeouts, (std::vector<int32_t>{250}));  // carried over
  EXPECT_TRUE(engine.Procedures().empty());  // the code was discarded
  ASSERT_TRUE(engine.AddCode("Function B = ARG\r\n"));
  DispatchArgs args = {Variant("x")};
  EXPECT_EQ(engine.Run("b", args), Variant("x"));
  EXPECT_FALSE(engine.Run("missing", args));
  EXPECT_EQ(engine.LastError().source, "JScript runtime error");

  EXPECT_EQ(ErrorNumber([&] { engine.SetLanguage("Perl"); }), 5);
  EXPECT_EQ(engine.Language(), "JSCRIPT");  // unchanged
  EXPECT_EQ(engine.Procedures(), (std::vector<std::string>{"B"}));
}

}  // namespace
}  // namespace rz
