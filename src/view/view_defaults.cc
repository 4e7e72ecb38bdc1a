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
#include "view/view_state.h"

namespace rz {
namespace {

constexpr int32_t kRecordBoundType = 14;  // "First Record" / "Last Record"
constexpr int32_t kRecordsUnit = 9;       // "Record(s)"
constexpr int16_t kWholeFile = -1;        // DefaultLookBack: no look-back

void TraceDefaults(ViewState& state, std::string_view message) {
  Trace(*state.platform, kWriterModule, "SetDefaults", message);
}

// The text of a date or time cell; "" for no value.
std::string CellText(const Variant& value) {
  return value.IsNull() || value.IsEmpty() ? "" : Trim(value.ToString());
}

// What is wrong with a record's date text ("yyyy-mm-dd", a real date) and
// time text ("hh:mm:ss" or "hh:mm"), or "" when both read.
std::string RecordDateTimeProblem(const std::string& date,
                                  const std::string& time) {
  constexpr size_t kDateWidth = 10;
  constexpr size_t kTimeWidth = 8;
  constexpr size_t kShortTimeWidth = 5;
  if (date.empty()) return "no date";
  if (date.size() != kDateWidth || !ParseDateTime(date)) {
    return "date '" + date + "' is not a date (yyyy-mm-dd)";
  }
  if (time.empty()) return "no time";
  if ((time.size() != kTimeWidth && time.size() != kShortTimeWidth) ||
      !ParseDateTime(time)) {
    return "time '" + time + "' is not a time of day (hh:mm:ss)";
  }
  return "";
}

// The date-time of the current record, number `record`, from its date and
// time texts. A bound of the default range must be a real moment: a
// missing or unreadable date or time is error 13 naming the data file and
// the record.
double RecordBoundDateTime(AppFile& file, int32_t record) {
  const std::string date = CellText(file.Value(1));
  const std::string time = CellText(file.Value(2));
  const std::string problem = RecordDateTimeProblem(date, time);
  if (!problem.empty()) {
    const std::string data_file = file.DataFilePath();
    throw Error::BadRecordValue(data_file.empty() ? file.BasePath() : data_file,
                                record, problem);
  }
  return DateTimeFromRecordText(date, time);
}

void ReadRecordBounds(ViewState& state, AppFile& file) {
  state.FirstRecordDateTime = 0;
  state.LastRecordDateTime = 0;
  file.MoveFirst();
  if (file.ReadNext()) {
    state.FirstRecordDateTime = RecordBoundDateTime(file, 1);
  }
  file.MoveLast();
  if (file.ReadPrevious()) {
    state.LastRecordDateTime = RecordBoundDateTime(file, file.RecordCount());
  }
  file.MoveFirst();
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
