// Copyright 2026 The Veltmark authors.

#include "jscript/script_fault.h"

#include <gtest/gtest.h>

namespace rz {
namespace {

struct ClassifyCase {
  const char* name;
  const char* message;
  FaultPhase phase;
  int32_t number;
  const char* description;
};

TEST(ScriptFaultTest, MapsDuktapeErrorsToJScriptNumbers) {
  const ClassifyCase cases[] = {
      {"SyntaxError", "parse error (line 2)", FaultPhase::kCompile, 1002,
       "Syntax error"},
      {"SyntaxError", "unterminated string (line 1)", FaultPhase::kCompile,
       1015, "Unterminated string constant"},
      {"SyntaxError", "invalid regexp flags (line 1)", FaultPhase::kCompile,
       5017, "Syntax error in regular expression"},
      // The compile phase decides, whatever the name says.
      {"RangeError", "compiler recursion limit (line 9)", FaultPhase::kCompile,
       28, "Out of stack space"},
      {"ReferenceError", "identifier 'foo' undefined", FaultPhase::kRuntime,
       5009, "'foo' is undefined"},
      {"ReferenceError", "odd message", FaultPhase::kRuntime, 5009,
       "Undefined identifier"},
      {"TypeError", "undefined not callable (property 'f' of [object Object])",
       FaultPhase::kRuntime, 5002, "Function expected"},
      {"TypeError", "cannot read property 'x' of null", FaultPhase::kRuntime,
       5007, "Object expected"},
      {"TypeError", "cannot number coerce Symbol", FaultPhase::kRuntime, 13,
       "Type mismatch: cannot number coerce Symbol"},
      {"RangeError", "callstack limit", FaultPhase::kRuntime, 28,
       "Out of stack space"},
      {"RangeError", "C stack depth limit", FaultPhase::kRuntime, 28,
       "Out of stack space"},
      {"RangeError", "execution timeout", FaultPhase::kRuntime,
       kTimeoutErrorNumber, "Script timed out"},
      {"RangeError", "invalid array length", FaultPhase::kRuntime, 5,
       "Invalid procedure call or argument: invalid array length"},
      {"SyntaxError", "invalid regexp escape", FaultPhase::kRuntime, 5017,
       "Syntax error in regular expression"},
      {"Error", "alloc failed", FaultPhase::kRuntime, 7, "Out of memory"},
      {"Error", "", FaultPhase::kRuntime, 5022,
       "Exception thrown and not caught"},
      {"Error", "custom", FaultPhase::kRuntime, 5022, "custom"},
  };
  for (const ClassifyCase& c : cases) {
    const JsFault fault = ClassifyError(c.name, c.message, c.phase);
    EXPECT_EQ(fault.number, c.number) << c.name << ": " << c.message;
    EXPECT_EQ(fault.description, c.description) << c.name << ": " << c.message;
  }
}

struct StackCase {
  const char* stack;
  int chunk;
  int32_t line;
};

TEST(ScriptFaultTest, FindsTheFirstFrameInAddedCode) {
  const StackCase cases[] = {
      {"Error: x\n    at Hook (code1:7)", 0, 7},
      {"Error: x\n    at [anon] (dispatch_proxy.cc:120) internal\n"
       "    at get () native\n    at Hook (code3:12) strict\n"
       "    at Outer (code1:2)",
       2, 12},
      {"Error: x\n    at f (code0:3)\n    at g (code2:4)", 1, 4},
      {"Error: x\n    at f (codeX:3)", -1, 0},
      {"Error: x\n    at f (code1:)", -1, 0},
      {"Error: x\n    at f (code1:0)", -1, 0},
      {"Error: x\n    at f (code1:5x)", -1, 0},
      {"(code1", -1, 0},
      {"", -1, 0},
  };
  for (const StackCase& c : cases) {
    const FaultPlace place = PlaceInStack(c.stack);
    EXPECT_EQ(place.chunk, c.chunk) << c.stack;
    EXPECT_EQ(place.line, c.line) << c.stack;
  }
}

TEST(ScriptFaultTest, ChunkNamesAreOneBased) {
  EXPECT_EQ(ChunkName(0), "code1");
  EXPECT_EQ(ChunkName(11), "code12");
}

}  // namespace
}  // namespace rz
