// Copyright 2026 The Veltmark authors.
//
// The VBScript operators on Variants, with VBScript's result types: Integer
// arithmetic stays Integer until it overflows, then becomes Long, then
// Double; "/" and "^" give Double; a Date plus a number is a Date; Null in
// gives Null out (except the cases where And/Or/Imp are decided without
// it); "+" of two texts joins them. Operands are plain values: the caller
// resolves an object to its default member first ("Is" is not here).
//
// Errors: 11 (division by zero), 13 (a text that is not a number, an
// object or array), 6 (overflow of \ and Mod operands), 5 (a power with no
// real result), 14 (a text longer than kMaxTextLength).

#ifndef RZ_VBSCRIPT_VB_OPERATORS_H_
#define RZ_VBSCRIPT_VB_OPERATORS_H_

#include <cstddef>
#include <cstdint>

#include "core/variant.h"
#include "vbscript/vb_ast.h"

namespace rz::vb {

// The longest text a script may build (64 MiB).
inline constexpr size_t kMaxTextLength = size_t{64} << 20;
// The most elements one array may hold (error 7 beyond).
inline constexpr int64_t kMaxArrayElements = int64_t{1} << 22;
// The most dimensions one array may have (error 9 beyond).
inline constexpr size_t kMaxArrayDimensions = 60;

// Every binary operator except kIs.
Variant ApplyBinary(BinaryOp op, const Variant& a, const Variant& b);
Variant ApplyNegate(const Variant& value);
Variant ApplyNot(const Variant& value);

// The smallest of Integer, Long, Double that holds an integral value.
Variant FitInteger(double value);

}  // namespace rz::vb

#endif  // RZ_VBSCRIPT_VB_OPERATORS_H_
