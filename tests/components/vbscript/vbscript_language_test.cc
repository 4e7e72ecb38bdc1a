// Copyright 2026 The Veltmark authors.
//
// The VBScript language: operators with their precedence and result types,
// every statement, procedures and named objects, each as a snippet with
// the value its function returns.

#include <gtest/gtest.h>

#include "vb_test_support.h"

namespace rz::testing {
namespace {

Variant I(int v) { return Variant(static_cast<int16_t>(v)); }
Variant L(int32_t v) { return Variant(v); }
Variant D(double v) { return Variant(v); }
Variant S(const char* v) { return Variant(v); }
Variant B(bool v) { return Variant(v); }

struct ExpressionCase {
  const char* expression;
  Variant expected;
};

void ExpectValues(const std::vector<ExpressionCase>& cases) {
  for (const ExpressionCase& c : cases) {
    const Outcome outcome = EvalExpression(c.expression);
    ASSERT_TRUE(outcome.value.has_value())
        << c.expression << ": error " << outcome.error.number << " "
        << outcome.error.description;
    EXPECT_EQ(*outcome.value, c.expected)
        << c.expression << " gave " << outcome.value->TypeName() << " "
        << (outcome.value->IsNull() ? "Null" : outcome.value->ToString());
  }
}

TEST(VBScriptOperators, ValuesAndResultTypes) {
  ExpectValues({
      {"1 + 2", I(3)},
      {"32767 + 1", L(32768)},
      {"2147483647 + 1", D(2147483648.0)},
      {"-32768", L(-32768)},
      {"-32767 - 1", I(-32768)},
      {"-(-32768)", L(32768)},
      {"7 - 10", I(-3)},
      {"6 * 7", I(42)},
      {"300 * 300", L(90000)},
      {"7 / 2", D(3.5)},
      {"4 / 2", D(2)},
      {"7 \\ 2", I(3)},
      {"-7 \\ 2", I(-3)},
      {"7.6 \\ 2", L(4)},
      {"7 Mod 3", I(1)},
      {"-7 Mod 3", I(-1)},
      {"2 ^ 10", D(1024)},
      {"2 ^ -1", D(0.5)},
      {"-2 ^ 2", D(-4)},
      {"2 ^ 3 ^ 2", D(64)},
      {"2 + 3 * 4", I(14)},
      {"(2 + 3) * 4", I(20)},
      {"10 - 4 - 3", I(3)},
      {"2 * 3 Mod 4", I(2)},
      {"7 \\ 2 * 2", I(1)},
      {"\"a\" & 1 + 2", S("a3")},
      {"\"1\" + 2", D(3)},
      {"\"ab\" + \"cd\"", S("abcd")},
      {"\"ab\" + Empty", S("ab")},
      {"Empty + Empty", I(0)},
      {"Empty & Null", S("")},
      {"IsNull(Null & Null)", B(true)},
      {"IsNull(Null + 1)", B(true)},
      {"1 & 2.5", S("12.5")},
      {"True + 1", I(0)},
      {"1 = 1", B(true)},
      {"1 <> 1", B(false)},
      {"\"abc\" < \"abd\"", B(true)},
      {"\"B\" > \"a\"", B(false)},
      {"2 <= 2", B(true)},
      {"3 >= 4", B(false)},
      {"\"10\" = 10", B(true)},
      {"IsNull(Null = 1)", B(true)},
      {"Not True", B(false)},
      {"Not 0", I(-1)},
      {"Not 1 = 2", B(true)},
      {"True And False", B(false)},
      {"True Or False", B(true)},
      {"True Xor True", B(false)},
      {"False Eqv False", B(true)},
      {"True Imp False", B(false)},
      {"False Imp False", B(true)},
      {"12 And 10", I(8)},
      {"12 Or 3", I(15)},
      {"5 Xor 1", I(4)},
      {"Null And False", B(false)},
      {"Null Or True", B(true)},
      {"IsNull(Null And True)", B(true)},
      {"1 < 2 And 3 < 4", B(true)},
      {"True Or True And False", B(true)},
      {"False Imp True Eqv False", B(true)},
      {"&HFF", I(255)},
      {"&HFFFF", I(-1)},
      {"&O17", I(15)},
      {"&H10000", L(65536)},
      {".5 + 1", D(1.5)},
      {"1.5E3", D(1500)},
      {"#2024-03-15# + 1", Variant::Date(DateSerial(2024, 3, 16))},
      {"#3/15/2024 1:30 PM#",
       Variant::Date(DateSerial(2024, 3, 15) + TimeSerial(13, 30, 0))},
      {"#2024-03-16# - #2024-03-15#", D(1)},
      {"\"say \"\"hi\"\"\"", S("say \"hi\"")},
      {"Nothing Is Nothing", B(true)},
      {"Bag Is Bag", B(true)},
      {"Bag Is Nothing", B(false)},
      {"Bag.Child Is Bag.Child", B(true)},
  });
}

struct ProgramCase {
  const char* name;
  const char* code;  // defines Function Main
  Variant expected;
};

void ExpectPrograms(const std::vector<ProgramCase>& cases) {
  for (const ProgramCase& c : cases) {
    const Outcome outcome = RunSnippet(c.code);
    ASSERT_TRUE(outcome.value.has_value())
        << c.name << ": error " << outcome.error.number << " "
        << outcome.error.description << " line " << outcome.error.line;
    EXPECT_EQ(*outcome.value, c.expected)
        << c.name << " gave " << outcome.value->TypeName() << " "
        << (outcome.value->IsNull() ? "Null" : outcome.value->ToString());
  }
}

TEST(VBScriptStatements, ControlFlow) {
  ExpectPrograms({
      {"block if/elseif/else",
       "Function Main()\nx = 5\nIf x > 10 Then\nMain = 1\nElseIf x > 3 Then\n"
       "Main = 2\nElse\nMain = 3\nEnd If\nEnd Function",
       I(2)},
      {"block if falls to else",
       "Function Main()\nIf False Then\nMain = 1\nElse\nMain = 3\nEnd If\n"
       "End Function",
       I(3)},
      {"one-line if with else and colons",
       "Function Main()\nIf 1 > 2 Then Main = 1 Else Main = 2: Main = Main * "
       "5\n"
       "End Function",
       I(10)},
      {"one-line if without else",
       "Function Main()\nMain = 1\nIf True Then Main = 7: Main = Main + 1\n"
       "End Function",
       I(8)},
      {"Null condition is false",
       "Function Main()\nIf Null Then Main = 1 Else Main = 2\nEnd Function",
       I(2)},
      {"select with lists, ranges and Is",
       "Function Main()\nFor Each v In Array(1, 5, 12, 40, \"z\")\n"
       "Select Case v\nCase 1, 2: r = r & \"a\"\nCase 3 To 9\nr = r & \"b\"\n"
       "Case Is >= 30: r = r & \"c\"\nCase \"z\": r = r & \"z\"\n"
       "Case Else\nr = r & \"e\"\nEnd Select\nNext\nMain = r\nEnd Function",
       S("abecc")},
      {"for with step",
       "Function Main()\nFor i = 10 To 1 Step -3\ns = s & i & \",\"\nNext\n"
       "Main = s & i\nEnd Function",
       S("10,7,4,1,-2")},
      {"for that never runs",
       "Function Main()\nn = 0\nFor i = 5 To 1\nn = n + 1\nNext\nMain = n\n"
       "End Function",
       I(0)},
      {"for with fractional step",
       "Function Main()\nFor x = 0 To 1 Step 0.25\nn = n + 1\nNext\nMain = n\n"
       "End Function",
       I(5)},
      {"exit for in nested loops",
       "Function Main()\nFor i = 1 To 3\nFor j = 1 To 3\nIf j = 2 Then Exit "
       "For\n"
       "n = n + 1\nNext\nNext\nMain = n\nEnd Function",
       I(3)},
      {"for each over array",
       "Function Main()\nFor Each v In Array(1, 2, 3)\ns = s + v\nNext\n"
       "Main = s\nEnd Function",
       I(6)},
      {"for each over a collection",
       "Function Main()\nFor Each v In Bag\ns = s & v\nNext\nMain = s\n"
       "End Function",
       S("10x30")},
      {"do while pre-test",
       "Function Main()\nDo While i < 5\ni = i + 1\nLoop\nMain = i\nEnd "
       "Function",
       I(5)},
      {"do until pre-test",
       "Function Main()\nDo Until i >= 4\ni = i + 2\nLoop\nMain = i\n"
       "End Function",
       I(4)},
      {"do loop while runs once",
       "Function Main()\nDo\ni = i + 1\nLoop While False\nMain = i\n"
       "End Function",
       I(1)},
      {"do loop until",
       "Function Main()\nDo\ni = i + 3\nLoop Until i > 10\nMain = i\n"
       "End Function",
       I(12)},
      {"do with exit do",
       "Function Main()\nDo\ni = i + 1\nIf i = 7 Then Exit Do\nLoop\nMain = i\n"
       "End Function",
       I(7)},
      {"while wend",
       "Function Main()\nWhile i < 3\ni = i + 1\nWend\nMain = i\nEnd Function",
       I(3)},
      {"exit do inside for leaves both",
       "Function Main()\nDo\nFor i = 1 To 10\nIf i = 4 Then Exit Do\nNext\n"
       "Loop\nMain = i\nEnd Function",
       I(4)},
      {"colon separators, comments, Rem and continuation",
       "Function Main() ' comment\nRem a remark\nx = 1: y = 2 : Rem more\n"
       "Main = x + _\n   y\nEnd Function",
       I(3)},
      {"exit for from inside select",
       "Function Main()\nFor i = 1 To 9\nSelect Case i\nCase 3\nExit For\n"
       "End Select\nNext\nMain = i\nEnd Function",
       I(3)},
      {"continuation inside an argument list",
       "Function Main()\nMain = Join(Array(1, _\n  2, _\n  3), \"-\")\n"
       "End Function",
       S("1-2-3")},
      {"case-insensitive keywords and names",
       "FUNCTION main()\nDIM Value: value = 4\nIF VALUE = 4 THEN MAIN = "
       "\"ok\"\n"
       "end function",
       S("ok")},
  });
}

TEST(VBScriptStatements, VariablesAndArrays) {
  ExpectPrograms({
      {"dim and fixed array",
       "Function Main()\nDim a(2)\na(0) = 1: a(2) = 3\nMain = UBound(a) & a(0) "
       "& "
       "IsEmpty(a(1)) & a(2)\nEnd Function",
       S("21True3")},
      {"two-dimensional array",
       "Function Main()\nDim g(2, 3)\ng(1, 2) = \"x\"\nMain = UBound(g, 1) & "
       "UBound(g, 2) & g(1, 2)\nEnd Function",
       S("23x")},
      {"redim preserve keeps values",
       "Function Main()\nDim a()\nReDim a(1)\na(0) = 5: a(1) = 6\n"
       "ReDim Preserve a(3)\na(3) = 8\nMain = a(0) + a(1) + a(3) & \"/\" & "
       "UBound(a)\nEnd Function",
       S("19/3")},
      {"redim without preserve clears",
       "Function Main()\nReDim a(2)\na(1) = 5\nReDim a(4)\nMain = "
       "IsEmpty(a(1)) & UBound(a)\nEnd Function",
       S("True4")},
      {"arrays are values",
       "Function Main()\na = Array(1, 2)\nb = a\nb(0) = 9\nMain = a(0) & b(0)\n"
       "End Function",
       S("19")},
      {"const",
       "Const kBase = 40\nFunction Main()\nConst kStep = 2\n"
       "Main = kBase + kStep\nEnd Function",
       I(42)},
      {"erase keeps a fixed array's size",
       "Function Main()\nDim a(2)\na(1) = 5\nErase a\n"
       "Main = UBound(a) & IsEmpty(a(1))\nEnd Function",
       S("2True")},
      {"public and private declare variables",
       "Public p1\nPrivate p2\np1 = 1: p2 = 2\nFunction Main()\n"
       "Main = p1 + p2\nEnd Function",
       I(3)},
      {"erase empties a dynamic array",
       "Function Main()\na = Array(1, 2)\nErase a\nMain = UBound(a)\n"
       "End Function",
       L(-1)},
      {"globals are shared and locals are not",
       "Dim g\ng = 1\nSub Bump()\nDim g2\ng = g + 1\ng2 = 5\nEnd Sub\n"
       "Function Main()\nBump\nBump\nMain = g & \"/\" & IsEmpty(g2)\n"
       "End Function",
       S("3/True")},
      {"redim preserve of two dimensions",
       "Function Main()\nReDim g(1, 1)\ng(1, 1) = 7\nReDim Preserve g(1, 3)\n"
       "g(1, 3) = 8\nMain = g(1, 1) & g(1, 3) & UBound(g, 2)\nEnd Function",
       S("783")},
      {"Randomize with a seed repeats Rnd",
       "Function Main()\nRandomize 5\na = Rnd\nRandomize 5\nb = Rnd\n"
       "Main = (a = b) And a >= 0 And a < 1\nEnd Function",
       B(true)},
      {"undeclared variable passed ByRef is created",
       "Sub SetIt(v)\nv = 3\nEnd Sub\nFunction Main()\nSetIt fresh\n"
       "Main = fresh\nEnd Function",
       I(3)},
      {"undeclared variable without Option Explicit is Empty",
       "Function Main()\nMain = IsEmpty(never_set)\nEnd Function", B(true)},
      {"Option Explicit with declared names",
       "Option Explicit\nDim total\nFunction Main()\nDim i\n"
       "For i = 1 To 4: total = total + i: Next\nMain = total\nEnd Function",
       I(10)},
  });
}

TEST(VBScriptStatements, Procedures) {
  ExpectPrograms({
      {"function value is the name's last value",
       "Function Twice(x)\nTwice = x\nTwice = Twice * 2\nEnd Function\n"
       "Function Main()\nMain = Twice(21)\nEnd Function",
       I(42)},
      {"function without assignment returns Empty",
       "Function Nothing2()\nEnd Function\nFunction Main()\n"
       "Main = IsEmpty(Nothing2())\nEnd Function",
       B(true)},
      {"recursion",
       "Function Fact(n)\nIf n <= 1 Then\nFact = 1\nElse\nFact = n * Fact(n - "
       "1)\n"
       "End If\nEnd Function\nFunction Main()\nMain = Fact(10)\nEnd Function",
       L(3628800)},
      {"byref is the default and byval copies",
       "Sub Change(a, ByVal b)\na = a + 1\nb = b + 1\nEnd Sub\n"
       "Function Main()\nx = 1: y = 1\nChange x, y\nMain = x & y\nEnd Function",
       S("21")},
      {"parentheses pass by value",
       "Sub Inc(ByRef a)\na = a + 1\nEnd Sub\nFunction Main()\nx = 1\nInc (x)\n"
       "Call Inc(x)\nMain = x\nEnd Function",
       I(2)},
      {"exit sub and exit function",
       "Sub S1(ByRef r)\nr = 1\nExit Sub\nr = 2\nEnd Sub\n"
       "Function F()\nF = 3\nExit Function\nF = 4\nEnd Function\n"
       "Function Main()\nS1 v\nMain = v & F()\nEnd Function",
       S("13")},
      {"call statement forms",
       "Dim log\nSub Note(a, b)\nlog = log & a & b\nEnd Sub\nFunction Main()\n"
       "Note 1, 2\nCall Note(3, 4)\nMain = log\nEnd Function",
       S("1234")},
      {"set and Nothing",
       "Function Main()\nSet o = Bag\nr = IsObject(o) & (o Is Bag)\n"
       "Set o = Nothing\nMain = r & (o Is Nothing)\nEnd Function",
       S("TrueTrueTrue")},
      {"procedures defined after top-level code still run",
       "x = Later()\nFunction Later()\nLater = 5\nEnd Function\n"
       "Function Main()\nMain = x\nEnd Function",
       I(5)},
  });
}

TEST(VBScriptStatements, NamedObjects) {
  ExpectPrograms({
      {"default member with arguments",
       "Function Main()\nMain = Bag(2)\nEnd Function", I(30)},
      {"explicit member",
       "Function Main()\nMain = Bag.Item(1) & Bag.Count\n"
       "End Function",
       S("x3")},
      {"property write and method call",
       "Function Main()\nBag.Name = \"new\"\nBag.Add 7\n"
       "Main = Bag.Name & Bag.Count & Bag(3)\nEnd Function",
       S("new47")},
      {"indexed property write through the default member",
       "Function Main()\nBag(0) = 99\nMain = Bag.Item(0)\nEnd Function", I(99)},
      {"with block",
       "Function Main()\nWith Bag\n.Name = \"w\"\nMain = .Name & .Count\n"
       "End With\nEnd Function",
       S("w3")},
      {"nested with blocks",
       "Function Main()\nWith Bag\nWith .Child\n.Name = \"inner\"\nEnd With\n"
       "Main = .Name & \"/\" & .Child.Name\nEnd With\nEnd Function",
       S("bag/inner")},
      {"nested member chain",
       "Function Main()\nBag.Child.Name = \"c\"\n"
       "Main = Bag.Child.Name\nEnd Function",
       S("c")},
      {"byref argument of an object method writes back",
       "Function Main()\nv = 4\nBag.Twice v\nMain = v\nEnd Function", D(8)},
      {"object error caught in Err",
       "Function Main()\nOn Error Resume Next\nBag.Fail\n"
       "Main = Err.Number & \"|\" & Err.Description & \"|\" & Err.Source\n"
       "End Function",
       S("1234|Boom|Bag")},
      {"object used as a value reads its default member",
       "Function Main()\nSet c = Bag.Child\nc.Add 5\nMain = c(0) + 1\n"
       "End Function",
       I(6)},
  });
}

TEST(VBScriptStatements, ErrObject) {
  ExpectPrograms({
      {"resume next skips the failing statement",
       "Function Main()\nOn Error Resume Next\nx = 1 / 0\ny = 2\n"
       "Main = Err.Number & \" \" & Err.Description & \" \" & y\nEnd Function",
       S("11 Division by zero 2")},
      {"Err help fields are kept",
       "Function Main()\nErr.HelpFile = \"h.chm\"\nErr.HelpContext = 7\n"
       "Main = Err.HelpFile & Err.HelpContext\nEnd Function",
       S("h.chm7")},
      {"Err.Clear and the default member",
       "Function Main()\nOn Error Resume Next\nx = CInt(\"abc\")\nn = Err\n"
       "Err.Clear\nMain = n & \"/\" & Err.Number\nEnd Function",
       S("13/0")},
      {"Err.Raise with custom values",
       "Function Main()\nOn Error Resume Next\nErr.Raise vbObjectError + 5, "
       "\"Mine\", \"Custom\"\nMain = Err.Number - vbObjectError & Err.Source & "
       "Err.Description\nEnd Function",
       S("5MineCustom")},
      {"Err.Raise with a known number fills the text",
       "Function Main()\nOn Error Resume Next\nErr.Raise 9\n"
       "Main = Err.Description & \"|\" & Err.Source\nEnd Function",
       S("Subscript out of range|VBScript runtime error")},
      {"goto 0 clears Err and errors stop again in callee handled by caller",
       "Sub Inner()\nx = 1 / 0\nSeen = True\nEnd Sub\nFunction Main()\n"
       "On Error Resume Next\nInner\nMain = Err.Number & \"/\" & "
       "IsEmpty(Seen)\n"
       "On Error GoTo 0\nEnd Function",
       S("11/True")},
      {"error inside a block skips to the next statement of the block",
       "Function Main()\nOn Error Resume Next\nIf True Then\nx = Bag(9)\n"
       "r = \"after\"\nEnd If\nMain = r & Err.Number\nEnd Function",
       S("after9")},
  });
}

}  // namespace
}  // namespace rz::testing
