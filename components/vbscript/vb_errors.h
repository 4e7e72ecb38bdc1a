// Copyright 2026 The Veltmark authors.
//
// The errors of the VBScript interpreter. Compile errors are VbCompileError
// (thrown by the lexer and parser, caught by the engine, never by a
// script). Runtime errors are rz::Error with VBScript's numbers, made by the
// factories below or by rz::Error's own ones (5, 6, 9, 13, 91, 94, 438,
// 450). ScriptAborted ends a run that passed its time limit; no On Error
// statement can catch it.

#ifndef RZ_VBSCRIPT_VB_ERRORS_H_
#define RZ_VBSCRIPT_VB_ERRORS_H_

#include <cstdint>
#include <stdexcept>
#include <string>
#include <string_view>

#include "core/error.h"

namespace rz::vb {

inline constexpr std::string_view kCompileSource = "VBScript compilation error";
inline constexpr std::string_view kRuntimeSource = "VBScript runtime error";

// The number reported when a run passes its time limit (the automation
// "operation aborted" code).
inline constexpr int32_t kTimeoutNumber = static_cast<int32_t>(0x80004004);

struct VbCompileError : std::runtime_error {
  VbCompileError(int32_t number_in, std::string description_in, int32_t line_in)
      : std::runtime_error(description_in),
        number(number_in),
        description(std::move(description_in)),
        line(line_in) {}
  int32_t number;
  std::string description;
  int32_t line;
};

struct ScriptAborted : std::runtime_error {
  ScriptAborted() : std::runtime_error("script timed out") {}
};

// Compile error numbers.
enum CompileCode : int32_t {
  kSyntaxError = 1002,
  kExpectedLParen = 1005,
  kExpectedRParen = 1006,
  kExpectedIdentifier = 1010,
  kExpectedEquals = 1011,
  kExpectedIf = 1012,
  kExpectedTo = 1013,
  kExpectedEnd = 1014,
  kExpectedFunction = 1015,
  kExpectedSub = 1016,
  kExpectedThen = 1017,
  kExpectedWend = 1018,
  kExpectedLoop = 1019,
  kExpectedNext = 1020,
  kExpectedCase = 1021,
  kExpectedSelect = 1022,
  kExpectedExpression = 1023,
  kExpectedStatement = 1024,
  kExpectedEndOfStatement = 1025,
  kExpectedWith = 1029,
  kIdentifierTooLong = 1030,
  kInvalidNumber = 1031,
  kInvalidCharacter = 1032,
  kUnterminatedString = 1033,
  kInvalidExit = 1039,
  kInvalidForVariable = 1040,
  kNameRedefined = 1041,
  kExpectedIn = 1046,
  kTooDeep = 28,  // nesting beyond the parser's limit: "Out of stack space"
};

// The standard text of a compile error number.
std::string CompileMessage(int32_t number);
VbCompileError MakeCompileError(int32_t number, int32_t line);

// The standard VBScript text of a runtime error number ("Unknown runtime
// error" for numbers without one).
std::string RuntimeMessage(int32_t number);

// Runtime errors without an rz::Error factory.
Error OutOfMemory();                             // 7
Error DivisionByZero();                          // 11
Error OutOfStringSpace();                        // 14
Error OutOfStackSpace();                         // 28
Error UnknownProcedure(std::string_view name);   // 13, names the procedure
Error ObjectRequired(std::string_view what);     // 424
Error NotACollection();                          // 451
Error VariableUndefined(std::string_view name);  // 500
Error IllegalAssignment(std::string_view name);  // 501
Error ArrayFixed(std::string_view name);         // 10

}  // namespace rz::vb

#endif  // RZ_VBSCRIPT_VB_ERRORS_H_
