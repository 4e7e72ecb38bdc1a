// Copyright 2026 The Veltmark authors.

#include "output/extraction.h"

#include <cmath>
#include <optional>
#include <string>
#include <vector>

#include "core/date_time.h"
#include "core/format.h"
#include "core/text.h"
#include "output/delivery.h"
#include "output/run_progress.h"
#include "platform/app_file.h"
#include "platform/repository.h"
#include "platform/trace.h"
#include "view/view_state.h"

namespace rz {
namespace {

using Stat = StatisticValue;

constexpr std::string_view kProcedure = "ExtractRecords";
constexpr int32_t kDateField = 1;
constexpr int32_t kTimeField = 2;
constexpr int32_t kRecordBoundType = 14;  // "First Record" / "Last Record"
constexpr int32_t kRecordsUnit = 9;       // "Record(s)"
constexpr double kSecondsPerDay = 86400;

// The statistics of summary codes 0..22 in code order.
constexpr Stat kSummaryStatistics[] = {
    Stat::FirstValue, Stat::LastValue, Stat::Count,   Stat::Tdev,
    Stat::Sum,        Stat::SD,        Stat::Maximum, Stat::CalcUSL,
    Stat::CalcUCL,    Stat::Average,   Stat::CalcLCL, Stat::CalcLSL,
    Stat::Minimum,    Stat::OOOLpct,   Stat::OOOLppm, Stat::COOLpct,
    Stat::COOLppm,    Stat::CR,        Stat::TZ,      Stat::CPK,
    Stat::CV,         Stat::Range,     Stat::AvgTBE,
};
constexpr int16_t kAvgTbeMinutes = 23;
constexpr int16_t kAvgTbeDays = 25;

double RoundHalfEven(double value, int decimals) {
  const double scale = std::pow(10.0, decimals);
  return std::nearbyint(value * scale) / scale;
}

bool HasValue(const Variant& value) {
  return !value.IsNull() && !value.IsEmpty();
}

// The first `length` characters of `text`.
std::string_view LeftCharacters(std::string_view text, int32_t length) {
  size_t pos = 0;
  for (int32_t n = 0; n < length && pos < text.size(); ++n) {
    utf8::NextChar(text, &pos);
  }
  return text.substr(0, pos);
}

// A record's date or time text without its spaces; `scratch` holds the
// text of a value that is not a text.
std::string_view TrimmedText(const Variant& value, std::string& scratch) {
  if (value.IsString()) return TrimSpaces(value.TextView());
  scratch = value.ToString();
  return TrimSpaces(scratch);
}

// A text column's cell: the value's text trimmed, cut to the field's
// `length` characters and trimmed again.
Variant FieldText(std::string_view text, int32_t length) {
  return Variant(TrimSpaces(LeftCharacters(TrimSpaces(text), length)));
}

// What the engine does with every run of columns, in detail and summary
// mode alike.
class Extraction {
 public:
  Extraction(ViewState& state, ResultLayout& columns, bool fire_event,
             const EventHandlerList& events, RunProgress& progress)
      : state_(state),
        file_(*state.AppFile),
        repository_(*state.DataSource),
        columns_(columns),
        delivery_(repository_, fire_event, events),
        progress_(progress),
        prefix_(file_.BasePath() + ".rzt\r\n") {
    for (const ResultColumn& column : columns_) {
      masks_.push_back(FormatMask::Compile(column.DisplayFormat));
    }
    for (int32_t f = 1; f <= repository_.Fields().Count(); ++f) {
      lengths_.push_back(repository_.Fields().Item(f)->Length());
    }
  }

  bool Run() {
    Log("Start Extracting Data...");
    file_.SortKeys().Reset();
    file_.SummaryCursor().Reset();
    const std::optional<int32_t> processed =
        state_.SumBy != 0 ? Summaries() : Details();
    if (!processed) return true;  // cancelled
    if (*processed >= 1) Finish(*processed);
    file_.SummaryCursor().Reset();
    Log("Done Extracting...");
    return false;
  }

 private:
  void Log(std::string_view message) {
    Trace(*state_.platform, kWriterModule, kProcedure, message);
  }

  void ShowRecord(int32_t position) {
    progress_.SetMessage(prefix_ + "Loading Veltmark Data - Record " +
                         std::to_string(output_record_));
    progress_.SetPosition(position);
    progress_.YieldToUser();
  }

  // The cell of a value under the write rule: a text column keeps the
  // value's trimmed text cut to the field's length; the others format it.
  Variant Written(size_t i, const Variant& value) {
    if (columns_[i].DisplayFormat.empty()) {
      if (!HasValue(value)) return Variant("");
      const int32_t length = i < lengths_.size() ? lengths_[i] : 0;
      if (value.IsString()) return FieldText(value.TextView(), length);
      return FieldText(value.ToString(), length);
    }
    if (!HasValue(value)) return Variant("");
    return Variant(Format(value, masks_[i]));
  }

