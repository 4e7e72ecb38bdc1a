// Copyright 2026 The Veltmark authors.

#include "platform/repository.h"

#include <utility>

#include "core/error.h"

namespace rz {
namespace {

bool IsWrite(InvokeKind kind) {
  return kind == InvokeKind::kPut || kind == InvokeKind::kPutRef;
}

// LimitValue always names a limit. LimitMethod shares its name with the
// LIMITMETHOD attribute: it names a limit only when it carries the limit
// argument (one argument to read, two to write).
bool IsLimitAccess(std::string_view name, size_t arg_count,
                   size_t indexed_count) {
  if (SameMemberName(name, "LimitValue")) return true;
  return SameMemberName(name, "LimitMethod") && arg_count == indexed_count;
}

void RequireArguments(const DispatchArgs& args, size_t count,
                      std::string_view name) {
  if (args.size() != count) throw Error::WrongArgumentCount(name);
}

}  // namespace

RepositoryField::RepositoryField(std::string name, int16_t field_type,
                                 int16_t length, int16_t decimals,
                                 int16_t extra)
    : name_(std::move(name)),
      field_type_(field_type),
      length_(length),
      decimals_(decimals),
      extra_(extra) {}

Variant RepositoryField::Attribute(FieldAttribute attribute) const {
  switch (attribute) {
    case FieldAttribute::kName:
      return Variant(name_);
    case FieldAttribute::kType:
      return Variant(field_type_);
    case FieldAttribute::kLength:
      return Variant(length_);
    case FieldAttribute::kDecimals:
      return Variant(decimals_);
    case FieldAttribute::kRules:
      return Variant(RuleKeys());
    default:
      return attributes_[static_cast<size_t>(attribute)];
  }
}

void RepositoryField::SetAttribute(FieldAttribute attribute, Variant value) {
  switch (attribute) {
    case FieldAttribute::kName:
      name_ = value.ToString();
      return;
    case FieldAttribute::kType:
      field_type_ = value.ToInteger();
      return;
    case FieldAttribute::kLength:
      length_ = value.ToInteger();
      return;
    case FieldAttribute::kDecimals:
      decimals_ = value.ToInteger();
      return;
    case FieldAttribute::kRules:
      throw Error::InvalidArgument("RULES of a field is set by AddRule");
    default:
      attributes_[static_cast<size_t>(attribute)] = std::move(value);
  }
}

std::string RepositoryField::Units() const {
  const Variant& units =
      attributes_[static_cast<size_t>(FieldAttribute::kUnits)];
  if (units.IsNull() || units.IsObject() || units.IsArray()) return "";
  return units.ToString();
}

std::string RepositoryField::RuleKeys() const {
  std::string keys;
  for (const RuleEntry& rule : rules_) keys += rule.key;
  return keys;
}

Variant RepositoryField::Invoke(std::string_view name, InvokeKind kind,
                                DispatchArgs& args) {
  if (IsWrite(kind)) {
    PutMember(name, args);
    return Variant();
  }
  return GetMember(name, args);
}

Variant RepositoryField::GetMember(std::string_view name, DispatchArgs& args) {
  const bool limit_method = SameMemberName(name, "LimitMethod");
  if (IsLimitAccess(name, args.size(), 1)) {
    RequireArguments(args, 1, name);
    const RepositoryLimit& limit =
        Limit(FieldDefinition::LimitForArgument(args[0]));
    return limit_method ? Variant(limit.method) : Variant(limit.value);
  }
  RequireArguments(args, 0, name);
  if (auto attribute = FieldDefinition::AttributeForKey(name)) {
    return Attribute(*attribute);
  }
  if (SameMemberName(name, "FieldType")) return Variant(field_type_);
  if (SameMemberName(name, "Format")) return Variant(format_);
  if (SameMemberName(name, "RawField")) return Variant(raw_field_);
  if (SameMemberName(name, "Visible")) return Variant(visible_);
  throw Error::MemberNotSupported(name);
}

void RepositoryField::PutMember(std::string_view name, DispatchArgs& args) {
  const bool limit_method = SameMemberName(name, "LimitMethod");
  if (IsLimitAccess(name, args.size(), 2)) {
    RequireArguments(args, 2, name);
    RepositoryLimit& limit = Limit(FieldDefinition::LimitForArgument(args[0]));
    if (limit_method) {
      limit.method = args[1].ToInteger();
    } else {
      limit.value = args[1].ToDouble();
    }
    return;
  }
  RequireArguments(args, 1, name);
  const Variant& value = args[0];
  if (auto attribute = FieldDefinition::AttributeForKey(name)) {
    if (*attribute == FieldAttribute::kRules) {
      throw Error::MemberNotSupported(name);
    }
    SetAttribute(*attribute, value);
  } else if (SameMemberName(name, "FieldType")) {
    field_type_ = value.ToInteger();
  } else if (SameMemberName(name, "Format")) {
    format_ = value.ToString();
  } else if (SameMemberName(name, "RawField")) {
    raw_field_ = value.ToInteger();
  } else if (SameMemberName(name, "Visible")) {
    visible_ = value.ToBool();
  } else {
    throw Error::MemberNotSupported(name);
  }
}

std::vector<std::string> RepositoryField::MemberNames() const {
  std::vector<std::string> names;
  for (int i = 0; i < kFieldAttributeCount; ++i) {
    names.emplace_back(FieldDefinition::KeyOf(static_cast<FieldAttribute>(i)));
  }
  for (std::string_view extra : {"FieldType", "Format", "RawField", "Visible",
                                 "LimitMethod", "LimitValue"}) {
    names.emplace_back(extra);
  }
  return names;
}

}  // namespace rz
