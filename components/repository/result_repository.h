// Copyright 2026 The Veltmark authors.
//
// ResultRepository is the result store a run fills (the host's
// `DataSource`, "RzRep" to scripts): fields, records of compact cells (see
// cell_store.h), the data record each result record came from, header
// items, the rule catalogue and the catalogue of reportable statistics. It
// implements Repository (platform/repository.h), whose comments give the
// contract: records numbered from 1 that grow when a cell past the end is
// read or written, error 9 for a record below 1 or a field outside
// 1..Fields().Count(), error 5 from the lists.
//
// ResetRepository drops the fields, the records and their source numbers,
// the header items (texts empty, numbers 0) and the rule catalogue. It
// keeps the statistics catalogue, the date and time formats, and the
// identity of the three list objects. Fields handed out before stay valid
// objects but no longer belong to the repository.
//
// Dispatch, names compared without regard to case: ResetRepository,
// RecordCount, Value(record, field) (read and write), DeleteRecord(record),
// SetSourceRecord(record, source), SourceRecord(record), Title,
// SpecialColumn1..3, LeadingColumnCount, FileSetting1..3, DateFormat,
// TimeFormat (read-only), and the lists Fields, RuleCatalogue and
// StatisticsCatalogue (see repository_lists.h). A list handed out this way
// keeps the repository alive when the repository is owned by a shared_ptr;
// otherwise it is valid as long as the repository is.
//
// Not thread-safe.

#ifndef RZ_REPOSITORY_RESULT_REPOSITORY_H_
#define RZ_REPOSITORY_RESULT_REPOSITORY_H_

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "platform/repository.h"
#include "repository/cell_store.h"
#include "repository/repository_lists.h"

namespace rz {

class ResultRepository final : public Repository {
 public:
  ResultRepository();
  ResultRepository(const ResultRepository&) = delete;
  ResultRepository& operator=(const ResultRepository&) = delete;

  void ResetRepository() override;

  int32_t RecordCount() const override { return cells_.RecordCount(); }
  Variant Value(int32_t record, int32_t field) override;
  // Value's text without a copy when the cell holds a text (valid until
  // the cell changes); nullopt for any other value. Raises as Value.
  std::optional<std::string_view> TextAt(int32_t record, int32_t field);
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

  RepositoryFieldList& Fields() override { return fields_; }
  RuleCatalogueList& RuleCatalogue() override { return rules_; }
  const StatisticsCatalogueList& StatisticsCatalogue() const override {
    return statistics_;
  }

  // How many long texts, objects and arrays the cells hold outside
  // themselves (a store rewritten in place keeps this bounded).
  size_t OutOfLineValues() const { return cells_.LiveArenaSlots(); }

  std::string_view ClassName() const override { return "RzRep"; }
  // The members scripts reach, which Invoke and MemberNames share.
  static const DispatchTable<ResultRepository>& Members();
  Variant Invoke(std::string_view name, InvokeKind kind,
                 DispatchArgs& args) override;
  std::vector<std::string> MemberNames() const override;

 private:
  // Checks a cell address (error 9) and grows the store to `record`.
  void PrepareCell(int32_t record, int32_t field);
  void GrowTo(int32_t record);
  // A Dispatch handle on one of the lists this repository owns.
  Variant ListObject(Dispatch& list);

  CellStore cells_;
  std::vector<int32_t> source_records_;  // one per record
  RepositoryFields fields_{cells_};
  RepositoryRules rules_;
  RepositoryStatistics statistics_;
  std::string title_;
  int32_t special_columns_[3] = {0, 0, 0};
  int32_t leading_column_count_ = 0;
  int32_t file_setting1_ = 0;
  int32_t file_setting2_ = 0;
  double file_setting3_ = 0;
};

}  // namespace rz

#endif  // RZ_REPOSITORY_RESULT_REPOSITORY_H_
