// Copyright 2026 The Veltmark authors.
//
// FakeRepository is an in-memory Repository for the engine's tests: cells
// of Variants that grow on read and write past the end, fields, header
// items, the rule catalogue and a statistics catalogue filled with a few
// entries (a test may replace them). It counts how often the record store
// grew, so tests can check the engine's reserve policy.
//
// Dispatch ("RzRep") offers by name, without regard to case:
// ResetRepository, RecordCount, Value(record, field) read and write,
// DeleteRecord, SetSourceRecord, Title, SpecialColumn1..3,
// LeadingColumnCount, FileSetting1..3, DateFormat, TimeFormat.

#ifndef RZ_SUPPORT_FAKE_REPOSITORY_H_
#define RZ_SUPPORT_FAKE_REPOSITORY_H_

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "core/variant.h"
#include "platform/repository.h"

namespace rz {

class FakeRepository : public Repository {
 public:
  FakeRepository();
  ~FakeRepository() override;

  // Test controls and inspection.
  void SetStatisticsEntries(std::vector<StatisticEntry> entries);
  // How often a read or write past the end extended the store.
  int GrowthCount() const { return growth_count_; }
  int ResetCount() const { return reset_count_; }

  // Repository.
  void ResetRepository() override;
  int32_t RecordCount() const override {
    return static_cast<int32_t>(records_.size());
  }
  Variant Value(int32_t record, int32_t field) override;
  void SetValue(int32_t record, int32_t field, const Variant& value) override;
  void DeleteRecord(int32_t record) override;
  void SetSourceRecord(int32_t record, int32_t source) override;
  int32_t SourceRecord(int32_t record) const override;

  std::string Title() const override { return title_; }
  void SetTitle(std::string_view value) override { title_ = value; }
  int32_t SpecialColumn1() const override { return special_columns_[0]; }
  void SetSpecialColumn1(int32_t value) override {
    special_columns_[0] = value;
  }
  int32_t SpecialColumn2() const override { return special_columns_[1]; }
  void SetSpecialColumn2(int32_t value) override {
    special_columns_[1] = value;
  }
  int32_t SpecialColumn3() const override { return special_columns_[2]; }
  void SetSpecialColumn3(int32_t value) override {
    special_columns_[2] = value;
  }
  int32_t LeadingColumnCount() const override { return leading_column_count_; }
  void SetLeadingColumnCount(int32_t value) override {
    leading_column_count_ = value;
  }
  int32_t FileSetting1() const override { return file_setting1_; }
  void SetFileSetting1(int32_t value) override { file_setting1_ = value; }
  int32_t FileSetting2() const override { return file_setting2_; }
  void SetFileSetting2(int32_t value) override { file_setting2_ = value; }
  double FileSetting3() const override { return file_setting3_; }
  void SetFileSetting3(double value) override { file_setting3_ = value; }

  std::string DateFormat() const override { return "yyyy-mm-dd"; }
  std::string TimeFormat() const override { return "hh:mm:ss"; }

  RepositoryFieldList& Fields() override;
  RuleCatalogueList& RuleCatalogue() override;
  const StatisticsCatalogueList& StatisticsCatalogue() const override;

  // Dispatch.
  std::string_view ClassName() const override { return "RzRep"; }
  Variant Invoke(std::string_view name, InvokeKind kind,
                 DispatchArgs& args) override;
  std::vector<std::string> MemberNames() const override;

 private:
  class Lists;

  // The cell (record, field), growing the store to `record`.
  Variant& Cell(int32_t record, int32_t field);
  void GrowTo(int32_t record);

  std::unique_ptr<Lists> lists_;
  std::vector<std::shared_ptr<RepositoryField>> fields_;
  std::vector<std::shared_ptr<RuleEntry>> rules_;
  std::vector<StatisticEntry> statistics_;
  std::vector<std::vector<Variant>> records_;  // one cell per field
  std::vector<int32_t> source_records_;
  std::string title_;
  int32_t special_columns_[3] = {0, 0, 0};
  int32_t leading_column_count_ = 0;
  int32_t file_setting1_ = 0;
  int32_t file_setting2_ = 0;
  double file_setting3_ = 0;
  int growth_count_ = 0;
  int reset_count_ = 0;
};

}  // namespace rz

#endif  // RZ_SUPPORT_FAKE_REPOSITORY_H_
