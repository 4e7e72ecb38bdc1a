// Copyright 2026 The Veltmark authors.

#include "jscript/jscript_engine.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include "components/jscript/test_objects.h"
#include "jscript/script_fault.h"
#include "platform/headless_toolkit.h"
#include "support/error_number.h"

namespace rz {
namespace {

// An engine with a TestSelect added as "RZselect".
class JScriptEngineTest : public ::testing::Test {
 protected:
  JScriptEngineTest() : engine_(&toolkit_) {
    engine_.AddObject("RZselect", select_, false);
  }

  // Adds `code`, runs `procedure` without arguments; fails the test on any
  // script error.
  Variant RunHook(const std::string& code, const std::string& procedure) {
    if (!engine_.AddCode(code)) {
      ADD_FAILURE() << "AddCode: " << engine_.LastError().description
                    << " line " << engine_.LastError().line;
      return Variant();
    }
    DispatchArgs none;
    std::optional<Variant> result = engine_.Run(procedure, none);
    if (!result) {
      ADD_FAILURE() << "Run: " << engine_.LastError().number << " "
                    << engine_.LastError().description << " line "
                    << engine_.LastError().line;
      return Variant();
    }
    return *result;
  }

  HeadlessToolkit toolkit_;
  std::shared_ptr<TestSelect> select_ = std::make_shared<TestSelect>();
  JScriptEngine engine_;
};

struct HookCase {
  const char* what;
  const char* body;  // the body of function Hook()
  Variant expected;
};

// The hooks a user writes, in the shapes the other script language's tests
// use too: text, numbers, loops, the named object.
TEST_F(JScriptEngineTest, HooksGiveTheirAnswers) {
  const HookCase cases[] = {
      {"string building",
       "var s = ''; for (var i = 1; i <= 3; i++) { s += 'n' + i + ';'; } "
       "return s;",
       Variant("n1;n2;n3;")},
      {"whole arithmetic is a Long", "return 7 * 6 / 2 - 1;", Variant(20)},
      {"fractions are Doubles", "return 1 / 4;", Variant(0.25)},
      {"beyond 32 bits is a Double", "return 4294967296;",
       Variant(4294967296.0)},
      {"while and do loops",
       "var n = 0, k = 0; while (n < 10) n += 3; do { k++; } while (k < 5); "
       "return n * 100 + k;",
       Variant(1205)},
      {"switch",
       "switch ('b') { case 'a': return 1; case 'b': return 2; } "
       "return 3;",
       Variant(2)},
      {"boolean", "return 3 > 2;", Variant(true)},
      {"nothing returned is Empty", "var x = 1;", Variant()},
      {"null", "return null;", Variant::Null()},
      {"text functions",
       "return 'Line4'.toUpperCase().substr(0, 4) + "
       "'abc'.indexOf('c');",
       Variant("LINE2")},
      {"property read", "return RZselect.CurrentViewName + '!';",
       Variant("Daily!")},
      {"member names ignore case", "return RZselect.currentviewname;",
       Variant("Daily")},
      {"property write",
       "RZselect.CurrentViewName = 'Weekly'; return RZselect.CurrentViewName;",
       Variant("Weekly")},
      {"method with arguments", "return RZselect.Twice(21);", Variant(42)},
      {"collection through its default member",
       "return RZselect.Where(2).Value;", Variant("second")},
      {"collection Item and Count",
       "return RZselect.Where.Item(3).Value + RZselect.Where.Count;",
       Variant("third3")},
      {"default member of an item converts to text",
       "return 'v=' + RZselect.Where(1);", Variant("v=first")},
      {"Item/Count loop",
       "var w = RZselect.Where, s = ''; "
       "for (var i = 1; i <= w.Count; i++) s += w(i).Value.charAt(0); "
       "return s;",
       Variant("fst")},
      {"Enumerator loop",
       "var s = ''; for (var e = new Enumerator(RZselect.Where); !e.atEnd(); "
       "e.moveNext()) s += e.item().Value + ','; return s;",
       Variant("first,second,third,")},
      {"a method without arguments runs once when called",
       "RZselect.Bump(); return RZselect.Bumps;", Variant(1)},
      {"a method without arguments read as a value runs",
       "var n = RZselect.Bump; return n + RZselect.Bumps;", Variant(2)},
      {"a getter of another object reads a member while being called",
       "var o = {}; Object.defineProperty(o, 'f', {get: function () { "
       "var n = RZselect.Bumps; return function () { return n; }; }}); "
       "return o.f();",
       Variant(0)},
      {"a member function kept in a variable",
       "var twice = RZselect.Twice; return twice(5) + twice(1);", Variant(12)},
      {"an object passed back is the same object",
       "return RZselect.IsWhere(RZselect.Where);", Variant(true)},
      {"dates are day numbers", "return RZselect.Today + 1;", Variant(45001.5)},
      {"a JScript Date reaches a member as a Date",
       "return RZselect.Echo(new Date(2023, 0, 2, 12, 0, 0));",
       Variant(44928.5)},
      {"null and undefined survive a member",
       "return (RZselect.Echo(null) === null) && "
       "(RZselect.Echo(undefined) === undefined);",
       Variant(true)},
      {"arrays cross both ways",
       "var a = RZselect.Echo([1, 'a', [2]]); "
       "return a.length + a[1] + a[2][0];",
       Variant("3a2")},
      {"Nothing is null", "return RZselect.Nothing === null;", Variant(true)},
      {"'in' asks the object",
       "return ('Count' in RZselect.Where) + ',' + "
       "('Nope' in RZselect.Where);",
       Variant("true,false")},
      {"for-in lists the member names",
       "var s = ''; for (var k in RZselect.Where) s += k + ' '; return s;",
       Variant("Count Item ")},
      {"a failing member can be caught",
       "try { RZselect.LoadView('Gone'); } catch (e) { "
       "return (e.number === -2147221503) + ':' + e.description; }",
       Variant("true:Error - View 'Gone' not found!")},
      {"the interpreter's own errors carry JScript numbers",
       "try { missing(); } catch (e) { return e.number + ' ' + "
       "e.description; }",
       Variant("5009 'missing' is undefined")},
      {"an unknown member can be caught with its number",
       "try { return RZselect.NoSuchThing; } catch (e) { return e.number; }",
       Variant(438)},
  };
  for (const HookCase& c : cases) {
    JScriptEngine engine(&toolkit_);
    auto select = std::make_shared<TestSelect>();
    engine.AddObject("RZselect", select, false);
    const std::string code =
        std::string("function Hook() {\n") + c.body + "\n}\n";
    ASSERT_TRUE(engine.AddCode(code))
        << c.what << ": " << engine.LastError().description;
    DispatchArgs none;
    const std::optional<Variant> result = engine.Run("Hook", none);
    ASSERT_TRUE(result.has_value())
        << c.what << ": " << engine.LastError().number << " "
        << engine.LastError().description;
    EXPECT_EQ(*result, c.expected)
        << c.what << ": got " << result->TypeName() << " "
        << (result->IsArray() ? "" : result->ToString());
  }
}

TEST_F(JScriptEngineTest, PropertyWritesReachTheObject) {
  RunHook(
      "function Hook() { RZselect.CurrentViewName = 42; "
      "RZselect.Where(3).Value = 'x'; }",
      "Hook");
  EXPECT_EQ(select_->view_name, "42");
  EXPECT_EQ(select_->where_->items[2]->Get("Value"), Variant("x"));
}

TEST_F(JScriptEngineTest, DatesReachMembersAsDates) {
  RunHook("function Hook() { RZselect.Echo(new Date(2024, 1, 29, 6, 0, 0)); }",
          "Hook");
  EXPECT_EQ(select_->last_echo, Variant::Date(45351.25));
  RunHook("function Hook2() { RZselect.Echo(new Date(NaN)); }", "Hook2");
  EXPECT_EQ(select_->last_echo, Variant::Null());
}

TEST_F(JScriptEngineTest, RunFindsProceduresWithoutRegardToCaseAndPassesArgs) {
  ASSERT_TRUE(
      engine_.AddCode("function Add(a, b) { return a + b; }\n"
                      "function add2(a) { a = 99; return a; }\n"));
  DispatchArgs args = {Variant(2), Variant(3.5)};
  EXPECT_EQ(engine_.Run("ADD", args), Variant(5.5));
  EXPECT_EQ(engine_.Run("add", args), Variant(5.5));
  // Arguments are passed by value: nothing is written back.
  DispatchArgs one = {Variant("keep")};
  EXPECT_EQ(engine_.Run("ADD2", one), Variant(99));
  EXPECT_EQ(one[0], Variant("keep"));
}

TEST_F(JScriptEngineTest, RunPrefersTheExactNameWhenCasesDiffer) {
  ASSERT_TRUE(
      engine_.AddCode("function hook() { return 'lower'; }\n"
                      "function HOOK() { return 'upper'; }\n"));
  DispatchArgs none;
  EXPECT_EQ(engine_.Run("HOOK", none), Variant("upper"));
  EXPECT_EQ(engine_.Run("hook", none), Variant("lower"));
  EXPECT_EQ(engine_.Run("Hook", none), Variant("lower"));  // first defined
}

TEST_F(JScriptEngineTest, ProceduresAreListedInDefinitionOrder) {
  ASSERT_TRUE(
      engine_.AddCode("function zeta() {}\n"
                      "var lateExpr = function () {};\n"
                      "var notAFunction = 3;\n"
                      "function alpha() {}\n"
                      "function mid() {}\n"));
  EXPECT_EQ(engine_.Procedures(),
            (std::vector<std::string>{"zeta", "alpha", "mid", "lateExpr"}));
  ASSERT_TRUE(engine_.AddCode("function extra() {}\nfunction zeta() {}\n"));
  EXPECT_EQ(
      engine_.Procedures(),
      (std::vector<std::string>{"zeta", "alpha", "mid", "lateExpr", "extra"}));
}

TEST_F(JScriptEngineTest, ProceduresLeaveOutHostNamesAndRunsNoGetter) {
  ASSERT_TRUE(engine_.AddCode(
      "Object.defineProperty(this, 'trap', {get: function () { "
      "RZselect.Bump(); return function () {}; }, enumerable: true});\n"
      "function only() {}\n"));
  EXPECT_EQ(engine_.Procedures(), std::vector<std::string>{"only"});
  EXPECT_EQ(select_->bumps, 0);
}

TEST_F(JScriptEngineTest, SpeaksOnlyJScript) {
  EXPECT_EQ(engine_.Language(), "JSCRIPT");
  EXPECT_EQ(ErrorNumber([&] { engine_.SetLanguage("jscript"); }), 0);
  EXPECT_EQ(ErrorNumber([&] { engine_.SetLanguage("VBSCRIPT"); }), 5);
  EXPECT_EQ(ErrorNumber([&] { engine_.SetLanguage(""); }), 5);
  EXPECT_EQ(engine_.Language(), "JSCRIPT");
  // Accepting the same language keeps what was added.
  EXPECT_EQ(
      RunHook("function Hook() { return RZselect.CurrentViewName; }", "Hook"),
      Variant("Daily"));
}

TEST_F(JScriptEngineTest, AddObjectRejectsNullEmptyAndRepeatedNames) {
  EXPECT_EQ(ErrorNumber([&] { engine_.AddObject("RZrep", nullptr, false); }),
            91);
  EXPECT_EQ(ErrorNumber([&] { engine_.AddObject("", select_, false); }), 5);
  EXPECT_EQ(ErrorNumber([&] { engine_.AddObject("rzSELECT", select_, false); }),
            5);
  EXPECT_EQ(ErrorNumber([&] { engine_.AddObject("Other", select_, false); }),
            0);
}

TEST_F(JScriptEngineTest, AddMembersMakesMembersGlobal) {
  JScriptEngine engine(nullptr);
  auto select = std::make_shared<TestSelect>();
  engine.AddObject("Sel", select, true);
  ASSERT_TRUE(engine.AddCode(
      "function Hook() { CurrentViewName = CurrentViewName + '2'; "
      "return Twice(4) + Where(1).Value; }\n"));
  DispatchArgs none;
  EXPECT_EQ(engine.Run("Hook", none), Variant("8first"));
  EXPECT_EQ(select->view_name, "Daily2");
  EXPECT_EQ(engine.Procedures(), std::vector<std::string>{"Hook"});
}

TEST_F(JScriptEngineTest, ResetDiscardsCodeObjectsAndTheErrorButKeepsTimeout) {
  engine_.SetTimeout(100);
  ASSERT_TRUE(engine_.AddCode("function Hook() { return 1; }"));
  EXPECT_FALSE(engine_.AddCode("syntax error here"));
  engine_.Reset();
  EXPECT_TRUE(engine_.Procedures().empty());
  EXPECT_EQ(engine_.LastError(), ScriptError());
  EXPECT_FALSE(engine_.AddCode("RZselect.Bump();"));  // no object any more
  EXPECT_EQ(engine_.LastError().number, 5009);
  engine_.AddObject("RZselect", select_, false);
  EXPECT_FALSE(engine_.AddCode("for (;;) {}"));
  EXPECT_EQ(engine_.LastError().number, kTimeoutErrorNumber);
}

struct MsgBoxCase {
  const char* call;
  MessageAnswer answer;
  int32_t expected;
  MessageButtons buttons;
  MessageIcon icon;
  const char* title;
};

TEST_F(JScriptEngineTest, MsgBoxAsksTheToolkit) {
  const MsgBoxCase cases[] = {
      {"MsgBox('hello')", MessageAnswer::kOk, 1, MessageButtons::kOk,
       MessageIcon::kNone, "JScript"},
      {"MsgBox('sure?', 4 + 32, 'Ask')", MessageAnswer::kNo, 7,
       MessageButtons::kYesNo, MessageIcon::kQuestion, "Ask"},
      {"MsgBox('go?', 1 + 48, 'Go')", MessageAnswer::kCancel, 2,
       MessageButtons::kOkCancel, MessageIcon::kExclamation, "Go"},
      {"MsgBox('yes?', 3 + 64)", MessageAnswer::kYes, 6, MessageButtons::kYesNo,
       MessageIcon::kInformation, "JScript"},
      {"MsgBox('bad', 16)", MessageAnswer::kOk, 1, MessageButtons::kOk,
       MessageIcon::kCritical, "JScript"},
  };
  for (const MsgBoxCase& c : cases) {
    HeadlessToolkit toolkit;
    toolkit.QueueMessageAnswer(c.answer);
    JScriptEngine engine(&toolkit);
    ASSERT_TRUE(engine.AddCode(std::string("function Hook() { return ") +
                               c.call + "; }"));
    DispatchArgs none;
    EXPECT_EQ(engine.Run("Hook", none), Variant(c.expected)) << c.call;
    ASSERT_EQ(toolkit.Log().size(), 1u) << c.call;
    EXPECT_EQ(toolkit.Log()[0].buttons, c.buttons) << c.call;
    EXPECT_EQ(toolkit.Log()[0].icon, c.icon) << c.call;
    EXPECT_EQ(toolkit.Log()[0].title, c.title) << c.call;
  }
}

TEST(JScriptEngineNoToolkitTest, MsgBoxAnswersOk) {
  JScriptEngine engine(nullptr);
  ASSERT_TRUE(engine.AddCode("function Hook() { return MsgBox('x', 4); }"));
  DispatchArgs none;
  EXPECT_EQ(engine.Run("Hook", none), Variant(1));
}

TEST(JScriptEngineLifetimeTest, ObjectsAreReleasedWithTheEngine) {
  auto select = std::make_shared<TestSelect>();
  std::weak_ptr<TestConditions> where = select->where_;
  {
    JScriptEngine engine(nullptr);
    engine.AddObject("RZselect", select, false);
    ASSERT_TRUE(engine.AddCode(
        "var kept = RZselect.Where; var items = [];\n"
        "for (var i = 0; i < 1000; i++) items.push(RZselect.Where(1));\n"));
    EXPECT_GT(select.use_count(), 1);
  }
  EXPECT_EQ(select.use_count(), 1);
  select->where_.reset();
  EXPECT_TRUE(where.expired());
}

TEST(JScriptEngineLifetimeTest, ResetReleasesObjects) {
  auto select = std::make_shared<TestSelect>();
  JScriptEngine engine(nullptr);
  engine.AddObject("RZselect", select, false);
  ASSERT_TRUE(engine.AddCode("var kept = RZselect.Where;"));
  engine.Reset();
  EXPECT_EQ(select.use_count(), 1);
}

}  // namespace
}  // namespace rz
