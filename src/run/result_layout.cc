// Copyright 2026 The Veltmark authors.

#include "run/result_layout.h"

#include <memory>
#include <string>

#include "core/error.h"
#include "core/text.h"
#include "platform/app_file.h"
#include "platform/field_format.h"
#include "platform/trace.h"
#include "view/result_field_types.h"
#include "view/view_state.h"

namespace rz {
namespace {

constexpr std::string_view kProcedure = "DetermineResultingVariables";
constexpr int16_t kDistinctValues = 3;  // sort-key kind: one group a value
constexpr std::string_view kNoValue = "NULL";

void Log(ViewState& state, std::string_view procedure,
         std::string_view message) {
  Trace(*state.platform, kWriterModule, procedure, message);
}

// Error 9 naming the view and the field when `variable` is not one of the
// application's variables.
void CheckVariable(ViewState& state, int32_t field, std::string_view role,
                   int16_t variable) {
  const int32_t count = state.AppFile->Variables().Count();
  if (variable >= 1 && variable <= count) return;
  throw Error::SubscriptOutOfRange(
      "view '" + ViewNameForMessages(state) + "', result field " +
      std::to_string(field) + ": " + std::string(role) + " " +
      std::to_string(variable) + " is not one of the application's " +
      std::to_string(count) + " variables");
}

void CheckFields(ViewState& state) {
  const auto& fields = state.ResultField->Items();
  for (size_t i = 0; i < fields.size(); ++i) {
    const int32_t number = static_cast<int32_t>(i + 1);
    CheckVariable(state, number, "variable", fields[i]->RawField());
    if (fields[i]->PivotField() != 0) {
      CheckVariable(state, number, "pivot variable", fields[i]->PivotField());
    }
  }
}

void RunSortPass(ViewState& state, std::string_view procedure) {
  Log(state, procedure, "SortFile Started");
  state.AppFile->SortFile();
  Log(state, procedure, "SortFile Ended");
}

// The column name of a pivot value: the field's name with its first "*"
// replaced by the value.
std::string PivotColumnName(const std::string& name, const std::string& value) {
  const size_t star = name.find('*');
  if (star == std::string::npos) return name;
  return name.substr(0, star) + value + name.substr(star + 1);
}

void AppendPivotColumns(ViewState& state, int16_t index, ResultFieldType& field,
                        ResultLayout& layout) {
  AppFile& file = *state.AppFile;
  // One group per value over the selected records: detail mode, whatever
  // the last run's extraction left switched on.
  file.SetSummarize(false);
  file.SummaryCursor().Reset();
  file.SortKeys().Reset();
  file.SortKeys().Add(field.PivotField(), kDistinctValues);
  RunSortPass(state, kProcedure);
  SummaryCursorList& groups = file.SummaryCursor();
  const std::string name = field.RZfield()->Name();
  for (int32_t g = 1; g <= groups.Count(); ++g) {
    file.GotoRecord(groups.Item(g).record);
    const Variant value = file.Value(field.PivotField());
    std::string text =
        value.IsNull() || value.IsEmpty() ? "" : Trim(value.ToString());
    if (text.empty()) text = kNoValue;
    if (text == kNoValue && state.NullPivots == 0) continue;
    ResultColumn column;
    column.FieldIndex = index;
    column.PivotVariable = field.PivotField();
    column.SourceVariable = field.RawField();
    column.Statistic = field.Statistic();
    column.ColumnName = PivotColumnName(name, text);
    column.PivotValue = text == kNoValue ? "" : text;
    layout.push_back(std::move(column));
  }
}

// ReadOnly and the reason the trace gives.
void DecideReadOnly(ViewState& state, const ResultLayout& layout) {
  bool read_only = state.SumBy > 0;
  std::string reason;
  const auto& fields = state.ResultField->Items();
  VariableList& variables = state.AppFile->Variables();
  for (const ResultColumn& column : layout) {
    const std::string v = ",V" + std::to_string(column.SourceVariable);
    if (column.PivotVariable > 0) {
      read_only = true;
      reason += v + " Pivoted";
    }
    if (column.Statistic > 0) {
      read_only = true;
      reason += v + " Statistic";
    }
    const FieldDefinition& shown =
        *fields[static_cast<size_t>(column.FieldIndex - 1)]->RZfield();
    const FieldDefinition& own = *variables.Item(column.SourceVariable);
    if (TypeCode(shown.TypeLetter()) != TypeCode(own.TypeLetter())) {
      read_only = true;
      reason += v + " FieldType";
    }
    if (shown.Length() != own.Length()) {
      read_only = true;
      reason += v + " FieldLength";
    }
    if (shown.Decimals() != own.Decimals()) {
      read_only = true;
      reason += v + " Decimals";
    }
  }
  if (!state.AppFile->TemplateWritable()) {
    read_only = true;
    reason += ",Template ReadOnly";
  }
  for (const std::string& query : state.AppFile->TemplateQueries()) {
    if (!query.empty()) {
      read_only = true;
      reason += ",SQL Generated Template";
      break;
    }
  }
  state.ReadOnly = read_only;
  Log(state, kProcedure,
      std::string("ReadOnly=") + (read_only ? "True" : "False") + reason);
}

}  // namespace

std::vector<bool> ExcludeEmptyVariables(ViewState& state) {
  constexpr std::string_view kExcluding = "ExcludeEmptyVariables";
  CheckFields(state);
  Log(state, kExcluding, "Excluding Empty Variables");
  AppFile& file = *state.AppFile;
  file.SummaryCursor().Reset();
  file.SortKeys().Reset();
  file.SummaryKeys().Reset();
  file.SetSummarize(true);
  RunSortPass(state, kExcluding);
  const auto& fields = state.ResultField->Items();
  std::vector<bool> excluded(fields.size(), false);
  for (size_t i = 0; i < fields.size(); ++i) {
    const ColumnStatistic statistics =
        file.ColumnStatistics().Item(fields[i]->RawField());
    const Variant& count = statistics[StatisticValue::Count];
    if (!count.IsNull() && !count.IsEmpty() && count.ToDouble() > 0) continue;
    excluded[i] = UpperCase(fields[i]->RZfield()->Name()) != "COMMENTS";
  }
  file.SetSummarize(false);
  return excluded;
}

ResultLayout DetermineResultingVariables(ViewState& state,
                                         const std::vector<bool>& excluded) {
  CheckFields(state);
  Log(state, kProcedure, "Determine Resulting Variables");
  ResultLayout layout;
  const auto& fields = state.ResultField->Items();
  for (size_t i = 0; i < fields.size(); ++i) {
    if (i < excluded.size() && excluded[i]) continue;
    ResultFieldType& field = *fields[i];
    const int16_t index = static_cast<int16_t>(i + 1);
    if (field.PivotField() != 0) {
      AppendPivotColumns(state, index, field, layout);
      continue;
    }
    ResultColumn column;
    column.FieldIndex = index;
    column.SourceVariable = field.RawField();
    column.Statistic = field.Statistic();
    column.ColumnName = field.RZfield()->Name();
    layout.push_back(std::move(column));
  }
  Log(state, kProcedure, "ResultFieldsCount=" + std::to_string(layout.size()));
  DecideReadOnly(state, layout);
  return layout;
}

}  // namespace rz
