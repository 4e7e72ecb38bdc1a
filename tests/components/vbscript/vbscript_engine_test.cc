// Copyright 2026 The Veltmark authors.
//
// The engine as a host uses it: the error record (number, source,
// description, line, text) of compile and runtime errors, ByRef arguments
// of Run, the procedure list, objects, time limit, and hostile input.

#include <gtest/gtest.h>

#include <string>

#include "platform/headless_toolkit.h"
#include "vb_test_support.h"

namespace rz::testing {
namespace {

constexpr const char* kCompile = "VBScript compilation error";
constexpr const char* kRuntime = "VBScript runtime error";

struct ErrorCase {
  const char* name;
  const char* code;  // defines Main unless it fails to compile
  int32_t number;
  const char* source;
  int32_t line;
};

TEST(VBScriptErrors, NumbersSourcesAndLines) {
  const std::string long_name = "x" + std::string(300, 'y') + " = 1";
  const ErrorCase cases[] = {
      {"syntax error", "Function Main()\nx = (1 + \nEnd Function", 1023,
       kCompile, 2},
      {"expected statement", "Function Main()\nEnd Function\n)", 1024, kCompile,
       3},
      {"expected identifier", "Dim 5", 1010, kCompile, 1},
      {"expected end of statement", "x = 1 2", 1025, kCompile, 1},
      {"expected '=' in Const", "Const a 5", 1011, kCompile, 1},
      {"expected ')'", "x = (1 + 2", 1006, kCompile, 1},
      {"expected Then", "If x\nEnd If", 1017, kCompile, 1},
      {"missing End If", "If x Then\nx = 1\n", 1014, kCompile, 3},
      {"expected Next", "For i = 1 To 2\nx = 1\nLoop", 1020, kCompile, 3},
      {"expected To", "For i = 1 2\nNext", 1013, kCompile, 1},
      {"expected Wend", "While x\nLoop", 1018, kCompile, 2},
      {"expected Loop", "Do\nx = 1\nWend", 1019, kCompile, 3},
      {"expected Sub", "Sub A()\nEnd Function", 1016, kCompile, 2},
      {"expected Function", "Function A()\nEnd Sub", 1015, kCompile, 2},
      {"expected Select", "Select Case 1\nCase 1\nEnd If", 1022, kCompile, 3},
      {"expected Case", "Select Case 1\nx = 1\nEnd Select", 1021, kCompile, 2},
      {"expected In", "For Each x Of y\nNext", 1046, kCompile, 1},
      {"invalid exit", "Sub A()\nExit For\nEnd Sub", 1039, kCompile, 2},
      {"unterminated string", "x = \"abc\ny = 1", 1033, kCompile, 1},
      {"invalid character", "x = 1 ~ 2", 1032, kCompile, 1},
      {"invalid number", "x = 12abc", 1031, kCompile, 1},
      {"bad date literal", "x = #not a date#", 1002, kCompile, 1},
      {"name redefined", "Sub A()\nEnd Sub\nSub a()\nEnd Sub", 1041, kCompile,
       3},
      {"identifier too long", long_name.c_str(), 1030, kCompile, 1},
      {"division by zero", "Function Main()\nx = 1\nMain = x / 0\nEnd Function",
       11, kRuntime, 3},
      {"integer division by zero",
       "Function Main()\nMain = 5 Mod 0\nEnd Function", 11, kRuntime, 2},
      {"type mismatch", "Function Main()\n\nMain = \"a\" * 2\nEnd Function", 13,
       kRuntime, 3},
      {"unknown function", "Function Main()\nMain = Nope(1)\nEnd Function", 13,
       kRuntime, 2},
      {"overflow", "Function Main()\nMain = CInt(40000)\nEnd Function", 6,
       kRuntime, 2},
      {"subscript out of range",
       "Function Main()\nDim a(2)\nMain = a(3)\nEnd Function", 9, kRuntime, 3},
      {"fixed array cannot be redimmed",
       "Function Main()\nDim a(2)\nReDim a(5)\nEnd Function", 10, kRuntime, 3},
      {"object required", "Function Main()\nx = 5\nx.Name = 1\nEnd Function",
       424, kRuntime, 3},
      {"member not supported", "Function Main()\nMain = Bag.Nope\nEnd Function",
       438, kRuntime, 2},
      {"wrong argument count",
       "Sub Two(a, b)\nEnd Sub\nFunction Main()\nTwo 1\nEnd Function", 450,
       kRuntime, 4},
      {"builtin argument count", "Function Main()\nMain = Len()\nEnd Function",
       450, kRuntime, 2},
      {"not a collection",
       "Function Main()\nFor Each x In 5\nNext\nEnd Function", 451, kRuntime,
       2},
      {"variable undefined",
       "Option Explicit\nFunction Main()\nMain = nope\nEnd Function", 500,
       kRuntime, 3},
      {"assignment to undeclared under Option Explicit",
       "Option Explicit\nFunction Main()\nnope = 1\nEnd Function", 500,
       kRuntime, 3},
      {"assignment to a constant",
       "Const k = 1\nFunction Main()\nk = 2\nEnd Function", 501, kRuntime, 3},
      {"with needs an object",
       "Function Main()\nWith 5\n.x = 1\nEnd With\nEnd Function", 424, kRuntime,
       2},
      {"default member without its argument",
       "Function Main()\nx = Bag\nEnd Function", 450, kRuntime, 2},
      {"set needs an object", "Function Main()\nSet x = 5\nEnd Function", 424,
       kRuntime, 2},
      {"Nothing has no members",
       "Function Main()\nSet o = Nothing\nMain = o.Name\nEnd Function", 424,
       kRuntime, 3},
      {"invalid use of Null",
       "Function Main()\nMain = CLng(Null)\nEnd Function", 94, kRuntime, 2},
      {"runaway recursion",
       "Function Deep(n)\nDeep = Deep(n + 1)\nEnd Function\n"
       "Function Main()\nMain = Deep(0)\nEnd Function",
       28, kRuntime, 2},
      {"error in a callee reports the callee's line",
       "Sub Bad()\nx = 1\ny = 1 / 0\nEnd Sub\nFunction Main()\nBad\nEnd "
       "Function",
       11, kRuntime, 3},
      {"object error keeps its number and source",
       "Function Main()\nBag.Fail\nEnd Function", 1234, "Bag", 2},
      {"Err.Raise unhandled",
       "Function Main()\nErr.Raise 1000, \"S\", \"D\"\n"
       "End Function",
       1000, "S", 2},
      {"top-level runtime error while adding code", "x = 1\ny = 1 / 0", 11,
       kRuntime, 2},
  };
  for (const ErrorCase& c : cases) {
    const Outcome outcome = RunSnippet(c.code);
    EXPECT_FALSE(outcome.value.has_value()) << c.name;
    EXPECT_EQ(outcome.error.number, c.number)
        << c.name << ": " << outcome.error.description;
    EXPECT_EQ(outcome.error.source, c.source) << c.name;
    EXPECT_EQ(outcome.error.line, c.line) << c.name;
    EXPECT_FALSE(outcome.error.description.empty()) << c.name;
  }
}

TEST(VBScriptErrors, RecordCarriesDescriptionAndLineText) {
  VBScriptEngine engine(nullptr);
  ASSERT_FALSE(engine.AddCode("x = 1\r\n  y = (2 +\r\nz = 3"));
  const ScriptError& error = engine.LastError();
  EXPECT_EQ(error.number, 1023);
  EXPECT_EQ(error.description, "Expected expression");
  EXPECT_EQ(error.line, 2);
  EXPECT_EQ(error.text, "  y = (2 +");

  ASSERT_TRUE(engine.AddCode("Sub Go()\r\n  Dim a\r\n  a = 1 \\ 0\r\nEnd Sub"));
  DispatchArgs args;
  EXPECT_FALSE(engine.Run("Go", args).has_value());
  EXPECT_EQ(engine.LastError().number, 11);
  EXPECT_EQ(engine.LastError().description, "Division by zero");
  EXPECT_EQ(engine.LastError().line, 3);
  EXPECT_EQ(engine.LastError().text, "  a = 1 \\ 0");
}

TEST(VBScriptErrors, CompileErrorRunsNothingOfThatCode) {
  VBScriptEngine engine(nullptr);
  auto bag = std::make_shared<Bag>();
  engine.AddObject("Bag", bag, false);
  EXPECT_FALSE(engine.AddCode("Bag.Add 1\nIf Then\n"));
  EXPECT_TRUE(bag->items_.empty());
  EXPECT_EQ(engine.LastError().number, 1023);
  // The engine stays usable and code added before stays.
  EXPECT_TRUE(engine.AddCode("Function F()\nF = 2\nEnd Function"));
  DispatchArgs args;
  EXPECT_EQ(engine.Run("f", args), Variant(int16_t{2}));
}

TEST(VBScriptEngine, RunWritesByRefArgumentsBack) {
  VBScriptEngine engine(nullptr);
  ASSERT_TRUE(engine.AddCode(
      "Function Update(a, ByVal b, ByRef c)\n"
      "a = a & \"!\": b = 0: c = c * 2\nUpdate = \"done\"\nEnd Function"));
  DispatchArgs args{Variant("hi"), Variant(int16_t{5}), Variant(int16_t{21})};
  EXPECT_EQ(engine.Run("UPDATE", args), Variant("done"));
  EXPECT_EQ(args[0], Variant("hi!"));
  EXPECT_EQ(args[1], Variant(int16_t{5}));
  EXPECT_EQ(args[2], Variant(int16_t{42}));

  DispatchArgs too_few{Variant(1.0)};
  EXPECT_FALSE(engine.Run("Update", too_few).has_value());
  EXPECT_EQ(engine.LastError().number, 450);
}

TEST(VBScriptEngine, SubReturnsEmptyAndUnknownProcedureFails) {
  VBScriptEngine engine(nullptr);
  ASSERT_TRUE(engine.AddCode("Sub Quiet()\nEnd Sub"));
  DispatchArgs args;
  EXPECT_EQ(engine.Run("quiet", args), Variant());
  EXPECT_FALSE(engine.Run("Missing", args).has_value());
  EXPECT_EQ(engine.LastError().number, 35);
  EXPECT_EQ(engine.LastError().line, 0);
}

TEST(VBScriptEngine, ProceduresInDefinitionOrderAcrossAddCode) {
  VBScriptEngine engine(nullptr);
  ASSERT_TRUE(engine.AddCode(
      "Sub Zeta()\nEnd Sub\nPrivate Function alpha()\nEnd Function\n"
      "Public Sub Mid2()\nEnd Sub"));
  ASSERT_TRUE(engine.AddCode("Sub Beta()\nEnd Sub\nSub ZETA()\nEnd Sub"));
  EXPECT_EQ(engine.Procedures(),
            (std::vector<std::string>{"ZETA", "alpha", "Mid2", "Beta"}));
  engine.Reset();
  EXPECT_TRUE(engine.Procedures().empty());
  EXPECT_EQ(engine.LastError().number, 0);
}

TEST(VBScriptEngine, GlobalsSurviveBetweenAddCodeAndRun) {
  VBScriptEngine engine(nullptr);
  ASSERT_TRUE(engine.AddCode("Dim counter\ncounter = 10"));
  ASSERT_TRUE(
      engine.AddCode("Function Next1()\ncounter = counter + 1\nNext1 = "
                     "counter\nEnd Function"));
  DispatchArgs args;
  EXPECT_EQ(engine.Run("Next1", args), Variant(int16_t{11}));
  EXPECT_EQ(engine.Run("Next1", args), Variant(int16_t{12}));
}

TEST(VBScriptEngine, LanguageAndObjectMisuse) {
  VBScriptEngine engine(nullptr);
  EXPECT_EQ(engine.Language(), "VBSCRIPT");
  ASSERT_TRUE(engine.AddCode("Sub A()\nEnd Sub"));
  engine.SetLanguage("vbscript");
  EXPECT_TRUE(engine.Procedures().empty());
  auto error_number = [](auto action) {
    try {
      action();
    } catch (const Error& error) {
      return error.Number();
    }
    return 0;
  };
  EXPECT_EQ(error_number([&] { engine.SetLanguage("JSCRIPT"); }), 5);
  EXPECT_EQ(error_number([&] { engine.SetLanguage("Perl"); }), 5);
  EXPECT_EQ(error_number([&] { engine.AddObject("X", nullptr, false); }), 91);
  auto bag = std::make_shared<Bag>();
  EXPECT_EQ(error_number([&] { engine.AddObject("", bag, false); }), 5);
  engine.AddObject("Bag", bag, false);
  EXPECT_EQ(error_number([&] { engine.AddObject("BAG", bag, false); }), 5);
}

TEST(VBScriptEngine, ObjectMembersAsGlobals) {
  VBScriptEngine engine(nullptr);
  auto bag = std::make_shared<Bag>();
  bag->items_ = {Variant("first")};
  engine.AddObject("Bag", bag, true);
  ASSERT_TRUE(
      engine.AddCode("Function F()\nAdd 2\nF = Count & Item(0)\nEnd Function"));
  DispatchArgs args;
  EXPECT_EQ(engine.Run("F", args), Variant("2first"));
}

TEST(VBScriptEngine, MsgBoxGoesThroughTheToolkit) {
  HeadlessToolkit toolkit;
  toolkit.QueueMessageAnswer(MessageAnswer::kNo);
  const Outcome outcome = RunSnippet(
      "Function Main()\nMain = MsgBox(\"Go on?\", vbYesNo + vbQuestion, "
      "\"Hook\") & MsgBox(\"Done\")\nEnd Function",
      "Main", &toolkit);
  ASSERT_TRUE(outcome.value.has_value()) << outcome.error.description;
  EXPECT_EQ(*outcome.value, Variant("71"));
  const auto shown = toolkit.LogOf(HeadlessToolkit::ShownKind::kMessageBox);
  ASSERT_EQ(shown.size(), 2u);
  EXPECT_EQ(shown[0].title, "Hook");
  EXPECT_EQ(shown[0].text, "Go on?");
  EXPECT_EQ(shown[0].icon, MessageIcon::kQuestion);
  EXPECT_EQ(shown[0].buttons, MessageButtons::kYesNo);
  EXPECT_EQ(shown[1].buttons, MessageButtons::kOk);

  const Outcome silent =
      RunSnippet("Function Main()\nMain = MsgBox(\"x\", 1)\nEnd Function");
  EXPECT_EQ(silent.value, Variant(int16_t{1}));
}

TEST(VBScriptEngine, TimeLimitStopsEndlessLoops) {
  const char* loops[] = {
      "Sub Spin()\nDo\nLoop\nEnd Sub",
      "Sub Spin()\nOn Error Resume Next\nWhile True\nx = x + 1\nWend\nEnd Sub",
      "Sub Spin()\nFor i = 1 To 2 Step 0\nNext\nEnd Sub",
  };
  for (const char* code : loops) {
    VBScriptEngine engine(nullptr);
    engine.SetTimeout(50);
    ASSERT_TRUE(engine.AddCode(code));
    DispatchArgs args;
    EXPECT_FALSE(engine.Run("Spin", args).has_value()) << code;
    EXPECT_EQ(engine.LastError().number, static_cast<int32_t>(0x80004004))
        << code;
    EXPECT_GT(engine.LastError().line, 0) << code;
  }
  VBScriptEngine engine(nullptr);
  engine.SetTimeout(50);
  EXPECT_FALSE(engine.AddCode("Do: Loop"));
  EXPECT_EQ(engine.LastError().number, static_cast<int32_t>(0x80004004));
}

TEST(VBScriptEngine, HostileInputIsAnErrorNotACrash) {
  std::string deep_parens =
      "x = " + std::string(5000, '(') + "1" + std::string(5000, ')');
  std::string deep_ifs;
  for (int i = 0; i < 3000; ++i) deep_ifs += "If x Then\n";
  std::string long_sum = "x = 1";
  for (int i = 0; i < 20000; ++i) long_sum += " + 1";
  std::string binary;
  for (int i = 0; i < 4096; ++i) binary.push_back(static_cast<char>(i * 37));
  std::string nots = "x = ";
  for (int i = 0; i < 5000; ++i) nots += "Not ";
  nots += "1";
  const std::string huge(kMaxVBScriptCodeSize + 1, ' ');
  const std::string inputs[] = {deep_parens,
                                deep_ifs,
                                long_sum,
                                binary,
                                nots,
                                huge,
                                std::string("x = 1 \0", 7)};
  for (const std::string& input : inputs) {
    VBScriptEngine engine(nullptr);
    EXPECT_FALSE(engine.AddCode(input)) << input.substr(0, 40);
    EXPECT_EQ(engine.LastError().source, "VBScript compilation error");
  }
  VBScriptEngine engine(nullptr);
  EXPECT_FALSE(engine.AddCode(deep_parens));
  EXPECT_EQ(engine.LastError().number, 28);
}

TEST(VBScriptEngine, RunawayMemoryIsAnError) {
  const Outcome grow = RunSnippet(
      "Function Main()\ns = \"x\"\nDo\ns = s & s\nLoop\nEnd Function");
  EXPECT_EQ(grow.error.number, 14);
  const Outcome big =
      RunSnippet("Function Main()\nReDim a(100000, 100000)\nEnd Function");
  EXPECT_EQ(big.error.number, 7);
}

}  // namespace
}  // namespace rz::testing
