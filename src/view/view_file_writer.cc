// Copyright 2026 The Veltmark authors.
//
// Writing a ViewState as a view file. The whole text is built in memory,
// section by section, and written in one piece to a temporary file that
// then replaces the old one, so a failed save never leaves a part.

#include <string>

#include "core/codec.h"
#include "core/date_time.h"
#include "core/error.h"
#include "core/ini_line.h"
#include "core/text.h"
#include "platform/app_file.h"
#include "platform/field_format.h"
#include "platform/file_system.h"
#include "platform/platform.h"
#include "platform/toolkit.h"
#include "platform/trace.h"
#include "view/view_file.h"
#include "view/view_file_keys.h"

namespace rz {
namespace {

using view_file::ScalarKey;
using view_file::ValueKind;

constexpr std::string_view kProcedure = "SaveFromView";
constexpr std::string_view kFormatVersion = "5.0";

void TraceSave(const ViewState& state, std::string_view message) {
  if (state.platform) {
    Trace(*state.platform, kWriterModule, kProcedure, message);
  }
}

// Accumulates the lines of the file, each ended by CR LF.
class ViewTextBuilder {
 public:
  void Section(std::string_view header) {
    if (!text_.empty()) text_ += "\r\n";
    text_ += header;
    text_ += "\r\n";
  }
  void Key(std::string_view key, std::string_view value) {
    text_ += FormatIniKeyLine(key, Trim(value));
    text_ += "\r\n";
  }
  const std::string& Text() const { return text_; }

