// Copyright 2026 The Veltmark authors.

#include "support/fake_app_file.h"

#include <algorithm>
#include <utility>

#include "core/date_time.h"
#include "core/dispatch.h"
#include "core/error.h"
#include "core/text.h"

namespace rz {
namespace {

Error NotSupported(std::string_view operation) {
  return Error::InvalidArgument(std::string(operation) +
                                " is not supported by the fake");
}

// 1-based position check of every list: error 5 outside 1..count.
size_t ListSlot(int32_t index, size_t count) {
  if (index < 1 || static_cast<size_t>(index) > count) {
    throw Error::InvalidArgument("position " + std::to_string(index) +
                                 " is outside 1.." + std::to_string(count));
  }
  return static_cast<size_t>(index - 1);
}

// "hh:mm:ss" with two digits in each part.
bool IsTimeText(std::string_view text) {
  if (text.size() != 8 || text[2] != ':' || text[5] != ':') return false;
  for (size_t i : {0, 1, 3, 4, 6, 7}) {
    if (text[i] < '0' || text[i] > '9') return false;
  }
  return true;
}

std::string UpperKey(std::string_view key) { return UpperCase(key); }

// The folder part of a path, up to and including its last separator.
size_t FolderEnd(const std::string& path) {
  const size_t slash = path.find_last_of("/\\");
  return slash == std::string::npos ? 0 : slash + 1;
}

bool IsBlank(const Variant& value) {
  return value.IsBlank() ||
         (value.IsString() && Trim(value.ToString()).empty());
}

// Ascending order of distinct values and sort groups: numbers before texts,
// numbers numerically, texts without regard to case.
bool ValueLess(const Variant& a, const Variant& b) {
  if (a.IsNumber() != b.IsNumber()) return a.IsNumber();
  if (a.IsNumber()) return a.ToDouble() < b.ToDouble();
  return CompareIgnoreCase(a.ToString(), b.ToString()) < 0;
}

bool ValueSame(const Variant& a, const Variant& b) {
  return !ValueLess(a, b) && !ValueLess(b, a);
}

}  // namespace

// --- FakeApplication ---

std::shared_ptr<FieldDefinition> FakeApplication::AddVariable(
    std::string_view name, std::string_view type_letter, int16_t length,
    int16_t decimals) {
  auto definition = std::make_shared<FieldDefinition>();
  definition->Set(FieldAttribute::kName, Variant(name));
  definition->Set(FieldAttribute::kType, Variant(type_letter));
  definition->Set(FieldAttribute::kLength, Variant(length));
  definition->Set(FieldAttribute::kDecimals, Variant(decimals));
  definition->Set(FieldAttribute::kPosition,
                  Variant(static_cast<int16_t>(variables.size() + 1)));
  variables.push_back(definition);
  for (auto& record : records) record.push_back(Variant::Null());
  return definition;
}

void FakeApplication::AddRecord(std::string_view date, std::string_view time,
                                std::vector<Variant> values) {
  std::vector<Variant> record{Variant(date), Variant(time)};
  for (Variant& value : values) record.push_back(std::move(value));
  const size_t width = variables.size();
  if (record.size() > width) {
    throw Error::InvalidArgument("a record with more values than variables");
  }
  record.resize(width, Variant::Null());
  records.push_back(std::move(record));
}

FakeApplication FakeApplication::Clone() const {
  FakeApplication copy = *this;
  for (auto& variable : copy.variables) {
    auto fresh = std::make_shared<FieldDefinition>();
    fresh->CopyFrom(*variable);
    variable = fresh;
  }
  return copy;
}

// --- The lists ---

class FakeAppFile::Lists {
 public:
  explicit Lists(FakeAppFile& file)
      : variables(file),
        rules(file),
        views(file),
        conditions(file),
        sort_keys(file),
        summary_keys(file),
        cursor(file),
        statistics(file) {}

  class Variables : public VariableList {
   public:
    explicit Variables(FakeAppFile& file) : file_(file) {}
    int32_t Count() const override {
      return static_cast<int32_t>(file_.app_.variables.size());
    }
    std::shared_ptr<FieldDefinition> Item(int32_t index) const override {
      return file_.app_.variables[ListSlot(index, file_.app_.variables.size())];
    }
    std::shared_ptr<FieldDefinition> Add(std::string_view name,
                                         std::string_view type_letter,
                                         int16_t length,
                                         int16_t decimals) override {
      file_.RequireClosed("Variables.Add");
      return file_.app_.AddVariable(name, type_letter, length, decimals);
    }