  // --- Summary mode ---

  std::optional<int32_t> Summaries() {
    progress_.SetMessage(
        prefix_ + "Loading Veltmark Data - Summarizing - Please Wait...");
    progress_.YieldToUser();
    file_.SetSummarize(true);
    file_.SummaryKeys().Reset();
    file_.SummaryKeys().Add(state_.SumBy - 10);
    file_.SetInterval(FormatTime(state_.Interval));
    file_.SetNullIntervals(state_.NullIntervals != 0);
    file_.SetShiftDuration(state_.ShiftDuration);
    file_.SetShiftStart(FormatTime(state_.ShiftStart));
    file_.SetPlusMinus(state_.PlusMinus);
    file_.SetWeekDays(state_.WeekDays);
    file_.SetYearBegins(state_.YearBegins);
    file_.SortFile();
    const int32_t to_process = file_.SummaryCursor().Count();
    progress_.SetTotal(to_process);
    if (to_process < 1) return 0;
    while (!file_.EndOfSummary()) {
      file_.NextSummary();
      ++output_record_;
      ShowRecord(file_.SummaryPosition());
      for (size_t i = 0; i < columns_.size(); ++i) SummaryCell(i);
      SumDateAndTime();
      if (delivery_.Commit(output_record_, 0)) return std::nullopt;
    }
    return to_process;
  }

  void Restrict(int16_t pivot_variable, const std::string& pivot_value,
                double& work) {
    std::string text;
    file_.RestrictStatistics(file_.SummaryPosition(), file_.SummaryExtent(),
                             text, pivot_variable, pivot_value, work);
  }

  void SummaryCell(size_t i) {
    ResultColumn& column = columns_[i];
    if (column.PivotVariable > 0) {
      Restrict(column.PivotVariable, column.PivotValue, column.LastEventTime);
    }
    const Variant value = SummaryValue(
        file_.ColumnStatistics().Item(column.SourceVariable), column.Statistic);
    delivery_.SetCell(output_record_, static_cast<int32_t>(i + 1),
                      Written(i, value));
    const bool group_ends =
        i + 1 == columns_.size() ||
        columns_[i + 1].PivotVariable != column.PivotVariable;
    if (column.PivotVariable >= 1 && group_ends) {
      double work = 0;
      Restrict(0, "", work);
    }
  }

  static Variant SummaryValue(const ColumnStatistic& statistics, int16_t code) {
    if (code == -1) return statistics[Stat::FirstValue];
    if (code >= 0 && code <= 22) return statistics[kSummaryStatistics[code]];
    if (code < kAvgTbeMinutes || code > kAvgTbeDays) return Variant("");
    const Variant& seconds = statistics[Stat::AvgTBE];
    if (!HasValue(seconds)) return Variant("");
    static constexpr double kDivisors[] = {60, 3600, kSecondsPerDay};
    return Variant(seconds.ToDouble() / kDivisors[code - kAvgTbeMinutes]);
  }

  // Fields 1 and 2 of a summary record: the date and time just written,
  // read back as text, added as one date-time (a text that is not a date
  // or a time counts 0).
  void SumDateAndTime() {
    if (repository_.Fields().Count() < kTimeField) return;
    double sum = 0;
    for (int32_t field : {kDateField, kTimeField}) {
      const Variant cell = delivery_.Cell(output_record_, field);
      if (!HasValue(cell)) continue;
      sum += ParseDateTime(Trim(cell.ToString())).value_or(0);
    }
    delivery_.SetCell(output_record_, kDateField, Variant(sum));
    delivery_.SetCell(output_record_, kTimeField, Variant(sum));
  }

  // --- Detail mode ---