 private:
  std::string text_;
};

std::string ScalarText(const ViewState& state, const ScalarKey& key) {
  return std::visit(
      [&](auto member) -> std::string {
        const auto& field = state.*member;
        using Field = std::decay_t<decltype(field)>;
        if constexpr (std::is_same_v<Field, std::string>) {
          return Replace(field, "\r\n", "|");
        } else if constexpr (std::is_same_v<Field, double>) {
          if (key.kind == ValueKind::kDateTime) return FormatDateTime(field);
          if (key.kind == ValueKind::kTimeSpan) return FormatTime(field);
          return ShortestNumberText(field);
        } else {
          return std::to_string(field);
        }
      },
      key.field);
}

void WriteScalar(ViewTextBuilder& out, const ViewState& state,
                 const ScalarKey& key) {
  out.Key(key.key, ScalarText(state, key));
}

void WriteGeneral(ViewTextBuilder& out, std::string_view view_name) {
  out.Section(view_file::kGeneral);
  out.Key("VERSION", kFormatVersion);
  out.Key("TITLE", view_name);
}

void WriteRules(ViewTextBuilder& out, AppFile& app_file) {
  out.Section(view_file::kRules);
  RuleList& rules = app_file.Rules();
  for (int32_t i = 1; i <= rules.Count(); ++i) {
    out.Key("RULE", rules.Item(i).name);
  }
}

void WriteSelection(ViewTextBuilder& out, const ViewState& state) {
  out.Section(view_file::kSelection);
  for (std::string_view name :
       view_file::SelectionKeysWritten(state.FilterRangeType)) {
    for (const ScalarKey& key : view_file::SelectionKeys()) {
      if (key.key == name) WriteScalar(out, state, key);
    }
  }
}

std::string Quoted(std::string_view text) {
  return "\"" + std::string(text) + "\"";
}

std::string WhereText(const WhereType& where) {
  const std::string& value = where.Value();
  const std::string literal = IsNumericText(value) ? Trim(value) : value;
  return Quoted(view_file::AndOrText(where.AndOr())) + "," +
         Quoted(where.Par1()) + "," + std::to_string(where.Variable()) + "," +
         Quoted(where.Condition()) + "," + Quoted(literal) + "," +
         Quoted(where.Par2());
}

void WriteFiltering(ViewTextBuilder& out, const ViewState& state) {
  if (state.Where->Count() == 0) return;
  out.Section(view_file::kFiltering);
  for (const auto& where : state.Where->Items()) {
    out.Key("WHERE", WhereText(*where));
  }
}

void WriteOptions(ViewTextBuilder& out, const ViewState& state) {
  out.Section(view_file::kOptions);
  for (const ScalarKey& key : view_file::OptionsKeys()) {
    WriteScalar(out, state, key);
    if (key.key != view_file::kShiftStartAfter) continue;
    out.Key(view_file::kShiftStartKey,
            (state.PlusMinus < 0 ? "-" : "+") + FormatTime(state.ShiftStart));
  }
}

void WriteReport(ViewTextBuilder& out, const ViewState& state) {
  out.Section(view_file::kReport);
  for (const ScalarKey& key : view_file::ReportKeys()) {
    WriteScalar(out, state, key);
  }
}

void WriteStatistics(ViewTextBuilder& out, const ViewState& state) {
  out.Section(view_file::kStatistics);
  for (const auto& statistic : state.ReportStatistics->Items()) {
    out.Key("STATISTIC", std::to_string(statistic->Reference()) +
                             (statistic->Selected() ? ",1" : ",0"));
  }
}

bool IsNumberAttribute(FieldAttribute attribute) {
  switch (attribute) {
    case FieldAttribute::kLength:
    case FieldAttribute::kDecimals:
    case FieldAttribute::kSample:
    case FieldAttribute::kAvg:
    case FieldAttribute::kRange:
    case FieldAttribute::kKeyId:
    case FieldAttribute::kCompData:
    case FieldAttribute::kLookup:
    case FieldAttribute::kLimitMethod:
    case FieldAttribute::kTargetMethod:
      return true;
    default:
      return false;
  }
}

std::string LimitText(const Limit& limit, int decimals) {
  if (UpperCase(limit.method) != "F") return limit.method;
  return limit.method + FixedPointText(limit.value, decimals);
}

// The value a [FIELD] key is written with.
std::string FieldKeyText(ResultFieldType& column, std::string_view key) {
  if (key == "RAWFIELD") return std::to_string(column.RawField());
  if (key == "PIVOTFIELD") return std::to_string(column.PivotField());
  if (key == "STATISTIC") return std::to_string(column.Statistic());
  const FieldDefinition& field = *column.RZfield();
  if (const auto limit = FieldDefinition::LimitForKey(key)) {
    return LimitText(field.GetLimit(*limit), field.Decimals());
  }
  const FieldAttribute attribute = *FieldDefinition::AttributeForKey(key);
  if (attribute == FieldAttribute::kMax || attribute == FieldAttribute::kMin) {
    return FixedPointText(field.Number(attribute), field.Decimals());
  }
  if (IsNumberAttribute(attribute)) {
    return ShortestNumberText(field.Number(attribute));
  }
  return field.Text(attribute);
}

void WriteField(ViewTextBuilder& out, ResultFieldType& column) {
  out.Section(view_file::kField);
  const std::string type = column.RZfield()->TypeLetter();
  for (std::string_view key : view_file::FieldKeysWritten(type)) {
    out.Key(key, FieldKeyText(column, key));
  }
}

// The file to replace: an existing one whose extension differs only in
// case keeps its name, so the reader never finds a stale twin.
std::string TargetPath(std::string_view path) {
  const std::optional<std::string> existing =
      FindFileIgnoringExtensionCase(path);
  return existing ? *existing : std::string(path);
}

}  // namespace

std::string ViewFileText(const ViewState& state, std::string_view view_name) {
  if (!state.AppFile) throw Error::ObjectNotSet("AppFile");
  ViewTextBuilder out;
  WriteGeneral(out, view_name);
  WriteRules(out, *state.AppFile);
  WriteSelection(out, state);
  WriteFiltering(out, state);
  WriteOptions(out, state);
  WriteReport(out, state);
  WriteStatistics(out, state);
  for (const auto& column : state.ResultField->Items()) {
    WriteField(out, *column);
  }
  return out.Text();
}

bool SaveFromView(const ViewState& state, std::string_view view_name,
                  std::string_view base_path) {
  TraceSave(state, "ViewName=" + std::string(view_name));
  TraceSave(state, "Filename=" + std::string(base_path));
  if (!state.AppFile) throw Error::ObjectNotSet("AppFile");
  const int32_t number = ViewNumber(*state.AppFile, view_name, true);
  const std::string text = ViewFileText(state, view_name);
  try {
    WriteBinaryFileAtomically(TargetPath(ViewFilePath(base_path, number)),
                              EncodeWindows1252(text));
  } catch (const Error&) {
    if (state.platform) {
      state.platform->UserInterface().MessageBox(
          "Save View", "Error - Problem Saving View!",
          MessageIcon::kExclamation, MessageButtons::kOk);
    }
    return false;
  }
  TraceSave(state, "Ended");
  return true;
}

}  // namespace rz
