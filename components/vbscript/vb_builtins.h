// Copyright 2026 The Veltmark authors.
//
// The built-in functions and constants of the VBScript interpreter. A
// built-in takes its arguments by value (already evaluated, objects already
// resolved where the function needs a value) and returns a Variant; it
// raises rz::Error with VBScript's numbers (5 for a bad argument, 13 for a
// wrong type, 94 for Null where a value is required).
//
// The table is built once and shared; lookups take the upper-cased name.
// The functions live in four files by subject: text, conversion and math,
// dates, and the rest (arrays, type tests, MsgBox) in vb_builtins.cc.

#ifndef RZ_VBSCRIPT_VB_BUILTINS_H_
#define RZ_VBSCRIPT_VB_BUILTINS_H_

#include <cstdint>
#include <functional>
#include <string_view>
#include <vector>

#include "core/dispatch.h"
#include "core/variant.h"

namespace rz {
class Toolkit;
}

namespace rz::vb {

// What built-ins need from the engine. Not owned.
struct BuiltinContext {
  Toolkit* toolkit = nullptr;   // MsgBox; null: MsgBox answers 1 silently
  std::function<double()> now;  // the current date serial
  uint32_t rnd_state = 327680;  // Rnd's generator
  double last_rnd = 0;
};

using BuiltinFn = Variant (*)(BuiltinContext& context, DispatchArgs& args);

struct Builtin {
  std::string_view key;  // upper-cased name
  int min_args;
  int max_args;
  BuiltinFn fn;
};

// The built-in named `key` (upper-cased), or null.
const Builtin* FindBuiltin(std::string_view key);
// The vb... constant named `key` (upper-cased), or null.
const Variant* FindConstant(std::string_view key);

// Registration by subject (each file adds its own).
void AddTextBuiltins(std::vector<Builtin>* table);
void AddMathBuiltins(std::vector<Builtin>* table);
void AddDateBuiltins(std::vector<Builtin>* table);

// Shared argument helpers.
// The argument, or `fallback` when it was not given or is Empty.
const Variant& ArgOr(const DispatchArgs& args, size_t index,
                     const Variant& fallback);
bool AnyNull(const DispatchArgs& args, size_t count);
// A serial from a Date, a number or a date text; error 13 otherwise.
double ToDateSerial(const Variant& value);

}  // namespace rz::vb

#endif  // RZ_VBSCRIPT_VB_BUILTINS_H_
