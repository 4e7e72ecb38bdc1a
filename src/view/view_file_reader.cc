// Copyright 2026 The Veltmark authors.
//
// Reading a view file into a ViewState. The file is walked line by line;
// the last section header seen decides what a key means. Values are read
// leniently (leading numbers, 0 when there is none); only what cannot be
// given a meaning at all raises an error, which names the file and line.

#include <set>
#include <string>
#include <vector>

#include "core/codec.h"
#include "core/date_time.h"
#include "core/error.h"
#include "core/ini_line.h"
#include "core/text.h"
#include "core/variant.h"
#include "platform/app_file.h"
#include "platform/field_format.h"
#include "platform/file_system.h"
#include "platform/platform.h"
#include "platform/trace.h"
#include "view/date_range.h"
#include "view/view_file.h"
#include "view/view_file_keys.h"

namespace rz {
namespace {

using view_file::ScalarKey;
using view_file::ValueKind;

constexpr std::string_view kProcedure = "LoadFromView";
constexpr size_t kMaxRules = 26;
constexpr size_t kWhereFields = 6;

void TraceLoad(const ViewState& state, std::string_view message) {
  if (state.platform) {
    Trace(*state.platform, kWriterModule, kProcedure, message);
  }
}

int16_t ToInt16(std::string_view text) {
  return Variant(LeadingNumber(text)).ToInteger();
}

int32_t ToInt32(std::string_view text) {
  return Variant(LeadingNumber(text)).ToLong();
}

double ToDateTime(std::string_view text) {
  const std::optional<double> serial = ParseDateTime(text);
  if (!serial) throw Error::TypeMismatchFor(text, "a date and time");
  return *serial;
}

// Stores `value` into the field of `state` that `key` names.
void ApplyScalar(ViewState& state, const ScalarKey& key,
                 const std::string& value) {
  std::visit(
      [&](auto member) {
        auto& field = state.*member;
        using Field = std::decay_t<decltype(field)>;
        if constexpr (std::is_same_v<Field, int16_t>) {
          field = ToInt16(value);
        } else if constexpr (std::is_same_v<Field, int32_t>) {
          field = ToInt32(value);
        } else if constexpr (std::is_same_v<Field, std::string>) {
          field = Replace(value, "|", "\r\n");
        } else if (key.kind == ValueKind::kDateTime) {
          field = ToDateTime(value);
        } else if (key.kind == ValueKind::kTimeSpan) {
          field = ParseTimeOfDay(value);
        } else {
          field = LeadingNumber(value);
        }
      },
      key.field);
}

const ScalarKey* FindScalarKey(std::span<const ScalarKey> keys,
                               std::string_view key) {
  for (const ScalarKey& entry : keys) {
    if (entry.key == key) return &entry;
  }
  return nullptr;
}

// A WHERE field with its enclosing quotes removed.
std::string Unquoted(const std::string& part) {
  if (part.empty() || part.front() != '"') return part;
  if (part.size() < 2) return "";
  return part.substr(1, part.size() - 2);
}

bool IsNumericVariable(AppFile& app_file, int16_t variable) {
  VariableList& variables = app_file.Variables();
  if (variable < 1 || variable > variables.Count()) return false;
  return IsNumericType(variables.Item(variable)->TypeLetter());
}

// The literal of a condition on a numeric variable is kept as its number,
// unless it names no value or asks the user.
bool KeepsLiteralAsWritten(const std::string& value) {
  return value.empty() || EqualsIgnoreCase(value, "NULL") ||
         value.find('?') != std::string::npos;
}

enum class FieldValue { kText, kUpperText, kNumber, kLong, kDecimal };

struct FieldKeyReading {
  std::string_view key;
  FieldAttribute attribute;
  FieldValue kind;
};

constexpr FieldKeyReading kFieldKeyReadings[] = {
    {"TYPE", FieldAttribute::kType, FieldValue::kUpperText},
    {"REPORTTYPE", FieldAttribute::kReportType, FieldValue::kUpperText},
    {"UCASE", FieldAttribute::kUcase, FieldValue::kUpperText},
    {"REQUIRED", FieldAttribute::kRequired, FieldValue::kUpperText},
    {"XREF", FieldAttribute::kXref, FieldValue::kText},
    {"INPUT", FieldAttribute::kInput, FieldValue::kText},
    {"OUTPUT", FieldAttribute::kOutput, FieldValue::kText},
    {"POPUP", FieldAttribute::kPopup, FieldValue::kText},
    {"RULES", FieldAttribute::kRules, FieldValue::kText},
    {"UNITS", FieldAttribute::kUnits, FieldValue::kText},
    {"CATEGORY", FieldAttribute::kCategory, FieldValue::kText},
    {"HELPFILE", FieldAttribute::kHelpFile, FieldValue::kText},
    {"RELATION", FieldAttribute::kRelation, FieldValue::kText},
    {"CALC", FieldAttribute::kCalc, FieldValue::kText},
    {"LENGTH", FieldAttribute::kLength, FieldValue::kNumber},
    {"DECIMALS", FieldAttribute::kDecimals, FieldValue::kNumber},
    {"SAMPLE", FieldAttribute::kSample, FieldValue::kNumber},
    {"#AVG", FieldAttribute::kAvg, FieldValue::kNumber},
    {"RANGE", FieldAttribute::kRange, FieldValue::kNumber},
    {"KEYID", FieldAttribute::kKeyId, FieldValue::kNumber},
    {"COMPDATA", FieldAttribute::kCompData, FieldValue::kNumber},
    {"LOOKUP", FieldAttribute::kLookup, FieldValue::kNumber},
    {"LIMITMETHOD", FieldAttribute::kLimitMethod, FieldValue::kLong},
    {"TARGETMETHOD", FieldAttribute::kTargetMethod, FieldValue::kLong},
    {"MAX", FieldAttribute::kMax, FieldValue::kDecimal},
    {"MIN", FieldAttribute::kMin, FieldValue::kDecimal},
};

Variant FieldVariant(FieldValue kind, const std::string& value) {
  switch (kind) {
    case FieldValue::kUpperText:
      return Variant(UpperCase(value));
    case FieldValue::kText:
      return Variant(value);
    case FieldValue::kLong:
      return Variant(ToInt32(value));
    case FieldValue::kNumber:
    case FieldValue::kDecimal:
      return Variant(LeadingNumber(value));
  }
  return Variant();
}

// A limit value: the method letter, then the value ("F12.5", "C").
Limit ReadLimit(std::string_view text) {
  Limit limit;
  size_t after_first = 0;
  if (!text.empty()) utf8::NextChar(text, &after_first);
  limit.method = UpperCase(text.substr(0, after_first));
  limit.value = LeadingNumber(Trim(text.substr(after_first)));
  return limit;
}

class ViewFileReader {
 public:
  ViewFileReader(ViewState& state, const std::vector<StatisticEntry>& catalogue,
                 std::string_view file_name)
      : state_(state), catalogue_(catalogue), file_name_(file_name) {}

