// Copyright 2026 The Veltmark authors.

#include "output/repository_export.h"

#include <memory>
#include <string>

#include "core/format.h"
#include "core/text.h"
#include "output/run_progress.h"
#include "platform/app_file.h"
#include "platform/field_format.h"
#include "platform/platform.h"
#include "platform/repository.h"
#include "platform/trace.h"
#include "view/view_state.h"

namespace rz {
namespace {

using Attr = FieldAttribute;

constexpr std::string_view kProcedure = "SaveRepositoryAs";

// The attributes a new variable takes from its field, in the order they
// are set after the limits, MAX and MIN.
constexpr Attr kCopied[] = {
    Attr::kExtra,      Attr::kCategory, Attr::kCompData,    Attr::kHelpFile,
    Attr::kInput,      Attr::kKeyId,    Attr::kLimitMethod, Attr::kLookup,
    Attr::kOutput,     Attr::kPopup,    Attr::kRange,       Attr::kRelation,
    Attr::kReportType, Attr::kRequired, Attr::kSample,      Attr::kTargetMethod,
    Attr::kUnits,      Attr::kUcase};

// The header of a new application, in the order the items are set.
void SetHeader(AppFile& target, const Repository& source, AppFile& open) {
  target.SetHeaderItem(kHeaderVersion, Variant(5.0));
  target.SetAppTitle(source.Title());
  target.SetLeadingVariableCount(2);
  target.SetDefaultLookBack(-1);
  target.SetSpecialVariable1(2);
  target.SetSpecialVariable2(1);
  target.SetSpecialVariable3(2);
  const Variant items[] = {Variant(""), Variant(""), Variant(""),
                           Variant(int32_t{0}), Variant("")};
  for (int i = 0; i < 5; ++i)
    target.SetHeaderItem(HeaderItemKey(i + 1), items[i]);
  target.SetFileSetting3(open.FileSetting3());
  target.SetFileSetting1(open.FileSetting1());
  target.SetFileSetting2(open.FileSetting2());
  target.SetHeaderItem(HeaderItemKey(6), Variant(int16_t{0}));
  const Variant further[] = {Variant(""),         Variant(int32_t{0}),
                             Variant(int32_t{0}), Variant(""),
                             Variant(""),         Variant(int32_t{0}),
                             Variant(""),         Variant(int32_t{0}),
                             Variant(int32_t{0}), Variant("")};
  for (int i = 0; i < 10; ++i) {
    target.SetHeaderItem(HeaderItemKey(7 + i), further[i]);
  }
  target.SetShiftHours(0.0);
  target.SetShiftStartText("00:00");
  target.SetHeaderItem(HeaderItemKey(17), Variant(""));
  target.SetHeaderItem(HeaderItemKey(18), Variant(int32_t{0}));
}

void AddVariables(AppFile& target, Repository& source) {
  RepositoryFieldList& fields = source.Fields();
  for (int32_t k = 1; k <= fields.Count(); ++k) {
    const RepositoryField& field = *fields.Item(k);
    if (k <= 2) {
      target.Variables().Add(field.Name(), "T", 8, 0);
      continue;
    }
    std::shared_ptr<FieldDefinition> v =
        target.Variables().Add(field.Name(), TypeLetter(field.FieldType()),
                               field.Length(), field.Decimals());
    for (int l = 0; l < kLimitCount; ++l) {
      const RepositoryLimit& limit = field.Limit(static_cast<LimitKind>(l));
      v->SetLimit(static_cast<LimitKind>(l),
                  Limit{LimitMethodLetter(Variant(limit.method)), limit.value});
    }
    v->Set(Attr::kMax, field.Attribute(Attr::kMax));
    v->Set(Attr::kMin, field.Attribute(Attr::kMin));
    for (Attr attribute : kCopied)
      v->Set(attribute, field.Attribute(attribute));
    v->Set(Attr::kPosition, Variant(k));
    v->Set(Attr::kXref, field.Attribute(Attr::kXref));
    v->Set(Attr::kRules, Variant(field.RuleKeys()));
    v->Set(Attr::kCalc, field.Attribute(Attr::kCalc));
  }
}

// The number a cell holds, when it holds one (a number or a text that is
// one number).
std::optional<double> NumberIn(const Variant& value) {
  if (value.IsNumber()) return value.ToDouble();
  if (value.IsString() && IsNumericText(value.ToString())) {
    return ToNumber(value);
  }
  return std::nullopt;
}

}  // namespace

void ExportRepository(ViewState& state, Repository& source,
                      const std::string& filename, RunProgress& progress) {
  Trace(*state.platform, kWriterModule, kProcedure, "Filename=" + filename);
  const int32_t records = source.RecordCount();
  progress.SetLabel("RZ 5");
  progress.SetTotal(records);
  progress.SetMessage(filename + "\r\nSaving Veltmark Data - Record 0");
  progress.SetPosition(0);
  progress.YieldToUser();

  std::shared_ptr<AppFile> target = state.platform->CreateAppFile();
  SetHeader(*target, source, *state.AppFile);
  AddVariables(*target, source);
  target->SetOpenMode(kOpenCreateNew);
  target->OpenApplication(filename);

  const FormatMask date_mask = FormatMask::Compile("yyyy-mm-dd");
  const FormatMask time_mask = FormatMask::Compile("hh:mm:ss");
  const int32_t fields = source.Fields().Count();
  std::vector<std::string> letters;
  for (int32_t k = 1; k <= fields; ++k) {
    letters.push_back(target->Variables().Item(k)->TypeLetter());
  }
  for (int32_t r = 1; r <= records; ++r) {
    target->AddRecord();
    progress.SetMessage(filename + "\r\nSaving Veltmark Data - Record " +
                        std::to_string(r));
    progress.YieldToUser();
    if (fields >= 1)
      target->SetValue(1, Variant(Format(source.Value(r, 1), date_mask)));
    if (fields >= 2)
      target->SetValue(2, Variant(Format(source.Value(r, 2), time_mask)));
    for (int32_t k = 3; k <= fields; ++k) {
      const Variant x = source.Value(r, k);
      const std::string& letter = letters[static_cast<size_t>(k - 1)];
      if (IsNumericType(letter)) {
        const std::optional<double> number = NumberIn(x);
        target->SetValue(static_cast<int16_t>(k),
                         number ? Variant(*number) : Variant::Null());
      } else if (letter == "T" || letter == "P" || letter == "L") {
        target->SetValue(static_cast<int16_t>(k), x);
      }
    }
    target->SaveRecord(0);
  }
  target->CloseApplication();
  Trace(*state.platform, kWriterModule, kProcedure, "Ended");
}

}  // namespace rz
