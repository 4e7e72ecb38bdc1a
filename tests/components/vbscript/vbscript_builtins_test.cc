// Copyright 2026 The Veltmark authors.
//
// The built-in functions and constants, each through a script expression,
// with "now" pinned to 2024-03-15 10:30:00 (a Friday).

#include <gtest/gtest.h>

#include "vb_test_support.h"

namespace rz::testing {
namespace {

Variant I(int v) { return Variant(static_cast<int16_t>(v)); }
Variant L(int32_t v) { return Variant(v); }
Variant D(double v) { return Variant(v); }
Variant S(const char* v) { return Variant(v); }
Variant B(bool v) { return Variant(v); }
Variant Date(int y, int m, int d, int hh = 0, int mm = 0, int ss = 0) {
  return Variant::Date(DateSerial(y, m, d) + TimeSerial(hh, mm, ss));
}

struct Case {
  const char* expression;
  Variant expected;
};

void ExpectValues(const std::vector<Case>& cases) {
  for (const Case& c : cases) {
    const Outcome outcome = EvalExpression(c.expression);
    ASSERT_TRUE(outcome.value.has_value())
        << c.expression << ": error " << outcome.error.number << " "
        << outcome.error.description;
    EXPECT_EQ(*outcome.value, c.expected)
        << c.expression << " gave " << outcome.value->TypeName() << " "
        << (outcome.value->IsNull() ? "Null" : outcome.value->ToString());
  }
}

struct ErrorCase {
  const char* expression;
  int32_t number;
};

void ExpectErrors(const std::vector<ErrorCase>& cases) {
  for (const ErrorCase& c : cases) {
    const Outcome outcome = EvalExpression(c.expression);
    EXPECT_FALSE(outcome.value.has_value()) << c.expression;
    EXPECT_EQ(outcome.error.number, c.number)
        << c.expression << ": " << outcome.error.description;
  }
}

TEST(VBScriptBuiltins, Text) {
  ExpectValues({
      {"Len(\"héllo\")", L(5)},
      {"Len(1234)", L(4)},
      {"IsNull(Len(Null))", B(true)},
      {"Left(\"abcdef\", 3)", S("abc")},
      {"Left(\"ab\", 10)", S("ab")},
      {"Right(\"abcdef\", 2)", S("ef")},
      {"Right(\"ab\", 0)", S("")},
      {"Mid(\"abcdef\", 2, 3)", S("bcd")},
      {"Mid(\"abcdef\", 4)", S("def")},
      {"Mid(\"abc\", 9)", S("")},
      {"Mid(\"añb\", 2, 1)", S("ñ")},
      {"InStr(\"abcabc\", \"c\")", L(3)},
      {"InStr(4, \"abcabc\", \"c\")", L(6)},
      {"InStr(\"abc\", \"z\")", L(0)},
      {"InStr(1, \"ABC\", \"b\", 1)", L(2)},
      {"InStr(1, \"ABC\", \"b\", 0)", L(0)},
      {"InStr(\"abc\", \"\")", L(1)},
      {"InStrRev(\"abcabc\", \"b\")", L(5)},
      {"InStrRev(\"abcabc\", \"b\", 4)", L(2)},
      {"InStrRev(\"abc\", \"B\", -1, vbTextCompare)", L(2)},
      {"Replace(\"a-b-c\", \"-\", \"+\")", S("a+b+c")},
      {"Replace(\"a-b-c\", \"-\", \"\", 1, 1)", S("ab-c")},
      {"Replace(\"aXbxc\", \"x\", \"_\", 1, -1, 1)", S("a_b_c")},
      {"Replace(\"abcabc\", \"a\", \"z\", 3)", S("czbc")},
      {"Trim(\"  a b  \")", S("a b")},
      {"LTrim(\"  a \")", S("a ")},
      {"RTrim(\" a  \")", S(" a")},
      {"UCase(\"abcé\")", S("ABCÉ")},
      {"LCase(\"ABC\")", S("abc")},
      {"Space(3)", S("   ")},
      {"String(3, \"xy\")", S("xxx")},
      {"String(2, 65)", S("AA")},
      {"StrComp(\"a\", \"b\")", I(-1)},
      {"StrComp(\"B\", \"a\")", I(-1)},
      {"StrComp(\"B\", \"a\", 1)", I(1)},
      {"StrComp(\"abc\", \"ABC\", vbTextCompare)", I(0)},
      {"Join(Split(\"a,b,,c\", \",\"), \"|\")", S("a|b||c")},
      {"UBound(Split(\"\"))", L(-1)},
      {"UBound(Split(\"a b c\"))", L(2)},
      {"Join(Split(\"a,b,c\", \",\", 2), \"|\")", S("a|b,c")},
      {"Join(Split(\"aXbxc\", \"x\", -1, 1), \"|\")", S("a|b|c")},
      {"Join(Array(1, 2, 3))", S("1 2 3")},
      {"Asc(\"A\")", L(65)},
      {"Asc(\"€\")", L(128)},
      {"Chr(66)", S("B")},
      {"Chr(128)", S("€")},
      {"Chr(233)", S("é")},
      {"StrReverse(\"abc\")", S("cba")},
      {"AscW(\"Ω\")", L(937)},
      {"ChrW(937)", S("Ω")},
      {"\"a\" & vbCrLf & vbTab", S("a\r\n\t")},
      {"Len(vbNullChar)", L(1)},
      {"vbNewLine = vbCrLf", B(true)},
  });
  ExpectErrors({
      {"Left(\"a\", -1)", 5},
      {"Mid(\"abc\", 0)", 5},
      {"InStr(0, \"a\", \"a\")", 5},
      {"Asc(\"\")", 5},
      {"Chr(-1)", 5},
      {"Space(-1)", 5},
      {"Space(100000000)", 14},
      {"Join(5)", 13},
  });
}

TEST(VBScriptBuiltins, ConversionAndMath) {
  ExpectValues({
      {"CStr(2.5)", S("2.5")},
      {"CStr(True)", S("True")},
      {"CInt(2.5)", I(2)},
      {"CInt(3.5)", I(4)},
      {"CInt(\"12\")", I(12)},
      {"CLng(\"70000\")", L(70000)},
      {"CDbl(\"1.25\")", D(1.25)},
      {"CBool(0)", B(false)},
      {"CBool(5)", B(true)},
      {"CDate(\"2024-01-31\")", Date(2024, 1, 31)},
      {"CDate(\"1/31/2024 10:15\")", Date(2024, 1, 31, 10, 15)},
      {"Int(-2.5)", D(-3)},
      {"Fix(-2.5)", D(-2)},
      {"Int(7)", I(7)},
      {"Abs(-3)", I(3)},
      {"Abs(-2.5)", D(2.5)},
      {"Sgn(-7)", I(-1)},
      {"Sgn(0)", I(0)},
      {"Round(2.5)", D(2)},
      {"Round(3.5)", D(4)},
      {"Round(2.345, 2)", D(2.35)},
      {"Round(7)", I(7)},
      {"Sqr(16)", D(4)},
      {"Exp(0)", D(1)},
      {"Log(1)", D(0)},
      {"Sin(0)", D(0)},
      {"Cos(0)", D(1)},
      {"Atn(0)", D(0)},
      {"Tan(0)", D(0)},
      {"CSng(\"0.5\")", D(0.5)},
      {"Rnd() >= 0 And Rnd() < 1", B(true)},
      {"Rnd(-1) = Rnd(-1)", B(true)},
      {"Hex(255)", S("FF")},
      {"Hex(-1)", S("FFFF")},
      {"Hex(70000)", S("11170")},
      {"Oct(8)", S("10")},
      {"IsNumeric(\"12.5\")", B(true)},
      {"IsNumeric(\"12a\")", B(false)},
      {"IsNumeric(Empty)", B(true)},
      {"IsNumeric(Null)", B(false)},
      {"IsEmpty(Empty)", B(true)},
      {"IsEmpty(0)", B(false)},
      {"IsNull(Null)", B(true)},
      {"IsArray(Array())", B(true)},
      {"IsArray(\"a\")", B(false)},
      {"IsObject(Bag)", B(true)},
      {"IsObject(Nothing)", B(true)},
      {"IsObject(1)", B(false)},
      {"IsDate(\"2024-02-29\")", B(true)},
      {"IsDate(\"2023-02-29\")", B(false)},
      {"IsDate(#2024-01-01#)", B(true)},
      {"TypeName(1)", S("Integer")},
      {"TypeName(70000)", S("Long")},
      {"TypeName(1.5)", S("Double")},
      {"TypeName(\"a\")", S("String")},
      {"TypeName(Empty)", S("Empty")},
      {"TypeName(Null)", S("Null")},
      {"TypeName(True)", S("Boolean")},
      {"TypeName(Now)", S("Date")},
      {"TypeName(Array())", S("Variant()")},
      {"TypeName(Bag)", S("Bag")},
      {"TypeName(Nothing)", S("Nothing")},
      {"VarType(\"a\")", I(8)},
      {"VarType(1)", I(2)},
      {"VarType(Array(1))", I(8204)},
      {"VarType(Bag)", I(9)},
      {"UBound(Array(1, 2, 3))", L(2)},
      {"LBound(Array(1, 2, 3))", L(0)},
      {"UBound(Array())", L(-1)},
  });
  ExpectErrors({
      {"CInt(\"x\")", 13},
      {"CInt(32768)", 6},
      {"CStr(Null)", 94},
      {"Sqr(-1)", 5},
      {"Log(0)", 5},
      {"CDate(\"soon\")", 13},
      {"UBound(5)", 13},
      {"UBound(Array(1), 2)", 9},
      {"Round(1, -1)", 5},
  });
}

TEST(VBScriptBuiltins, Dates) {
  ExpectValues({
      {"Now", Date(2024, 3, 15, 10, 30)},
      {"Date", Date(2024, 3, 15)},
      {"Time", Variant::Date(TimeSerial(10, 30, 0))},
      {"Year(Now) & Month(Now) & Day(Now)", S("2024315")},
      {"Hour(Now) & \":\" & Minute(Now) & \":\" & Second(#10:20:30#)",
       S("10:30:30")},
      {"Weekday(Now)", I(6)},
      {"Weekday(Now, vbMonday)", I(5)},
      {"DateSerial(2024, 2, 30)", Date(2024, 3, 1)},
      {"DateSerial(24, 1, 1)", Date(2024, 1, 1)},
      {"DateSerial(2024, 0, 1)", Date(2023, 12, 1)},
      {"TimeSerial(25, 0, 0)", Variant::Date(25.0 / 24)},
      {"DateAdd(\"m\", 1, #2024-01-31#)", Date(2024, 2, 29)},
      {"DateAdd(\"yyyy\", -1, #2024-02-29#)", Date(2023, 2, 28)},
      {"DateAdd(\"q\", 1, #2024-01-15#)", Date(2024, 4, 15)},
      {"DateAdd(\"d\", 20, #2024-02-15#)", Date(2024, 3, 6)},
      {"DateAdd(\"ww\", 1, #2024-02-15#)", Date(2024, 2, 22)},
      {"DateAdd(\"h\", 3, #2024-02-15 22:00:00#)", Date(2024, 2, 16, 1)},
      {"DateAdd(\"n\", 90, #2024-02-15#)", Date(2024, 2, 15, 1, 30)},
      {"DateAdd(\"s\", -1, #2024-02-15#)", Date(2024, 2, 14, 23, 59, 59)},
      {"DateDiff(\"d\", #2024-01-01#, #2024-03-01#)", L(60)},
      {"DateDiff(\"m\", #2023-12-31#, #2024-01-01#)", L(1)},
      {"DateDiff(\"yyyy\", #2023-12-31#, #2024-01-01#)", L(1)},
      {"DateDiff(\"q\", #2024-01-01#, #2024-12-31#)", L(3)},
      {"DateDiff(\"h\", #2024-01-01 10:59:00#, #2024-01-01 11:00:00#)", L(1)},
      {"DateDiff(\"n\", #2024-01-01 10:00:00#, #2024-01-01 09:58:00#)", L(-2)},
      {"DateDiff(\"s\", #10:00:00#, #10:01:01#)", L(61)},
      {"DateDiff(\"w\", #2024-01-01#, #2024-01-20#)", L(2)},
      {"DateDiff(\"ww\", #2024-03-16#, #2024-03-17#)", L(1)},
      {"DatePart(\"yyyy\", Now)", L(2024)},
      {"DatePart(\"q\", Now)", L(1)},
      {"DatePart(\"y\", Now)", L(75)},
      {"DatePart(\"w\", Now)", L(6)},
      {"DatePart(\"ww\", #2024-01-07#)", L(2)},
      {"DatePart(\"h\", Now)", L(10)},
      {"MonthName(3)", S("March")},
      {"MonthName(3, True)", S("Mar")},
      {"WeekdayName(6)", S("Friday")},
      {"WeekdayName(1, True, vbMonday)", S("Mon")},
      {"FormatDateTime(Now)", S("2024-03-15 10:30:00")},
      {"FormatDateTime(Now, vbLongDate)", S("Friday, March 15, 2024")},
      {"FormatDateTime(Now, vbShortDate)", S("2024-03-15")},
      {"FormatDateTime(Now, vbLongTime)", S("10:30:00")},
      {"FormatDateTime(Now, vbShortTime)", S("10:30")},
      {"FormatNumber(1234.567)", S("1,234.57")},
      {"FormatNumber(1234.5, 0)", S("1,235")},
      {"FormatNumber(-0.5, 1, 0)", S("-.5")},
      {"FormatNumber(-2, 1, -1, -1)", S("(2.0)")},
      {"FormatNumber(1234, 2, -1, 0, 0)", S("1234.00")},
      {"FormatNumber(\"3\")", S("3.00")},
  });
  ExpectErrors({
      {"DateAdd(\"x\", 1, Now)", 5},
      {"DateSerial(10000, 1, 1)", 6},
      {"Year(\"soon\")", 13},
      {"MonthName(13)", 5},
      {"FormatDateTime(Now, 9)", 5},
  });
}

}  // namespace
}  // namespace rz::testing
