// Copyright 2026 The Veltmark authors.

#include "core/variant.h"

#include <cmath>
#include <limits>
#include <utility>

#include "core/date_time.h"
#include "core/dispatch.h"
#include "core/error.h"
#include "core/text.h"

namespace rz {
namespace {

// Rounds half to even, then checks the range of the target type.
template <typename Int>
Int RoundToInt(double value, const Variant& original) {
  const double rounded = std::nearbyint(value);
  if (!(rounded >= static_cast<double>(std::numeric_limits<Int>::min()) &&
        rounded <= static_cast<double>(std::numeric_limits<Int>::max()))) {
    throw Error::Overflow(original.IsString() ? original.ToString()
                                              : ShortestNumberText(value));
  }
  return static_cast<Int>(rounded);
}

double NumberFromText(const std::string& text) {
  if (!IsNumericText(text)) throw Error::TypeMismatch(text);
  return LeadingNumber(text);
}

std::string DateText(double serial) {
  const double day = std::floor(serial);
  const double time = serial - day;
  // A time that rounds to the next second of the day still counts as 0.
  const bool has_time = std::lround(time * 86400.0) % 86400 != 0;
  if (day == 0 && has_time) return FormatTime(serial);
  if (!has_time) return FormatDate(serial);
  return FormatDateTime(serial);
}

// The block behind a shared array: the items and a link for the list of
// arrays waiting to be freed.
struct ArrayBox {
  VariantArray items;
  ArrayBox* next_dead = nullptr;
};

// Arrays whose last owner let go while another array of this thread was
// being freed: a linked list through the boxes themselves, so queueing one
// never allocates and never fails. Both are trivially destructible, so they
// stay usable while the thread's other objects are destroyed.
thread_local ArrayBox* dead_boxes = nullptr;
thread_local bool freeing_boxes = false;

// Called when the last owner of an array lets go. Freeing an array frees
// its items; an item that is the last owner of a nested array comes back
// here, and that array is queued instead of freed inside the outer one. The
// outermost call frees the queue one array at a time, so the stack stays
// flat however deep the nesting.
struct ArrayBoxDeleter {
  void operator()(ArrayBox* box) const noexcept {
    box->next_dead = dead_boxes;
    dead_boxes = box;
    if (freeing_boxes) return;
    freeing_boxes = true;
    while (dead_boxes != nullptr) {
      ArrayBox* next = dead_boxes;
      dead_boxes = next->next_dead;
      delete next;
    }
    freeing_boxes = false;
  }
};

// Equality of two arrays, level by level through a work list.
bool SameItems(const VariantArray& first, const VariantArray& second,
               bool (*same_scalar)(const Variant&, const Variant&)) {
  std::vector<std::pair<const VariantArray*, const VariantArray*>> pending = {
      {&first, &second}};
  while (!pending.empty()) {
    const auto [left, right] = pending.back();
    pending.pop_back();
    if (left == right) continue;
    if (left->size() != right->size()) return false;
    for (size_t i = 0; i < left->size(); ++i) {
      const Variant& a = (*left)[i];
      const Variant& b = (*right)[i];
      if (a.IsArray() && b.IsArray()) {
        pending.emplace_back(&a.ToArray(), &b.ToArray());
      } else if (!same_scalar(a, b)) {
        return false;
      }
    }
  }
  return true;
}

}  // namespace

std::shared_ptr<VariantArray> Variant::ShareArray(VariantArray items) {
  std::shared_ptr<ArrayBox> box(new ArrayBox{std::move(items)},
                                ArrayBoxDeleter());
  return std::shared_ptr<VariantArray>(box, &box->items);
}

Variant::Value Variant::CopyOf(const Value& value) {
  if (const auto* text = std::get_if<std::string>(&value)) {
    std::string copy = *text;  // the only copy that can fail
    return Value(std::in_place_type<std::string>, std::move(copy));
  }
  return value;
}

Variant& Variant::operator=(const Variant& other) {
  Value copy = CopyOf(other.value_);
  value_ = std::move(copy);
  return *this;
}

bool Variant::IsNumber() const {
  switch (Type()) {
    case VariantType::kBoolean:
    case VariantType::kInteger:
    case VariantType::kLong:
    case VariantType::kDouble:
    case VariantType::kDate:
      return true;
    default:
      return false;
  }
}

bool Variant::IsBlank() const {
  if (IsEmpty() || IsNull()) return true;
  return IsString() && std::get<std::string>(value_).empty();
}

double Variant::ToDouble() const {
  switch (Type()) {
    case VariantType::kEmpty:
      return 0;
    case VariantType::kNull:
      throw Error::InvalidUseOfNull();
    case VariantType::kBoolean:
      return std::get<bool>(value_) ? -1 : 0;
    case VariantType::kInteger:
      return std::get<int16_t>(value_);
    case VariantType::kLong:
      return std::get<int32_t>(value_);
    case VariantType::kDouble:
      return std::get<double>(value_);
    case VariantType::kDate:
      return std::get<DateTag>(value_).serial;
    case VariantType::kString:
      return NumberFromText(std::get<std::string>(value_));
    case VariantType::kObject: {
      const auto& object = std::get<std::shared_ptr<Dispatch>>(value_);
      if (!object) throw Error::ObjectNotSet("Nothing");
      return object->Get("").ToDouble();
    }
    case VariantType::kArray:
      break;
  }
  throw Error::TypeMismatch(TypeName());
}

int16_t Variant::ToInteger() const {
  if (Type() == VariantType::kInteger) return std::get<int16_t>(value_);
  return RoundToInt<int16_t>(ToDouble(), *this);
}

int32_t Variant::ToLong() const {
  if (Type() == VariantType::kLong) return std::get<int32_t>(value_);
  return RoundToInt<int32_t>(ToDouble(), *this);
}

bool Variant::ToBool() const {
  if (Type() == VariantType::kBoolean) return std::get<bool>(value_);
  if (IsString()) {
    const std::string& text = std::get<std::string>(value_);
    const std::string trimmed = Trim(text);
    if (EqualsIgnoreCase(trimmed, "True")) return true;
    if (EqualsIgnoreCase(trimmed, "False")) return false;
    return NumberFromText(text) != 0;
  }
  return ToDouble() != 0;
}

double Variant::ToDate() const {
  if (IsString()) {
    const std::string& text = std::get<std::string>(value_);
    if (std::optional<double> serial = ParseDateTime(text)) return *serial;
    return NumberFromText(text);
  }
  return ToDouble();
}

size_t Variant::TextSize() const {
  const std::string* text = std::get_if<std::string>(&value_);
  return text == nullptr ? 0 : text->size();
}

std::string_view Variant::TextView() const {
  const std::string* text = std::get_if<std::string>(&value_);
  return text == nullptr ? std::string_view() : std::string_view(*text);
}

std::string Variant::ToString() const {
  switch (Type()) {
    case VariantType::kEmpty:
      return "";
    case VariantType::kNull:
      throw Error::InvalidUseOfNull();
    case VariantType::kBoolean:
      return std::get<bool>(value_) ? "True" : "False";
    case VariantType::kInteger:
      return std::to_string(std::get<int16_t>(value_));
    case VariantType::kLong:
      return std::to_string(std::get<int32_t>(value_));
    case VariantType::kDouble:
      return ShortestNumberText(std::get<double>(value_));
    case VariantType::kDate:
      return DateText(std::get<DateTag>(value_).serial);
    case VariantType::kString:
      return std::get<std::string>(value_);
    case VariantType::kObject: {
      const auto& object = std::get<std::shared_ptr<Dispatch>>(value_);
      if (!object) throw Error::ObjectNotSet("Nothing");
      return object->Get("").ToString();
    }
    case VariantType::kArray:
      break;
  }
  throw Error::TypeMismatch(TypeName());
}

std::shared_ptr<Dispatch> Variant::ToObject() const {
  if (IsObject()) {
    const auto& object = std::get<std::shared_ptr<Dispatch>>(value_);
    if (!object) throw Error::ObjectNotSet("Nothing");
    return object;
  }
  if (IsEmpty() || IsNull()) throw Error::ObjectNotSet(TypeName());
  throw Error::TypeMismatch(ToString());
}

const VariantArray& Variant::ToArray() const {
  if (!IsArray()) throw Error::TypeMismatch(TypeName());
  return *std::get<std::shared_ptr<VariantArray>>(value_);
}

VariantArray& Variant::MutableArray() {
  if (!IsArray()) throw Error::TypeMismatch(TypeName());
  auto& items = std::get<std::shared_ptr<VariantArray>>(value_);
  // Arrays are values: detach before the first write to a shared copy.
  if (items.use_count() > 1) items = ShareArray(VariantArray(*items));
  return *items;
}

std::string_view Variant::TypeName() const {
  static constexpr std::string_view kNames[] = {
      "Empty",  "Null", "Boolean", "Integer", "Long",
      "Double", "Date", "String",  "Object",  "Variant()"};
  if (IsObject() && !std::get<std::shared_ptr<Dispatch>>(value_)) {
    return "Nothing";
  }
  return kNames[value_.index()];
}

bool operator==(const Variant& a, const Variant& b) {
  if (a.IsArray() && b.IsArray()) {
    return SameItems(a.ToArray(), b.ToArray(),
                     [](const Variant& x, const Variant& y) {
                       return x.value_ == y.value_;
                     });
  }
  return a.value_ == b.value_;
}

double LeadingNumberOf(const Variant& value) {
  if (value.IsBlank()) return 0;
  if (value.IsString()) return LeadingNumber(value.ToString());
  if (value.IsNumber()) return value.ToDouble();
  return LeadingNumber(value.ToString());
}

namespace {

int Sign(double difference) { return (difference > 0) - (difference < 0); }

}  // namespace

std::optional<int> Compare(const Variant& a, const Variant& b,
                           CompareMode mode) {
  if (a.IsNull() || b.IsNull()) return std::nullopt;
  if (a.IsObject() || b.IsObject() || a.IsArray() || b.IsArray()) {
    throw Error::TypeMismatch(a.IsObject() || a.IsArray() ? a.TypeName()
                                                          : b.TypeName());
  }
  const bool a_text = a.IsString();
  const bool b_text = b.IsString();
  if (a_text && b_text) {
    const std::string left = a.ToString();
    const std::string right = b.ToString();
    if (mode == CompareMode::kText) return CompareIgnoreCase(left, right);
    return Sign(left.compare(right));
  }
  if (a_text != b_text) {
    const Variant& text = a_text ? a : b;
    const Variant& other = a_text ? b : a;
    if (other.IsEmpty()) {
      // Empty against text compares as the empty text.
      const int order = text.ToString().empty() ? 0 : 1;
      return a_text ? order : -order;
    }
    if (!IsNumericText(text.ToString())) return a_text ? 1 : -1;
  }
  return Sign(a.ToDouble() - b.ToDouble());
}

}  // namespace rz
