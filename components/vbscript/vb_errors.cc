// Copyright 2026 The Veltmark authors.

#include "vbscript/vb_errors.h"

#include <utility>

namespace rz::vb {
namespace {

struct NumberedText {
  int32_t number;
  const char* text;
};

constexpr NumberedText kCompileTexts[] = {
    {kSyntaxError, "Syntax error"},
    {kExpectedLParen, "Expected '('"},
    {kExpectedRParen, "Expected ')'"},
    {kExpectedIdentifier, "Expected identifier"},
    {kExpectedEquals, "Expected '='"},
    {kExpectedIf, "Expected 'If'"},
    {kExpectedTo, "Expected 'To'"},
    {kExpectedEnd, "Expected 'End'"},
    {kExpectedFunction, "Expected 'Function'"},
    {kExpectedSub, "Expected 'Sub'"},
    {kExpectedThen, "Expected 'Then'"},
    {kExpectedWend, "Expected 'Wend'"},
    {kExpectedLoop, "Expected 'Loop'"},
    {kExpectedNext, "Expected 'Next'"},
    {kExpectedCase, "Expected 'Case'"},
    {kExpectedSelect, "Expected 'Select'"},
    {kExpectedExpression, "Expected expression"},
    {kExpectedStatement, "Expected statement"},
    {kExpectedEndOfStatement, "Expected end of statement"},
    {kExpectedWith, "Expected 'With'"},
    {kIdentifierTooLong, "Identifier too long"},
    {kInvalidNumber, "Invalid number"},
    {kInvalidCharacter, "Invalid character"},
    {kUnterminatedString, "Unterminated string constant"},
    {kInvalidExit, "Invalid 'exit' statement"},
    {kInvalidForVariable, "Invalid 'for' loop control variable"},
    {kNameRedefined, "Name redefined"},
    {kExpectedIn, "Expected 'In'"},
    {kTooDeep, "Out of stack space"},
};

constexpr NumberedText kRuntimeTexts[] = {
    {5, "Invalid procedure call or argument"},
    {6, "Overflow"},
    {7, "Out of memory"},
    {9, "Subscript out of range"},
    {10, "This array is fixed or temporarily locked"},
    {11, "Division by zero"},
    {13, "Type mismatch"},
    {14, "Out of string space"},
    {28, "Out of stack space"},
    {35, "Sub or Function not defined"},
    {51, "Internal error"},
    {91, "Object variable not set"},
    {92, "For loop not initialized"},
    {94, "Invalid use of Null"},
    {424, "Object required"},
    {438, "Object doesn't support this property or method"},
    {450, "Wrong number of arguments or invalid property assignment"},
    {451, "Object not a collection"},
    {500, "Variable is undefined"},
    {501, "Illegal assignment"},
};

template <size_t N>
std::string Lookup(const NumberedText (&table)[N], int32_t number,
                   const char* fallback) {
  for (const NumberedText& entry : table) {
    if (entry.number == number) return entry.text;
  }
  return fallback;
}

std::string Quoted(std::string_view text) {
  return "'" + std::string(text) + "'";
}

}  // namespace

std::string CompileMessage(int32_t number) {
  return Lookup(kCompileTexts, number, "Syntax error");
}

VbCompileError MakeCompileError(int32_t number, int32_t line) {
  return VbCompileError(number, CompileMessage(number), line);
}

std::string RuntimeMessage(int32_t number) {
  return Lookup(kRuntimeTexts, number, "Unknown runtime error");
}

Error OutOfMemory() { return Error(7, RuntimeMessage(7)); }
Error DivisionByZero() { return Error(11, RuntimeMessage(11)); }
Error OutOfStringSpace() { return Error(14, RuntimeMessage(14)); }
Error OutOfStackSpace() { return Error(28, RuntimeMessage(28)); }
Error UnknownProcedure(std::string_view name) {
  return Error(13, "Type mismatch: " + Quoted(name));
}
Error ObjectRequired(std::string_view what) {
  return Error(424, "Object required: " + Quoted(what));
}
Error NotACollection() { return Error(451, RuntimeMessage(451)); }
Error VariableUndefined(std::string_view name) {
  return Error(500, "Variable is undefined: " + Quoted(name));
}
Error IllegalAssignment(std::string_view name) {
  return Error(501, "Illegal assignment: " + Quoted(name));
}
Error ArrayFixed(std::string_view name) {
  return Error(10, RuntimeMessage(10) + ": " + Quoted(name));
}

}  // namespace rz::vb
