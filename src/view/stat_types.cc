// Copyright 2026 The Veltmark authors.

#include "view/stat_types.h"

namespace rz {
namespace {

// Interface order: each write before its read.
const DispatchTable<StatType>& ItemTable() {
  static const auto* table = [] {
    auto* t = new DispatchTable<StatType>;
    t->Property(
         "Reference",
         [](StatType& s, DispatchArgs&) -> Variant { return s.Reference(); },
         [](StatType& s, const Variant& v, DispatchArgs&) {
           s.SetReference(v.ToInteger());
         })
        .Property(
            "Description",
            [](StatType& s, DispatchArgs&) -> Variant {
              return s.Description();
            },
            [](StatType& s, const Variant& v, DispatchArgs&) {
              s.SetDescription(v.ToString());
            })
        .Property(
            "Selected",
            [](StatType& s, DispatchArgs&) -> Variant { return s.Selected(); },
            [](StatType& s, const Variant& v, DispatchArgs&) {
              s.SetSelected(v.ToBool());
            });
    return t;
  }();
  return *table;
}

const DispatchTable<StatTypes>& ListTable() {
  static const auto* table = [] {
    auto* t = new DispatchTable<StatTypes>;
    AddListClear(*t);
    t->Method(
        "Add",
        [](StatTypes& l, DispatchArgs& a) -> Variant {
          return std::shared_ptr<Dispatch>(
              l.Add(a[0].ToInteger(), a[1].ToString(), a[2].ToBool()));
        },
        3, 3);
    AddListAccess(*t);
    return t;
  }();
  return *table;
}

}  // namespace

Variant StatType::Invoke(std::string_view name, InvokeKind kind,
                         DispatchArgs& args) {
  return ItemTable().Invoke(*this, name, kind, args);
}

std::vector<std::string> StatType::MemberNames() const {
  return ItemTable().Names();
}

std::shared_ptr<StatType> StatTypes::Add(int16_t reference,
                                         std::string description,
                                         bool selected) {
  auto item = std::make_shared<StatType>();
  item->SetReference(reference);
  item->SetDescription(std::move(description));
  item->SetSelected(selected);
  items_.Append(item);
  return item;
}

Variant StatTypes::Invoke(std::string_view name, InvokeKind kind,
                          DispatchArgs& args) {
  return ListTable().Invoke(*this, name, kind, args);
}

std::vector<std::string> StatTypes::MemberNames() const {
  return ListTable().Names();
}

}  // namespace rz
