// Copyright 2026 The Veltmark authors.

#include "output/variable_setup.h"

#include <memory>
#include <string>
#include <vector>

#include "core/text.h"
#include "platform/field_definition.h"
#include "platform/field_format.h"
#include "platform/repository.h"
#include "view/result_field_types.h"
#include "view/view_state.h"

namespace rz {
namespace {

using Attr = FieldAttribute;

constexpr std::string_view kDateUnits = "DATE[";
constexpr std::string_view kTimeUnits = "TIME[";

// The attributes copied as they are, in the order they are copied; MAX, the
// limits and MIN go between TARGETMETHOD and EXTRA.
constexpr Attr kCopiedBefore[] = {
    Attr::kXref,   Attr::kSample,      Attr::kReportType,
    Attr::kUcase,  Attr::kRequired,    Attr::kInput,
    Attr::kOutput, Attr::kLimitMethod, Attr::kTargetMethod};
constexpr Attr kCopiedAfter[] = {Attr::kExtra,    Attr::kPopup,   Attr::kLookup,
                                 Attr::kCompData, Attr::kKeyId,   Attr::kRange,
                                 Attr::kRelation, Attr::kCalc,    Attr::kUnits,
                                 Attr::kCategory, Attr::kHelpFile};

const FieldDefinition& DefinitionOf(ViewState& state,
                                    const ResultColumn& column) {
  return *state.ResultField->Items()[static_cast<size_t>(column.FieldIndex - 1)]
              ->RZfield();
}

// The text between `marker` and the last character of `units` when the
// upper-cased units hold it ("Time TIME[hh:mm]" gives "hh:mm").
bool FormatInUnits(const std::string& units, std::string_view marker,
                   std::string& format) {
  const size_t at = UpperCase(units).find(marker);
  if (at == std::string::npos) return false;
  const size_t begin = at + marker.size();
  format =
      begin < units.size() ? units.substr(begin, units.size() - begin - 1) : "";
  return true;
}

void CopyDefinition(const FieldDefinition& v, const ResultFieldType& field,
                    RepositoryField& f, Repository& repository) {
  f.SetRawField(field.RawField());
  for (Attr attribute : kCopiedBefore)
    f.SetAttribute(attribute, v.Get(attribute));
  f.SetAttribute(Attr::kMax, Variant(ToNumber(v.Get(Attr::kMax))));
  for (int k = 0; k < kLimitCount; ++k) {
    const Limit& limit = v.GetLimit(static_cast<LimitKind>(k));
    RepositoryLimit& target = f.Limit(static_cast<LimitKind>(k));
    target.method = LimitMethodCode(limit.method);
    target.value = limit.value;
  }
  f.SetAttribute(Attr::kMin, Variant(ToNumber(v.Get(Attr::kMin))));
  for (Attr attribute : kCopiedAfter)
    f.SetAttribute(attribute, v.Get(attribute));
  for (char rule : v.Text(Attr::kRules)) {
    f.AddRule(*repository.RuleCatalogue().Item(std::string(1, rule)));
  }
}

}  // namespace

void SetupVariables(ViewState& state, ResultLayout& columns) {
  Repository& repository = *state.DataSource;
  const bool summary = state.SumBy >= 1;
  const std::string date_format = repository.DateFormat();
  const std::string time_format = repository.TimeFormat();
  for (ResultColumn& column : columns) {
    const ResultFieldType& field =
        *state.ResultField->Items()[static_cast<size_t>(column.FieldIndex - 1)];
    const FieldDefinition& v = DefinitionOf(state, column);
    const std::string units_upper = UpperCase(v.Text(Attr::kUnits));
    int16_t code = TypeCode(v.TypeLetter());
    if (column.FieldIndex <= 2 ||
        units_upper.find(kDateUnits) != std::string::npos ||
        units_upper.find(kTimeUnits) != std::string::npos) {
      code = 0;
    }
    std::shared_ptr<RepositoryField> f = repository.Fields().Add(
        column.ColumnName, code, v.Length(), v.Decimals(), 0);
    if (column.FieldIndex == 1) f->SetFormat(date_format);
    if (column.FieldIndex == 2) f->SetFormat(time_format);
    if (v.Text(Attr::kRequired) == "H") f->SetVisible(false);
    CopyDefinition(v, field, *f, repository);
    column.DisplayFormat =
        BuildNumberMask(f->FieldType(), f->Length(), f->Decimals());
    const bool date_or_time_value =
        column.Statistic == 0 || (summary && column.Statistic == 1);
    if (date_or_time_value && column.FieldIndex == 1) {
      column.DisplayFormat = date_format;
    }
    if (date_or_time_value && column.FieldIndex == 2) {
      column.DisplayFormat = time_format;
    }
    std::string format;
    const std::string units = f->Units();
    if (FormatInUnits(units, kDateUnits, format)) f->SetFormat(format);
    if (FormatInUnits(units, kTimeUnits, format)) f->SetFormat(format);
  }
}

void ReconcileReferences(ViewState& state, const ResultLayout& columns) {
  Repository& repository = *state.DataSource;
  for (size_t i = 0; i < columns.size(); ++i) {
    const FieldDefinition& v = DefinitionOf(state, columns[i]);
    const std::string calc = v.Text(Attr::kCalc);
    const std::string upper = UpperCase(calc);
    const bool pop = upper.find("@POP[") != std::string::npos;
    if (!pop && upper.find("@XBAR[") == std::string::npos) continue;
    const int16_t statistic =
        state.ResultField
            ->Items()[static_cast<size_t>(columns[i].FieldIndex - 1)]
            ->Statistic();
    std::string list;
    for (const std::string& item : ExpandReferenceList(calc)) {
      const double variable = ReferenceNumber(item);
      size_t j = 0;
      while (j < columns.size() && columns[j].SourceVariable != variable) ++j;
      if (j == columns.size()) {
        list.clear();  // not shown: what came before is dropped
        continue;
      }
      if (columns[j].Statistic != statistic) {
        list.clear();
        break;
      }
      list += "V" + std::to_string(j + 1) + ",";
    }
    if (!list.empty()) {
      list.back() = ']';
      list = CompressReferenceList((pop ? "@POP[" : "@XBAR[") + list);
    }
    repository.Fields()
        .Item(static_cast<int32_t>(i + 1))
        ->SetAttribute(Attr::kCalc, Variant(list));
  }
}

}  // namespace rz