  std::optional<int32_t> Details() {
    file_.SetSummarize(false);
    int32_t first = 1;
    int32_t last = file_.RecordCount();
    if (state_.FilterRangeType == -1 && state_.ToType == kRecordBoundType &&
        state_.BackwardUnits == kRecordsUnit) {
      first = std::max(1, last - state_.BackwardAmount + 1);
    } else if (state_.FilterRangeType == 1 &&
               state_.FromType == kRecordBoundType &&
               state_.ForwardUnits == kRecordsUnit) {
      last = std::min(state_.ForwardAmount, last);
    }
    if (last == file_.RecordCount() && first == 1 && !state_.BegText.empty() &&
        !state_.EndText.empty()) {
      bool found = false;
      file_.FindDateRange(state_.BegText, state_.EndText, found);
      first = found ? file_.RangeFirstRecord() : 0;
      last = found ? file_.RangeLastRecord() : -1;
    }
    const int32_t to_process = last - first + 1;
    progress_.SetTotal(to_process);
    Log("RecordsToProcess=" + std::to_string(to_process));
    const int32_t step = to_process > 1000 ? 100 : to_process > 100 ? 50 : 10;
    if (to_process < 1) return 0;
    for (int32_t r = first; r <= last; ++r) {
      file_.GotoRecord(r);
      if (!file_.RecordExcluded() && file_.RecordIncluded()) {
        ++output_record_;
        DetailRecord();
        if (delivery_.Commit(output_record_, r)) return std::nullopt;
      }
      if ((r - first + 1) % step == 0) ShowRecord(r - first + 1);
    }
    return to_process;
  }

  // The record's date-time as a Double: the one the application file built
  // from the same texts, or, when it built none, built here again, which
  // raises the error of a date out of range.
  Variant RecordMoment() {
    const Variant stored = file_.Value(0);
    if (stored.Type() == VariantType::kDate) return Variant(stored.ToDate());
    std::string date_text, time_text;
    const Variant date = file_.Value(kDateField);
    const Variant time = file_.Value(kTimeField);
    return Variant(DateTimeFromRecordText(TrimmedText(date, date_text),
                                          TrimmedText(time, time_text)));
  }

  void DetailRecord() {
    const Variant moment = RecordMoment();
    delivery_.SetCell(output_record_, kDateField, moment);
    delivery_.SetCell(output_record_, kTimeField, moment);
    for (size_t i = 2; i < columns_.size(); ++i) {
      ResultColumn& column = columns_[i];
      if (column.PivotVariable > 0 && !HoldsPivotValue(column)) {
        delivery_.SetCell(output_record_, static_cast<int32_t>(i + 1),
                          Variant(""));
        continue;
      }
      const std::optional<Variant> value = DetailValue(i);
      if (value) {
        delivery_.SetCell(output_record_, static_cast<int32_t>(i + 1), *value);
      }
    }
  }

  bool HoldsPivotValue(const ResultColumn& column) {
    const Variant value = file_.Value(column.PivotVariable);
    const std::string text = HasValue(value) ? value.ToString() : "";
    return Trim(UpperCase(text)) == Trim(UpperCase(column.PivotValue));
  }

  // The detail cell of column i; nullopt for a code that writes nothing.
  std::optional<Variant> DetailValue(size_t i) {
    ResultColumn& column = columns_[i];
    const Variant v = file_.Value(column.SourceVariable);
    switch (column.Statistic) {
      case 0:
        return Written(i, v);
      case 1:
        return HasValue(v) ? Variant(int16_t{1}) : Variant("");
      case 2:
      case 3:
      case 4:
      case 5:
        return TimeBetweenEvents(column, HasValue(v));
      default:
        return std::nullopt;
    }
  }

  // The time since the column's previous event, counted in whole seconds
  // so that 90 s are exactly 1.5 minutes.
  Variant TimeBetweenEvents(ResultColumn& column, bool event) {
    if (!event) return Variant("");
    const double now = file_.Value(0).ToDouble();
    const double previous = column.LastEventTime;
    column.LastEventTime = now;
    if (previous == 0) return Variant("");
    const double seconds = std::nearbyint((now - previous) * kSecondsPerDay);
    switch (column.Statistic) {
      case 2:
        return Variant(RoundHalfEven(seconds, 0));
      case 3:
        return Variant(RoundHalfEven(seconds / 60, 2));
      case 4:
        return Variant(RoundHalfEven(seconds / 3600, 4));
      default:
        return Variant(RoundHalfEven(seconds / kSecondsPerDay, 4));
    }
  }

  // --- Both modes ---

  void Finish(int32_t to_process) {
    if (!delivery_.EventMode()) delivery_.Trim(output_record_);
    progress_.SetMessage(prefix_ + "Loading Veltmark Data - Record " +
                         std::to_string(output_record_));
    progress_.SetPosition(to_process);
    progress_.YieldToUser();
  }

  ViewState& state_;
  AppFile& file_;
  Repository& repository_;
  ResultLayout& columns_;
  Delivery delivery_;
  RunProgress& progress_;
  const std::string prefix_;
  std::vector<FormatMask> masks_;
  std::vector<int16_t> lengths_;
  int32_t output_record_ = 0;
};

}  // namespace

bool ExtractRecords(ViewState& state, ResultLayout& columns, bool fire_event,
                    const EventHandlerList& events, RunProgress& progress) {
  return Extraction(state, columns, fire_event, events, progress).Run();
}

}  // namespace rz
