// Copyright 2026 The Veltmark authors.

#include "vbscript/vb_operators.h"

#include <cmath>
#include <cstdint>
#include <string>

#include "core/error.h"
#include "core/text.h"
#include "vbscript/vb_errors.h"
#include "vbscript/vb_work_clock.h"

namespace rz::vb {
namespace {

// Numeric rank of an operand: the result type of an arithmetic operator is
// the widest rank of its operands.
enum class Rank { kInteger, kLong, kDouble, kDate };

struct Number {
  double value;
  Rank rank;
};

Number ToNumber(const Variant& value) {
  switch (value.Type()) {
    case VariantType::kEmpty:
      return {0, Rank::kInteger};
    case VariantType::kBoolean:
      return {value.ToBool() ? -1.0 : 0.0, Rank::kInteger};
    case VariantType::kInteger:
      return {value.ToDouble(), Rank::kInteger};
    case VariantType::kLong:
      return {value.ToDouble(), Rank::kLong};
    case VariantType::kDate:
      return {value.ToDate(), Rank::kDate};
    case VariantType::kString:
    case VariantType::kDouble:
      return {value.ToDouble(), Rank::kDouble};
    default:
      throw Error::TypeMismatch(value.TypeName());
  }
}

Variant Typed(double result, Rank rank) {
  if (!std::isfinite(result)) throw Error::Overflow(ShortestNumberText(0));
  if (rank == Rank::kDate) return Variant::Date(result);
  if (rank == Rank::kDouble) return Variant(result);
  if (rank == Rank::kInteger && result >= -32768 && result <= 32767) {
    return Variant(static_cast<int16_t>(result));
  }
  if (result >= -2147483648.0 && result <= 2147483647.0) {
    return Variant(static_cast<int32_t>(result));
  }
  return Variant(result);
}

Rank Wider(Rank a, Rank b) { return a > b ? a : b; }

Variant Concat(const Variant& a, const Variant& b) {
  if (a.IsNull() && b.IsNull()) return Variant::Null();
  std::string text = a.IsNull() ? std::string() : a.ToString();
  const std::string right = b.IsNull() ? std::string() : b.ToString();
  if (text.size() + right.size() > kMaxTextLength) throw OutOfStringSpace();
  text += right;
  ChargeWork(text.size() + right.size());
  return Variant(std::move(text));
}

bool IsTextLike(const Variant& value) {
  return value.IsString() || value.IsEmpty();
}

Variant Add(const Variant& a, const Variant& b) {
  if (a.IsString() && IsTextLike(b)) return Concat(a, b);
  if (b.IsString() && IsTextLike(a)) return Concat(a, b);
  const Number x = ToNumber(a);
  const Number y = ToNumber(b);
  return Typed(x.value + y.value, Wider(x.rank, y.rank));
}

Variant Subtract(const Variant& a, const Variant& b) {
  const Number x = ToNumber(a);
  const Number y = ToNumber(b);
  Rank rank = Wider(x.rank, y.rank);
  if (x.rank == Rank::kDate && y.rank == Rank::kDate) rank = Rank::kDouble;
  return Typed(x.value - y.value, rank);
}

Variant Multiply(const Variant& a, const Variant& b) {
  const Number x = ToNumber(a);
  const Number y = ToNumber(b);
  Rank rank = Wider(x.rank, y.rank);
  if (rank == Rank::kDate) rank = Rank::kDouble;
  return Typed(x.value * y.value, rank);
}

Variant Divide(const Variant& a, const Variant& b) {
  const double x = ToNumber(a).value;
  const double y = ToNumber(b).value;
  if (y == 0) throw DivisionByZero();
  return Typed(x / y, Rank::kDouble);
}

Variant Power(const Variant& a, const Variant& b) {
  const double result = std::pow(ToNumber(a).value, ToNumber(b).value);
  if (std::isnan(result)) throw Error::InvalidArgument("^");
  return Typed(result, Rank::kDouble);
}

// The integer operands of \ and Mod, rounded as CLng does.
Rank IntegerOperands(const Variant& a, const Variant& b, int32_t* x,
                     int32_t* y) {
  const Rank rank = Wider(ToNumber(a).rank, ToNumber(b).rank);
  *x = a.IsEmpty() ? 0 : a.ToLong();
  *y = b.IsEmpty() ? 0 : b.ToLong();
  if (*y == 0) throw DivisionByZero();
  return rank == Rank::kInteger ? Rank::kInteger : Rank::kLong;
}

Variant IntegerDivide(const Variant& a, const Variant& b) {
  int32_t x = 0, y = 0;
  const Rank rank = IntegerOperands(a, b, &x, &y);
  return Typed(static_cast<double>(static_cast<int64_t>(x) / y), rank);
}

Variant Modulo(const Variant& a, const Variant& b) {
  int32_t x = 0, y = 0;
  const Rank rank = IntegerOperands(a, b, &x, &y);
  return Typed(static_cast<double>(static_cast<int64_t>(x) % y), rank);
}

Variant Comparison(BinaryOp op, const Variant& a, const Variant& b) {
  const std::optional<int> order = Compare(a, b);
  if (!order) return Variant::Null();
  switch (op) {
    case BinaryOp::kEq:
      return Variant(*order == 0);
    case BinaryOp::kNe:
      return Variant(*order != 0);
    case BinaryOp::kLt:
      return Variant(*order < 0);
    case BinaryOp::kGt:
      return Variant(*order > 0);
    case BinaryOp::kLe:
      return Variant(*order <= 0);
    default:
      return Variant(*order >= 0);
  }
}

int32_t LogicBits(BinaryOp op, int32_t x, int32_t y) {
  switch (op) {
    case BinaryOp::kAnd:
      return x & y;
    case BinaryOp::kOr:
      return x | y;
    case BinaryOp::kXor:
      return x ^ y;
    case BinaryOp::kEqv:
      return ~(x ^ y);
    default:
      return ~x | y;  // kImp
  }
}

int32_t LogicOperand(const Variant& value) {
  if (value.IsEmpty()) return 0;
  if (value.Type() == VariantType::kBoolean) return value.ToBool() ? -1 : 0;
  return value.ToLong();
}

// And/Or/Imp with one Null operand: decided by the other where it can be.
Variant LogicWithNull(BinaryOp op, const Variant& a, const Variant& b) {
  const bool a_null = a.IsNull();
  const Variant& other = a_null ? b : a;
  if (other.IsNull()) return Variant::Null();
  const int32_t bits = LogicOperand(other);
  if (op == BinaryOp::kAnd && bits == 0) return other;
  if (op == BinaryOp::kOr && bits == -1) return other;
  if (op == BinaryOp::kImp) {
    if (!a_null && bits == 0) return Variant(true);
    if (a_null && bits == -1) return other;
  }
  return Variant::Null();
}

Variant Logic(BinaryOp op, const Variant& a, const Variant& b) {
  if (a.IsNull() || b.IsNull()) return LogicWithNull(op, a, b);
  const int32_t result = LogicBits(op, LogicOperand(a), LogicOperand(b));
  const bool both_bool =
      a.Type() == VariantType::kBoolean && b.Type() == VariantType::kBoolean;
  if (both_bool) return Variant(result != 0);
  const Rank rank = Wider(ToNumber(a).rank, ToNumber(b).rank);
  return Typed(result, rank == Rank::kInteger ? Rank::kInteger : Rank::kLong);
}

}  // namespace

Variant FitInteger(double value) { return Typed(value, Rank::kInteger); }

Variant ApplyBinary(BinaryOp op, const Variant& a, const Variant& b) {
  if (op == BinaryOp::kConcat) return Concat(a, b);
  if (op >= BinaryOp::kAnd) return Logic(op, a, b);
  if (a.IsNull() || b.IsNull()) return Variant::Null();
  switch (op) {
    case BinaryOp::kPow:
      return Power(a, b);
    case BinaryOp::kMul:
      return Multiply(a, b);
    case BinaryOp::kDiv:
      return Divide(a, b);
    case BinaryOp::kIntDiv:
      return IntegerDivide(a, b);
    case BinaryOp::kMod:
      return Modulo(a, b);
    case BinaryOp::kAdd:
      return Add(a, b);
    case BinaryOp::kSub:
      return Subtract(a, b);
    default:
      return Comparison(op, a, b);
  }
}

Variant ApplyNegate(const Variant& value) {
  if (value.IsNull()) return Variant::Null();
  const Number number = ToNumber(value);
  return Typed(-number.value, number.rank);
}

Variant ApplyNot(const Variant& value) {
  if (value.IsNull()) return Variant::Null();
  if (value.Type() == VariantType::kBoolean) return Variant(!value.ToBool());
  const Rank rank = ToNumber(value).rank;
  return Typed(~LogicOperand(value),
               rank == Rank::kInteger ? Rank::kInteger : Rank::kLong);
}

}  // namespace rz::vb
