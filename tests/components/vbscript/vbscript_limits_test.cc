// Copyright 2026 The Veltmark authors.
//
// Scripts that try to take the process down: arrays nested hundreds of
// thousands deep, arrays with too many dimensions, runs nested through a
// named object, texts big enough to make a slow built-in hang, and memory
// running out. Each must end as an error record (or a plain result) with
// the engine still usable; a crash kills this test binary instead.

#include <gtest/gtest.h>

#include <chrono>
#include <memory>
#include <string>

#include "core/dispatch.h"
#include "support/allocation_limit.h"
#include "support/error_number.h"
#include "vb_test_support.h"

namespace rz::testing {
namespace {

// The global `deep`: Array(Array(...(Empty)...)) 200000 levels deep.
constexpr const char* kDeepArray =
    "Dim deep\n"
    "For i = 1 To 200000\n"
    "  deep = Array(deep)\n"
    "Next\n";

struct DeepCase {
  const char* what;
  const char* body;  // of Function Probe(); Probe = the expected value
  Variant expected;  // compared when `error` is 0
  int32_t error;
};

TEST(VBScriptLimits, DeeplyNestedArraysNeitherCrashNorRecurse) {
  const DeepCase cases[] = {
      {"freed by assignment",
       "a = Empty\nFor i = 1 To 200000\na = Array(a)\nNext\na = Empty\n"
       "Probe = IsEmpty(a)",
       Variant(true), 0},
      {"freed at the end of the procedure",
       "For i = 1 To 200000\na = Array(a)\nNext\nProbe = UBound(a)",
       Variant(int32_t{0}), 0},
      {"freed by Erase",
       "For i = 1 To 200000\na = Array(a)\nNext\nErase a\nProbe = UBound(a)",
       Variant(int32_t{-1}), 0},
      {"IsArray", "Probe = IsArray(deep)", Variant(true), 0},
      {"VarType", "Probe = VarType(deep)", Variant(int16_t{8204}), 0},
      {"TypeName", "Probe = TypeName(deep)", Variant("Variant()"), 0},
      {"three levels down", "Probe = IsArray(deep(0)(0)(0))", Variant(true), 0},
      {"copy, then write",
       "b = deep\nb(0) = Array(5)\n"
       "Probe = IsArray(deep(0)(0)) And b(0)(0) = 5",
       Variant(true), 0},
      {"ReDim Preserve", "b = deep\nReDim Preserve b(3)\nProbe = UBound(b)",
       Variant(int32_t{3}), 0},
      {"For Each", "For Each x In deep\nProbe = IsArray(x)\nNext",
       Variant(true), 0},
      {"through a named object and back",
       "Bag.Add deep\nProbe = IsArray(Bag(3))", Variant(true), 0},
      {"CStr", "Probe = CStr(deep)", Variant(), 13},
      {"Join", "Probe = Join(deep)", Variant(), 13},
      {"comparison", "Probe = (deep = deep)", Variant(), 13},
      {"concatenation", "Probe = \"x\" & deep", Variant(), 13},
  };
  VBScriptEngine engine(nullptr);
  auto bag = std::make_shared<Bag>();
  bag->items_ = {Variant(int16_t{10}), Variant("x"), Variant(int16_t{30})};
  engine.AddObject("Bag", bag, false);
  ASSERT_TRUE(engine.AddCode(kDeepArray)) << engine.LastError().description;
  for (const DeepCase& c : cases) {
    ASSERT_TRUE(engine.AddCode("Function Probe()\n" + std::string(c.body) +
                               "\nEnd Function\n"))
        << c.what << ": " << engine.LastError().description;
    DispatchArgs none;
    const std::optional<Variant> value = engine.Run("Probe", none);
    if (c.error == 0) {
      ASSERT_TRUE(value.has_value())
          << c.what << ": " << engine.LastError().description;
      EXPECT_EQ(*value, c.expected) << c.what;
    } else {
      EXPECT_FALSE(value.has_value()) << c.what;
      EXPECT_EQ(engine.LastError().number, c.error) << c.what;
    }
  }
  bag->items_.clear();
}

TEST(VBScriptLimits, ADeepArrayReturnedToTheHostIsFreedByIt) {
  VBScriptEngine engine(nullptr);
  ASSERT_TRUE(engine.AddCode(std::string(kDeepArray) +
                             "Function Main()\nMain = deep\nEnd Function\n"));
  DispatchArgs none;
  std::optional<Variant> answer = engine.Run("Main", none);
  ASSERT_TRUE(answer.has_value());
  // A host shows the answer as text: not possible, and no recursion.
  EXPECT_THROW(answer->ToString(), Error);
  engine.Reset();  // the engine's own reference goes
  answer.reset();  // and the host's last one
}

std::string ArrayWithDimensions(const char* statement, int dimensions) {
  std::string code = "Sub Main()\n" + std::string(statement) + " a(0";
  for (int i = 1; i < dimensions; ++i) code += ",0";
  return code + ")\nEnd Sub\n";
}

TEST(VBScriptLimits, ArraysHaveAtMostSixtyDimensions) {
  struct Case {
    const char* statement;
    int dimensions;
    int32_t error;
  } cases[] = {
      {"ReDim", 60, 0}, {"ReDim", 61, 9}, {"ReDim", 100000, 9},
      {"Dim", 60, 0},   {"Dim", 61, 9},   {"Dim", 100000, 9},
  };
  for (const Case& c : cases) {
    const Outcome outcome =
        RunSnippet(ArrayWithDimensions(c.statement, c.dimensions));
    EXPECT_EQ(outcome.error.number, c.error)
        << c.statement << " " << c.dimensions << ": "
        << outcome.error.description;
  }
}

// Runs the VBScript procedure Main of `code` in a new engine that sees
// this object as "Host"; Host.Again from that script nests one more run.
class Reentry : public Dispatch {
 public:
  std::string code;
  int32_t runs = 0;

