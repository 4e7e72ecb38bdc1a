// Copyright 2026 The Veltmark authors.
//
// Conversion, math and number-text built-ins.

#include <cmath>
#include <cstdio>
#include <cstring>
#include <string>

#include "core/error.h"
#include "core/text.h"
#include "vbscript/vb_builtins.h"
#include "vbscript/vb_lexer.h"
#include "vbscript/vb_operators.h"

namespace rz::vb {
namespace {

Variant NullChecked(const Variant& value) {
  if (value.IsNull()) throw Error::InvalidUseOfNull();
  return value;
}

Variant CStrFn(BuiltinContext&, DispatchArgs& args) {
  return Variant(NullChecked(args[0]).ToString());
}
Variant CIntFn(BuiltinContext&, DispatchArgs& args) {
  return Variant(NullChecked(args[0]).ToInteger());
}
Variant CLngFn(BuiltinContext&, DispatchArgs& args) {
  return Variant(NullChecked(args[0]).ToLong());
}
Variant CDblFn(BuiltinContext&, DispatchArgs& args) {
  return Variant(NullChecked(args[0]).ToDouble());
}
Variant CBoolFn(BuiltinContext&, DispatchArgs& args) {
  return Variant(NullChecked(args[0]).ToBool());
}
Variant CDateFn(BuiltinContext&, DispatchArgs& args) {
  return Variant::Date(ToDateSerial(args[0]));
}

// Applies `fn` to a number keeping Integer/Long types where the result
// stays integral; Null passes through.
Variant KeepType(const Variant& value, double (*fn)(double)) {
  if (value.IsNull()) return Variant::Null();
  const double result = fn(value.ToDouble());
  switch (value.Type()) {
    case VariantType::kInteger:
    case VariantType::kLong:
    case VariantType::kBoolean:
    case VariantType::kEmpty:
      return FitInteger(result);
    case VariantType::kDate:
      return Variant::Date(result);
    default:
      return Variant(result);
  }
}

double Floor(double x) { return std::floor(x); }
double Trunc(double x) { return std::trunc(x); }
double Absolute(double x) { return std::fabs(x); }

Variant IntFn(BuiltinContext&, DispatchArgs& args) {
  return KeepType(args[0], Floor);
}
Variant FixFn(BuiltinContext&, DispatchArgs& args) {
  return KeepType(args[0], Trunc);
}
Variant AbsFn(BuiltinContext&, DispatchArgs& args) {
  return KeepType(args[0], Absolute);
}

Variant SgnFn(BuiltinContext&, DispatchArgs& args) {
  if (args[0].IsNull()) return Variant::Null();
  const double value = args[0].ToDouble();
  return Variant(static_cast<int16_t>(value > 0 ? 1 : (value < 0 ? -1 : 0)));
}

// Rounds half to even at `digits` decimals, as VBScript's Round does.
Variant RoundFn(BuiltinContext&, DispatchArgs& args) {
  if (args[0].IsNull()) return Variant::Null();
  const int32_t digits = ArgOr(args, 1, Variant(int32_t{0})).ToLong();
  if (digits < 0 || digits > 22) throw Error::InvalidArgument("Round");
  const double scale = std::pow(10.0, digits);
  const double value = args[0].ToDouble();
  const double rounded = std::nearbyint(value * scale) / scale;
  if (!std::isfinite(rounded)) return Variant(value);
  if (args[0].Type() == VariantType::kInteger ||
      args[0].Type() == VariantType::kLong) {
    return args[0];
  }
  return Variant(rounded);
}

Variant Checked(double result, const char* name) {
  if (!std::isfinite(result)) throw Error::InvalidArgument(name);
  return Variant(result);
}

#define RZ_VB_MATH(FnName, expression, label)           \
  Variant FnName(BuiltinContext&, DispatchArgs& args) { \
    if (args[0].IsNull()) return Variant::Null();       \
    const double x = args[0].ToDouble();                \
    return Checked(expression, label);                  \
  }

RZ_VB_MATH(SqrFn, x < 0 ? NAN : std::sqrt(x), "Sqr")
RZ_VB_MATH(ExpFn, std::exp(x), "Exp")
RZ_VB_MATH(LogFn, x <= 0 ? NAN : std::log(x), "Log")
RZ_VB_MATH(SinFn, std::sin(x), "Sin")
RZ_VB_MATH(CosFn, std::cos(x), "Cos")
RZ_VB_MATH(TanFn, std::tan(x), "Tan")
RZ_VB_MATH(AtnFn, std::atan(x), "Atn")
#undef RZ_VB_MATH

// VBScript's generator: a 24-bit linear congruence.
double NextRnd(BuiltinContext& context) {
  context.rnd_state = (context.rnd_state * 1140671485u + 12820163u) & 0xFFFFFF;
  context.last_rnd = context.rnd_state / 16777216.0;
  return context.last_rnd;
}

Variant RndFn(BuiltinContext& context, DispatchArgs& args) {
  const double n = args.empty() ? 1 : args[0].ToDouble();
  if (n == 0) return Variant(context.last_rnd);
  if (n < 0) {
    const float f = static_cast<float>(n);
    uint32_t bits = 0;
    std::memcpy(&bits, &f, sizeof bits);
    context.rnd_state = (bits + (bits >> 24)) & 0xFFFFFF;
  }
  return Variant(NextRnd(context));
}

Variant RandomizeFn(BuiltinContext& context, DispatchArgs& args) {
  const double seed = args.empty() && context.now
                          ? context.now() * 86400.0
                          : (args.empty() ? 0 : args[0].ToDouble());
  const double scaled = std::fmod(std::fabs(seed) * 997, 16777216.0);
  context.rnd_state =
      std::isfinite(scaled) ? static_cast<uint32_t>(scaled) : 327680u;
  return Variant();
}

// Hex/Oct: an Integer (or a value that fits one) shows 16 bits, others 32.
Variant RadixText(const Variant& value, const char* format) {
  if (value.IsNull()) return Variant::Null();
  const int32_t number = value.ToLong();
  const bool narrow = value.Type() == VariantType::kInteger ||
                      value.Type() == VariantType::kBoolean ||
                      (value.Type() != VariantType::kLong && number >= -32768 &&
                       number <= 32767);
  const uint32_t bits =
      narrow ? static_cast<uint16_t>(number) : static_cast<uint32_t>(number);
  char buffer[16];
  std::snprintf(buffer, sizeof buffer, format, bits);
  return Variant(std::string(buffer));
}

Variant HexFn(BuiltinContext&, DispatchArgs& args) {
  return RadixText(args[0], "%X");
}
Variant OctFn(BuiltinContext&, DispatchArgs& args) {
  return RadixText(args[0], "%o");
}

Variant IsNumericFn(BuiltinContext&, DispatchArgs& args) {
  const Variant& value = args[0];
  switch (value.Type()) {
    case VariantType::kEmpty:
    case VariantType::kBoolean:
    case VariantType::kInteger:
    case VariantType::kLong:
    case VariantType::kDouble:
      return Variant(true);
    case VariantType::kString:
      return Variant(IsNumericText(value.ToString()));
    default:
      return Variant(false);
  }
}

Variant IsDateFn(BuiltinContext&, DispatchArgs& args) {
  if (args[0].Type() == VariantType::kDate) return Variant(true);
  double serial = 0;
  return Variant(args[0].IsString() &&
                 ParseDateText(args[0].ToString(), &serial));
}

}  // namespace

void AddMathBuiltins(std::vector<Builtin>* table) {
  table->insert(table->end(), {
                                  {"CSTR", 1, 1, CStrFn},
                                  {"CINT", 1, 1, CIntFn},
                                  {"CLNG", 1, 1, CLngFn},
                                  {"CDBL", 1, 1, CDblFn},
                                  {"CSNG", 1, 1, CDblFn},
                                  {"CBOOL", 1, 1, CBoolFn},
                                  {"CDATE", 1, 1, CDateFn},
                                  {"INT", 1, 1, IntFn},
                                  {"FIX", 1, 1, FixFn},
                                  {"ABS", 1, 1, AbsFn},
                                  {"SGN", 1, 1, SgnFn},
                                  {"ROUND", 1, 2, RoundFn},
                                  {"SQR", 1, 1, SqrFn},
                                  {"EXP", 1, 1, ExpFn},
                                  {"LOG", 1, 1, LogFn},
                                  {"SIN", 1, 1, SinFn},
                                  {"COS", 1, 1, CosFn},
                                  {"TAN", 1, 1, TanFn},
                                  {"ATN", 1, 1, AtnFn},
                                  {"RND", 0, 1, RndFn},
                                  {"RANDOMIZE", 0, 1, RandomizeFn},
                                  {"HEX", 1, 1, HexFn},
                                  {"OCT", 1, 1, OctFn},
                                  {"ISNUMERIC", 1, 1, IsNumericFn},
                                  {"ISDATE", 1, 1, IsDateFn},
                              });
}

}  // namespace rz::vb
