// Copyright 2026 The Veltmark authors.

#include "platform/field_definition.h"

#include <cmath>
#include <limits>

#include "core/error.h"

namespace rz {
namespace {

// ORDER FIELD ATTRIBUTES
constexpr std::string_view kAttributeKeys[kFieldAttributeCount] = {
    "NAME",         "TYPE",  "LENGTH",   "DECIMALS", "XREF",     "SAMPLE",
    "REPORTTYPE",   "UCASE", "REQUIRED", "INPUT",    "OUTPUT",   "LIMITMETHOD",
    "TARGETMETHOD", "MAX",   "MIN",      "EXTRA",    "POPUP",    "LOOKUP",
    "COMPDATA",     "KEYID", "RANGE",    "RELATION", "HELPFILE", "POSITION",
    "SPARE",        "RULES", "#AVG",     "UNITS",    "CATEGORY", "CALC"};

constexpr std::string_view kLimitKeys[kLimitCount] = {
    "USL", "UCL", "UWL", "TGT", "LWL", "LCL", "LSL"};

int16_t ClampToInt16(double value) {
  if (!std::isfinite(value)) return 0;
  const double rounded = std::nearbyint(value);
  if (rounded > std::numeric_limits<int16_t>::max()) {
    return std::numeric_limits<int16_t>::max();
  }
  if (rounded < std::numeric_limits<int16_t>::min()) {
    return std::numeric_limits<int16_t>::min();
  }
  return static_cast<int16_t>(rounded);
}

std::string UpperAscii(std::string text) {
  for (char& c : text) {
    if (c >= 'a' && c <= 'z') c = static_cast<char>(c - 'a' + 'A');
  }
  return text;
}

}  // namespace

std::string_view FieldDefinition::KeyOf(FieldAttribute attribute) {
  return kAttributeKeys[static_cast<int>(attribute)];
}

std::string_view FieldDefinition::KeyOf(LimitKind limit) {
  return kLimitKeys[static_cast<int>(limit)];
}

std::optional<FieldAttribute> FieldDefinition::AttributeForKey(
    std::string_view key) {
  for (int i = 0; i < kFieldAttributeCount; ++i) {
    if (SameMemberName(kAttributeKeys[i], key)) {
      return static_cast<FieldAttribute>(i);
    }
  }
  return std::nullopt;
}

std::optional<LimitKind> FieldDefinition::LimitForKey(std::string_view key) {
  for (int i = 0; i < kLimitCount; ++i) {
    if (SameMemberName(kLimitKeys[i], key)) return static_cast<LimitKind>(i);
  }
  return std::nullopt;
}

LimitKind FieldDefinition::LimitForArgument(const Variant& argument) {
  if (argument.IsString()) {
    if (auto limit = LimitForKey(argument.ToString())) {
      return *limit;
    }
    throw Error::InvalidArgument("limit " + argument.ToString());
  }
  const int32_t index = argument.ToLong();
  if (index < 1 || index > kLimitCount) {
    throw Error::InvalidArgument("limit " + std::to_string(index));
  }
  return static_cast<LimitKind>(index - 1);
}

const Variant& FieldDefinition::Get(FieldAttribute attribute) const {
  return attributes_[static_cast<int>(attribute)];
}

void FieldDefinition::Set(FieldAttribute attribute, Variant value) {
  attributes_[static_cast<int>(attribute)] = std::move(value);
}

const Limit& FieldDefinition::GetLimit(LimitKind limit) const {
  return limits_[static_cast<int>(limit)];
}

void FieldDefinition::SetLimit(LimitKind limit, Limit value) {
  limits_[static_cast<int>(limit)] = std::move(value);
}

std::string FieldDefinition::Name() const {
  return Text(FieldAttribute::kName);
}

std::string FieldDefinition::TypeLetter() const {
  return UpperAscii(Text(FieldAttribute::kType));
}

int16_t FieldDefinition::Length() const {
  return ClampToInt16(Number(FieldAttribute::kLength));
}

int16_t FieldDefinition::Decimals() const {
  return ClampToInt16(Number(FieldAttribute::kDecimals));
}

std::string FieldDefinition::Text(FieldAttribute attribute) const {
  const Variant& value = Get(attribute);
  if (value.IsNull() || value.IsObject() || value.IsArray()) return "";
  return value.ToString();
}

double FieldDefinition::Number(FieldAttribute attribute) const {
  const Variant& value = Get(attribute);
  if (value.IsObject() || value.IsArray()) return 0;
  return LeadingNumberOf(value);
}

void FieldDefinition::CopyFrom(const FieldDefinition& other) {
  attributes_ = other.attributes_;
  limits_ = other.limits_;
}

bool FieldDefinition::operator==(const FieldDefinition& other) const {
  return attributes_ == other.attributes_ && limits_ == other.limits_;
}

Variant FieldDefinition::Invoke(std::string_view name, InvokeKind kind,
                                DispatchArgs& args) {
  const bool write = kind == InvokeKind::kPut || kind == InvokeKind::kPutRef;
  // "LimitMethod" is also an attribute key: with a limit argument it is
  // the limit accessor, without one the attribute.
  const size_t limit_args = write ? 2 : 1;
  const bool limit_accessor =
      SameMemberName(name, "LimitValue") ||
      (SameMemberName(name, "LimitMethod") && args.size() == limit_args);
  if (auto attribute = AttributeForKey(name); attribute && !limit_accessor) {
    if (write) {
      if (args.size() != 1) throw Error::WrongArgumentCount(name);
      Set(*attribute, args[0]);
      return Variant();
    }
    if (!args.empty()) throw Error::WrongArgumentCount(name);
    return Get(*attribute);
  }
  if (!limit_accessor) throw Error::MemberNotSupported(name);
  const bool method = SameMemberName(name, "LimitMethod");
  if (args.size() != limit_args) throw Error::WrongArgumentCount(name);
  const LimitKind limit = LimitForArgument(args[0]);
  Limit& entry = limits_[static_cast<int>(limit)];
  if (!write) return method ? Variant(entry.method) : Variant(entry.value);
  if (method) {
    entry.method = args[1].ToString();
  } else {
    entry.value = args[1].ToDouble();
  }
  return Variant();
}

std::vector<std::string> FieldDefinition::MemberNames() const {
  std::vector<std::string> names(std::begin(kAttributeKeys),
                                 std::end(kAttributeKeys));
  names.push_back("LimitMethod");
  names.push_back("LimitValue");
  return names;
}

}  // namespace rz
