// Copyright 2026 The Veltmark authors.
//
// JScript code that tries to run for ever or take the process down: tail
// recursion, a heap grown without end, arrays nested too deep to cross to
// the host, and memory running out on the engine's own side. Each ends as
// an error record with the engine still usable.

#include <gtest/gtest.h>

#include <chrono>
#include <iterator>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "components/jscript/test_objects.h"
#include "core/dispatch.h"
#include "jscript/heap_hooks.h"
#include "jscript/jscript_engine.h"
#include "jscript/script_fault.h"
#include "support/allocation_limit.h"

namespace rz {
namespace {

struct FailingCase {
  const char* what;
  const char* code;  // defines Hook
  int32_t number;
};

// Runs Hook of each case with a time limit that a loop without end would
// reach (and so fail the case), then checks the engine still runs code.
void ExpectEachFails(const FailingCase* begin, const FailingCase* end,
                     int32_t timeout_ms) {
  for (const FailingCase* c = begin; c != end; ++c) {
    JScriptEngine engine(nullptr);
    engine.SetTimeout(timeout_ms);
    ASSERT_TRUE(engine.AddCode(c->code)) << c->what;
    DispatchArgs none;
    EXPECT_FALSE(engine.Run("Hook", none).has_value()) << c->what;
    EXPECT_EQ(engine.LastError().number, c->number)
        << c->what << ": " << engine.LastError().description;
    ASSERT_TRUE(engine.AddCode("function Fine() { return 'fine'; }"));
    EXPECT_EQ(engine.Run("Fine", none), Variant("fine")) << c->what;
  }
}

TEST(JScriptLimits, TailCallsCountTowardTheCallDepth) {
  const FailingCase cases[] = {
      {"tail recursion",
       "function f(n) { return f(n + 1); }\n"
       "function Hook() { return f(0); }",
       kOutOfStackNumber},
      {"mutual tail recursion",
       "function a(n) { return b(n + 1); }\n"
       "function b(n) { return a(n + 1); }\n"
       "function Hook() { return a(0); }",
       kOutOfStackNumber},
      {"tail call in a conditional",
       "function f(n) { return n < 0 ? 0 : f(n + 1); }\n"
       "function Hook() { return f(0); }",
       kOutOfStackNumber},
      {"tail call through call()",
       "function f(n) { return f.call(null, n + 1); }\n"
       "function Hook() { return f(0); }",
       kOutOfStackNumber},
  };
  ExpectEachFails(std::begin(cases), std::end(cases), 20000);
}

TEST(JScriptLimits, TailRecursionWithinTheLimitStillWorks) {
  JScriptEngine engine(nullptr);
  ASSERT_TRUE(engine.AddCode(
      "function count(n, sum) { return n == 0 ? sum : count(n - 1, sum + n); "
      "}\nfunction Hook() { return count(5000, 0); }"));
  DispatchArgs none;
  EXPECT_EQ(engine.Run("Hook", none), Variant(int32_t{12502500}));
}

TEST(JScriptLimits, AHeapPastItsLimitIsOutOfMemory) {
  const FailingCase cases[] = {
      {"text doubled without end",
       "function Hook() { var s = 'x'; for (;;) s = s + s; }", 7},
      {"distinct 1 MiB texts kept",
       "var kept = [];\n"
       "function Hook() {\n"
       "  var unit = new Array(1 << 20).join('x');\n"
       "  for (var i = 0;; i++) kept.push(unit + i);\n"
       "}",
       7},
      {"array grown without end",
       "function Hook() { var a = []; for (var i = 0;; i++) a[i] = i + 0.5; }",
       7},
      {"the script catches it and grows on",
       "function Hook() { var s = 'x';\n"
       "  try { for (;;) s = s + s; } catch (e) {}\n"
       "  var t = [s]; for (;;) t.push(t[t.length - 1] + 'y'); }",
       7},
  };
  ExpectEachFails(std::begin(cases), std::end(cases), 120000);
}

TEST(JScriptLimits, TheHeapComesBackAfterOutOfMemory) {
  JScriptEngine engine(nullptr);
  ASSERT_TRUE(engine.AddCode(
      "var kept = [];\n"
      "function Fill() { var unit = new Array(1 << 16).join('x');\n"
      "  for (var i = 0;; i++) kept.push(unit + i); }\n"
      "function Drop() { var n = kept.length; kept = []; return n > 100; }\n"
      "function Big() { var s = 'z';\n"
      "  for (var i = 0; i < 26; i++) s = s + s;\n"
      "  return s.length; }\n"));
  DispatchArgs none;
  EXPECT_FALSE(engine.Run("Fill", none).has_value());
  EXPECT_EQ(engine.LastError().number, 7);
  EXPECT_FALSE(engine.Run("Big", none).has_value());  // the heap is full
  EXPECT_EQ(engine.Run("Drop", none), Variant(true));
  EXPECT_EQ(engine.Run("Big", none), Variant(int32_t{64 << 20}));
}

TEST(JScriptLimits, HeapHooksCountEveryByteBackOut) {
  HeapHooks hooks;
  hooks.SetHeapLimit(1000);
  void* a = hooks.Allocate(600);
  ASSERT_NE(a, nullptr);
  EXPECT_GE(hooks.HeapBytes(), 600u);
  EXPECT_EQ(hooks.Allocate(600), nullptr);        // past the limit
  EXPECT_EQ(hooks.Reallocate(a, 2000), nullptr);  // so is growing past it
  EXPECT_GE(hooks.HeapBytes(), 600u);             // the old block stays
  a = hooks.Reallocate(a, 100);
  ASSERT_NE(a, nullptr);
  void* b = hooks.Reallocate(nullptr, 500);
  ASSERT_NE(b, nullptr);
  EXPECT_EQ(hooks.Reallocate(b, 0), nullptr);  // frees
  hooks.Free(a);
  hooks.Free(nullptr);
  EXPECT_EQ(hooks.HeapBytes(), 0u);
}

// Holds one value for scripts: Value reads it, Value = x writes it.
class Holder : public Dispatch {
 public:
  Variant value;

