// Copyright 2026 The Veltmark authors.
//
// Conversions between Variant and JScript values.
//
// Variant -> JScript: Empty is undefined, Null is null, Boolean, Integer,
// Long and Double are numbers (Boolean a boolean), a Date is its day number
// (days since 1899-12-30, time of day as the fraction, the same number the
// other script language and the engine use), a String is a string, an
// Object is a proxy onto it (null for Nothing), an Array a JScript array.
//
// JScript -> Variant: undefined is Empty, null is Null, a boolean is a
// Boolean, a whole number within 32 bits is a Long and any other number a
// Double, a string is a String, a proxy gives back its object, an array an
// Array, a Date object the Date of its local date and time; any other
// object (a function, a plain object) becomes its text.
//
// Both run inside a native function or a protected call: they may throw
// Duktape errors (and rz::Error 28 for arrays nested more than 64 deep, either
// way).

#ifndef RZ_JSCRIPT_JS_VALUE_H_
#define RZ_JSCRIPT_JS_VALUE_H_

#include "core/variant.h"
#include "duktape.h"

namespace rz {

void PushVariant(duk_context* ctx, const Variant& value);

Variant ToVariant(duk_context* ctx, duk_idx_t index);

}  // namespace rz

#endif  // RZ_JSCRIPT_JS_VALUE_H_
