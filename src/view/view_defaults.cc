// Copyright 2026 The Veltmark authors.

#include "view/view_defaults.h"

#include <algorithm>
#include <memory>
#include <string>

#include "core/date_time.h"
#include "core/error.h"
#include "core/text.h"
#include "platform/app_file.h"
#include "platform/file_system.h"
#include "platform/platform.h"
#include "platform/repository.h"
#include "platform/trace.h"
#include "view/record_bounds.h"
#include "view/view_state.h"

namespace rz {
namespace {

constexpr int32_t kRecordBoundType = 14;  // "First Record" / "Last Record"
constexpr int32_t kRecordsUnit = 9;       // "Record(s)"
constexpr int16_t kWholeFile = -1;        // DefaultLookBack: no look-back

void TraceDefaults(ViewState& state, std::string_view message) {
  Trace(*state.platform, kWriterModule, "SetDefaults", message);
}

void SetRecordRange(ViewState& state, AppFile& file) {
  state.FromType = kRecordBoundType;
  state.FromDateTime = state.FirstRecordDateTime;
  state.ForwardAmount = 1;
  state.ForwardUnits = kRecordsUnit;
  state.ToType = kRecordBoundType;
  state.ToDateTime = state.LastRecordDateTime;
  const int16_t look_back = file.DefaultLookBack();
  if (look_back == kWholeFile) {
    state.BackwardAmount = file.RecordCount();
    state.FilterRangeType = kRangeFromTo;
  } else {
    state.BackwardAmount = look_back;
    state.FilterRangeType = kRangeBackward;
  }
  state.BackwardUnits = kRecordsUnit;
}

void SetReportDefaults(ViewState& state) {
  state.ReportHeader = "%App_Title%\r\n%View_Name%";
  state.ReportFooter.clear();
  state.ReportType = 0;
  state.ReportNumericOnly = 1;
  state.ReportIncludeDetails = 0;
  state.ReportIncludeColumns = 1;
  state.ReportIncludeStatistics = 1;
  state.ReportIncludeFilter = 0;
}

void SetOptionDefaults(ViewState& state, AppFile& file) {
  state.PlusMinus = 1;
  state.SumBy = 0;
  state.NullPivots = 1;
  state.NullIntervals = 0;
  state.ExcludeEmpty = 0;
  const double shift_hours = file.ShiftHours();
  if (shift_hours == 0) {
    state.ShiftDuration = 8;
    state.ShiftStart = 0;
  } else {
    // "hh:mm": hours and minutes, the seconds count 0.
    const std::string start = file.ShiftStartText();
    state.ShiftDuration = shift_hours;
    state.ShiftStart = TimeSerial(
        static_cast<int64_t>(LeadingNumber(start.substr(0, 2))),
        static_cast<int64_t>(
            LeadingNumber(start.size() > 3 ? start.substr(3, 2) : "")),
        0);
  }
  state.YearBegins = 1;
  state.WeekDays = 0;
  state.Interval = 0;
  state.ReturnScreen = 0;
}

// Refills `columns` with one raw column per application variable, each
// carrying a copy of the variable's definition.
void FillVariableColumns(ResultFieldTypes& columns, AppFile& file) {
  columns.Clear();
  VariableList& variables = file.Variables();
  for (int32_t i = 1; i <= variables.Count(); ++i) {
    const std::shared_ptr<FieldDefinition> variable = variables.Item(i);
    const std::shared_ptr<ResultFieldType> column =
        columns.Add(0, static_cast<int16_t>(i), 0,
                    variable->Get(FieldAttribute::kName).ToString());
    column->RZfield()->CopyFrom(*variable);
  }
}

// The list the state holds, made when a host left none.
template <typename List>
List& Ensure(std::shared_ptr<List>& list) {
  if (!list) list = std::make_shared<List>();
  return *list;
}

}  // namespace

void SetDefaults(ViewState& state) {
  TraceDefaults(state, "Started");
  AppFile& file = *state.AppFile;
  ReadRecordBounds(state, file);
  state.BegDate = state.FirstRecordDateTime;
  state.EndDate = state.LastRecordDateTime;
  state.DefaultsTime = state.platform->Now();
  SetRecordRange(state, file);
  SetReportDefaults(state);
  FillStatisticsCatalogue(state);
  SetOptionDefaults(state, file);

  Ensure(state.Where).Clear();
  state.PromptValues.clear();
  state.ReadOnly = false;
  SetRangeText(state);

  FillVariableColumns(Ensure(state.ResultField), file);
  FillVariableColumns(Ensure(state.WorkFields), file);

  const int16_t look_back = file.DefaultLookBack();
  state.FileRecordCount = file.RecordCount();
  // At least 1; and at most the last record, so that a look-back of 0 (or
  // below -1) starts at the last record instead of failing.
  state.DefaultFirstRecord = std::clamp(
      look_back == kWholeFile ? 1 : state.FileRecordCount - look_back + 1, 1,
      std::max(1, state.FileRecordCount));
  if (state.FileRecordCount == 0) {
    // No record to read a date from: the range texts stay empty.
    state.BegText.clear();
    state.EndText.clear();
  } else {
    state.EndText = FormatDateTime(state.EndDate);
    file.GotoRecord(state.DefaultFirstRecord);
    state.BegText = file.Value(1).ToString() + " " + file.Value(2).ToString();
  }
  TraceDefaults(state, "Ended");
}

void FillStatisticsCatalogue(ViewState& state) {
  const std::shared_ptr<Repository> repository =
      state.platform->CreateRepository();
  StatTypes& statistics = Ensure(state.ReportStatistics);
  statistics.Clear();
  const StatisticsCatalogueList& catalogue = repository->StatisticsCatalogue();
  for (int32_t i = 1; i <= catalogue.Count(); ++i) {
    const StatisticEntry entry = catalogue.Item(i);
    statistics.Add(entry.reference, entry.description, entry.selected);
  }
}

void DeleteView(ViewState& state, std::string_view path) {
  if (!FileExists(path)) return;
  Trace(*state.platform, kWriterModule, "DeleteView", path);
  DeleteFileQuietly(path);
}

}  // namespace rz
