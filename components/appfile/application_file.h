// Copyright 2026 The Veltmark authors.
//
// ApplicationFile is the application-file component: the AppFile the
// engine and scripts ("RZfile") work with. It reads an application's
// template (app_template.h) and opens its data (DataStore, base path +
// ".rzd"); navigates and reads records; filters them with the condition
// list (ConditionFilter, compiled on first use after the list changed);
// keeps the view catalogue and saves it into the template; and writes new
// applications (ApplicationWriter). docs/formats.md describes the files.
//
// Behaviour beyond app_file.h:
//   - Opening (mode 2) a template that does not exist or is not an
//     application leaves the object closed without an error; a corrupt
//     template raises 75 naming the file and line; a missing data file 53.
//   - An application without records is valid: navigation finds nothing,
//     RecordCount is 0 and Value gives Null.
//   - MoveFirst, MoveLast and DistinctValues first bring the records up to
//     date with the data file (records another program appended since);
//     GotoRecord and Value never do.
//   - RecordExcluded is false for every record: the data file keeps no
//     marks that take records out of analysis.
//   - Variables 1 and 2 (date and time) are text in the data whatever
//     their TYPE says; a new application needs at least those two.
//   - SortFile (summary_pass.h) selects the records the conditions let
//     through and groups them. In detail mode the sort keys decide the
//     groups, in summary mode the summary keys; the other list is not
//     read. An empty interval's cursor item has record 0.
//   - Before the first NextSummary the "current summary record" is every
//     selected record (position 0, extent = their number), so a pass
//     without keys can be read without stepping. SummaryExtent is the
//     number of data records in the summary record.
//   - ColumnStatistics().Item computes the statistics of a variable
//     (column_statistics.h) when first asked and keeps them until the
//     summary record or its restriction changes.
//   - RestrictStatistics takes the current summary record's position
//     (error 5 for another) and keeps the records whose pivot variable
//     holds the pivot value: "" the records without a value, texts
//     trimmed and compared without regard to case, numbers numerically or
//     by their shortest text. Pivot variable 0 restores.
//   - SummaryCursor().Reset() forgets the pass: then EndOfSummary is true
//     and the statistics raise error 5.
//
//   - A new application (mode 1) at a path where an application already
//     is replaces it as a whole (application_replace.h): it is written
//     into a staging folder beside it and switched in at CloseApplication,
//     so a process killed at any moment leaves the old application or the
//     new one, never a mixture; the old one's views and hook script go with
//     it. An interrupted replacement found there is finished first.
//
// Ownership: the object owns its lists, the data store and a writer in
// progress. Destroying it while a new application is being written
// removes the temporary files and leaves the target as it was. Not
// thread-safe.

#ifndef RZ_APPFILE_APPLICATION_FILE_H_
#define RZ_APPFILE_APPLICATION_FILE_H_

#include <array>
#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "appfile/app_template.h"
#include "appfile/application_lists.h"
#include "appfile/summary_pass.h"
#include "platform/app_file.h"
#include "platform/application_replace.h"
#include "platform/script_reachable.h"

namespace rz {

class ApplicationWriter;
class ConditionFilter;
class DataStore;

class ApplicationFile final : public AppFile, public ScriptReachable {
 public:
  ApplicationFile();
  ~ApplicationFile() override;
  ApplicationFile(const ApplicationFile&) = delete;
  ApplicationFile& operator=(const ApplicationFile&) = delete;

  // The data file of the application whose template is `template_path`:
  // its path without extension, "/" separators, and ".rzd".
  static std::string DataPathFor(std::string_view template_path);

  // Error 70 when a script holds this object and OpenApplication(`path`)
  // would open anything but the application open when the script started,
  // or create a new one. Used by the Dispatch surface.
  void RefuseOtherApplicationToScripts(std::string_view path) const;

  // --- Opening and closing ---
  int16_t OpenMode() const override { return open_mode_; }
  void SetOpenMode(int16_t mode) override;
  void OpenApplication(std::string_view path) override;
  bool ApplicationExists() const override { return state_ != State::kClosed; }
  std::string NotApplicationCause() const override {
    return not_application_cause_;
  }
  void CloseApplication() override;

  // --- Header ---
  std::string AppTitle() const override { return template_.title; }
  std::string BasePath() const override;
  std::string AppFolder() const override;
  std::string DataFilePath() const override { return DataPathFor(path_); }
  double TemplateDateTime() const override;
  double DataDateTime() const override;
  int16_t DefaultLookBack() const override { return template_.look_back; }
  double ShiftHours() const override { return template_.shift_hours; }
  std::string ShiftStartText() const override { return template_.shift_start; }
  std::string SecuredFunctions() const override {
    return template_.secured_functions;
  }
  std::string HookTimeout() const override;
  bool TemplateWritable() const override;
  std::array<std::string, 2> TemplateQueries() const override {
    return template_.queries;
  }
  int16_t LeadingVariableCount() const override {
    return template_.leading_variables;
  }
  int16_t SpecialVariable1() const override {
    return template_.special_variables[0];
  }
  int16_t SpecialVariable2() const override {
    return template_.special_variables[1];
  }
  int16_t SpecialVariable3() const override {
    return template_.special_variables[2];
  }
  Variant FileSetting1() const override { return template_.file_settings[0]; }
  Variant FileSetting2() const override { return template_.file_settings[1]; }
  Variant FileSetting3() const override { return template_.file_settings[2]; }
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

