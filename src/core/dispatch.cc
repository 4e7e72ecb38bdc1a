// Copyright 2026 The Veltmark authors.

#include "core/dispatch.h"

#include <utility>

namespace rz {

VariantArray Dispatch::Enumerate() {
  throw Error::MemberNotSupported("NewEnum");
}

Variant Dispatch::Get(std::string_view name, DispatchArgs args) {
  return Invoke(name, InvokeKind::kGet, args);
}

void Dispatch::Put(std::string_view name, Variant value, DispatchArgs args) {
  args.push_back(std::move(value));
  Invoke(name, InvokeKind::kPut, args);
}

void Dispatch::PutRef(std::string_view name, Variant value, DispatchArgs args) {
  args.push_back(std::move(value));
  Invoke(name, InvokeKind::kPutRef, args);
}

Variant Dispatch::Call(std::string_view name, DispatchArgs args) {
  return Invoke(name, InvokeKind::kCall, args);
}

bool SameMemberName(std::string_view a, std::string_view b) {
  if (a.size() != b.size()) return false;
  for (size_t i = 0; i < a.size(); ++i) {
    char x = a[i];
    char y = b[i];
    if (x >= 'a' && x <= 'z') x = static_cast<char>(x - 'a' + 'A');
    if (y >= 'a' && y <= 'z') y = static_cast<char>(y - 'a' + 'A');
    if (x != y) return false;
  }
  return true;
}

Variant ApplyArguments(const Variant& value, DispatchArgs& args) {
  if (args.empty()) return value;
  if (value.IsObject())
    return value.ToObject()->Invoke("", InvokeKind::kGet, args);
  if (value.IsArray()) {
    if (args.size() != 1)
      throw Error::SubscriptOutOfRange("array of one dimension");
    const VariantArray& items = value.ToArray();
    const int32_t index = args[0].ToLong();
    if (index < 0 || static_cast<size_t>(index) >= items.size()) {
      throw Error::SubscriptOutOfRange(std::to_string(index));
    }
    return items[static_cast<size_t>(index)];
  }
  throw Error::TypeMismatch(value.TypeName());
}

}  // namespace rz
