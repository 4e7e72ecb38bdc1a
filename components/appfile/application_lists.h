// Copyright 2026 The Veltmark authors.
//
// The lists an ApplicationFile hands out (AppFile::Variables(), Rules(),
// Views(), Conditions(), SortKeys(), SummaryKeys(), SummaryCursor(),
// ColumnStatistics()), each with its Dispatch surface for scripts: Count,
// a 1-based Item as the default member, the list's own methods, and
// enumeration. Their items reach scripts as objects: a variable is its
// FieldDefinition; a rule has Key, Name, Texts (an array of six) and
// Numbers (an array of two); a view has Name and Number; a condition has
// AndOr, Par1, Variable, Condition, Value and Par2; a summary group is its
// record number.
//
// Ownership: the ApplicationFile owns the lists. The variable, rule and
// view lists work on the application model the ApplicationFile holds (they
// keep references into it and callbacks for what needs the file); the
// others own their entries. Errors: 5 for a position outside 1..Count()
// and for the invalid arguments each method names; the callbacks raise
// what the ApplicationFile raises. Not thread-safe.

#ifndef RZ_APPFILE_APPLICATION_LISTS_H_
#define RZ_APPFILE_APPLICATION_LISTS_H_

#include <array>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "core/dispatch.h"
#include "platform/app_file.h"
#include "platform/field_definition.h"

namespace rz {

// The 0-based slot of the 1-based `index`; error 5 outside 1..count.
size_t ListSlot(int32_t index, size_t count);

class AppVariableList final : public VariableList, public Dispatch {
 public:
  // `check_add` raises when variables may not be added now.
  AppVariableList(std::vector<std::shared_ptr<FieldDefinition>>& variables,
                  std::function<void()> check_add);

  int32_t Count() const override;
  std::shared_ptr<FieldDefinition> Item(int32_t index) const override;
  // Error 5 for a type letter that is not one of T P L N A R C (any case)
  // or a length below 1: the template could not be read back.
  std::shared_ptr<FieldDefinition> Add(std::string_view name,
                                       std::string_view type_letter,
                                       int16_t length,
                                       int16_t decimals) override;

  std::string_view ClassName() const override { return "Variables"; }
  // The members scripts reach, which Invoke and MemberNames share.
  static const DispatchTable<AppVariableList>& Members();
  Variant Invoke(std::string_view name, InvokeKind kind,
                 DispatchArgs& args) override;
  std::vector<std::string> MemberNames() const override;
  VariantArray Enumerate() override;

 private:
  std::vector<std::shared_ptr<FieldDefinition>>& variables_;
  std::function<void()> check_add_;
};

// Error 5 unless `definition` has a type letter of T P L N A R C and a
// length of at least 1; `number` names the variable in the message.
void CheckVariableDefinition(const FieldDefinition& definition, int32_t number);

class AppRuleList final : public RuleList, public Dispatch {
 public:
  explicit AppRuleList(const std::vector<Rule>& rules) : rules_(rules) {}

  int32_t Count() const override;
  Rule Item(int32_t index) const override;

  std::string_view ClassName() const override { return "Rules"; }
  // The members scripts reach, which Invoke and MemberNames share.
  static const DispatchTable<AppRuleList>& Members();
  Variant Invoke(std::string_view name, InvokeKind kind,
                 DispatchArgs& args) override;
  std::vector<std::string> MemberNames() const override;
  VariantArray Enumerate() override;

 private:
  const std::vector<Rule>& rules_;
};

class AppViewCatalogue final : public ViewCatalogue, public Dispatch {
 public:
  // `save` writes the catalogue into the template.
  AppViewCatalogue(std::vector<ViewEntry>& views, int32_t& default_view,
                   std::function<void()> save);

  int32_t Count() const override;
  ViewEntry Item(int32_t position) const override;
  void Add(std::string_view name, int32_t number) override;
  void Remove(int32_t position) override;
  void Swap(int32_t position_a, int32_t position_b) override;
  int32_t DefaultView() const override { return default_view_; }
  void SetDefaultView(int32_t position) override;
  void Save() override { save_(); }

  std::string_view ClassName() const override { return "Views"; }
  // The members scripts reach, which Invoke and MemberNames share.
  static const DispatchTable<AppViewCatalogue>& Members();
  Variant Invoke(std::string_view name, InvokeKind kind,
                 DispatchArgs& args) override;
  std::vector<std::string> MemberNames() const override;
  VariantArray Enumerate() override;

 private:
  std::vector<ViewEntry>& views_;
  int32_t& default_view_;
  std::function<void()> save_;
};

class AppConditionList final : public ConditionList, public Dispatch {
 public:
  void Clear() override;
  void Add(int16_t and_or, std::string_view par1, int16_t variable,
           std::string_view condition, std::string_view value,
           std::string_view par2) override;
  int32_t Count() const override;
  Condition Item(int32_t index) const override;

