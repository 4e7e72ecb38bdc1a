// Copyright 2026 The Veltmark authors.

#include "appfile/application_lists.h"

#include <algorithm>
#include <optional>
#include <utility>

#include "core/error.h"
#include "core/text.h"
#include "platform/field_format.h"

namespace rz {
namespace {

// A read-only object with named fields, how list items that are plain
// data (a rule, a view, a condition) reach scripts.
class RecordObject final : public Dispatch {
 public:
  RecordObject(std::string_view class_name,
               std::vector<std::pair<std::string, Variant>> fields)
      : class_name_(class_name), fields_(std::move(fields)) {}

  std::string_view ClassName() const override { return class_name_; }

  Variant Invoke(std::string_view name, InvokeKind kind,
                 DispatchArgs& args) override {
    for (auto& [field, value] : fields_) {
      if (!SameMemberName(field, name)) continue;
      if (kind == InvokeKind::kPut || kind == InvokeKind::kPutRef) break;
      return args.empty() ? value : ApplyArguments(value, args);
    }
    throw Error::MemberNotSupported(name);
  }

  std::vector<std::string> MemberNames() const override {
    std::vector<std::string> names;
    for (const auto& field : fields_) names.push_back(field.first);
    return names;
  }

 private:
  std::string class_name_;
  std::vector<std::pair<std::string, Variant>> fields_;
};

Variant RuleObject(const Rule& rule) {
  VariantArray texts(rule.attributes.texts.begin(),
                     rule.attributes.texts.end());
  VariantArray numbers(rule.attributes.numbers.begin(),
                       rule.attributes.numbers.end());
  return std::shared_ptr<Dispatch>(std::make_shared<RecordObject>(
      "Rule", std::vector<std::pair<std::string, Variant>>{
                  {"Key", rule.key},
                  {"Name", rule.name},
                  {"Texts", std::move(texts)},
                  {"Numbers", std::move(numbers)}}));
}

Variant ViewObject(const ViewEntry& view) {
  return std::shared_ptr<Dispatch>(std::make_shared<RecordObject>(
      "View", std::vector<std::pair<std::string, Variant>>{
                  {"Name", view.name}, {"Number", view.number}}));
}

Variant ConditionObject(const Condition& condition) {
  return std::shared_ptr<Dispatch>(std::make_shared<RecordObject>(
      "Condition", std::vector<std::pair<std::string, Variant>>{
                       {"AndOr", condition.and_or},
                       {"Par1", condition.par1},
                       {"Variable", condition.variable},
                       {"Condition", condition.condition},
                       {"Value", condition.value},
                       {"Par2", condition.par2}}));
}

int32_t Position(const Variant& value) { return value.ToLong(); }

template <typename List>
Variant CountOf(List& list, DispatchArgs&) {
  return list.Count();
}

}  // namespace

size_t ListSlot(int32_t index, size_t count) {
  if (index < 1 || static_cast<size_t>(index) > count) {
    throw Error::InvalidArgument("position " + std::to_string(index) +
                                 " is outside 1.." + std::to_string(count));
  }
  return static_cast<size_t>(index - 1);
}

// --- Variables ---

void CheckVariableDefinition(const FieldDefinition& definition,
                             int32_t number) {
  const std::string where =
      "variable " + std::to_string(number) + " '" + definition.Name() + "'";
  if (TypeCode(definition.TypeLetter()) == 0) {
    throw Error::InvalidArgument(where + ": TYPE '" +
                                 definition.Text(FieldAttribute::kType) +
                                 "' is not one of T P L N A R C");
  }
  if (definition.Number(FieldAttribute::kLength) < 1) {
    throw Error::InvalidArgument(where + ": LENGTH '" +
                                 definition.Text(FieldAttribute::kLength) +
                                 "' is not a positive number");
  }
}

AppVariableList::AppVariableList(
    std::vector<std::shared_ptr<FieldDefinition>>& variables,
    std::function<void()> check_add)
    : variables_(variables), check_add_(std::move(check_add)) {}

int32_t AppVariableList::Count() const {
  return static_cast<int32_t>(variables_.size());
}

std::shared_ptr<FieldDefinition> AppVariableList::Item(int32_t index) const {
  return variables_[ListSlot(index, variables_.size())];
}

std::shared_ptr<FieldDefinition> AppVariableList::Add(
    std::string_view name, std::string_view type_letter, int16_t length,
    int16_t decimals) {
  check_add_();
  auto definition = std::make_shared<FieldDefinition>();
  const auto number = static_cast<int16_t>(variables_.size() + 1);
  definition->Set(FieldAttribute::kName, Variant(name));
  definition->Set(FieldAttribute::kType, Variant(type_letter));
  definition->Set(FieldAttribute::kLength, Variant(length));
  definition->Set(FieldAttribute::kDecimals, Variant(decimals));
  definition->Set(FieldAttribute::kPosition, Variant(number));
  CheckVariableDefinition(*definition, number);
  variables_.push_back(definition);
  return definition;
}

const DispatchTable<AppVariableList>& AppVariableList::Members() {
  using Table = DispatchTable<AppVariableList>;
  static const Table table = [] {
    Table t;
    t.Method(
         "Item",
         [](AppVariableList& list, DispatchArgs& a) -> Variant {
           return std::shared_ptr<Dispatch>(list.Item(Position(a[0])));
         },
         1, 1)
        .Property("Count", CountOf<AppVariableList>)
        .Method(
            "Add",
            [](AppVariableList& list, DispatchArgs& a) -> Variant {
              return std::shared_ptr<Dispatch>(
                  list.Add(a[0].ToString(), a[1].ToString(), a[2].ToInteger(),
                           a[3].ToInteger()));
            },
            4, 4)
        .Default("Item");
    return t;
  }();
  return table;
}

Variant AppVariableList::Invoke(std::string_view name, InvokeKind kind,
                                DispatchArgs& args) {
  return Members().Invoke(*this, name, kind, args);
}

std::vector<std::string> AppVariableList::MemberNames() const {
  return Members().Names();
}

VariantArray AppVariableList::Enumerate() {
  return VariantArray(variables_.begin(), variables_.end());
}

// --- Rules ---

int32_t AppRuleList::Count() const {
  return static_cast<int32_t>(rules_.size());
}

Rule AppRuleList::Item(int32_t index) const {
  return rules_[ListSlot(index, rules_.size())];
}

const DispatchTable<AppRuleList>& AppRuleList::Members() {
  using Table = DispatchTable<AppRuleList>;
  static const Table table = [] {
    Table t;
    t.Method(
         "Item",
         [](AppRuleList& list, DispatchArgs& a) -> Variant {
           return RuleObject(list.Item(Position(a[0])));
         },
         1, 1)
        .Property("Count", CountOf<AppRuleList>)
        .Default("Item");
    return t;
  }();
  return table;
}

Variant AppRuleList::Invoke(std::string_view name, InvokeKind kind,
                            DispatchArgs& args) {
  return Members().Invoke(*this, name, kind, args);
}

std::vector<std::string> AppRuleList::MemberNames() const {
  return Members().Names();
}

VariantArray AppRuleList::Enumerate() {
  VariantArray items;
  for (const Rule& rule : rules_) items.push_back(RuleObject(rule));
  return items;
}

// --- Views ---

AppViewCatalogue::AppViewCatalogue(std::vector<ViewEntry>& views,
                                   int32_t& default_view,
                                   std::function<void()> save)
    : views_(views), default_view_(default_view), save_(std::move(save)) {}

int32_t AppViewCatalogue::Count() const {
  return static_cast<int32_t>(views_.size());
}

ViewEntry AppViewCatalogue::Item(int32_t position) const {
  return views_[ListSlot(position, views_.size())];
}

void AppViewCatalogue::Add(std::string_view name, int32_t number) {
  if (number < 1) {
    throw Error::InvalidArgument("view number " + std::to_string(number));
  }
  const bool used = std::any_of(
      views_.begin(), views_.end(),
      [number](const ViewEntry& view) { return view.number == number; });
  if (used) {
    throw Error::InvalidArgument("view number " + std::to_string(number) +
                                 " is in use");
  }
  views_.push_back({std::string(name), number});
}

void AppViewCatalogue::Remove(int32_t position) {
  views_.erase(views_.begin() +
               static_cast<std::ptrdiff_t>(ListSlot(position, views_.size())));
}

void AppViewCatalogue::Swap(int32_t position_a, int32_t position_b) {
  std::swap(views_[ListSlot(position_a, views_.size())],
            views_[ListSlot(position_b, views_.size())]);
}

void AppViewCatalogue::SetDefaultView(int32_t position) {
  if (position < 0 || position > Count()) {
    throw Error::InvalidArgument("default view " + std::to_string(position));
  }
  default_view_ = position;
}

const DispatchTable<AppViewCatalogue>& AppViewCatalogue::Members() {
  using Table = DispatchTable<AppViewCatalogue>;
  static const Table table = [] {
    Table t;
    t.Method(
         "Item",
         [](AppViewCatalogue& list, DispatchArgs& a) -> Variant {
           return ViewObject(list.Item(Position(a[0])));
         },
         1, 1)
        .Property("Count", CountOf<AppViewCatalogue>)
        .Method(
            "Add",
            [](AppViewCatalogue& list, DispatchArgs& a) {
              list.Add(a[0].ToString(), a[1].ToLong());
              return Variant();
            },
            2, 2)
        .Method(
            "Remove",
            [](AppViewCatalogue& list, DispatchArgs& a) {
              list.Remove(Position(a[0]));
              return Variant();
            },
            1, 1)
        .Method(
            "Swap",
            [](AppViewCatalogue& list, DispatchArgs& a) {
              list.Swap(Position(a[0]), Position(a[1]));
              return Variant();
            },
            2, 2)
        .Property(
            "DefaultView",
            [](AppViewCatalogue& list, DispatchArgs&) -> Variant {
              return list.DefaultView();
            },
            [](AppViewCatalogue& list, const Variant& value, DispatchArgs&) {
              list.SetDefaultView(value.ToLong());
            })
        .Method("Save",
                [](AppViewCatalogue& list, DispatchArgs&) {
                  list.Save();
                  return Variant();
                })
        .Default("Item");
    return t;
  }();
  return table;
}

Variant AppViewCatalogue::Invoke(std::string_view name, InvokeKind kind,
                                 DispatchArgs& args) {
  return Members().Invoke(*this, name, kind, args);
}

std::vector<std::string> AppViewCatalogue::MemberNames() const {
  return Members().Names();
}

VariantArray AppViewCatalogue::Enumerate() {
  VariantArray items;
  for (const ViewEntry& view : views_) items.push_back(ViewObject(view));
  return items;
}

// --- Conditions ---

void AppConditionList::Clear() {
  entries_.clear();
  ++generation_;
}

void AppConditionList::Add(int16_t and_or, std::string_view par1,
                           int16_t variable, std::string_view condition,
                           std::string_view value, std::string_view par2) {
  entries_.push_back({and_or, std::string(par1), variable,
                      std::string(condition), std::string(value),
                      std::string(par2)});
  ++generation_;
}

int32_t AppConditionList::Count() const {
  return static_cast<int32_t>(entries_.size());
}

Condition AppConditionList::Item(int32_t index) const {
  return entries_[ListSlot(index, entries_.size())];
}

const DispatchTable<AppConditionList>& AppConditionList::Members() {
  using Table = DispatchTable<AppConditionList>;
  static const Table table = [] {
    Table t;
    t.Method(
         "Item",
         [](AppConditionList& list, DispatchArgs& a) -> Variant {
           return ConditionObject(list.Item(Position(a[0])));
         },
         1, 1)
        .Property("Count", CountOf<AppConditionList>)
        .Method("Clear",
                [](AppConditionList& list, DispatchArgs&) {
                  list.Clear();
                  return Variant();
                })
        .Method(
            "Add",
            [](AppConditionList& list, DispatchArgs& a) {
              list.Add(a[0].ToInteger(), a[1].ToString(), a[2].ToInteger(),
                       a[3].ToString(), a[4].ToString(), a[5].ToString());
              return Variant();
            },
            6, 6)
        .Default("Item");
    return t;
  }();
  return table;
}

Variant AppConditionList::Invoke(std::string_view name, InvokeKind kind,
                                 DispatchArgs& args) {
  return Members().Invoke(*this, name, kind, args);
}

std::vector<std::string> AppConditionList::MemberNames() const {
  return Members().Names();
}

VariantArray AppConditionList::Enumerate() {
  VariantArray items;
  for (const Condition& entry : entries_) {
    items.push_back(ConditionObject(entry));
  }
  return items;
}

// --- Sort keys, summary keys, summary cursor ---

void AppSortKeyList::Add(int16_t variable, int16_t kind) {
  keys_.push_back({variable, kind});
}

int32_t AppSortKeyList::Count() const {
  return static_cast<int32_t>(keys_.size());
}

const DispatchTable<AppSortKeyList>& AppSortKeyList::Members() {
  using Table = DispatchTable<AppSortKeyList>;
  static const Table table = [] {
    Table t;
    t.Method("Reset",
             [](AppSortKeyList& list, DispatchArgs&) {
               list.Reset();
               return Variant();
             })
        .Method(
            "Add",
            [](AppSortKeyList& list, DispatchArgs& a) {
              list.Add(a[0].ToInteger(), a[1].ToInteger());
              return Variant();
            },
            2, 2)
        .Property("Count", CountOf<AppSortKeyList>);
    return t;
  }();
  return table;
}

Variant AppSortKeyList::Invoke(std::string_view name, InvokeKind kind,
                               DispatchArgs& args) {
  return Members().Invoke(*this, name, kind, args);
}

std::vector<std::string> AppSortKeyList::MemberNames() const {
  return Members().Names();
}

int32_t AppSummaryKeyList::Count() const {
  return static_cast<int32_t>(keys_.size());
}

const DispatchTable<AppSummaryKeyList>& AppSummaryKeyList::Members() {
  using Table = DispatchTable<AppSummaryKeyList>;
  static const Table table = [] {
    Table t;
    t.Method("Reset",
             [](AppSummaryKeyList& list, DispatchArgs&) {
               list.Reset();
               return Variant();
             })
        .Method(
            "Add",
            [](AppSummaryKeyList& list, DispatchArgs& a) {
              list.Add(a[0].ToLong());
              return Variant();
            },
            1, 1)
        .Property("Count", CountOf<AppSummaryKeyList>);
    return t;
  }();
  return table;
}

Variant AppSummaryKeyList::Invoke(std::string_view name, InvokeKind kind,
                                  DispatchArgs& args) {
  return Members().Invoke(*this, name, kind, args);
}

std::vector<std::string> AppSummaryKeyList::MemberNames() const {
  return Members().Names();
}

int32_t AppSummaryCursor::Count() const {
  return static_cast<int32_t>(groups_.size());
}

SummaryGroup AppSummaryCursor::Item(int32_t index) const {
  return groups_[ListSlot(index, groups_.size())];
}

const DispatchTable<AppSummaryCursor>& AppSummaryCursor::Members() {
  using Table = DispatchTable<AppSummaryCursor>;
  static const Table table = [] {
    Table t;
    t.Method(
         "Item",
         [](AppSummaryCursor& list, DispatchArgs& a) -> Variant {
           return list.Item(Position(a[0])).record;
         },
         1, 1)
        .Property("Count", CountOf<AppSummaryCursor>)
        .Method("Reset",
                [](AppSummaryCursor& list, DispatchArgs&) {
                  list.Reset();
                  return Variant();
                })
        .Default("Item");
    return t;
  }();
  return table;
}

Variant AppSummaryCursor::Invoke(std::string_view name, InvokeKind kind,
                                 DispatchArgs& args) {
  return Members().Invoke(*this, name, kind, args);
}

std::vector<std::string> AppSummaryCursor::MemberNames() const {
  return Members().Names();
}

VariantArray AppSummaryCursor::Enumerate() {
  VariantArray items;
  for (const SummaryGroup& group : groups_) items.push_back(group.record);
  return items;
}

// --- Column statistics ---

ColumnStatistic AppColumnStatistics::Item(int16_t variable) const {
  if (variable < 1 || variable > Count()) {
    throw Error::SubscriptOutOfRange("variable " + std::to_string(variable));
  }
  return statistics_(variable);
}

const DispatchTable<AppColumnStatistics>& AppColumnStatistics::Members() {
  using Table = DispatchTable<AppColumnStatistics>;
  static const Table table = [] {
    Table t;
    t.Method(
         "Item",
         [](AppColumnStatistics& list, DispatchArgs& a) -> Variant {
           return Variant(std::make_shared<ColumnStatisticObject>(
               list.Item(a[0].ToInteger())));
         },
         1, 1)
        .Property("Count", CountOf<AppColumnStatistics>)
        .Default("Item");
    return t;
  }();
  return table;
}

Variant AppColumnStatistics::Invoke(std::string_view name, InvokeKind kind,
                                    DispatchArgs& args) {
  return Members().Invoke(*this, name, kind, args);
}

std::vector<std::string> AppColumnStatistics::MemberNames() const {
  return Members().Names();
}

Variant ColumnStatisticObject::Invoke(std::string_view name, InvokeKind kind,
                                      DispatchArgs& args) {
  const std::optional<StatisticValue> value = StatisticValueForName(name);
  if (!value) throw Error::MemberNotSupported(name);
  if (kind == InvokeKind::kPut || kind == InvokeKind::kPutRef) {
    throw Error::MemberNotSupported(name);  // the statistics are read-only
  }
  if (!args.empty()) throw Error::WrongArgumentCount(name);
  return values_[*value];
}

std::vector<std::string> ColumnStatisticObject::MemberNames() const {
  std::vector<std::string> names;
  for (int i = 0; i < kStatisticValueCount; ++i) {
    names.emplace_back(StatisticValueName(static_cast<StatisticValue>(i)));
  }
  return names;
}

}  // namespace rz