  std::string_view ClassName() const override { return "Reentry"; }
  Variant Invoke(std::string_view name, InvokeKind kind,
                 DispatchArgs& args) override {
    return Table().Invoke(*this, name, kind, args);
  }
  std::vector<std::string> MemberNames() const override {
    return Table().Names();
  }

  Variant RunNested() {
    ++runs;
    VBScriptEngine engine(nullptr);
    engine.AddObject("Host", shared_from_this(), false);
    DispatchArgs none;
    std::optional<Variant> answer;
    if (engine.AddCode(code)) answer = engine.Run("Main", none);
    if (!answer) {
      throw Error(engine.LastError().number, engine.LastError().description);
    }
    return *answer;
  }

 private:
  static const DispatchTable<Reentry>& Table() {
    static const DispatchTable<Reentry> table = [] {
      DispatchTable<Reentry> t;
      t.Method("Again",
               [](Reentry& self, DispatchArgs&) { return self.RunNested(); });
      return t;
    }();
    return table;
  }
};

TEST(VBScriptLimits, RunsNestedThroughANamedObjectStopWithOutOfStackSpace) {
  auto host = std::make_shared<Reentry>();
  host->code = "Function Main()\nMain = Host.Again + 1\nEnd Function\n";
  EXPECT_EQ(ErrorNumber([&] { host->RunNested(); }), 28);
  EXPECT_GT(host->runs, 10);
  // The stack is whole again.
  host->code = "Function Main()\nMain = 7\nEnd Function\n";
  EXPECT_EQ(host->RunNested(), Variant(int16_t{7}));
}

// Built-ins over the largest texts finish in time linear in the text; the
// text-compare forms of Replace and Split once folded the whole text at
// every match and took minutes.
TEST(VBScriptLimits, TextBuiltinsStayLinearOnLongTexts) {
  struct Case {
    const char* expression;
    Variant expected;
  } cases[] = {
      {"Len(Replace(String(200000, \"x\"), \"X\", \"ab\", 1, -1, 1))",
       Variant(int32_t{400000})},
      {"UBound(Split(String(200000, \"x\"), \"X\", -1, 1))",
       Variant(int32_t{200000})},
      {"InStr(1, String(200000, \"x\") & \"Y\", \"y\", 1)",
       Variant(int32_t{200001})},
      {"Len(StrReverse(String(1000000, \"x\")))", Variant(int32_t{1000000})},
  };
  for (const Case& c : cases) {
    const auto start = std::chrono::steady_clock::now();
    const Outcome outcome = EvalExpression(c.expression);
    EXPECT_LT(std::chrono::steady_clock::now() - start,
              std::chrono::seconds(10))
        << c.expression;
    ASSERT_TRUE(outcome.value.has_value())
        << c.expression << ": " << outcome.error.description;
    EXPECT_EQ(*outcome.value, c.expected) << c.expression;
  }
  EXPECT_EQ(EvalExpression("StrReverse(\"ab\" & ChrW(233) & ChrW(8364) & "
                           "\"c\")")
                .value,
            Variant("c\xE2\x82\xAC\xC3\xA9"
                    "ba"));
}

TEST(VBScriptLimits, StrReverseNeedsNoMoreThanItsResult) {
  // 10 MB of text; reversing it once asked for a vector of one string per
  // character, 32 times the text.
  AllocationLimit limit(size_t{64} << 20);
  const Outcome outcome =
      EvalExpression("Len(StrReverse(String(10000000, \"x\")))");
  EXPECT_EQ(outcome.value, Variant(int32_t{10000000}))
      << outcome.error.description;
}

TEST(VBScriptLimits, MemoryRunningOutIsAnErrorRecordNotAnException) {
  VBScriptEngine engine(nullptr);
  ASSERT_TRUE(engine.AddCode(
      "Function Main()\nMain = Len(String(1000, \"x\"))\nEnd Function\n"
      "Function Grow()\nGrow = Len(String(3000000, \"x\"))\nEnd Function\n"));
  const std::string long_name(size_t{4} << 20, 'x');
  DispatchArgs none;
  {
    AllocationLimit limit(size_t{1} << 20);
    EXPECT_FALSE(engine.Run(long_name, none).has_value());
    EXPECT_EQ(engine.LastError().number, 7);
    EXPECT_FALSE(engine.Run("Grow", none).has_value());
    EXPECT_EQ(engine.LastError().number, 7);
    EXPECT_EQ(engine.LastError().line, 5);
  }
  EXPECT_EQ(engine.Run("Main", none), Variant(int32_t{1000}));
}

TEST(VBScriptLimits, ATimedOutRunLeavesTheEngineUsable) {
  VBScriptEngine engine(nullptr);
  engine.SetTimeout(50);
  ASSERT_TRUE(engine.AddCode(
      "Dim count\ncount = 41\n"
      "Sub Spin()\nOn Error Resume Next\nDo\ncount = count + 0\nLoop\n"
      "End Sub\n"
      "Function Next1()\ncount = count + 1\nNext1 = count\nEnd Function\n"));
  DispatchArgs none;
  EXPECT_FALSE(engine.Run("Spin", none).has_value());
  EXPECT_EQ(engine.LastError().number, static_cast<int32_t>(0x80004004));
  EXPECT_EQ(engine.LastError().source, "VBScript runtime error");
  EXPECT_GE(engine.LastError().line, 5);
  EXPECT_LE(engine.LastError().line, 7);
  // The globals are kept and the next run gets the whole limit again.
  EXPECT_EQ(engine.Run("Next1", none), Variant(int16_t{42}));
}

// Every text is within its own limit, but together they would hold
// 630 MB: the run fails with error 7 once they pass 256 MiB, and the
// engine runs the next procedure.
TEST(VBScriptLimits, TheTextsAScriptHoldsAreLimitedAsAWhole) {
  VBScriptEngine engine(nullptr);
  ASSERT_TRUE(engine.AddCode(
      "Dim a(20)\n"
      "Function Hoard()\nDim i\nFor i = 0 To 20\n"
      "a(i) = Space(30000000)\nNext\nHoard = \"kept\"\nEnd Function\n"
      "Sub Release()\nErase a\nEnd Sub\n"
      "Function Small()\nSmall = Len(Space(1000))\nEnd Function\n"));
  DispatchArgs none;
  EXPECT_FALSE(engine.Run("Hoard", none).has_value());
  EXPECT_EQ(engine.LastError().number, 7);
  EXPECT_EQ(engine.LastError().line, 5);  // the assignment
  engine.Run("Release", none);
  EXPECT_EQ(engine.Run("Small", none), Variant(int32_t{1000}));
}

// Statements that each take long (a built-in over a 40 MB text, a
// concatenation, a copy) stop near the time limit, not thousands of
// statements later.
TEST(VBScriptLimits, SlowStatementsStopNearTheTimeLimit) {
  const char* const bodies[] = {
      "t = Replace(s, \" \", \"y\")",
      "t = s & \"x\"",
      "t = Mid(s, 2)",
  };
  for (const char* body : bodies) {
    VBScriptEngine engine(nullptr);
    engine.SetTimeout(300);
    ASSERT_TRUE(engine.AddCode(std::string("Sub Slow()\nDim s, t\n"
                                           "s = Space(40000000)\nDo\n") +
                               body + "\nLoop\nEnd Sub\n"));
    DispatchArgs none;
    const auto start = std::chrono::steady_clock::now();
    EXPECT_FALSE(engine.Run("Slow", none).has_value()) << body;
    const double seconds =
        std::chrono::duration<double>(std::chrono::steady_clock::now() - start)
            .count();
    EXPECT_EQ(engine.LastError().number, static_cast<int32_t>(0x80004004))
        << body;
    EXPECT_LT(seconds, 10.0) << body;  // thousands of statements take minutes
  }
}

}  // namespace
}  // namespace rz::testing
