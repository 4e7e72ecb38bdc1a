// Copyright 2026 The Veltmark authors.
//
// FakeAppFile is an in-memory AppFile for the engine's tests. Applications
// live on a FakeDisk (a map from template path to FakeApplication) that a
// test fills; OpenApplication in mode 2 copies one from there, a new
// application (mode 1) is written there by CloseApplication, and the view
// catalogue's Save writes the views back. So a test can reopen, import from
// a second application and read back an export.
//
// What the fake does honestly: the header, variables, rules and views of
// the application; record navigation and Value (variable 0 built from the
// date and time texts); the condition list (stored, not evaluated); the
// record exclusion set a test chooses (RecordExcluded true and
// RecordIncluded false for those records, the reverse for all others);
// FindDateRange by scanning; DistinctValues; SortFile in detail mode with no
// key or one key of kind 3 over the records not excluded; writing a new
// application. The summary pass (SortFile with Summarize on, NextSummary,
// EndOfSummary, SummaryPosition, SummaryExtent, RestrictStatistics and
// ColumnStatistics().Item) raises error 5 "not supported by the fake".
//
// Dispatch ("RZfile", as the real component) offers a small set of members by
// name, without regard to case: AppTitle (and Title), BasePath, AppFolder,
// RecordCount, MoveFirst, ReadNext, MoveLast, ReadPrevious, GotoRecord, Value.

#ifndef RZ_SUPPORT_FAKE_APP_FILE_H_
#define RZ_SUPPORT_FAKE_APP_FILE_H_

#include <array>
#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "core/variant.h"
#include "platform/app_file.h"
#include "platform/field_definition.h"

namespace rz {

// One application as the fake keeps it on its disk.
struct FakeApplication {
  std::string app_title;
  std::string secured_functions;
  std::string hook_timeout;  // HOOKTIMEOUT; "" = absent
  double template_date_time = 0;
  double data_date_time = 0;
  int16_t default_look_back = -1;
  double shift_hours = 0;
  std::string shift_start_text = "00:00";
  bool template_writable = true;
  std::array<std::string, 2> template_queries;
  int16_t leading_variable_count = 2;
  std::array<int16_t, 3> special_variables{};
  std::array<Variant, 3> file_settings;
  std::map<std::string, Variant> header_items;  // keys in capitals

  std::vector<std::shared_ptr<FieldDefinition>> variables;
  std::vector<Rule> rules;
  std::vector<ViewEntry> views;
  int32_t default_view = 0;
  // Record r is records[r - 1]; its entry k - 1 is variable k (1 the date
  // text, 2 the time text).
  std::vector<std::vector<Variant>> records;

  // Appends a variable with these attributes (POSITION = its number) and
  // returns its definition.
  std::shared_ptr<FieldDefinition> AddVariable(std::string_view name,
                                               std::string_view type_letter,
                                               int16_t length = 10,
                                               int16_t decimals = 0);
  // Appends a record: the date and time texts and then variables 3, 4, ...
  // (missing trailing values are Null).
  void AddRecord(std::string_view date, std::string_view time,
                 std::vector<Variant> values = {});
  // A copy whose variable definitions are new objects.
  FakeApplication Clone() const;
};

using FakeDisk = std::map<std::string, FakeApplication>;

class FakeAppFile : public AppFile {
 public:
  explicit FakeAppFile(std::shared_ptr<FakeDisk> disk);
  ~FakeAppFile() override;

  // Test controls and inspection.
  // Records (numbers) that RecordExcluded reports as excluded.
  void SetExcludedRecords(std::set<int32_t> records);
  bool Summarize() const { return summarize_; }
  const std::string& Interval() const { return interval_; }
  bool NullIntervals() const { return null_intervals_; }
  double ShiftDuration() const { return shift_duration_; }
  const std::string& ShiftStart() const { return shift_start_; }
  int16_t PlusMinus() const { return plus_minus_; }
  int16_t WeekDays() const { return week_days_; }
  int16_t YearBegins() const { return year_begins_; }
  const std::vector<std::array<int16_t, 2>>& SortKeyEntries() const {
    return sort_keys_;
  }
  const std::vector<int32_t>& SummaryKeyEntries() const {
    return summary_keys_;
  }
  const std::vector<Condition>& ConditionEntries() const { return conditions_; }
  // The record current now (0 = none).
  int32_t CurrentRecord() const { return current_; }
  // The path opened last ("" before any).
  const std::string& Path() const { return path_; }

  // AppFile.
  int16_t OpenMode() const override { return open_mode_; }
  void SetOpenMode(int16_t mode) override;
  void OpenApplication(std::string_view path) override;
  bool ApplicationExists() const override { return open_; }
  void CloseApplication() override;

