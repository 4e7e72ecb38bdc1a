// Copyright 2026 The Veltmark authors.
//
// Failures of JScript code: what lands in LastError, and that the engine
// stays usable afterwards.

#include <gtest/gtest.h>
#include <pthread.h>

#include <chrono>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "components/jscript/test_objects.h"
#include "jscript/jscript_engine.h"
#include "jscript/script_fault.h"

namespace rz {
namespace {

struct ErrorCase {
  const char* what;
  const char* code;  // added as the only chunk
  const char* run;   // procedure to run, or nullptr: AddCode fails
  int32_t number;
  const char* source;
  const char* description;  // nullptr: not checked
  int32_t line;
  const char* text;
};

constexpr const char* kCompile = "JScript compilation error";
constexpr const char* kRuntime = "JScript runtime error";

TEST(JScriptErrorsTest, ErrorsCarryNumberSourceLineAndText) {
  const ErrorCase cases[] = {
      {"syntax error", "function Hook() {\n  var x = ;\n}\n", nullptr, 1002,
       kCompile, "Syntax error", 2, "  var x = ;"},
      {"unterminated string", "var a = 1;\r\nvar s = \"abc;\r\n", nullptr, 1015,
       kCompile, "Unterminated string constant", 2, "var s = \"abc;"},
      {"unterminated comment", "var a = 1; /* never\nclosed", nullptr, 1016,
       kCompile, "Unterminated comment", 0, nullptr},
      {"undefined identifier",
       "function Hook() {\n  var a = 1;\n"
       "  return missing + a;\n}\n",
       "Hook", 5009, kRuntime, "'missing' is undefined", 3,
       "  return missing + a;"},
      {"undefined function", "function Hook() {\n  nothere(1);\n}\n", "Hook",
       5009, kRuntime, "'nothere' is undefined", 2, "  nothere(1);"},
      {"not a function", "function Hook() {\n  var o = {};\n  o.f();\n}\n",
       "Hook", 5002, kRuntime, "Function expected", 3, "  o.f();"},
      {"property of null",
       "function Hook() {\n  var o = null;\n"
       "  return o.x;\n}\n",
       "Hook", 5007, kRuntime, "Object expected", 3, "  return o.x;"},
      {"named object error not caught",
       "function Hook() {\n  RZselect.LoadView('Gone');\n}\n", "Hook",
       Error::kViewNotFound, kRuntime, "Error - View 'Gone' not found!", 2,
       "  RZselect.LoadView('Gone');"},
      {"unknown member", "function Hook() {\n\n  return RZselect.Nope;\n}\n",
       "Hook", 438, kRuntime, nullptr, 3, "  return RZselect.Nope;"},
      {"subscript out of range through the default member",
       "function Hook() {\n  return RZselect.Where(9).Value;\n}\n", "Hook", 9,
       kRuntime, nullptr, 2, "  return RZselect.Where(9).Value;"},
      {"wrong argument count", "function Hook() {\n  RZselect.Twice();\n}\n",
       "Hook", 450, kRuntime, nullptr, 2, "  RZselect.Twice();"},
      {"thrown Error", "function Hook() {\n  throw new Error('bad');\n}\n",
       "Hook", 5022, kRuntime, "bad", 2, "  throw new Error('bad');"},
      {"thrown text", "function Hook() {\n  throw 'boom';\n}\n", "Hook", 5022,
       kRuntime, "boom", 0, ""},
      {"number set by the script",
       "function Hook() {\n  var e = new Error('mine');\n  e.number = 1234;\n"
       "  throw e;\n}\n",
       "Hook", 1234, kRuntime, "mine", 2, "  var e = new Error('mine');"},
      {"deep recursion",
       "function f(n) {\n  return f(n + 1) + 1;\n}\n"
       "function Hook() { return f(0); }\n",
       "Hook", 28, kRuntime, "Out of stack space", 2, "  return f(n + 1) + 1;"},
      {"top-level statement fails", "var a = 1;\nundefinedFn();\n", nullptr,
       5009, kRuntime, "'undefinedFn' is undefined", 2, "undefinedFn();"},
      {"no such procedure", "function Hook() {}\n", "Other", 5009, kRuntime,
       "'Other' is undefined", 0, ""},
  };
  for (const ErrorCase& c : cases) {
    JScriptEngine engine(nullptr);
    engine.AddObject("RZselect", std::make_shared<TestSelect>(), false);
    const bool added = engine.AddCode(c.code);
    if (c.run == nullptr) {
      EXPECT_FALSE(added) << c.what;
    } else {
      ASSERT_TRUE(added) << c.what << ": " << engine.LastError().description;
      DispatchArgs none;
      EXPECT_FALSE(engine.Run(c.run, none).has_value()) << c.what;
    }
    const ScriptError& error = engine.LastError();
    EXPECT_EQ(error.number, c.number) << c.what << ": " << error.description;
    EXPECT_EQ(error.source, c.source) << c.what;
    if (c.description != nullptr) {
      EXPECT_EQ(error.description, c.description) << c.what;
    }
    if (c.text != nullptr) {
      EXPECT_EQ(error.line, c.line) << c.what;
      EXPECT_EQ(error.text, c.text) << c.what;
    }
  }
}

TEST(JScriptErrorsTest, LinesCountWithinTheChunkThatFailed) {
  JScriptEngine engine(nullptr);
  ASSERT_TRUE(engine.AddCode("var a = 1;\nvar b = 2;\nvar c = 3;\n"));
  ASSERT_TRUE(
      engine.AddCode("function Hook() {\n  return 1;\n}\n"
                     "function Bad() {\n  return nope;\n}\n"));
  DispatchArgs none;
  EXPECT_FALSE(engine.Run("bad", none));
  EXPECT_EQ(engine.LastError().line, 5);
  EXPECT_EQ(engine.LastError().text, "  return nope;");
  // The earlier code stays, and the engine goes on.
  EXPECT_EQ(engine.Run("Hook", none), Variant(1));
  // A failed chunk leaves the code before it.
  EXPECT_FALSE(engine.AddCode("function ("));
  EXPECT_EQ(engine.LastError().source, kCompile);
  EXPECT_EQ(engine.LastError().line, 1);
  EXPECT_EQ(engine.Run("Hook", none), Variant(1));
}

TEST(JScriptErrorsTest, ScriptCanCatchItsOwnErrors) {
  JScriptEngine engine(nullptr);
  ASSERT_TRUE(engine.AddCode(
      "function Hook() { try { missing(); } catch (e) { return e.name; } }"));
  DispatchArgs none;
  EXPECT_EQ(engine.Run("Hook", none), Variant("ReferenceError"));
  EXPECT_EQ(engine.LastError().number, 0);
}

TEST(JScriptErrorsTest, TimeLimitStopsALoopTheScriptTriesToCatch) {
  JScriptEngine engine(nullptr);
  engine.SetTimeout(150);
  ASSERT_TRUE(
      engine.AddCode("function Spin() {\n"
                     "  try { for (;;) {} } catch (e) {}\n"
                     "  for (;;) {}\n"
                     "}\n"
                     "function Quick() { return 'still here'; }\n"));
  DispatchArgs none;
  const auto start = std::chrono::steady_clock::now();
  EXPECT_FALSE(engine.Run("Spin", none));
  const auto elapsed = std::chrono::steady_clock::now() - start;
  EXPECT_LT(elapsed, std::chrono::seconds(3));
  EXPECT_GE(elapsed, std::chrono::milliseconds(150));
  EXPECT_EQ(engine.LastError().number, kTimeoutErrorNumber);
  EXPECT_EQ(engine.LastError().description, "Script timed out");
  EXPECT_EQ(engine.LastError().source, kRuntime);
  EXPECT_EQ(engine.LastError().line, 2);
  // Each run gets the whole limit again.
  EXPECT_EQ(engine.Run("Quick", none), Variant("still here"));
}

TEST(JScriptErrorsTest, TopLevelCodeIsTimedToo) {
  JScriptEngine engine(nullptr);
  engine.SetTimeout(50);
  EXPECT_FALSE(
      engine.AddCode("var i = 0;\nvar j = 0;\nfor (;;) {\n  i++;\n}\n"));
  EXPECT_EQ(engine.LastError().number, kTimeoutErrorNumber);
  // Stopped somewhere inside the loop.
  EXPECT_GE(engine.LastError().line, 3);
  EXPECT_LE(engine.LastError().line, 5);
}

TEST(JScriptErrorsTest, NoTimeLimitByDefault) {
  JScriptEngine engine(nullptr);
  ASSERT_TRUE(engine.AddCode(
      "function Busy() { var s = 0; for (var i = 0; i < 3000000; i++) s += i; "
      "return s; }"));
  engine.SetTimeout(-1);
  DispatchArgs none;
  EXPECT_EQ(engine.Run("Busy", none), Variant(4499998500000.0));
}

TEST(JScriptErrorsTest, RecursionThroughNativeCallsIsStoppedToo) {
  // Sort's comparer is called from native code: each level of this
  // recursion takes native stack, unlike a plain script call.
  JScriptEngine engine(nullptr);
  engine.AddObject("RZselect", std::make_shared<TestSelect>(), false);
  ASSERT_TRUE(engine.AddCode(
      "function Deep(n) { return RZselect.Echo([n]) && Deep(n + 1); }\n"
      "function Sorting(n) { return [3, 1, 2].sort(function (a, b) { "
      "return Sorting(n + 1); }); }\n"));
  DispatchArgs none;
  EXPECT_FALSE(engine.Run("Deep", none));
  EXPECT_EQ(engine.LastError().number, 28);
  EXPECT_FALSE(engine.Run("Sorting", none));
  EXPECT_EQ(engine.LastError().number, 28);
  ASSERT_TRUE(engine.AddCode("function Fine() { return 2; }"));
  EXPECT_EQ(engine.Run("Fine", none), Variant(2));
}

// Runs `body` on a thread with a stack of `stack_bytes`.
void OnSmallStack(size_t stack_bytes, std::function<void()> body) {
  pthread_attr_t attributes;
  ASSERT_EQ(pthread_attr_init(&attributes), 0);
  ASSERT_EQ(pthread_attr_setstacksize(&attributes, stack_bytes), 0);
  pthread_t thread;
  auto run = [](void* arg) -> void* {
    (*static_cast<std::function<void()>*>(arg))();
    return nullptr;
  };
  ASSERT_EQ(pthread_create(&thread, &attributes, run, &body), 0);
  pthread_join(thread, nullptr);
  pthread_attr_destroy(&attributes);
}

struct HostileCase {
  const char* what;
  std::string code;  // defines Hook
};

std::vector<HostileCase> HostileCases() {
  return {
      {"getter recursion",
       "var o = {}; Object.defineProperty(o, 'x', {get: function () { "
       "return o.x + 1; }});\nfunction Hook() { return o.x; }"},
      {"comparer recursion",
       "function Hook() { return [2, 1].sort(function () { return Hook(); "
       "}); }"},
      {"deeply nested JSON",
       "function Hook() { return JSON.parse(new Array(100001).join('[')); }"},
      {"deeply nested expression", "function Hook() { return " +
                                       std::string(3000, '(') + "1" +
                                       std::string(3000, ')') + "; }"},
      {"regular expression backtracking",
       "function Hook() { return /^(a|b)*$/.test(new Array(200001).join('a')); "
       "}"},
      {"plain recursion", "function Hook() { return 1 + Hook(); }"},
  };
}

// Each of these ends in "Out of stack space" and the engine goes on; a
// stack overflow would kill the test binary instead.
void RunHostileCases() {
  for (const HostileCase& c : HostileCases()) {
    JScriptEngine engine(nullptr);
    engine.SetTimeout(10000);  // a hang fails the case, not the suite
    DispatchArgs none;
    if (engine.AddCode(c.code)) {
      EXPECT_FALSE(engine.Run("Hook", none).has_value()) << c.what;
    }
    EXPECT_EQ(engine.LastError().number, kOutOfStackNumber)
        << c.what << ": " << engine.LastError().description;
    EXPECT_TRUE(engine.AddCode("function Fine() { return 1; }")) << c.what;
    EXPECT_EQ(engine.Run("Fine", none), Variant(1)) << c.what;
  }
}

TEST(JScriptErrorsTest, StackHungryScriptsCannotCrashTheHost) {
  RunHostileCases();
}

TEST(JScriptErrorsTest, StackHungryScriptsCannotCrashASmallStackThread) {
  OnSmallStack(512 * 1024, RunHostileCases);
}

}  // namespace
}  // namespace rz