  void ApplyLine(const IniLine& line) {
    if (IsIniHeader(line)) {
      section_ = line.key;
      return;
    }
    if (line.key.empty()) return;
    ApplyKey(line.key, line.value);
  }

  void Finish(std::string_view view_name) {
    ApplyRangeDefaults();
    state_.CurrentViewName = std::string(view_name);
    CompleteStatistics();
    RemapRules();
    SetRangeText(state_);
  }

 private:
  void ApplyKey(const std::string& key, const std::string& value) {
    if (section_ == view_file::kRules && key == "RULE") return AddRule(value);
    if (section_ == view_file::kFiltering && key == "WHERE") {
      return AddWhere(value);
    }
    if (section_ == view_file::kStatistics && key == "STATISTIC") {
      return AddStatistic(value);
    }
    if (section_ == view_file::kOptions && key == view_file::kShiftStartKey) {
      return ApplyShiftStart(value);
    }
    if (section_ == view_file::kField) return ApplyFieldKey(key, value);
    const ScalarKey* scalar = FindSectionScalar(key);
    if (scalar != nullptr) ApplyScalar(state_, *scalar, value);
  }

  const ScalarKey* FindSectionScalar(const std::string& key) const {
    if (section_ == view_file::kSelection) {
      return FindScalarKey(view_file::SelectionKeys(), key);
    }
    if (section_ == view_file::kOptions) {
      return FindScalarKey(view_file::OptionsKeys(), key);
    }
    if (section_ == view_file::kReport) {
      return FindScalarKey(view_file::ReportKeys(), key);
    }
    return nullptr;
  }

  void AddRule(const std::string& name) {
    if (rule_names_.size() == kMaxRules) {
      throw Error::SubscriptOutOfRange("a view names at most 26 rules");
    }
    rule_names_.push_back(name);
  }

  void AddWhere(const std::string& value) {
    std::vector<std::string> parts = Split(value, ',');
    if (parts.size() < kWhereFields) {
      throw Error::SubscriptOutOfRange("WHERE needs six fields");
    }
    for (std::string& part : parts) part = Unquoted(part);
    const std::string connective = UpperCase(parts[0]);
    const int32_t and_or = connective == "NONE" ? 0
                           : connective == "OR" ? 2
                                                : 1;
    const int16_t variable = ToInt16(parts[2]);
    std::string literal = parts[4];
    if (IsNumericVariable(*state_.AppFile, variable) &&
        !KeepsLiteralAsWritten(literal)) {
      literal = Trim(ShortestNumberText(LeadingNumber(literal)));
    }
    state_.Where->Add(and_or, parts[1], variable, parts[3], literal, parts[5]);
  }