  std::string AppTitle() const override { return app_.app_title; }
  std::string BasePath() const override;
  std::string AppFolder() const override;
  double TemplateDateTime() const override;
  double DataDateTime() const override;
  int16_t DefaultLookBack() const override { return app_.default_look_back; }
  double ShiftHours() const override { return app_.shift_hours; }
  std::string ShiftStartText() const override { return app_.shift_start_text; }
  std::string SecuredFunctions() const override {
    return app_.secured_functions;
  }
  std::string HookTimeout() const override { return app_.hook_timeout; }
  bool TemplateWritable() const override { return app_.template_writable; }
  std::array<std::string, 2> TemplateQueries() const override {
    return app_.template_queries;
  }
  int16_t LeadingVariableCount() const override {
    return app_.leading_variable_count;
  }
  int16_t SpecialVariable1() const override {
    return app_.special_variables[0];
  }
  int16_t SpecialVariable2() const override {
    return app_.special_variables[1];
  }
  int16_t SpecialVariable3() const override {
    return app_.special_variables[2];
  }
  Variant FileSetting1() const override { return app_.file_settings[0]; }
  Variant FileSetting2() const override { return app_.file_settings[1]; }
  Variant FileSetting3() const override { return app_.file_settings[2]; }
  Variant HeaderItem(std::string_view key) const override;

  void SetAppTitle(std::string_view value) override;
  void SetLeadingVariableCount(int16_t value) override;
  void SetDefaultLookBack(int16_t value) override;
  void SetSpecialVariable1(int16_t value) override;
  void SetSpecialVariable2(int16_t value) override;
  void SetSpecialVariable3(int16_t value) override;
  void SetFileSetting1(const Variant& value) override;
  void SetFileSetting2(const Variant& value) override;
  void SetFileSetting3(const Variant& value) override;
  void SetShiftHours(double value) override;
  void SetShiftStartText(std::string_view value) override;
  void SetHeaderItem(std::string_view key, const Variant& value) override;
  void SetSecuredFunctions(std::string_view value) override;
  void AddRule(const Rule& rule) override;

  VariableList& Variables() override;
  RuleList& Rules() override;
  ViewCatalogue& Views() override;
  void RefreshViews() override;

  int32_t RecordCount() const override;
  void MoveFirst() override;
  bool ReadNext() override;
  void MoveLast() override;
  bool ReadPrevious() override;
  void GotoRecord(int32_t record) override;
  Variant Value(int16_t variable) const override;
  std::vector<Variant> DistinctValues(int16_t variable) const override;

  ConditionList& Conditions() override;
  bool RecordExcluded() const override;
  bool RecordIncluded() const override;
  void FindDateRange(std::string_view begin_text, std::string_view end_text,
                     bool& found) override;
  int32_t RangeFirstRecord() const override { return range_first_; }
  int32_t RangeLastRecord() const override { return range_last_; }

  SortKeyList& SortKeys() override;
  SummaryKeyList& SummaryKeys() override;
  SummaryCursorList& SummaryCursor() override;
  void SetSummarize(bool value) override { summarize_ = value; }
  void SetInterval(std::string_view hh_mm_ss) override;
  void SetNullIntervals(bool value) override { null_intervals_ = value; }
  void SetShiftDuration(double hours) override { shift_duration_ = hours; }
  void SetShiftStart(std::string_view hh_mm_ss) override;
  void SetPlusMinus(int16_t value) override { plus_minus_ = value; }
  void SetWeekDays(int16_t value) override { week_days_ = value; }
  void SetYearBegins(int16_t value) override { year_begins_ = value; }
  void SortFile() override;
  bool EndOfSummary() const override;
  void NextSummary() override;
  int32_t SummaryPosition() const override;
  int32_t SummaryExtent() const override;
  void RestrictStatistics(int32_t position, int32_t extent, std::string& text,
                          int16_t pivot_variable,
                          const std::string& pivot_value,
                          double& work) override;
  ColumnStatisticsList& ColumnStatistics() override;

  void AddRecord() override;
  void SetValue(int16_t variable, const Variant& value) override;
  void SaveRecord(int32_t record) override;

  // Dispatch.
  std::string_view ClassName() const override { return "RZfile"; }
  Variant Invoke(std::string_view name, InvokeKind kind,
                 DispatchArgs& args) override;
  std::vector<std::string> MemberNames() const override;

 private:
  class Lists;
  friend class Lists;

  void RequireOpen(std::string_view operation) const;
  void RequireClosed(std::string_view operation) const;
  void RequireCurrent(std::string_view operation) const;
  bool IsNumericVariable(int16_t variable) const;
  double RecordDateTime(int32_t record) const;
  bool Passes(int32_t record) const;

  std::shared_ptr<FakeDisk> disk_;
  std::unique_ptr<Lists> lists_;
  int16_t open_mode_ = 0;
  bool open_ = false;
  bool creating_ = false;
  std::string path_;
  FakeApplication app_;   // the open application or the one being set up
  int32_t position_ = 0;  // 0 before the first, RecordCount() + 1 after
  int32_t current_ = 0;   // the current record, 0 = none
  std::optional<std::vector<Variant>> pending_;  // begun by AddRecord
  std::set<int32_t> excluded_;
  std::vector<Condition> conditions_;
  std::vector<std::array<int16_t, 2>> sort_keys_;  // variable, kind
  std::vector<int32_t> summary_keys_;
  std::vector<SummaryGroup> groups_;
  bool summarize_ = false;
  std::string interval_;
  bool null_intervals_ = false;
  double shift_duration_ = 0;
  std::string shift_start_;
  int16_t plus_minus_ = 0;
  int16_t week_days_ = 0;
  int16_t year_begins_ = 0;
  int32_t range_first_ = 0;
  int32_t range_last_ = 0;
};

}  // namespace rz

#endif  // RZ_SUPPORT_FAKE_APP_FILE_H_
