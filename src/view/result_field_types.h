// Copyright 2026 The Veltmark authors.
//
// ResultFieldType is one result column of a view: the raw variable it is
// built from, an optional pivot variable and statistic, and its own field
// definition (`RZfield`). ResultFieldTypes is the view's ordered, 1-based
// list of columns. Plain data, like the other view lists; both are
// Dispatch objects under their own names (`Item` is the list's default).
//
// RZfield is created on first read when none is set, and the item keeps
// it, so two reads give the same object. A new column made by Add gets the
// defaults of a new variable definition, whose RULES name every rule of
// the application: the list learns the application's rule count from the
// RuleCount function its owner gives it (0 rules without one).

#ifndef RZ_VIEW_RESULT_FIELD_TYPES_H_
#define RZ_VIEW_RESULT_FIELD_TYPES_H_

#include <cstdint>
#include <functional>
#include <memory>
#include <string>

#include "core/dispatch.h"
#include "platform/field_definition.h"
#include "view/item_list.h"

namespace rz {

class ResultFieldType : public Dispatch {
 public:
  // 0 = not pivoted; else the 1-based pivot variable.
  int16_t PivotField() const { return pivot_field_; }
  void SetPivotField(int16_t value) { pivot_field_ = value; }
  // 1-based application variable the column is built from.
  int16_t RawField() const { return raw_field_; }
  void SetRawField(int16_t value) { raw_field_ = value; }
  // Statistic code; 0 = the value itself.
  int16_t Statistic() const { return statistic_; }
  void SetStatistic(int16_t value) { statistic_ = value; }
  // The column's definition, created empty on first read.
  const std::shared_ptr<FieldDefinition>& RZfield();
  // Replaces the definition (by reference); null clears it.
  void SetRZfield(std::shared_ptr<FieldDefinition> field) {
    rz_field_ = std::move(field);
  }

  std::string_view ClassName() const override { return "ResultFieldType"; }
  Variant Invoke(std::string_view name, InvokeKind kind,
                 DispatchArgs& args) override;
  std::vector<std::string> MemberNames() const override;

 private:
  int16_t pivot_field_ = 0;
  int16_t raw_field_ = 0;
  int16_t statistic_ = 0;
  std::shared_ptr<FieldDefinition> rz_field_;
};

class ResultFieldTypes : public Dispatch {
 public:
  using RuleCount = std::function<int()>;

  ResultFieldTypes() = default;
  explicit ResultFieldTypes(RuleCount rule_count)
      : rule_count_(std::move(rule_count)) {}

  // Appends a column with these numbers whose definition is a new numeric
  // variable: NAME `name`, TYPE "N", LENGTH 8, DECIMALS 0, every other
  // attribute at its default. Returns the new column.
  std::shared_ptr<ResultFieldType> Add(int16_t pivot_field, int16_t raw_field,
                                       int16_t statistic,
                                       const std::string& name);
  // Moves the item at the higher of the two positions to just before the
  // lower one (for neighbours: exchanges them). Error 5 for a position
  // outside 1..Count, and the list is unchanged.
  void Swap(int32_t index1, int32_t index2);
  std::shared_ptr<ResultFieldType> Item(const Variant& index) const {
    return items_.Item(index);
  }
  int32_t Count() const { return items_.Count(); }
  void Remove(const Variant& index) { items_.Remove(index); }
  void Clear() { items_.Clear(); }
  const std::vector<std::shared_ptr<ResultFieldType>>& Items() const {
    return items_.items();
  }

  std::string_view ClassName() const override { return "ResultFieldTypes"; }
  Variant Invoke(std::string_view name, InvokeKind kind,
                 DispatchArgs& args) override;
  std::vector<std::string> MemberNames() const override;
  VariantArray Enumerate() override { return items_.AsVariants(); }

 private:
  RuleCount rule_count_;
  ItemList<ResultFieldType> items_;
};

// Appends a column as the view wizard makes it: a copy of the definition of
// `variable` (the application's variable number `raw`) named `name` and,
// for a statistic other than 0, sized for it (StatisticFieldSize, from the
// summary list when `summary_mode`). Errors of StatisticFieldSize (6) leave
// the column added with the variable's size.
std::shared_ptr<ResultFieldType> AddVariableColumn(
    ResultFieldTypes& columns, const FieldDefinition& variable, int16_t pivot,
    int16_t raw, int16_t statistic, const std::string& name, bool summary_mode);

}  // namespace rz

#endif  // RZ_VIEW_RESULT_FIELD_TYPES_H_