   private:
    FakeAppFile& file_;
  };

  class Rules : public RuleList {
   public:
    explicit Rules(FakeAppFile& file) : file_(file) {}
    int32_t Count() const override {
      return static_cast<int32_t>(file_.app_.rules.size());
    }
    Rule Item(int32_t index) const override {
      return file_.app_.rules[ListSlot(index, file_.app_.rules.size())];
    }

   private:
    FakeAppFile& file_;
  };

  class Views : public ViewCatalogue {
   public:
    explicit Views(FakeAppFile& file) : file_(file) {}
    int32_t Count() const override {
      return static_cast<int32_t>(file_.app_.views.size());
    }
    ViewEntry Item(int32_t position) const override {
      return file_.app_.views[ListSlot(position, file_.app_.views.size())];
    }
    void Add(std::string_view name, int32_t number) override {
      if (number < 1) {
        throw Error::InvalidArgument("view number " + std::to_string(number));
      }
      for (const ViewEntry& view : file_.app_.views) {
        if (view.number == number) {
          throw Error::InvalidArgument("view number " + std::to_string(number) +
                                       " is in use");
        }
      }
      file_.app_.views.push_back({std::string(name), number});
    }
    void Remove(int32_t position) override {
      auto& views = file_.app_.views;
      views.erase(views.begin() + static_cast<std::ptrdiff_t>(
                                      ListSlot(position, views.size())));
    }
    void Swap(int32_t position_a, int32_t position_b) override {
      auto& views = file_.app_.views;
      std::swap(views[ListSlot(position_a, views.size())],
                views[ListSlot(position_b, views.size())]);
    }
    int32_t DefaultView() const override { return file_.app_.default_view; }
    void SetDefaultView(int32_t position) override {
      if (position < 0 || position > Count()) {
        throw Error::InvalidArgument("default view " +
                                     std::to_string(position));
      }
      file_.app_.default_view = position;
    }
    void Save() override {
      file_.RequireOpen("Views.Save");
      FakeApplication& stored = (*file_.disk_)[file_.path_];
      stored.views = file_.app_.views;
      stored.default_view = file_.app_.default_view;
    }

   private:
    FakeAppFile& file_;
  };

  class Conditions : public ConditionList {
   public:
    explicit Conditions(FakeAppFile& file) : file_(file) {}
    void Clear() override { file_.conditions_.clear(); }
    void Add(int16_t and_or, std::string_view par1, int16_t variable,
             std::string_view condition, std::string_view value,
             std::string_view par2) override {
      file_.conditions_.push_back({and_or, std::string(par1), variable,
                                   std::string(condition), std::string(value),
                                   std::string(par2)});
    }
    int32_t Count() const override {
      return static_cast<int32_t>(file_.conditions_.size());
    }
    Condition Item(int32_t index) const override {
      return file_.conditions_[ListSlot(index, file_.conditions_.size())];
    }

   private:
    FakeAppFile& file_;
  };

  class SortKeys : public SortKeyList {
   public:
    explicit SortKeys(FakeAppFile& file) : file_(file) {}
    void Reset() override { file_.sort_keys_.clear(); }
    void Add(int16_t variable, int16_t kind) override {
      file_.sort_keys_.push_back({variable, kind});
    }
    int32_t Count() const override {
      return static_cast<int32_t>(file_.sort_keys_.size());
    }

   private:
    FakeAppFile& file_;
  };

  class SummaryKeys : public SummaryKeyList {
   public:
    explicit SummaryKeys(FakeAppFile& file) : file_(file) {}
    void Reset() override { file_.summary_keys_.clear(); }
    void Add(int32_t key) override { file_.summary_keys_.push_back(key); }
    int32_t Count() const override {
      return static_cast<int32_t>(file_.summary_keys_.size());
    }

   private:
    FakeAppFile& file_;
  };

  class Cursor : public SummaryCursorList {
   public:
    explicit Cursor(FakeAppFile& file) : file_(file) {}
    void Reset() override { file_.groups_.clear(); }
    int32_t Count() const override {
      return static_cast<int32_t>(file_.groups_.size());
    }
    SummaryGroup Item(int32_t index) const override {
      return file_.groups_[ListSlot(index, file_.groups_.size())];
    }

   private:
    FakeAppFile& file_;
  };

  class Statistics : public ColumnStatisticsList {
   public:
    explicit Statistics(FakeAppFile& file) : file_(file) {}
    int32_t Count() const override {
      return static_cast<int32_t>(file_.app_.variables.size());
    }
    ColumnStatistic Item(int16_t) const override {
      throw NotSupported("ColumnStatistics");
    }

