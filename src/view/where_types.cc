// Copyright 2026 The Veltmark authors.

#include "view/where_types.h"

namespace rz {
namespace {

// Interface order of the item: each write accessor before its read.
const DispatchTable<WhereType>& ItemTable() {
  static const auto* table = [] {
    auto* t = new DispatchTable<WhereType>;
    t->Property(
         "Par2",
         [](WhereType& w, DispatchArgs&) -> Variant { return w.Par2(); },
         [](WhereType& w, const Variant& v, DispatchArgs&) {
           w.SetPar2(v.ToString());
         })
        .Property(
            "Value",
            [](WhereType& w, DispatchArgs&) -> Variant { return w.Value(); },
            [](WhereType& w, const Variant& v, DispatchArgs&) {
              w.SetValue(v.ToString());
            })
        .Property(
            "Condition",
            [](WhereType& w, DispatchArgs&) -> Variant {
              return w.Condition();
            },
            [](WhereType& w, const Variant& v, DispatchArgs&) {
              w.SetCondition(v.ToString());
            })
        .Property(
            "Variable",
            [](WhereType& w, DispatchArgs&) -> Variant { return w.Variable(); },
            [](WhereType& w, const Variant& v, DispatchArgs&) {
              w.SetVariable(v.ToInteger());
            })
        .Property(
            "Par1",
            [](WhereType& w, DispatchArgs&) -> Variant { return w.Par1(); },
            [](WhereType& w, const Variant& v, DispatchArgs&) {
              w.SetPar1(v.ToString());
            })
        .Property(
            "AndOr",
            [](WhereType& w, DispatchArgs&) -> Variant { return w.AndOr(); },
            [](WhereType& w, const Variant& v, DispatchArgs&) {
              w.SetAndOr(v.ToInteger());
            });
    return t;
  }();
  return *table;
}

const DispatchTable<WhereTypes>& ListTable() {
  static const auto* table = [] {
    auto* t = new DispatchTable<WhereTypes>;
    AddListClear(*t);
    t->Method(
        "Add",
        [](WhereTypes& l, DispatchArgs& a) -> Variant {
          return std::shared_ptr<Dispatch>(
              l.Add(a[0].ToLong(), a[1].ToString(), a[2].ToInteger(),
                    a[3].ToString(), a[4].ToString(), a[5].ToString()));
        },
        6, 6);
    AddListAccess(*t);
    return t;
  }();
  return *table;
}

}  // namespace

Variant WhereType::Invoke(std::string_view name, InvokeKind kind,
                          DispatchArgs& args) {
  return ItemTable().Invoke(*this, name, kind, args);
}

std::vector<std::string> WhereType::MemberNames() const {
  return ItemTable().Names();
}

std::shared_ptr<WhereType> WhereTypes::Add(int32_t and_or, std::string par1,
                                           int16_t variable,
                                           std::string condition,
                                           std::string value,
                                           std::string par2) {
  auto item = std::make_shared<WhereType>();
  item->SetAndOr(Variant(and_or).ToInteger());
  item->SetPar1(std::move(par1));
  item->SetVariable(variable);
  item->SetCondition(std::move(condition));
  item->SetValue(std::move(value));
  item->SetPar2(std::move(par2));
  items_.Append(item);
  return item;
}

Variant WhereTypes::Invoke(std::string_view name, InvokeKind kind,
                           DispatchArgs& args) {
  return ListTable().Invoke(*this, name, kind, args);
}

std::vector<std::string> WhereTypes::MemberNames() const {
  return ListTable().Names();
}

}  // namespace rz
