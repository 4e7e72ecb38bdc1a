// Copyright 2026 The Veltmark authors.

#include "jscript/js_value.h"

#include <cmath>
#include <cstdint>
#include <limits>
#include <string>

#include "core/error.h"
#include "jscript/dispatch_proxy.h"
#include "jscript/script_fault.h"

namespace rz {
namespace {

// Arrays nested deeper than this do not cross between JScript and the
// host (either way): converting one recurses once per level.
constexpr int kMaxArrayDepth = 64;
// Milliseconds in a day and the day number of 1970-01-01.
constexpr double kMsPerDay = 86400000.0;
constexpr double kUnixEpochSerial = 25569.0;

Variant NumberToVariant(double number) {
  if (std::trunc(number) == number &&
      number >= std::numeric_limits<int32_t>::min() &&
      number <= std::numeric_limits<int32_t>::max()) {
    return Variant(static_cast<int32_t>(number));
  }
  return Variant(number);
}

std::string StringAt(duk_context* ctx, duk_idx_t index) {
  duk_size_t length = 0;
  const char* data = duk_get_lstring(ctx, index, &length);
  return std::string(data, length);
}

// Calls the method `name` of the object at `index` without arguments and
// returns its number.
double CallNumberMethod(duk_context* ctx, duk_idx_t index, const char* name) {
  duk_dup(ctx, index);
  duk_push_string(ctx, name);
  duk_call_prop(ctx, -2, 0);
  const double number = duk_to_number(ctx, -1);
  duk_pop_2(ctx);
  return number;
}

bool IsDateObject(duk_context* ctx, duk_idx_t index) {
  duk_get_global_string(ctx, "Date");
  const bool is_date = duk_instanceof(ctx, index, -1) != 0;
  duk_pop(ctx);
  return is_date;
}

// The day number of the date's local date and time.
Variant DateToVariant(duk_context* ctx, duk_idx_t index) {
  const double utc_ms = CallNumberMethod(ctx, index, "getTime");
  const double offset_minutes =
      CallNumberMethod(ctx, index, "getTimezoneOffset");
  if (std::isnan(utc_ms)) return Variant::Null();
  const double local_ms = utc_ms - offset_minutes * 60000.0;
  return Variant::Date(local_ms / kMsPerDay + kUnixEpochSerial);
}

Variant ToVariantAt(duk_context* ctx, duk_idx_t index, int depth);

Error NestedTooDeep() { return Error(kOutOfStackNumber, "Out of stack space"); }

Variant ArrayToVariant(duk_context* ctx, duk_idx_t index, int depth) {
  if (depth >= kMaxArrayDepth) throw NestedTooDeep();
  VariantArray items;
  const duk_size_t length = duk_get_length(ctx, index);
  items.reserve(length);
  for (duk_size_t i = 0; i < length; ++i) {
    duk_get_prop_index(ctx, index, static_cast<duk_uarridx_t>(i));
    items.push_back(ToVariantAt(ctx, duk_get_top_index(ctx), depth + 1));
    duk_pop(ctx);
  }
  return Variant(std::move(items));
}

Variant ObjectToVariant(duk_context* ctx, duk_idx_t index, int depth) {
  if (std::shared_ptr<Dispatch> object = DispatchOfProxy(ctx, index)) {
    return Variant(std::move(object));
  }
  if (duk_is_array(ctx, index)) return ArrayToVariant(ctx, index, depth);
  if (IsDateObject(ctx, index)) return DateToVariant(ctx, index);
  duk_dup(ctx, index);
  std::string text = duk_safe_to_string(ctx, -1);
  duk_pop(ctx);
  return Variant(std::move(text));
}

Variant ToVariantAt(duk_context* ctx, duk_idx_t index, int depth) {
  switch (duk_get_type(ctx, index)) {
    case DUK_TYPE_NONE:
    case DUK_TYPE_UNDEFINED:
      return Variant();
    case DUK_TYPE_NULL:
      return Variant::Null();
    case DUK_TYPE_BOOLEAN:
      return Variant(duk_get_boolean(ctx, index) != 0);
    case DUK_TYPE_NUMBER:
      return NumberToVariant(duk_get_number(ctx, index));
    case DUK_TYPE_STRING:
      return Variant(StringAt(ctx, index));
    case DUK_TYPE_OBJECT:
      return ObjectToVariant(ctx, index, depth);
    default: {
      duk_dup(ctx, index);
      std::string text = duk_safe_to_string(ctx, -1);
      duk_pop(ctx);
      return Variant(std::move(text));
    }
  }
}

// Nothing (an Object variant without an object) is null.
void PushObject(duk_context* ctx, const Variant& value) {
  std::shared_ptr<Dispatch> object;
  try {
    object = value.ToObject();
  } catch (const Error&) {
    duk_push_null(ctx);
    return;
  }
  PushDispatchProxy(ctx, std::move(object));
}

void PushVariantAt(duk_context* ctx, const Variant& value, int depth);

void PushArray(duk_context* ctx, const VariantArray& items, int depth) {
  if (depth >= kMaxArrayDepth) throw NestedTooDeep();
  const duk_idx_t array = duk_push_array(ctx);
  for (size_t i = 0; i < items.size(); ++i) {
    PushVariantAt(ctx, items[i], depth + 1);
    duk_put_prop_index(ctx, array, static_cast<duk_uarridx_t>(i));
  }
}

void PushVariantAt(duk_context* ctx, const Variant& value, int depth) {
  switch (value.Type()) {
    case VariantType::kEmpty:
      duk_push_undefined(ctx);
      return;
    case VariantType::kNull:
      duk_push_null(ctx);
      return;
    case VariantType::kBoolean:
      duk_push_boolean(ctx, value.ToBool() ? 1 : 0);
      return;
    case VariantType::kInteger:
    case VariantType::kLong:
      duk_push_int(ctx, value.ToLong());
      return;
    case VariantType::kDouble:
    case VariantType::kDate:
      duk_push_number(ctx, value.ToDouble());
      return;
    case VariantType::kString: {
      const std::string text = value.ToString();
      duk_push_lstring(ctx, text.data(), text.size());
      return;
    }
    case VariantType::kObject:
      PushObject(ctx, value);
      return;
    case VariantType::kArray:
      PushArray(ctx, value.ToArray(), depth);
      return;
  }
  duk_push_undefined(ctx);
}

}  // namespace

void PushVariant(duk_context* ctx, const Variant& value) {
  PushVariantAt(ctx, value, 0);
}

Variant ToVariant(duk_context* ctx, duk_idx_t index) {
  return ToVariantAt(ctx, duk_normalize_index(ctx, index), 0);
}

}  // namespace rz
