// Copyright 2026 The Veltmark authors.
//
// How errors cross between JScript and the host.
//
// Into JScript: an rz::Error raised by a named object (or any C++ failure in
// a native function) becomes a JScript Error object whose `number` and
// `description` carry the system's number and text, so a script can catch
// it (`e.number`, `e.description`, `e.message`). GuardNative wraps every
// native function and protected body to do that conversion; nothing C++ is
// thrown through the interpreter.
//
// Out of JScript: ClassifyError maps a Duktape error (its name and message)
// to the number and description a JScript user knows:
//   compile:  1002 Syntax error, 1015 Unterminated string constant,
//             1016 Unterminated comment, 1019/1020 break/continue outside
//             of a loop, 1018 'return' outside of function, 5017 regular
//             expression syntax;
//   runtime:  5009 "'x' is undefined", 5002 Function expected, 5007 Object
//             expected, 13 Type mismatch (other type errors), 28 Out of
//             stack space, 5 Invalid procedure call or argument (other
//             range errors), 5022 for a thrown value that carries no
//             number, 7 Out of memory.
// An Error whose `number` property is a number keeps that number (ours,
// or one the script set).

#ifndef RZ_JSCRIPT_SCRIPT_FAULT_H_
#define RZ_JSCRIPT_SCRIPT_FAULT_H_

#include <cstdint>
#include <exception>
#include <new>
#include <string>
#include <string_view>
#include <utility>

#include "core/error.h"
#include "duktape.h"

namespace rz {

// A failure as a JScript user sees it.
struct JsFault {
  int32_t number = 0;
  std::string description;
  bool operator==(const JsFault&) const = default;
};

// The number the engine reports when a time limit stops a script: the
// automation "operation aborted" code.
inline constexpr int32_t kTimeoutErrorNumber = static_cast<int32_t>(0x80004004);
inline constexpr int32_t kOutOfStackNumber = 28;

enum class FaultPhase { kCompile, kRuntime };

// The JScript number and description for a Duktape error named `name`
// ("SyntaxError", "TypeError", ...) with `message`.
JsFault ClassifyError(std::string_view name, std::string_view message,
                      FaultPhase phase);

// Pushes an Error object for `number`/`description` and throws it into the
// script. Never returns.
[[noreturn]] void ThrowFault(duk_context* ctx, int32_t number,
                             std::string_view description);

// Runs `body` (returning duk_ret_t) and turns any C++ exception it lets out
// into a JScript error. Duktape's own unwinding passes through untouched.
template <typename Body>
duk_ret_t GuardNative(duk_context* ctx, Body&& body) {
  JsFault fault;
  try {
    return std::forward<Body>(body)();
  } catch (const Error& error) {
    fault = {error.Number(), error.Description()};
  } catch (const std::bad_alloc&) {
    fault = {7, "Out of memory"};
  } catch (const std::exception& error) {
    fault = {5, error.what()};
  }
  ThrowFault(ctx, fault.number, fault.description);
}

// Where a thrown value points into the added code: the chunk's index and
// the 1-based line; chunk -1 when unknown.
struct FaultPlace {
  int chunk = -1;
  int32_t line = 0;
};

// The name under which chunk `index` of the added code is compiled; stack
// traces show it as "(codeN:line)".
std::string ChunkName(int index);

// Describes the thrown value at the top of the stack without running
// anything the script could have left there unprotected. The value stays.
// `phase` chooses the mapping of Duktape's own errors.
struct ThrownValue {
  JsFault fault;
  FaultPlace place;
};
ThrownValue DescribeThrown(duk_context* ctx, FaultPhase phase);

// Finds the first "(codeN:L)" in a stack trace.
FaultPlace PlaceInStack(std::string_view stack);

}  // namespace rz

#endif  // RZ_JSCRIPT_SCRIPT_FAULT_H_