   private:
    FakeAppFile& file_;
  };

  Variables variables;
  Rules rules;
  Views views;
  Conditions conditions;
  SortKeys sort_keys;
  SummaryKeys summary_keys;
  Cursor cursor;
  Statistics statistics;
};

// --- FakeAppFile ---

FakeAppFile::FakeAppFile(std::shared_ptr<FakeDisk> disk)
    : disk_(std::move(disk)), lists_(std::make_unique<Lists>(*this)) {}

FakeAppFile::~FakeAppFile() = default;

void FakeAppFile::SetExcludedRecords(std::set<int32_t> records) {
  excluded_ = std::move(records);
}

void FakeAppFile::SetOpenMode(int16_t mode) {
  if (mode != kOpenCreateNew && mode != kOpenExisting) {
    throw Error::InvalidArgument("OpenMode " + std::to_string(mode));
  }
  open_mode_ = mode;
}

void FakeAppFile::OpenApplication(std::string_view path) {
  if (open_mode_ == kOpenExisting) {
    CloseApplication();
    path_ = std::string(path);
    auto found = disk_->find(path_);
    if (found == disk_->end()) return;  // ApplicationExists() stays false
    app_ = found->second.Clone();
    open_ = true;
    position_ = 0;
    current_ = 0;
    return;
  }
  if (open_mode_ != kOpenCreateNew) {
    throw Error::InvalidArgument("OpenApplication without an OpenMode");
  }
  RequireClosed("OpenApplication");
  if (app_.variables.empty()) {
    throw Error::InvalidArgument("a new application without variables");
  }
  path_ = std::string(path);
  app_.records.clear();
  open_ = true;
  creating_ = true;
  position_ = 0;
  current_ = 0;
}

void FakeAppFile::CloseApplication() {
  if (!open_) return;
  if (creating_) (*disk_)[path_] = app_.Clone();
  open_ = false;
  creating_ = false;
  app_ = FakeApplication();
  pending_.reset();
  position_ = 0;
  current_ = 0;
  groups_.clear();
}

std::string FakeAppFile::BasePath() const {
  const size_t dot = path_.find_last_of('.');
  if (dot == std::string::npos || dot < FolderEnd(path_)) return path_;
  return path_.substr(0, dot);
}

std::string FakeAppFile::AppFolder() const {
  const size_t end = FolderEnd(path_);
  if (end == 0) return "./";
  std::string folder = path_.substr(0, end);
  folder.back() = '/';
  return folder;
}

double FakeAppFile::TemplateDateTime() const { return app_.template_date_time; }

double FakeAppFile::DataDateTime() const { return app_.data_date_time; }

Variant FakeAppFile::HeaderItem(std::string_view key) const {
  if (!IsHeaderItemKey(key)) {
    throw Error::InvalidArgument("header item " + std::string(key));
  }
  auto found = app_.header_items.find(UpperKey(key));
  return found == app_.header_items.end() ? Variant() : found->second;
}

void FakeAppFile::SetAppTitle(std::string_view value) {
  RequireClosed("AppTitle");
  app_.app_title = std::string(value);
}

void FakeAppFile::SetLeadingVariableCount(int16_t value) {
  RequireClosed("LeadingVariableCount");
  app_.leading_variable_count = value;
}

void FakeAppFile::SetDefaultLookBack(int16_t value) {
  RequireClosed("DefaultLookBack");
  app_.default_look_back = value;
}

void FakeAppFile::SetSpecialVariable1(int16_t value) {
  RequireClosed("SpecialVariable1");
  app_.special_variables[0] = value;
}

void FakeAppFile::SetSpecialVariable2(int16_t value) {
  RequireClosed("SpecialVariable2");
  app_.special_variables[1] = value;
}

void FakeAppFile::SetSpecialVariable3(int16_t value) {
  RequireClosed("SpecialVariable3");
  app_.special_variables[2] = value;
}

void FakeAppFile::SetFileSetting1(const Variant& value) {
  RequireClosed("FileSetting1");
  app_.file_settings[0] = value;
}

void FakeAppFile::SetFileSetting2(const Variant& value) {
  RequireClosed("FileSetting2");
  app_.file_settings[1] = value;
}

void FakeAppFile::SetFileSetting3(const Variant& value) {
  RequireClosed("FileSetting3");
  app_.file_settings[2] = value;
}

void FakeAppFile::SetShiftHours(double value) {
  RequireClosed("ShiftHours");
  app_.shift_hours = value;
}

void FakeAppFile::SetShiftStartText(std::string_view value) {
  RequireClosed("ShiftStartText");
  app_.shift_start_text = std::string(value);
}

void FakeAppFile::SetHeaderItem(std::string_view key, const Variant& value) {
  RequireClosed("SetHeaderItem");
  if (!IsHeaderItemKey(key)) {
    throw Error::InvalidArgument("header item " + std::string(key));
  }
  app_.header_items[UpperKey(key)] = value;
}

void FakeAppFile::SetSecuredFunctions(std::string_view value) {
  RequireClosed("SecuredFunctions");
  app_.secured_functions = std::string(value);
}

void FakeAppFile::AddRule(const Rule& rule) {
  RequireClosed("AddRule");
  AppendNewRule(app_.rules, rule);
}

VariableList& FakeAppFile::Variables() { return lists_->variables; }
RuleList& FakeAppFile::Rules() { return lists_->rules; }
ViewCatalogue& FakeAppFile::Views() { return lists_->views; }

void FakeAppFile::RefreshViews() {
  RequireOpen("RefreshViews");
  auto found = disk_->find(path_);
  if (found == disk_->end()) return;  // a new application: nothing saved
  app_.views = found->second.views;
  app_.default_view = found->second.default_view;
}

int32_t FakeAppFile::RecordCount() const {
  RequireOpen("RecordCount");
  return static_cast<int32_t>(app_.records.size());
}

void FakeAppFile::MoveFirst() {
  RequireOpen("MoveFirst");
  position_ = 0;
  current_ = 0;
}

bool FakeAppFile::ReadNext() {
  const int32_t count = RecordCount();
  position_ = std::min(position_ + 1, count + 1);
  current_ = position_ <= count ? position_ : 0;
  return current_ != 0;
}

void FakeAppFile::MoveLast() {
  position_ = RecordCount() + 1;
  current_ = 0;
}

bool FakeAppFile::ReadPrevious() {
  RequireOpen("ReadPrevious");
  position_ = std::max(position_ - 1, 0);
  current_ = position_;
  return current_ != 0;
}

void FakeAppFile::GotoRecord(int32_t record) {
  if (record < 1 || record > RecordCount()) {
    throw Error::SubscriptOutOfRange("record " + std::to_string(record));
  }
  position_ = record;
  current_ = record;
}

Variant FakeAppFile::Value(int16_t variable) const {
  RequireOpen("Value");
  if (variable < 0 || static_cast<size_t>(variable) > app_.variables.size()) {
    throw Error::SubscriptOutOfRange("variable " + std::to_string(variable));
  }
  RequireCurrent("Value");
  if (variable == 0) return Variant::Date(RecordDateTime(current_));
  const Variant& value = app_.records[static_cast<size_t>(current_ - 1)]
                                     [static_cast<size_t>(variable - 1)];
  if (value.IsEmpty() || value.IsNull()) return Variant::Null();
  if (IsNumericVariable(variable)) return Variant(value.ToDouble());
  return Variant(value.ToString());
}

std::vector<Variant> FakeAppFile::DistinctValues(int16_t variable) const {
  RequireOpen("DistinctValues");
  if (variable < 1 || static_cast<size_t>(variable) > app_.variables.size()) {
    throw Error::SubscriptOutOfRange("variable " + std::to_string(variable));
  }
  const bool numeric = IsNumericVariable(variable);
  std::vector<Variant> values;
  for (const auto& record : app_.records) {
    const Variant& value = record[static_cast<size_t>(variable - 1)];
    if (IsBlank(value)) continue;
    values.push_back(numeric ? Variant(value.ToDouble())
                             : Variant(Trim(value.ToString())));
  }
  // Stable: among equal values the first spelling met stays first.
  std::stable_sort(values.begin(), values.end(), ValueLess);
  values.erase(std::unique(values.begin(), values.end(), ValueSame),
               values.end());
  return values;
}

ConditionList& FakeAppFile::Conditions() { return lists_->conditions; }

bool FakeAppFile::RecordExcluded() const {
  RequireCurrent("RecordExcluded");
  return excluded_.count(current_) != 0;
}

bool FakeAppFile::RecordIncluded() const {
  RequireCurrent("RecordIncluded");
  return excluded_.count(current_) == 0;
}

void FakeAppFile::FindDateRange(std::string_view begin_text,
                                std::string_view end_text, bool& found) {
  RequireOpen("FindDateRange");
  const std::optional<double> begin = ParseDateTime(begin_text);
  const std::optional<double> end = ParseDateTime(end_text);
  if (!begin) throw Error::TypeMismatch(begin_text);
  if (!end) throw Error::TypeMismatch(end_text);
  range_first_ = 0;
  range_last_ = 0;
  for (int32_t record = 1; record <= RecordCount(); ++record) {
    const double when = RecordDateTime(record);
    if (when < *begin || when > *end) continue;
    if (range_first_ == 0) range_first_ = record;
    range_last_ = record;
  }
  found = range_first_ != 0;
}

SortKeyList& FakeAppFile::SortKeys() { return lists_->sort_keys; }
SummaryKeyList& FakeAppFile::SummaryKeys() { return lists_->summary_keys; }
SummaryCursorList& FakeAppFile::SummaryCursor() { return lists_->cursor; }

void FakeAppFile::SetInterval(std::string_view hh_mm_ss) {
  if (!IsTimeText(hh_mm_ss)) throw Error::TypeMismatch(hh_mm_ss);
  interval_ = std::string(hh_mm_ss);
}

void FakeAppFile::SetShiftStart(std::string_view hh_mm_ss) {
  if (!IsTimeText(hh_mm_ss)) throw Error::TypeMismatch(hh_mm_ss);
  shift_start_ = std::string(hh_mm_ss);
}

void FakeAppFile::SortFile() {
  RequireOpen("SortFile");
  if (summarize_) throw NotSupported("SortFile with Summarize");
  if (sort_keys_.size() > 1) throw NotSupported("SortFile with two keys");
  if (!sort_keys_.empty() && sort_keys_[0][1] != 3) {
    throw Error::InvalidArgument("sort key kind " +
                                 std::to_string(sort_keys_[0][1]));
  }
  groups_.clear();
  if (sort_keys_.empty()) {
    for (int32_t record = 1; record <= RecordCount(); ++record) {
      if (!Passes(record)) continue;
      groups_.push_back({record});
      return;
    }
    return;
  }
  const int16_t variable = sort_keys_[0][0];
  if (variable < 1 || static_cast<size_t>(variable) > app_.variables.size()) {
    throw Error::SubscriptOutOfRange("variable " + std::to_string(variable));
  }
  // (value, first record) in record order, then ordered by value with the
  // no-value group first.
  std::vector<std::pair<Variant, int32_t>> firsts;
  for (int32_t record = 1; record <= RecordCount(); ++record) {
    if (!Passes(record)) continue;
    Variant value = app_.records[static_cast<size_t>(record - 1)]
                                [static_cast<size_t>(variable - 1)];
    if (IsBlank(value)) {
      value = Variant::Null();
    } else if (!value.IsNumber()) {
      value = Variant(Trim(value.ToString()));
    }
    const bool seen =
        std::any_of(firsts.begin(), firsts.end(), [&value](const auto& group) {
          if (group.first.IsNull() || value.IsNull()) {
            return group.first.IsNull() && value.IsNull();
          }
          return ValueSame(group.first, value);
        });
    if (!seen) firsts.emplace_back(value, record);
  }
  std::stable_sort(firsts.begin(), firsts.end(),
                   [](const auto& a, const auto& b) {
                     if (a.first.IsNull() || b.first.IsNull()) {
                       return a.first.IsNull() && !b.first.IsNull();
                     }
                     return ValueLess(a.first, b.first);
                   });
  for (const auto& group : firsts) groups_.push_back({group.second});
}

bool FakeAppFile::EndOfSummary() const { throw NotSupported("EndOfSummary"); }

void FakeAppFile::NextSummary() { throw NotSupported("NextSummary"); }

int32_t FakeAppFile::SummaryPosition() const {
  throw NotSupported("SummaryPosition");
}

int32_t FakeAppFile::SummaryExtent() const {
  throw NotSupported("SummaryExtent");
}

void FakeAppFile::RestrictStatistics(int32_t, int32_t, std::string&, int16_t,
                                     const std::string&, double&) {
  throw NotSupported("RestrictStatistics");
}

ColumnStatisticsList& FakeAppFile::ColumnStatistics() {
  return lists_->statistics;
}

void FakeAppFile::AddRecord() {
  if (!creating_) {
    throw Error::InvalidArgument("AddRecord needs a new application");
  }
  pending_ = std::vector<Variant>(app_.variables.size(), Variant::Null());
}

void FakeAppFile::SetValue(int16_t variable, const Variant& value) {
  if (!pending_) throw Error::InvalidArgument("SetValue before AddRecord");
  if (variable < 1 || static_cast<size_t>(variable) > pending_->size()) {
    throw Error::SubscriptOutOfRange("variable " + std::to_string(variable));
  }
  Variant& cell = (*pending_)[static_cast<size_t>(variable - 1)];
  if (value.IsEmpty() || value.IsNull()) {
    cell = Variant::Null();
  } else if (IsNumericVariable(variable)) {
    if (!value.IsNumber()) throw Error::TypeMismatch(value.ToString());
    cell = Variant(value.ToDouble());
  } else {
    cell = Variant(value.ToString());
  }
}

void FakeAppFile::SaveRecord(int32_t record) {
  if (record != 0) {
    throw Error::InvalidArgument("SaveRecord " + std::to_string(record));
  }
  if (!pending_) throw Error::InvalidArgument("SaveRecord before AddRecord");
  app_.records.push_back(std::move(*pending_));
  pending_.reset();
}

Variant FakeAppFile::Invoke(std::string_view name, InvokeKind kind,
                            DispatchArgs& args) {
  using Table = DispatchTable<FakeAppFile>;
  static const Table table = [] {
    Table t;
    t.Property(
         "AppTitle",
         [](FakeAppFile& f, DispatchArgs&) -> Variant { return f.AppTitle(); })
        .Property("Title",
                  [](FakeAppFile& f, DispatchArgs&) -> Variant {
                    return f.AppTitle();
                  })
        .Property("BasePath",
                  [](FakeAppFile& f, DispatchArgs&) -> Variant {
                    return f.BasePath();
                  })
        .Property("AppFolder",
                  [](FakeAppFile& f, DispatchArgs&) -> Variant {
                    return f.AppFolder();
                  })
        .Property("RecordCount",
                  [](FakeAppFile& f, DispatchArgs&) -> Variant {
                    return f.RecordCount();
                  })
        .Method("MoveFirst",
                [](FakeAppFile& f, DispatchArgs&) {
                  f.MoveFirst();
                  return Variant();
                })
        .Method("ReadNext",
                [](FakeAppFile& f, DispatchArgs&) -> Variant {
                  return f.ReadNext();
                })
        .Method("MoveLast",
                [](FakeAppFile& f, DispatchArgs&) {
                  f.MoveLast();
                  return Variant();
                })
        .Method("ReadPrevious",
                [](FakeAppFile& f, DispatchArgs&) -> Variant {
                  return f.ReadPrevious();
                })
        .Method(
            "GotoRecord",
            [](FakeAppFile& f, DispatchArgs& a) {
              f.GotoRecord(a[0].ToLong());
              return Variant();
            },
            1, 1)
        .Property(
            "Value",
            [](FakeAppFile& f, DispatchArgs& a) -> Variant {
              return f.Value(a[0].ToInteger());
            },
            nullptr, 1);
    return t;
  }();
  return table.Invoke(*this, name, kind, args);
}

std::vector<std::string> FakeAppFile::MemberNames() const {
  return {"AppTitle",     "Title",      "BasePath", "AppFolder",
          "RecordCount",  "MoveFirst",  "ReadNext", "MoveLast",
          "ReadPrevious", "GotoRecord", "Value"};
}

void FakeAppFile::RequireOpen(std::string_view operation) const {
  if (!open_) {
    throw Error::InvalidArgument(std::string(operation) +
                                 ": no application is open");
  }
}

void FakeAppFile::RequireClosed(std::string_view operation) const {
  if (open_) {
    throw Error::InvalidArgument(std::string(operation) +
                                 ": an application is open");
  }
}

void FakeAppFile::RequireCurrent(std::string_view operation) const {
  RequireOpen(operation);
  if (current_ == 0) {
    throw Error::InvalidArgument(std::string(operation) +
                                 ": no record is current");
  }
}

bool FakeAppFile::IsNumericVariable(int16_t variable) const {
  const std::string letter =
      app_.variables[static_cast<size_t>(variable - 1)]->TypeLetter();
  return letter == "N" || letter == "A" || letter == "R" || letter == "C";
}

double FakeAppFile::RecordDateTime(int32_t record) const {
  const auto& values = app_.records[static_cast<size_t>(record - 1)];
  return DateTimeFromRecordText(values[0].ToString(), values[1].ToString());
}

bool FakeAppFile::Passes(int32_t record) const {
  return excluded_.count(record) == 0;
}

}  // namespace rz
