// Copyright 2026 The Veltmark authors.

#include "rzselect/new_application.h"

#include "core/error.h"
#include "platform/application_replace.h"
#include "platform/field_format.h"
#include "platform/file_system.h"

namespace rz {
namespace {

// The header items every new application receives, as an export writes
// them: ITEM1..ITEM18 in order (texts empty, numbers 0, ITEM6 16-bit).
Variant NewHeaderItem(int position) {
  switch (position) {
    case 4:
    case 8:
    case 9:
    case 12:
    case 14:
    case 15:
    case 18:
      return Variant(0.0);
    case 6:
      return Variant(int16_t{0});
    default:
      return Variant("");
  }
}

void WriteHeader(AppFile& file, const NewApplication& application) {
  file.SetHeaderItem(kHeaderVersion, Variant(5.0));
  file.SetAppTitle(application.title);
  file.SetLeadingVariableCount(2);
  file.SetDefaultLookBack(application.default_look_back);
  file.SetSpecialVariable1(2);
  file.SetSpecialVariable2(1);
  file.SetSpecialVariable3(2);
  file.SetFileSetting1(Variant(""));
  file.SetFileSetting2(Variant(""));
  file.SetFileSetting3(Variant(""));
  for (int position = 1; position <= kHeaderItemCount; ++position) {
    file.SetHeaderItem(HeaderItemKey(position), NewHeaderItem(position));
  }
  file.SetShiftHours(application.shift_hours);
  file.SetShiftStartText(application.shift_start);
  file.SetSecuredFunctions(application.secured_functions);
  for (const Rule& rule : application.rules) file.AddRule(rule);
}

void WriteVariables(AppFile& file, const NewApplication& application) {
  int16_t position = 0;
  for (const std::shared_ptr<FieldDefinition>& source : application.variables) {
    ++position;
    std::shared_ptr<FieldDefinition> added =
        file.Variables().Add(source->Name(), source->TypeLetter(),
                             source->Length(), source->Decimals());
    added->CopyFrom(*source);
    added->Set(FieldAttribute::kPosition, Variant(position));
  }
}

void WriteRecord(AppFile& file, const std::vector<Variant>& record,
                 WrittenRecords* written) {
  file.AddRecord();
  int16_t variable = 0;
  for (const Variant& value : record) {
    ++variable;
    if (!value.IsNull()) file.SetValue(variable, value);
  }
  file.SaveRecord(0);
  if (written->count++ == 0) written->first = record;
}

WrittenRecords WriteRecords(AppFile& file, const NewApplication& application) {
  WrittenRecords written;
  if (application.record_source) {
    std::vector<Variant> record;
    while (application.record_source(&record)) {
      WriteRecord(file, record, &written);
    }
    if (written.count > 0) written.last = record;
  } else {
    for (const std::vector<Variant>& record : application.records) {
      WriteRecord(file, record, &written);
    }
    if (written.count > 0) written.last = application.records.back();
  }
  return written;
}

}  // namespace

std::shared_ptr<FieldDefinition> NewVariable(std::string_view name,
                                             std::string_view type_letter,
                                             int16_t length, int16_t decimals,
                                             int position, int rule_count) {
  auto variable = std::make_shared<FieldDefinition>();
  variable->Set(FieldAttribute::kName, Variant(name));
  variable->Set(FieldAttribute::kType, Variant(type_letter));
  variable->Set(FieldAttribute::kLength, Variant(length));
  variable->Set(FieldAttribute::kDecimals, Variant(decimals));
  InitVariableDefaults(*variable, rule_count);
  variable->Set(FieldAttribute::kRules, Variant(""));
  variable->Set(FieldAttribute::kPosition,
                Variant(static_cast<int16_t>(position)));
  return variable;
}

void SetFixedLimit(FieldDefinition& variable, LimitKind limit, double value) {
  variable.SetLimit(limit, Limit{"F", value});
}

void SetLimitMethod(FieldDefinition& variable, LimitKind limit,
                    std::string_view method) {
  variable.SetLimit(limit, Limit{std::string(method), 0});
}

std::optional<std::string> ExistingApplicationFile(
    std::string_view template_path) {
  const std::string path = NormalizePath(template_path);
  for (const std::string& main_file : {path, WithoutExtension(path) + ".rzd"}) {
    if (FileExists(main_file)) return main_file;
  }
  const std::vector<std::string> files = ExistingApplicationFiles(path);
  if (files.empty()) return std::nullopt;
  return JoinPath(ParentFolder(path), files.front());
}

void RefuseExistingApplication(std::string_view template_path) {
  const std::optional<std::string> existing =
      ExistingApplicationFile(template_path);
  if (existing) throw Error::FileAlreadyExists(*existing);
}

WrittenRecords WriteNewApplication(AppFile& file,
                                   const NewApplication& application,
                                   std::string_view template_path,
                                   bool replace) {
  if (!replace) RefuseExistingApplication(template_path);
  WriteHeader(file, application);
  WriteVariables(file, application);
  file.SetOpenMode(kOpenCreateNew);
  file.OpenApplication(template_path);
  WrittenRecords written = WriteRecords(file, application);
  file.CloseApplication();
  return written;
}

}  // namespace rz
