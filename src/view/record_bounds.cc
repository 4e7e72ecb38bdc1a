// Copyright 2026 The Veltmark authors.

#include "view/record_bounds.h"

#include <string>

#include "core/date_time.h"
#include "core/error.h"
#include "core/text.h"
#include "platform/app_file.h"
#include "view/view_state.h"

namespace rz {
namespace {

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

}  // namespace

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

}  // namespace rz