  void AddStatistic(const std::string& value) {
    const size_t comma = value.find(',');
    if (comma == std::string::npos) return;
    const int16_t reference = ToInt16(value.substr(0, comma));
    const bool selected = LeadingNumber(value.substr(comma + 1)) != 0;
    for (const StatisticEntry& entry : catalogue_) {
      if (entry.reference != reference) continue;
      state_.ReportStatistics->Add(reference, entry.description, selected);
      listed_.insert(reference);
      return;
    }
  }

  void ApplyShiftStart(const std::string& value) {
    std::string_view time = value;
    state_.PlusMinus = 1;
    if (!time.empty() && (time.front() == '-' || time.front() == '+')) {
      if (time.front() == '-') state_.PlusMinus = -1;
      time.remove_prefix(1);
    }
    state_.ShiftStart = ParseTimeOfDay(time);
  }

  void ApplyFieldKey(const std::string& key, const std::string& value) {
    if (key == "NAME") {
      column_ = state_.ResultField->Add(0, 0, 0, value);
      return;
    }
    const std::optional<LimitKind> limit = FieldDefinition::LimitForKey(key);
    const FieldKeyReading* reading = FindFieldReading(key);
    const bool numbers =
        key == "RAWFIELD" || key == "PIVOTFIELD" || key == "STATISTIC";
    if (!limit && reading == nullptr && !numbers) return;
    if (!column_) throw Error::ObjectNotSet("[FIELD] key before any NAME");
    if (key == "RAWFIELD") return column_->SetRawField(ToInt16(value));
    if (key == "PIVOTFIELD") return column_->SetPivotField(ToInt16(value));
    if (key == "STATISTIC") return column_->SetStatistic(ToInt16(value));
    FieldDefinition& field = *column_->RZfield();
    if (limit) return field.SetLimit(*limit, ReadLimit(value));
    field.Set(reading->attribute, FieldVariant(reading->kind, value));
  }

  static const FieldKeyReading* FindFieldReading(std::string_view key) {
    for (const FieldKeyReading& reading : kFieldKeyReadings) {
      if (reading.key == key) return &reading;
    }
    return nullptr;
  }

  void ApplyRangeDefaults() {
    for (const auto& column : state_.ResultField->Items()) {
      FieldDefinition& field = *column->RZfield();
      if (!IsNumericType(field.TypeLetter())) continue;
      if (field.Number(FieldAttribute::kMax) != 0 ||
          field.Number(FieldAttribute::kMin) != 0) {
        continue;
      }
      const RangeDefaults range = RangeDefaultsOf(field);
      field.Set(FieldAttribute::kMax, Variant(range.max));
      field.Set(FieldAttribute::kMin, Variant(range.min));
    }
  }

  // The range defaults of a numeric column; a picture too long for a
  // number (more places than a double holds) is an overflow naming the
  // file, the column and its LENGTH.
  RangeDefaults RangeDefaultsOf(const FieldDefinition& field) const {
    try {
      return RangeDefaultsFor(field.Length(), field.Decimals());
    } catch (const Error& error) {
      throw Error(error.Number(),
                  file_name_ + ": [FIELD] '" + field.Name() + "': LENGTH " +
                      std::to_string(field.Length()) +
                      " is too long for its MAX and MIN range: Overflow",
                  error.Source());
    }
  }

  void CompleteStatistics() {
    for (const StatisticEntry& entry : catalogue_) {
      if (listed_.count(entry.reference) != 0) continue;
      state_.ReportStatistics->Add(entry.reference, entry.description,
                                   entry.selected);
    }
  }

  // Rewrites each column's RULES letters from the file's rule list to the
  // application's, matching rules by name.
  void RemapRules() {
    RuleList& rules = state_.AppFile->Rules();
    std::vector<int> positions;
    for (const std::string& name : rule_names_) {
      int position = 0;
      for (int32_t i = 1; i <= rules.Count() && position == 0; ++i) {
        if (EqualsIgnoreCase(rules.Item(i).name, name)) position = i;
      }
      positions.push_back(position);
    }
    for (const auto& column : state_.ResultField->Items()) {
      FieldDefinition& field = *column->RZfield();
      field.Set(FieldAttribute::kRules,
                Variant(RemapRuleLetters(field.Text(FieldAttribute::kRules),
                                         positions)));
    }
  }

