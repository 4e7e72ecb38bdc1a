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
// The limit accessors, which take the limit as their first argument.
constexpr std::string_view kLimitAccessors[] = {"LimitMethod", "LimitValue"};

bool IsLimitAccess(std::string_view name, size_t arg_count,
                   size_t indexed_count) {
  if (SameMemberName(name, kLimitAccessors[1])) return true;
  return SameMemberName(name, kLimitAccessors[0]) &&
         arg_count == indexed_count;
}

void RequireArguments(const DispatchArgs& args, size_t count,
                      std::string_view name) {
  if (args.size() != count) throw Error::WrongArgumentCount(name);
}

}  // namespace

// The members beside the attributes and the limits: read, write and name
// from this one table.
struct RepositoryField::PlainMember {
  std::string_view name;
  Variant (*get)(const RepositoryField&);
  void (*set)(RepositoryField&, const Variant&);
};

const RepositoryField::PlainMember RepositoryField::kPlainMembers[] = {
    {"FieldType", [](const RepositoryField& f) { return Variant(f.field_type_); },
     [](RepositoryField& f, const Variant& v) { f.field_type_ = v.ToInteger(); }},
    {"Format", [](const RepositoryField& f) { return Variant(f.format_); },
     [](RepositoryField& f, const Variant& v) { f.format_ = v.ToString(); }},
    {"RawField", [](const RepositoryField& f) { return Variant(f.raw_field_); },
     [](RepositoryField& f, const Variant& v) { f.raw_field_ = v.ToInteger(); }},
    {"Visible", [](const RepositoryField& f) { return Variant(f.visible_); },
     [](RepositoryField& f, const Variant& v) { f.visible_ = v.ToBool(); }},
};

const RepositoryField::PlainMember* RepositoryField::FindPlainMember(
    std::string_view name) {
  for (const PlainMember& member : kPlainMembers) {
    if (SameMemberName(name, member.name)) return &member;
  }
  return nullptr;
}

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
  const bool limit_method = SameMemberName(name, kLimitAccessors[0]);
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
  if (const PlainMember* member = FindPlainMember(name)) {
    return member->get(*this);
  }
  throw Error::MemberNotSupported(name);
}

void RepositoryField::PutMember(std::string_view name, DispatchArgs& args) {
  const bool limit_method = SameMemberName(name, kLimitAccessors[0]);
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
  } else if (const PlainMember* member = FindPlainMember(name)) {
    member->set(*this, value);
  } else {
    throw Error::MemberNotSupported(name);
  }
}

std::vector<std::string> RepositoryField::MemberNames() const {
  std::vector<std::string> names;
  for (int i = 0; i < kFieldAttributeCount; ++i) {
    names.emplace_back(FieldDefinition::KeyOf(static_cast<FieldAttribute>(i)));
  }
  for (const PlainMember& member : kPlainMembers) {
    names.emplace_back(member.name);
  }
  for (std::string_view accessor : kLimitAccessors) {
    names.emplace_back(accessor);
  }
  return names;
}

}  // namespace rz