  const std::vector<Condition>& Entries() const { return entries_; }
  // Changes with every Clear and Add, so a compiled filter knows when it
  // is out of date.
  uint64_t Generation() const { return generation_; }

  std::string_view ClassName() const override { return "Conditions"; }
  // The members scripts reach, which Invoke and MemberNames share.
  static const DispatchTable<AppConditionList>& Members();
  Variant Invoke(std::string_view name, InvokeKind kind,
                 DispatchArgs& args) override;
  std::vector<std::string> MemberNames() const override;
  VariantArray Enumerate() override;

 private:
  std::vector<Condition> entries_;
  uint64_t generation_ = 0;
};

class AppSortKeyList final : public SortKeyList, public Dispatch {
 public:
  void Reset() override { keys_.clear(); }
  void Add(int16_t variable, int16_t kind) override;
  int32_t Count() const override;

  // Variable and kind of each key, in order.
  const std::vector<std::array<int16_t, 2>>& Keys() const { return keys_; }

  std::string_view ClassName() const override { return "SortKeys"; }
  // The members scripts reach, which Invoke and MemberNames share.
  static const DispatchTable<AppSortKeyList>& Members();
  Variant Invoke(std::string_view name, InvokeKind kind,
                 DispatchArgs& args) override;
  std::vector<std::string> MemberNames() const override;

 private:
  std::vector<std::array<int16_t, 2>> keys_;
};

class AppSummaryKeyList final : public SummaryKeyList, public Dispatch {
 public:
  void Reset() override { keys_.clear(); }
  void Add(int32_t key) override { keys_.push_back(key); }
  int32_t Count() const override;

  const std::vector<int32_t>& Keys() const { return keys_; }

  std::string_view ClassName() const override { return "SummaryKeys"; }
  // The members scripts reach, which Invoke and MemberNames share.
  static const DispatchTable<AppSummaryKeyList>& Members();
  Variant Invoke(std::string_view name, InvokeKind kind,
                 DispatchArgs& args) override;
  std::vector<std::string> MemberNames() const override;

 private:
  std::vector<int32_t> keys_;
};

class AppSummaryCursor final : public SummaryCursorList, public Dispatch {
 public:
  // `on_reset` runs on every Reset: the owner forgets its summary pass.
  explicit AppSummaryCursor(std::function<void()> on_reset)
      : on_reset_(std::move(on_reset)) {}

  void Reset() override {
    groups_.clear();
    on_reset_();
  }
  int32_t Count() const override;
  SummaryGroup Item(int32_t index) const override;

  std::vector<SummaryGroup>& Groups() { return groups_; }

  std::string_view ClassName() const override { return "SummaryCursor"; }
  // The members scripts reach, which Invoke and MemberNames share.
  static const DispatchTable<AppSummaryCursor>& Members();
  Variant Invoke(std::string_view name, InvokeKind kind,
                 DispatchArgs& args) override;
  std::vector<std::string> MemberNames() const override;
  VariantArray Enumerate() override;

 private:
  std::function<void()> on_reset_;
  std::vector<SummaryGroup> groups_;
};

class AppColumnStatistics final : public ColumnStatisticsList, public Dispatch {
 public:
  // `variable_count` gives the number of variables of the application,
  // `statistics` the statistics of one variable over the current summary
  // record (it raises error 5 when there is none).
  AppColumnStatistics(std::function<int32_t()> variable_count,
                      std::function<ColumnStatistic(int16_t)> statistics)
      : variable_count_(std::move(variable_count)),
        statistics_(std::move(statistics)) {}

  int32_t Count() const override { return variable_count_(); }
  // Error 9 outside the variables.
  ColumnStatistic Item(int16_t variable) const override;

  std::string_view ClassName() const override { return "ColumnStatistics"; }
  // The members scripts reach, which Invoke and MemberNames share.
  static const DispatchTable<AppColumnStatistics>& Members();
  Variant Invoke(std::string_view name, InvokeKind kind,
                 DispatchArgs& args) override;
  std::vector<std::string> MemberNames() const override;

 private:
  std::function<int32_t()> variable_count_;
  std::function<ColumnStatistic(int16_t)> statistics_;
};

// What scripts get from ColumnStatistics.Item(v): the 23 statistics as
// read-only properties under their names (Count, Tdev, ..., AvgTBE), a
// copy taken when the item was read.
class ColumnStatisticObject final : public Dispatch {
 public:
  explicit ColumnStatisticObject(ColumnStatistic values)
      : values_(std::move(values)) {}

  std::string_view ClassName() const override { return "ColumnStatistic"; }
  Variant Invoke(std::string_view name, InvokeKind kind,
                 DispatchArgs& args) override;
  std::vector<std::string> MemberNames() const override;

 private:
  ColumnStatistic values_;
};

}  // namespace rz

#endif  // RZ_APPFILE_APPLICATION_LISTS_H_
