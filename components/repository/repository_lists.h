// Copyright 2026 The Veltmark authors.
//
// The three lists a ResultRepository lends out by reference: its fields,
// its rule catalogue and its statistics catalogue. Each is both the
// engine's interface (repository.h) and a Dispatch object for scripts and
// hosts. The repository owns them; they live as long as it does and keep
// their identity through ResetRepository (they are emptied, never
// replaced).
//
// Dispatch members, names compared without regard to case:
//   Fields ("RepositoryFields"): Count, Item(index) (the default member,
//     giving the RepositoryField), Add(name, type, length, decimals, extra).
//   RuleCatalogue ("RuleCatalogue"): Count, Item(key) (the default member;
//     a number reads the entry at that position), Add(key); each entry is a
//     "RuleEntry" object with Key (read-only), Ordinal, Text(1..6) and
//     Number(1..2), the rule's eight attributes.
//   StatisticsCatalogue ("StatisticsCatalogue"): Count, Item(index) (the
//     default member); each entry is a read-only "StatisticEntry" object
//     with Reference, Description and Selected.
// All three enumerate their items (For Each). Errors as in repository.h:
// 5 for a position outside 1..Count, an unknown or duplicate rule key;
// 9 for a rule attribute number out of range; 438 and 450 as Dispatch.

#ifndef RZ_REPOSITORY_REPOSITORY_LISTS_H_
#define RZ_REPOSITORY_REPOSITORY_LISTS_H_

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "core/dispatch.h"
#include "platform/repository.h"
#include "repository/cell_store.h"

namespace rz {

// The statistics a report can list, in catalogue order (see
// docs/repository.md). Reference numbers are stored in view files, so an
// entry keeps its number forever; new statistics get new numbers.
const std::vector<StatisticEntry>& ReportableStatistics();

class RepositoryFields : public RepositoryFieldList, public Dispatch {
 public:
  // Adding a field adds a column to `cells`.
  explicit RepositoryFields(CellStore& cells) : cells_(cells) {}

  int32_t Count() const override {
    return static_cast<int32_t>(fields_.size());
  }
  std::shared_ptr<RepositoryField> Item(int32_t index) const override;
  std::shared_ptr<RepositoryField> Add(std::string_view name, int16_t type_code,
                                       int16_t length, int16_t decimals,
                                       int16_t extra) override;
  // Drops every field (the cell store is cleared by its owner).
  void Clear() { fields_.clear(); }

  std::string_view ClassName() const override { return "RepositoryFields"; }
  // The members scripts reach, which Invoke and MemberNames share.
  static const DispatchTable<RepositoryFields>& Members();
  Variant Invoke(std::string_view name, InvokeKind kind,
                 DispatchArgs& args) override;
  std::vector<std::string> MemberNames() const override;
  VariantArray Enumerate() override;

 private:
  CellStore& cells_;
  std::vector<std::shared_ptr<RepositoryField>> fields_;
};

class RepositoryRules : public RuleCatalogueList, public Dispatch {
 public:
  int32_t Count() const override { return static_cast<int32_t>(rules_.size()); }
  std::shared_ptr<RuleEntry> Add(std::string_view key) override;
  std::shared_ptr<RuleEntry> Item(std::string_view key) const override;
  std::shared_ptr<RuleEntry> ItemAt(int32_t position) const override;
  void Clear() { rules_.clear(); }

  std::string_view ClassName() const override { return "RuleCatalogue"; }
  // The members scripts reach, which Invoke and MemberNames share.
  static const DispatchTable<RepositoryRules>& Members();
  Variant Invoke(std::string_view name, InvokeKind kind,
                 DispatchArgs& args) override;
  std::vector<std::string> MemberNames() const override;
  VariantArray Enumerate() override;

 private:
  std::shared_ptr<RuleEntry> Find(std::string_view key) const;

  std::vector<std::shared_ptr<RuleEntry>> rules_;
};

class RepositoryStatistics : public StatisticsCatalogueList, public Dispatch {
 public:
  int32_t Count() const override;
  StatisticEntry Item(int32_t index) const override;

  std::string_view ClassName() const override { return "StatisticsCatalogue"; }
  // The members scripts reach, which Invoke and MemberNames share.
  static const DispatchTable<RepositoryStatistics>& Members();
  Variant Invoke(std::string_view name, InvokeKind kind,
                 DispatchArgs& args) override;
  std::vector<std::string> MemberNames() const override;
  VariantArray Enumerate() override;
};

}  // namespace rz

#endif  // RZ_REPOSITORY_REPOSITORY_LISTS_H_
