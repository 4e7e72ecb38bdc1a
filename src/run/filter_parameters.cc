// Copyright 2026 The Veltmark authors.

#include "run/filter_parameters.h"

#include <memory>
#include <string>
#include <utility>

#include "core/error.h"
#include "platform/app_file.h"
#include "platform/input_file_reader.h"
#include "platform/platform.h"
#include "platform/trace.h"
#include "run/input_dialog.h"
#include "view/view_state.h"
#include "view/where_types.h"

namespace rz {
namespace {

constexpr std::string_view kAsk = "?";
constexpr char kInputFileMark = '@';
constexpr int16_t kInputFileRetries = 3;
constexpr const char* kPromptTitle = "Enter Run Time Parameters";

void TraceFilter(ViewState& state, std::string_view procedure,
                 std::string_view message) {
  Trace(*state.platform, kWriterModule, procedure, message);
}

// The name of variable `variable` of a filter row; error 9 naming the view
// and the row when the application has no such variable.
std::string VariableName(ViewState& state, int32_t row, int16_t variable) {
  VariableList& variables = state.AppFile->Variables();
  if (variable < 1 || variable > variables.Count()) {
    throw Error::SubscriptOutOfRange(
        "view '" + ViewNameForMessages(state) + "', filter row " +
        std::to_string(row) + ": variable " + std::to_string(variable) +
        " is not one of the application's " +
        std::to_string(variables.Count()) + " variables");
  }
  return variables.Item(variable)->Name();
}

std::string ReadInputFile(ViewState& state, std::string_view name) {
  std::shared_ptr<InputFileReader> reader =
      state.platform->CreateInputFileReader();
  reader->SetSilent(true);
  reader->SetRetries(kInputFileRetries);
  std::string value = reader->ReadInputFile(name);
  if (!reader->Success()) value.clear();
  return value;
}

std::string ConnectiveWord(int16_t and_or) {
  if (and_or == 0) return "None";
  return and_or == 1 ? "And" : "Or";
}

}  // namespace

std::string_view OperatorWording(std::string_view condition) {
  static constexpr std::pair<std::string_view, std::string_view> kWords[] = {
      {"=", "Is Equal To"},
      {">", "Is Greater Than"},
      {">=", "Is Greater Than Or Equal To"},
      {"<", "Is Less Than"},
      {"<=", "Is Less Than Or Equal To"},
      {"<>", "Is Not Equal To"},
      {"LIKE", "Looks Like"},
  };
  for (const auto& [op, words] : kWords) {
    if (op == condition) return words;
  }
  return "";
}

std::string PromptMessage(ViewState& state, int32_t row) {
  const std::shared_ptr<WhereType> where = state.Where->Item(row);
  const int16_t variable = where->Variable();
  std::string question =
      "Where  [" + VariableName(state, row, variable) + "]  ";
  if (variable == 1) question += "(YYYY-MM-DD HH:MM:SS) ";
  if (variable == 2) question += "(HH:MM:SS) ";
  question += OperatorWording(where->Condition());
  return state.AppFile->AppTitle() + "\r\n" + state.CurrentViewName +
         "\r\n\r\n" + question + " ...";
}

void SetupForPrompting(ViewState& state) {
  WhereTypes& where = *state.Where;
  const int32_t rows = where.Count();
  state.PromptValues.resize(static_cast<size_t>(rows));
  TraceFilter(state, "SetupForPrompting", "SetupForPrompting");
  for (int32_t i = 1; i <= rows; ++i) {
    const std::shared_ptr<WhereType> row = where.Item(i);
    std::string& value = state.PromptValues[static_cast<size_t>(i - 1)];
    const std::string& written = row->Value();
    if (written != kAsk) {
      value = !written.empty() && written[0] == kInputFileMark
                  ? ReadInputFile(state, std::string_view(written).substr(1))
                  : written;
    } else if (value.empty()) {
      value = PromptValue(state, row->Variable(), PromptMessage(state, i),
                          kPromptTitle);
    } else {
      continue;  // answered before: nothing asked, nothing traced
    }
    TraceFilter(state, "SetupForPrompting",
                "PromptValue(" + std::to_string(i) + ")=" + value);
  }
}

void BuildFilter(ViewState& state) {
  ConditionList& conditions = state.AppFile->Conditions();
  conditions.Clear();
  conditions.Add(0, "(", 0, ">=", state.BegText, "");
  conditions.Add(1, "", 0, "<=", state.EndText, ")");
  WhereTypes& where = *state.Where;
  for (int32_t i = 1; i <= where.Count(); ++i) {
    const std::shared_ptr<WhereType> row = where.Item(i);
    if (row->Variable() != 0) VariableName(state, i, row->Variable());
    const std::string value =
        static_cast<size_t>(i) <= state.PromptValues.size()
            ? state.PromptValues[static_cast<size_t>(i - 1)]
            : row->Value();
    conditions.Add(row->AndOr(), row->Par1(), row->Variable(), row->Condition(),
                   value, row->Par2());
  }
  for (int32_t i = 1; i <= conditions.Count(); ++i) {
    const Condition c = conditions.Item(i);
    TraceFilter(state, "BuildFilter",
                "Filter=" + ConnectiveWord(c.and_or) + "," + c.par1 + ",V" +
                    std::to_string(c.variable) + " " + c.condition + " '" +
                    c.value + "'," + c.par2);
  }
}

}  // namespace rz