  // --- Definitions and catalogues ---
  VariableList& Variables() override { return variables_; }
  RuleList& Rules() override { return rules_; }
  ViewCatalogue& Views() override { return views_; }
  void RefreshViews() override;

  // --- Records ---
  int32_t RecordCount() const override;
  void MoveFirst() override;
  bool ReadNext() override;
  void MoveLast() override;
  bool ReadPrevious() override;
  void GotoRecord(int32_t record) override;
  Variant Value(int16_t variable) const override;
  std::vector<Variant> DistinctValues(int16_t variable) const override;

  // --- Filter ---
  ConditionList& Conditions() override { return conditions_; }
  bool RecordExcluded() const override;
  bool RecordIncluded() const override;
  void FindDateRange(std::string_view begin_text, std::string_view end_text,
                     bool& found) override;
  int32_t RangeFirstRecord() const override { return range_first_; }
  int32_t RangeLastRecord() const override { return range_last_; }

  // --- Sort and summary ---
  SortKeyList& SortKeys() override { return sort_keys_; }
  SummaryKeyList& SummaryKeys() override { return summary_keys_; }
  SummaryCursorList& SummaryCursor() override { return cursor_; }
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
  ColumnStatisticsList& ColumnStatistics() override { return statistics_; }

  // --- Writing a new application ---
  void AddRecord() override;
  void SetValue(int16_t variable, const Variant& value) override;
  void SaveRecord(int32_t record) override;

  // --- Dispatch (application_dispatch.cc) ---
  std::string_view ClassName() const override { return "RZfile"; }
  Variant Invoke(std::string_view name, InvokeKind kind,
                 DispatchArgs& args) override;
  std::vector<std::string> MemberNames() const override;

 private:
  enum class State { kClosed, kReading, kWriting };

  void OnScriptEntered() override;
  void OpenExisting(std::string_view path);
  void CreateNew(std::string_view path);
  void ResetToClosed();
  void RequireClosed(std::string_view operation) const;
  void RequireReading(std::string_view operation) const;
  void RequireCurrent(std::string_view operation) const;
  void CheckVariable(int16_t variable, int16_t lowest) const;
  void RefreshRecords() const;
  void EnsureFilter() const;
  void SaveViews();
  // While writing: whether the data file keeps variable `variable` as numbers.
  bool IsNumericVariable(int16_t variable) const;
  SummarySettings CurrentSummarySettings() const;
  RecordList SelectRecords() const;
  void ForgetPass();
  void ForgetStatistics();
  std::span<const int32_t> StatisticRecords() const;
  ColumnStatistic StatisticsOf(int16_t variable);
  ColumnStatistic EmptyIntervalStatistics(int16_t variable) const;

  int16_t open_mode_ = 0;
  std::string path_;  // the template path opened last, "/" separators
  // Why the last open found no application at path_ ("" when it did, or
  // when no file is there).
  std::string not_application_cause_;
  std::string script_home_;  // the application open when a script started
  AppTemplate template_;     // the open application or the one being set up
  State state_ = State::kClosed;
  std::unique_ptr<DataStore> store_;           // while reading
  std::unique_ptr<ApplicationWriter> writer_;  // while writing
  std::vector<bool> writing_numeric_;          // while writing
  // While writing over an existing application: its staging folder.
  std::unique_ptr<ApplicationReplacement> replacement_;
  // Navigation: position 0 is before the first record, RecordCount() + 1
  // after the last; current 0 is no record. Mutable because the const
  // DistinctValues may find records gone when it refreshes.
  mutable int32_t position_ = 0;
  mutable int32_t current_ = 0;
  std::optional<std::vector<Variant>> pending_;  // begun by AddRecord

  AppVariableList variables_;
  AppRuleList rules_;
  AppViewCatalogue views_;
  AppConditionList conditions_;
  AppSortKeyList sort_keys_;
  AppSummaryKeyList summary_keys_;
  AppSummaryCursor cursor_;
  AppColumnStatistics statistics_;

  // The compiled condition list and the list generation it was built from.
  mutable std::unique_ptr<ConditionFilter> filter_;
  mutable uint64_t filter_generation_ = 0;
  int32_t range_first_ = 0;
  int32_t range_last_ = 0;

  // Summary settings, kept for the sort/summary pass.
  bool summarize_ = false;
  std::string interval_ = "00:00:00";
  bool null_intervals_ = false;
  double shift_duration_ = 0;
  std::string shift_start_ = "00:00:00";
  int16_t plus_minus_ = 1;
  int16_t week_days_ = 0;
  int16_t year_begins_ = 1;

  // The last sort/summary pass; none after SummaryCursor().Reset().
  std::unique_ptr<SummaryPass> pass_;
  int32_t pass_record_count_ = 0;  // records held when it was built
  int32_t summary_position_ = 0;   // 0 before the first NextSummary
  // RestrictStatistics: the records of the current summary record that
  // hold the pivot value, while a restriction is on.
  std::optional<std::vector<int32_t>> restricted_;
  // Statistics computed for the current summary record, by variable - 1.
  std::vector<std::optional<ColumnStatistic>> statistics_cache_;
};

}  // namespace rz

#endif  // RZ_APPFILE_APPLICATION_FILE_H_