  ViewState& state_;
  const std::vector<StatisticEntry>& catalogue_;
  std::string file_name_;
  std::string section_;
  std::vector<std::string> rule_names_;
  std::set<int16_t> listed_;
  std::shared_ptr<ResultFieldType> column_;
};

// Applies one line; an error it raises is raised again with the file, the
// line and the key in front of its description ("line4.V1:12: BWDAMOUNT:
// Overflow: '1e10'").
void ApplyLineAt(ViewFileReader& reader, const IniLine& line,
                 std::string_view file_name, size_t line_number) {
  try {
    reader.ApplyLine(line);
  } catch (const Error& error) {
    std::string place =
        std::string(file_name) + ":" + std::to_string(line_number) + ": ";
    if (!IsIniHeader(line)) place += line.key + ": ";
    throw Error(error.Number(), place + error.Description(), error.Source());
  }
}

// A NUL byte: the file holds binary data, not text.
constexpr char kNul = '\0';

// Refuses a view file that holds no view at all, before anything is reset:
// an empty file, binary data, or text in which no line is a section header
// or a key line. Each is error 75 naming the file and the cause.
void CheckHoldsAView(std::string_view text, std::string_view file_name) {
  const size_t nul = text.find(kNul);
  if (nul != std::string_view::npos) {
    throw Error::BadDataFile(file_name,
                             "not a view file: binary data (a NUL byte at "
                             "offset " +
                                 std::to_string(nul) + ")");
  }
  if (text.find_first_not_of(" \t\r\n") == std::string_view::npos) {
    throw Error::BadDataFile(file_name, "the view file is empty");
  }
  for (std::string_view raw : SplitIniLines(text)) {
    if (!ParseIniLine(raw).key.empty()) return;
  }
  throw Error::BadDataFile(file_name,
                           "not a view file: no line is a [SECTION] "
                           "header or a KEY = value line");
}

std::vector<StatisticEntry> RepositoryCatalogue(ViewState& state) {
  if (!state.platform) throw Error::ObjectNotSet("Platform");
  const std::shared_ptr<Repository> repository =
      state.platform->CreateRepository();
  const StatisticsCatalogueList& list = repository->StatisticsCatalogue();
  std::vector<StatisticEntry> entries;
  for (int32_t i = 1; i <= list.Count(); ++i) entries.push_back(list.Item(i));
  return entries;
}

void EmptyViewLists(ViewState& state) {
  state.ResultField->Clear();
  state.Where->Clear();
  state.PromptValues.clear();
  state.ReportStatistics->Clear();
}

bool FinishLoad(ViewState& state, const ViewFileHooks& hooks) {
  if (hooks.finish_load) return hooks.finish_load(state);
  // Until the wizard checks a loaded view, the load ends by resolving the
  // record range the way the wizard's pages would.
  const double now = state.platform ? state.platform->Now() : 0;
  return ResolveRangeOnLoad(state, now);
}

}  // namespace

void ApplyViewFileText(ViewState& state, std::string_view text,
                       std::string_view view_name,
                       const std::vector<StatisticEntry>& catalogue,
                       std::string_view file_name) {
  ViewFileReader reader(state, catalogue, file_name);
  size_t line_number = 0;
  // A line ends at LF or CR LF; text after the last line end is not read.
  for (std::string_view raw : SplitIniLines(text)) {
    ApplyLineAt(reader, ParseIniLine(raw), file_name, ++line_number);
  }
  reader.Finish(view_name);
}

void LoadFromView(ViewState& state, std::string_view view_name,
                  const ViewFileHooks& hooks) {
  TraceLoad(state, "ViewName=" + std::string(view_name));
  if (!state.AppFile) throw Error::ObjectNotSet("AppFile");
  const int32_t number = ViewNumber(*state.AppFile, view_name, false);
  const std::string wanted =
      state.AppFile->BasePath() + ".v" + std::to_string(number);
  const std::optional<std::string> path = FindFileIgnoringExtensionCase(wanted);
  if (!path || !FileExists(*path)) {
    const Error error = Error::ViewNotFound(view_name).WithFile(
        ViewFilePath(state.AppFile->BasePath(), number));
    TraceLoad(state, error.Description());
    throw error;
  }
  const std::string text = DecodeWindows1252(ReadBinaryFile(*path));
  CheckHoldsAView(text, *path);
  if (!hooks.set_defaults) throw Error::ObjectNotSet("SetDefaults");
  hooks.set_defaults(state);
  EmptyViewLists(state);
  const std::vector<StatisticEntry> catalogue =
      hooks.statistics_catalogue ? hooks.statistics_catalogue()
                                 : RepositoryCatalogue(state);
  ApplyViewFileText(state, text, view_name, catalogue, *path);
  if (FinishLoad(state, hooks)) TraceLoad(state, "Ended");
}

}  // namespace rz
