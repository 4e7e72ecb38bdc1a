// Copyright 2026 The Veltmark authors.

#include "appfile/application_file.h"

#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cmath>
#include <ctime>
#include <numeric>

#include "appfile/application_writer.h"
#include "appfile/column_statistics.h"
#include "appfile/condition_filter.h"
#include "appfile/data_store.h"
#include "appfile/record_columns.h"
#include "appfile/sqlite_util.h"
#include "appfile/template_views.h"
#include "core/date_time.h"
#include "core/error.h"
#include "core/text.h"
#include "platform/field_format.h"
#include "platform/file_system.h"

namespace rz {
namespace {

constexpr std::string_view kDataExtension = ".rzd";
constexpr double kSecondsPerDay = 86400.0;

// The numeric flag of each variable for the data file: variables 1 and 2
// hold the date and time texts whatever their TYPE says.
std::vector<bool> NumericFlags(
    const std::vector<std::shared_ptr<FieldDefinition>>& variables) {
  std::vector<bool> numeric;
  for (size_t i = 0; i < variables.size(); ++i) {
    numeric.push_back(i >= 2 && IsNumericType(variables[i]->TypeLetter()));
  }
  return numeric;
}

// "hh:mm:ss" with two digits in each part.
bool IsTimeText(std::string_view text) {
  if (text.size() != 8 || text[2] != ':' || text[5] != ':') return false;
  for (size_t i : {0, 1, 3, 4, 6, 7}) {
    if (text[i] < '0' || text[i] > '9') return false;
  }
  return true;
}

// The modification time of a file as a local day count; 0 when it cannot
// be read. Fractions of a second count, so a change within one second
// still shows.
double ModificationDayCount(const std::string& path) {
  struct stat info {};
  if (::stat(path.c_str(), &info) != 0) return 0;
  std::tm local{};
  const std::time_t seconds = info.st_mtim.tv_sec;
  if (localtime_r(&seconds, &local) == nullptr) return 0;
  return DateSerial(local.tm_year + 1900, local.tm_mon + 1, local.tm_mday) +
         TimeSerial(local.tm_hour, local.tm_min, local.tm_sec) +
         static_cast<double>(info.st_mtim.tv_nsec) / 86400e9;
}

std::string FolderOf(std::string_view path) {
  std::string folder = ParentFolder(NormalizePath(path));
  return folder.empty() ? "./" : folder;
}

}  // namespace

ApplicationFile::ApplicationFile()
    : variables_(template_.variables,
                 [this] { RequireClosed("Variables.Add"); }),
      rules_(template_.rules),
      views_(template_.views, template_.default_view, [this] { SaveViews(); }),
      cursor_([this] { ForgetPass(); }),
      statistics_([this] { return variables_.Count(); },
                  [this](int16_t variable) { return StatisticsOf(variable); }) {
}

ApplicationFile::~ApplicationFile() = default;

std::string ApplicationFile::DataPathFor(std::string_view template_path) {
  return WithoutExtension(NormalizePath(template_path)) +
         std::string(kDataExtension);
}

// --- Opening and closing ---

void ApplicationFile::SetOpenMode(int16_t mode) {
  if (mode != kOpenCreateNew && mode != kOpenExisting) {
    throw Error::InvalidArgument("OpenMode " + std::to_string(mode));
  }
  open_mode_ = mode;
}

void ApplicationFile::OpenApplication(std::string_view path) {
  if (open_mode_ == kOpenExisting) {
    OpenExisting(path);
  } else if (open_mode_ == kOpenCreateNew) {
    CreateNew(path);
  } else {
    throw Error::InvalidArgument("OpenApplication without an OpenMode");
  }
}

void ApplicationFile::OpenExisting(std::string_view path) {
  CloseApplication();
  path_ = NormalizePath(path);
  not_application_cause_.clear();
  std::string why_not;
  std::optional<AppTemplate> app = ReadAppTemplate(path_, &why_not);
  if (!app) {
    // Not an application: ApplicationExists() stays false. The cause is
    // kept for a file that is there; a missing file needs none.
    if (FileExists(path_)) not_application_cause_ = why_not;
    return;
  }
  const std::string data_path = DataPathFor(path_);
  if (!FileExists(data_path)) throw Error::FileNotFound(data_path);
  store_ = DataStore::Open(data_path, NumericFlags(app->variables));
  template_ = std::move(*app);
  state_ = State::kReading;
  position_ = 0;
  current_ = 0;
  range_first_ = 0;
  range_last_ = 0;
  filter_.reset();
}

void ApplicationFile::OnScriptEntered() {
  script_home_ = state_ == State::kClosed ? "" : ComparablePath(path_);
}

void ApplicationFile::RefuseOtherApplicationToScripts(
    std::string_view path) const {
  if (!HeldByScript()) return;
  if (open_mode_ != kOpenExisting || script_home_.empty() ||
      ComparablePath(path) != script_home_) {
    throw Error::RefusedToScripts("OpenApplication", path);
  }
}

void ApplicationFile::CreateNew(std::string_view path) {
  RequireClosed("OpenApplication");
  const std::vector<std::shared_ptr<FieldDefinition>>& variables =
      template_.variables;
  if (variables.size() < 2) {
    throw Error::InvalidArgument(
        "a new application needs the date and the time variables");
  }
  for (size_t i = 0; i < variables.size(); ++i) {
    CheckVariableDefinition(*variables[i], static_cast<int32_t>(i + 1));
  }
  const std::string template_path = NormalizePath(path);
  if (template_path == DataPathFor(template_path)) {
    throw Error::InvalidArgument("the template " + template_path +
                                 " would be its own data file");
  }
  std::unique_ptr<ApplicationReplacement> replacement;
  std::string target = template_path;
  if (ApplicationHasLeftovers(template_path)) {
    RecoverApplication(template_path);
  }
  if (!ExistingApplicationFiles(template_path).empty()) {
    replacement = std::make_unique<ApplicationReplacement>(template_path);
    target = replacement->StagedTemplatePath();
  }
  const std::string data_path = DataPathFor(target);
  CheckRecordsColumnCount(data_path, variables.size());
  writing_numeric_ = NumericFlags(variables);
  writer_ =
      std::make_unique<ApplicationWriter>(target, data_path, writing_numeric_);
  replacement_ = std::move(replacement);
  path_ = template_path;
  state_ = State::kWriting;
  pending_.reset();
}

void ApplicationFile::CloseApplication() {
  if (state_ == State::kClosed) return;
  std::unique_ptr<ApplicationWriter> writer = std::move(writer_);
  std::unique_ptr<ApplicationReplacement> replacement = std::move(replacement_);
  const std::string template_text =
      writer ? FormatAppTemplate(template_) : std::string();
  ResetToClosed();
  // The object is closed whatever happens now; a failed commit removes
  // what it wrote when `writer` (and the staging folder when
  // `replacement`) goes.
  if (writer) writer->Commit(template_text);
  if (replacement) replacement->Commit();
}

void ApplicationFile::ResetToClosed() {
  state_ = State::kClosed;
  store_.reset();
  writer_.reset();
  writing_numeric_.clear();
  replacement_.reset();
  filter_.reset();
  template_ = AppTemplate();
  pending_.reset();
  position_ = 0;
  current_ = 0;
  range_first_ = 0;
  range_last_ = 0;
  cursor_.Reset();  // forgets the pass too
}

// --- Header ---

std::string ApplicationFile::BasePath() const {
  return WithoutExtension(path_);
}

std::string ApplicationFile::AppFolder() const { return FolderOf(path_); }

double ApplicationFile::TemplateDateTime() const {
  if (state_ != State::kReading) return 0;
  return ModificationDayCount(path_);
}

double ApplicationFile::DataDateTime() const {
  if (state_ != State::kReading) return 0;
  return store_->FileDateTime();
}

bool ApplicationFile::TemplateWritable() const {
  if (path_.empty()) return false;
  const bool file_ok = !FileExists(path_) || ::access(path_.c_str(), W_OK) == 0;
  return file_ok && ::access(FolderOf(path_).c_str(), W_OK) == 0;
}

Variant ApplicationFile::HeaderItem(std::string_view key) const {
  return HeaderItemSlot(template_, key);
}

void ApplicationFile::SetAppTitle(std::string_view value) {
  RequireClosed("AppTitle");
  template_.title = std::string(value);
}

void ApplicationFile::SetLeadingVariableCount(int16_t value) {
  RequireClosed("LeadingVariableCount");
  template_.leading_variables = value;
}

void ApplicationFile::SetDefaultLookBack(int16_t value) {
  RequireClosed("DefaultLookBack");
  template_.look_back = value;
}

void ApplicationFile::SetSpecialVariable1(int16_t value) {
  RequireClosed("SpecialVariable1");
  template_.special_variables[0] = value;
}

void ApplicationFile::SetSpecialVariable2(int16_t value) {
  RequireClosed("SpecialVariable2");
  template_.special_variables[1] = value;
}

void ApplicationFile::SetSpecialVariable3(int16_t value) {
  RequireClosed("SpecialVariable3");
  template_.special_variables[2] = value;
}

void ApplicationFile::SetFileSetting1(const Variant& value) {
  RequireClosed("FileSetting1");
  template_.file_settings[0] = value;
}

void ApplicationFile::SetFileSetting2(const Variant& value) {
  RequireClosed("FileSetting2");
  template_.file_settings[1] = value;
}

void ApplicationFile::SetFileSetting3(const Variant& value) {
  RequireClosed("FileSetting3");
  template_.file_settings[2] = value;
}

void ApplicationFile::SetShiftHours(double value) {
  RequireClosed("ShiftHours");
  template_.shift_hours = value;
}

void ApplicationFile::SetShiftStartText(std::string_view value) {
  RequireClosed("ShiftStartText");
  template_.shift_start = std::string(value);
}

void ApplicationFile::SetHeaderItem(std::string_view key,
                                    const Variant& value) {
  RequireClosed("SetHeaderItem");
  HeaderItemSlot(template_, key) = value;
}

std::string ApplicationFile::HookTimeout() const {
  // The key is the engine's, not the component's: it is kept with the
  // [GENERAL] keys the template reader does not know.
  for (const IniLine& line : template_.general_extra) {
    if (line.key == "HOOKTIMEOUT") return line.value;
  }
  return "";
}

void ApplicationFile::SetSecuredFunctions(std::string_view value) {
  RequireClosed("SecuredFunctions");
  template_.secured_functions = std::string(value);
}

void ApplicationFile::AddRule(const Rule& rule) {
  RequireClosed("AddRule");
  AppendNewRule(template_.rules, rule);
}

// --- Catalogue ---

void ApplicationFile::RefreshViews() {
  if (state_ == State::kWriting) return;  // nothing saved yet
  RequireReading("RefreshViews");
  std::optional<AppTemplate> app = ReadAppTemplate(path_);
  if (!app) throw Error::FileNotFound(path_);
  template_.views = std::move(app->views);
  template_.default_view = app->default_view;
}

void ApplicationFile::SaveViews() {
  // A new application's catalogue is written with its template.
  if (state_ == State::kWriting) return;
  RequireReading("Views.Save");
  const std::string bytes = ReadBinaryFile(path_);
  WriteBinaryFileAtomically(
      path_,
      ReplaceViewCatalogue(bytes, template_.views, template_.default_view));
}

// --- Records ---

int32_t ApplicationFile::RecordCount() const {
  if (state_ == State::kWriting) return writer_->RecordCount();
  RequireReading("RecordCount");
  return store_->RecordCount();
}

void ApplicationFile::MoveFirst() {
  RequireReading("MoveFirst");
  RefreshRecords();
  position_ = 0;
  current_ = 0;
}

bool ApplicationFile::ReadNext() {
  RequireReading("ReadNext");
  const int32_t count = store_->RecordCount();
  position_ = std::min(position_ + 1, count + 1);
  current_ = position_ <= count ? position_ : 0;
  return current_ != 0;
}

void ApplicationFile::MoveLast() {
  RequireReading("MoveLast");
  RefreshRecords();
  position_ = store_->RecordCount() + 1;
  current_ = 0;
}

bool ApplicationFile::ReadPrevious() {
  RequireReading("ReadPrevious");
  position_ = std::max(position_ - 1, 0);
  current_ = position_;
  return current_ != 0;
}

void ApplicationFile::GotoRecord(int32_t record) {
  RequireReading("GotoRecord");
  if (record < 1 || record > store_->RecordCount()) {
    throw Error::SubscriptOutOfRange("record " + std::to_string(record));
  }
  position_ = record;
  current_ = record;
}

Variant ApplicationFile::Value(int16_t variable) const {
  RequireReading("Value");
  CheckVariable(variable, 0);
  // An application without records has no current record ever; its
  // values are Null rather than an error, so reading "the first record"
  // of an empty application needs no special case.
  if (current_ == 0 && store_->RecordCount() == 0) return Variant::Null();
  RequireCurrent("Value");
  return store_->Value(current_, variable);
}

std::vector<Variant> ApplicationFile::DistinctValues(int16_t variable) const {
  RequireReading("DistinctValues");
  CheckVariable(variable, 1);
  RefreshRecords();
  return store_->DistinctValues(variable);
}

void ApplicationFile::RefreshRecords() const {
  if (!store_->Refresh()) return;
  const int32_t count = store_->RecordCount();
  if (current_ > count) current_ = 0;
  position_ = std::min(position_, count + 1);
  // Records appended since the pass leave its record indexes valid;
  // records removed do not, and the pass is forgotten.
  if (pass_ && count < pass_record_count_) {
    const_cast<ApplicationFile*>(this)->cursor_.Reset();
  }
}

// --- Filter ---

bool ApplicationFile::RecordExcluded() const {
  RequireCurrent("RecordExcluded");
  return false;
}

bool ApplicationFile::RecordIncluded() const {
  RequireCurrent("RecordIncluded");
  EnsureFilter();
  return filter_->Matches(*store_, current_);
}

void ApplicationFile::FindDateRange(std::string_view begin_text,
                                    std::string_view end_text, bool& found) {
  RequireReading("FindDateRange");
  EnsureFilter();
  int32_t first = 0;
  int32_t last = 0;
  found = rz::FindDateRange(*store_, begin_text, end_text, first, last);
  range_first_ = found ? first : 0;
  range_last_ = found ? last : 0;
}

void ApplicationFile::EnsureFilter() const {
  if (filter_ && filter_generation_ == conditions_.Generation()) return;
  filter_.reset();  // a list that does not compile raises at every use
  filter_ = ConditionFilter::Compile(conditions_.Entries(), *store_);
  filter_generation_ = conditions_.Generation();
}

// --- Sort and summary ---

void ApplicationFile::SetInterval(std::string_view hh_mm_ss) {
  if (!IsTimeText(hh_mm_ss)) throw Error::TypeMismatch(hh_mm_ss);
  interval_ = std::string(hh_mm_ss);
}

void ApplicationFile::SetShiftStart(std::string_view hh_mm_ss) {
  if (!IsTimeText(hh_mm_ss)) throw Error::TypeMismatch(hh_mm_ss);
  shift_start_ = std::string(hh_mm_ss);
}

void ApplicationFile::SortFile() {
  RequireReading("SortFile");
  RefreshRecords();
  PassRequest request;
  request.summarize = summarize_;
  request.sort_keys = sort_keys_.Keys();
  request.summary_keys = summary_keys_.Keys();
  request.settings = CurrentSummarySettings();
  request.null_intervals = null_intervals_;
  const RecordColumns& columns = store_->Columns();
  // Everything that can be refused is refused before the last pass is
  // forgotten and before any record is read.
  CheckPassRequest(columns, request);
  if (conditions_.Count() > 0) EnsureFilter();

  cursor_.Reset();
  auto pass = std::make_unique<SummaryPass>(
      BuildSummaryPass(columns, SelectRecords(), request));
  std::vector<SummaryGroup>& groups = cursor_.Groups();
  groups.reserve(pass->groups.size());
  for (const SummaryPassGroup& group : pass->groups) {
    const int32_t first =
        group.begin < group.end ? pass->Order()[group.begin] + 1 : 0;
    groups.push_back({first});
  }
  pass_ = std::move(pass);
  pass_record_count_ = store_->RecordCount();
}

SummarySettings ApplicationFile::CurrentSummarySettings() const {
  SummarySettings settings;
  settings.interval_seconds =
      std::llround(ParseTimeOfDay(interval_) * kSecondsPerDay);
  settings.shift_hours = shift_duration_;
  const int64_t shift_start =
      std::llround(ParseTimeOfDay(shift_start_) * kSecondsPerDay);
  settings.day_start_seconds = plus_minus_ < 0 ? -shift_start : shift_start;
  settings.week_days = week_days_;
  settings.year_begins = year_begins_;
  return settings;
}

RecordList ApplicationFile::SelectRecords() const {
  const int32_t count = store_->RecordCount();
  RecordList selected;
  if (conditions_.Count() == 0) {
    selected.resize(static_cast<size_t>(count));
    std::iota(selected.begin(), selected.end(), 0);
    return selected;
  }
  EnsureFilter();
  filter_->Select(*store_, &selected);
  return selected;
}

void ApplicationFile::ForgetPass() {
  pass_.reset();
  pass_record_count_ = 0;
  summary_position_ = 0;
  ForgetStatistics();
}

void ApplicationFile::ForgetStatistics() {
  restricted_.reset();
  statistics_cache_.clear();
}

bool ApplicationFile::EndOfSummary() const {
  RequireReading("EndOfSummary");
  return !pass_ ||
         static_cast<size_t>(summary_position_) >= pass_->groups.size();
}

void ApplicationFile::NextSummary() {
  RequireReading("NextSummary");
  if (EndOfSummary()) {
    throw Error::InvalidArgument(
        "NextSummary: no summary record follows record " +
        std::to_string(summary_position_) + " of " +
        std::to_string(pass_ ? pass_->groups.size() : 0));
  }
  ++summary_position_;
  ForgetStatistics();
}

int32_t ApplicationFile::SummaryPosition() const {
  RequireReading("SummaryPosition");
  return summary_position_;
}

int32_t ApplicationFile::SummaryExtent() const {
  RequireReading("SummaryExtent");
  if (!pass_) return 0;
  if (summary_position_ == 0) {
    return static_cast<int32_t>(pass_->selected.size());
  }
  const SummaryPassGroup& group = pass_->groups[summary_position_ - 1];
  return group.end - group.begin;
}

namespace {

// True when the cell of record `record` of a numeric column holds `wanted`
// (already trimmed): "" matches no value; numbers compare numerically or
// by their shortest text.
bool HoldsPivotValue(const RecordColumn& column, int32_t record,
                     std::string_view wanted, std::optional<double> number) {
  const size_t index = static_cast<size_t>(record);
  if (column.IsNull(index)) return wanted.empty();
  if (wanted.empty()) return false;
  const double value = column.Number(index);
  return (number && value == *number) || ShortestNumberText(value) == wanted;
}

}  // namespace

void ApplicationFile::RestrictStatistics(int32_t position, int32_t /*extent*/,
                                         std::string& /*text*/,
                                         int16_t pivot_variable,
                                         const std::string& pivot_value,
                                         double& /*work*/) {
  RequireReading("RestrictStatistics");
  if (!pass_ || position != summary_position_) {
    throw Error::InvalidArgument(
        "RestrictStatistics: summary record " + std::to_string(position) +
        " is not the current one (" + std::to_string(summary_position_) + ")");
  }
  ForgetStatistics();
  if (pivot_variable == 0) return;
  CheckVariable(pivot_variable, 1);
  const RecordColumn& column = store_->Columns().Column(pivot_variable);
  const std::string_view wanted = TrimSpaces(pivot_value);
  std::vector<int32_t> records;
  if (!column.Numeric()) {
    // Texts compare by their folded codes, worked out once per column.
    const RecordList& codes = column.FoldedCodes();
    const int32_t code = column.FoldedCodeOf(wanted);
    if (code >= 0) {
      for (int32_t record : StatisticRecords()) {
        if (codes[static_cast<size_t>(record)] == code) {
          records.push_back(record);
        }
      }
    }
    restricted_ = std::move(records);
    return;
  }
  std::optional<double> number;
  if (IsNumericText(wanted)) number = LeadingNumber(wanted);
  for (int32_t record : StatisticRecords()) {
    if (HoldsPivotValue(column, record, wanted, number)) {
      records.push_back(record);
    }
  }
  restricted_ = std::move(records);
}

std::span<const int32_t> ApplicationFile::StatisticRecords() const {
  if (restricted_) return *restricted_;
  if (summary_position_ == 0) return pass_->selected;
  return pass_->RecordsOf(static_cast<size_t>(summary_position_ - 1));
}

ColumnStatistic ApplicationFile::StatisticsOf(int16_t variable) {
  RequireReading("ColumnStatistics");
  if (!pass_) {
    throw Error::InvalidArgument(
        "ColumnStatistics: no summary record is current (SortFile first)");
  }
  const size_t slot = static_cast<size_t>(variable - 1);
  statistics_cache_.resize(static_cast<size_t>(store_->VariableCount()));
  if (statistics_cache_[slot]) return *statistics_cache_[slot];

  ColumnStatistic result;
  const bool empty_interval =
      pass_->time_keyed && summary_position_ > 0 &&
      pass_->RecordsOf(static_cast<size_t>(summary_position_ - 1)).empty();
  if (empty_interval) {
    result = EmptyIntervalStatistics(variable);
  } else if (store_->IsNumeric(variable)) {
    result = NumericStatistics(store_->Columns(), variable, StatisticRecords(),
                               LimitsOf(*variables_.Item(variable)));
  } else {
    result = TextStatistics(store_->Columns(), variable, StatisticRecords());
  }
  statistics_cache_[slot] = result;
  return result;
}

// An empty interval counts no record; the date and time variables report
// the interval's start so that the summary record can be placed in time.
ColumnStatistic ApplicationFile::EmptyIntervalStatistics(
    int16_t variable) const {
  ColumnStatistic result;
  result[StatisticValue::Count] = Variant(int32_t{0});
  const double start = SerialFromSeconds(
      pass_->groups[static_cast<size_t>(summary_position_ - 1)].interval_start);
  if (variable == 1 || variable == 2) {
    const std::string text =
        variable == 1 ? FormatDate(start) : FormatTime(start);
    result[StatisticValue::FirstValue] = Variant(text);
    result[StatisticValue::LastValue] = Variant(text);
  }
  return result;
}

// --- Writing ---

void ApplicationFile::AddRecord() {
  if (state_ != State::kWriting) {
    throw Error::InvalidArgument("AddRecord needs a new application");
  }
  pending_ = std::vector<Variant>(template_.variables.size(), Variant::Null());
}

void ApplicationFile::SetValue(int16_t variable, const Variant& value) {
  if (!pending_) throw Error::InvalidArgument("SetValue before AddRecord");
  CheckVariable(variable, 1);
  Variant& cell = (*pending_)[static_cast<size_t>(variable - 1)];
  if (value.IsEmpty() || value.IsNull()) {
    cell = Variant::Null();
    return;
  }
  auto target = [&] {
    return "variable " + std::to_string(variable) + " '" +
           template_.variables[variable - 1]->Name() + "'";
  };
  if (value.IsObject() || value.IsArray()) {
    throw Error::TypeMismatchFor(value.TypeName(), target());
  }
  if (!IsNumericVariable(variable)) {
    cell = value.IsString() ? value : Variant(value.ToString());
  } else if (value.IsNumber()) {
    cell = Variant(value.ToDouble());
  } else {
    throw Error::TypeMismatchFor(value.ToString(), target());
  }
}

void ApplicationFile::SaveRecord(int32_t record) {
  if (record != 0) {
    throw Error::InvalidArgument("SaveRecord " + std::to_string(record));
  }
  if (!pending_) throw Error::InvalidArgument("SaveRecord before AddRecord");
  writer_->Append(*pending_);
  pending_.reset();
}

// --- Checks ---

void ApplicationFile::RequireClosed(std::string_view operation) const {
  if (state_ != State::kClosed) {
    throw Error::InvalidArgument(std::string(operation) +
                                 ": an application is open");
  }
}

void ApplicationFile::RequireReading(std::string_view operation) const {
  if (state_ == State::kWriting) {
    throw Error::InvalidArgument(
        std::string(operation) +
        ": the new application can be read once it is closed");
  }
  if (state_ != State::kReading) {
    throw Error::InvalidArgument(std::string(operation) +
                                 ": no application is open");
  }
}

void ApplicationFile::RequireCurrent(std::string_view operation) const {
  RequireReading(operation);
  if (current_ == 0) {
    throw Error::InvalidArgument(std::string(operation) +
                                 ": no record is current");
  }
}

void ApplicationFile::CheckVariable(int16_t variable, int16_t lowest) const {
  if (variable < lowest ||
      static_cast<size_t>(variable) > template_.variables.size()) {
    throw Error::SubscriptOutOfRange("variable " + std::to_string(variable));
  }
}

bool ApplicationFile::IsNumericVariable(int16_t variable) const {
  // As the data file's columns were made when the writing began.
  const auto index = static_cast<size_t>(variable - 1);
  return index < writing_numeric_.size() && writing_numeric_[index];
}

}  // namespace rz
