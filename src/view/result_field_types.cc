// Copyright 2026 The Veltmark authors.

#include "view/result_field_types.h"

#include <algorithm>

#include "core/error.h"
#include "platform/field_format.h"

namespace rz {
namespace {

std::shared_ptr<FieldDefinition> FieldArgument(const Variant& value) {
  if (value.IsObject()) {
    auto field = std::dynamic_pointer_cast<FieldDefinition>(value.ToObject());
    if (!field) throw Error::TypeMismatch(value.ToObject()->ClassName());
    return field;
  }
  if (value.IsEmpty() || value.IsNull()) return nullptr;
  throw Error::TypeMismatch(value.ToString());
}

// Interface order: each write before its read, RZfield last.
const DispatchTable<ResultFieldType>& ItemTable() {
  static const auto* table = [] {
    auto* t = new DispatchTable<ResultFieldType>;
    t->Property(
         "PivotField",
         [](ResultFieldType& r, DispatchArgs&) -> Variant {
           return r.PivotField();
         },
         [](ResultFieldType& r, const Variant& v, DispatchArgs&) {
           r.SetPivotField(v.ToInteger());
         })
        .Property(
            "RawField",
            [](ResultFieldType& r, DispatchArgs&) -> Variant {
              return r.RawField();
            },
            [](ResultFieldType& r, const Variant& v, DispatchArgs&) {
              r.SetRawField(v.ToInteger());
            })
        .Property(
            "Statistic",
            [](ResultFieldType& r, DispatchArgs&) -> Variant {
              return r.Statistic();
            },
            [](ResultFieldType& r, const Variant& v, DispatchArgs&) {
              r.SetStatistic(v.ToInteger());
            })
        .Property(
            "RZfield",
            [](ResultFieldType& r, DispatchArgs&) -> Variant {
              return std::shared_ptr<Dispatch>(r.RZfield());
            },
            [](ResultFieldType& r, const Variant& v, DispatchArgs&) {
              r.SetRZfield(FieldArgument(v));
            });
    return t;
  }();
  return *table;
}

const DispatchTable<ResultFieldTypes>& ListTable() {
  static const auto* table = [] {
    auto* t = new DispatchTable<ResultFieldTypes>;
    AddListClear(*t);
    t->Method(
         "Add",
         [](ResultFieldTypes& l, DispatchArgs& a) -> Variant {
           return std::shared_ptr<Dispatch>(
               l.Add(a[0].ToInteger(), a[1].ToInteger(), a[2].ToInteger(),
                     a[3].ToString()));
         },
         4, 4)
        .Method(
            "Swap",
            [](ResultFieldTypes& l, DispatchArgs& a) {
              l.Swap(a[0].ToLong(), a[1].ToLong());
              return Variant();
            },
            2, 2);
    AddListAccess(*t);
    return t;
  }();
  return *table;
}

}  // namespace

const std::shared_ptr<FieldDefinition>& ResultFieldType::RZfield() {
  if (!rz_field_) rz_field_ = std::make_shared<FieldDefinition>();
  return rz_field_;
}

Variant ResultFieldType::Invoke(std::string_view name, InvokeKind kind,
                                DispatchArgs& args) {
  return ItemTable().Invoke(*this, name, kind, args);
}

std::vector<std::string> ResultFieldType::MemberNames() const {
  return ItemTable().Names();
}

std::shared_ptr<ResultFieldType> ResultFieldTypes::Add(
    int16_t pivot_field, int16_t raw_field, int16_t statistic,
    const std::string& name) {
  auto item = std::make_shared<ResultFieldType>();
  item->SetPivotField(pivot_field);
  item->SetRawField(raw_field);
  item->SetStatistic(statistic);
  FieldDefinition& field = *item->RZfield();
  field.Set(FieldAttribute::kName, name);
  field.Set(FieldAttribute::kType, "N");
  field.Set(FieldAttribute::kLength, int16_t{8});
  field.Set(FieldAttribute::kDecimals, int16_t{0});
  InitVariableDefaults(field, rule_count_ ? rule_count_() : 0);
  items_.Append(item);
  return item;
}

void ResultFieldTypes::Swap(int32_t index1, int32_t index2) {
  const int32_t count = Count();
  for (int32_t index : {index1, index2}) {
    if (index < 1 || index > count) {
      throw Error::InvalidArgument("position " + std::to_string(index) +
                                   " is outside 1.." + std::to_string(count));
    }
  }
  auto& items = items_.items();
  const size_t lo = static_cast<size_t>(std::min(index1, index2)) - 1;
  const size_t hi = static_cast<size_t>(std::max(index1, index2)) - 1;
  // Take the item at hi and put it back just before lo.
  std::rotate(items.begin() + static_cast<std::ptrdiff_t>(lo),
              items.begin() + static_cast<std::ptrdiff_t>(hi),
              items.begin() + static_cast<std::ptrdiff_t>(hi) + 1);
}

Variant ResultFieldTypes::Invoke(std::string_view name, InvokeKind kind,
                                 DispatchArgs& args) {
  return ListTable().Invoke(*this, name, kind, args);
}

std::vector<std::string> ResultFieldTypes::MemberNames() const {
  return ListTable().Names();
}

std::shared_ptr<ResultFieldType> AddVariableColumn(
    ResultFieldTypes& columns, const FieldDefinition& variable, int16_t pivot,
    int16_t raw, int16_t statistic, const std::string& name,
    bool summary_mode) {
  std::shared_ptr<ResultFieldType> column =
      columns.Add(pivot, raw, statistic, name);
  FieldDefinition& definition = *column->RZfield();
  definition.CopyFrom(variable);
  definition.Set(FieldAttribute::kName, Variant(name));
  if (statistic == 0) return column;
  int16_t length = definition.Length();
  int16_t decimals = definition.Decimals();
  StatisticFieldSize(summary_mode, statistic, length, decimals);
  definition.Set(FieldAttribute::kLength, Variant(length));
  definition.Set(FieldAttribute::kDecimals, Variant(decimals));
  return column;
}

}  // namespace rz