  std::string_view ClassName() const override { return "Holder"; }
  Variant Invoke(std::string_view name, InvokeKind kind,
                 DispatchArgs& args) override {
    return Table().Invoke(*this, name, kind, args);
  }
  std::vector<std::string> MemberNames() const override {
    return Table().Names();
  }

 private:
  static const DispatchTable<Holder>& Table() {
    static const DispatchTable<Holder> table = [] {
      DispatchTable<Holder> t;
      t.Property(
          "Value", [](Holder& self, DispatchArgs&) { return self.value; },
          [](Holder& self, const Variant& value, DispatchArgs&) {
            self.value = value;
          });
      return t;
    }();
    return table;
  }
};

Variant Nested(int depth) {
  Variant value(int32_t{1});
  for (int i = 0; i < depth; ++i) value = Variant(VariantArray{value});
  return value;
}

TEST(JScriptLimits, ArraysTooDeepToCrossAreOutOfStackSpace) {
  auto holder = std::make_shared<Holder>();
  JScriptEngine engine(nullptr);
  engine.AddObject("Holder", holder, false);
  ASSERT_TRUE(engine.AddCode(
      "function Read() { return Holder.Value.length; }\n"
      "function Caught() { try { return Holder.Value; } catch (e) { return "
      "e.number; } }\n"
      "function Deep(n) { var a = 1; for (var i = 0; i < n; i++) a = [a]; "
      "return a; }\n"
      "function Give() { Holder.Value = Deep(200000); }\n"
      "function Answer() { return Deep(200000); }\n"));
  DispatchArgs none;
  struct Case {
    int depth;
    const char* run;
    std::optional<Variant> expected;  // nullopt: fails with 28
  } cases[] = {
      {63, "Read", Variant(int32_t{1})},
      {200000, "Read", std::nullopt},
      {200000, "Caught", Variant(int32_t{28})},
      {0, "Give", std::nullopt},
      {0, "Answer", std::nullopt},
  };
  for (const Case& c : cases) {
    holder->value = Nested(c.depth);
    const std::optional<Variant> answer = engine.Run(c.run, none);
    EXPECT_EQ(answer, c.expected) << c.run << " " << c.depth;
    if (!c.expected) {
      EXPECT_EQ(engine.LastError().number, kOutOfStackNumber) << c.run;
    }
  }
}

TEST(JScriptLimits, MemoryRunningOutOnTheHostSideIsAnErrorRecord) {
  JScriptEngine engine(nullptr);
  const std::string code =
      "// " + std::string(size_t{4} << 20, 'x') + "\nfunction F() {}";
  const std::string long_name(size_t{4} << 20, 'y');
  {
    AllocationLimit limit(size_t{1} << 20);
    EXPECT_FALSE(engine.AddCode(code));
    EXPECT_EQ(engine.LastError().number, 7);
    DispatchArgs none;
    EXPECT_FALSE(engine.Run(long_name, none));
    EXPECT_EQ(engine.LastError().number, 7);
  }
  ASSERT_TRUE(engine.AddCode("function Fine() { return 1; }"));
  DispatchArgs none;
  EXPECT_EQ(engine.Run("Fine", none), Variant(int32_t{1}));
}

// Built-ins that loop long without running script code: the time limit
// stops them too (they once ran for hours whatever the limit).
TEST(JScriptLimits, TheTimeLimitReachesIntoLongBuiltIns) {
  const char* hooks[] = {
      "function Hook() { return new Array(4294967295).join('').length; }",
      "function Hook() { var a = []; a.length = 2147483647; "
      "return a.indexOf(1); }",
      "function Hook() { try { return new Array(4294967295).join(''); } "
      "catch (e) {} return 'caught'; }",
      "function Hook() { return /^(a+)+$/.test(new Array(40).join('a') + "
      "'b'); }",
  };
  for (const char* hook : hooks) {
    JScriptEngine engine(nullptr);
    engine.SetTimeout(200);
    ASSERT_TRUE(engine.AddCode(hook)) << hook;
    DispatchArgs none;
    const auto start = std::chrono::steady_clock::now();
    EXPECT_FALSE(engine.Run("Hook", none).has_value()) << hook;
    EXPECT_LT(std::chrono::steady_clock::now() - start,
              std::chrono::seconds(20))
        << hook;
    EXPECT_EQ(engine.LastError().number, kTimeoutErrorNumber) << hook;
  }
}

TEST(JScriptLimits, ATimedOutRunLeavesTheGlobalsAndTheNextRun) {
  JScriptEngine engine(nullptr);
  engine.SetTimeout(50);
  ASSERT_TRUE(engine.AddCode(
      "var count = 41;\n"
      "function Spin() { for (;;) { try { count += 0; } catch (e) {} } }\n"
      "function Next() { return ++count; }\n"));
  DispatchArgs none;
  EXPECT_FALSE(engine.Run("Spin", none).has_value());
  EXPECT_EQ(engine.LastError().number, kTimeoutErrorNumber);
  EXPECT_EQ(engine.LastError().source, kJScriptRuntimeError);
  EXPECT_EQ(engine.LastError().line, 2);
  EXPECT_EQ(engine.Run("Next", none), Variant(int32_t{42}));
}

}  // namespace
}  // namespace rz
