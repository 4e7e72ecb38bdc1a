// Copyright 2026 The Veltmark authors.
//
// AppFile is the application-file component as the engine sees it: it opens
// a Veltmark application (template, data, view catalogue), reads and
// navigates its records, filters them with a list of conditions, runs the
// sort/summary pass and computes the statistics of each summary record, and
// writes a new application. The engine includes only this header; the
// component (components/appfile) and the test fake (tests/support)
// implement it.
//
// Ownership: the lists returned by reference (Variables(), Rules(),
// Views(), Conditions(), SortKeys(), SummaryKeys(), SummaryCursor(),
// ColumnStatistics()) belong to the AppFile and live as long as it does;
// each call returns the same list object. Variable definitions are shared
// (std::shared_ptr) and keep their identity while the application is open.
//
// Errors are rz::Error. Common rules for every implementation:
//   - an operation that needs an open application, called while none is
//     open, raises error 5 ("no application is open");
//   - a list position outside 1..Count() raises error 5, as every 1-based
//     list of the system does;
//   - a record number outside 1..RecordCount() and a variable number
//     outside the application's variables raise error 9;
//   - a text that must be a date-time or a time ("yyyy-mm-dd hh:mm:ss",
//     "hh:mm:ss") and is not raises error 13;
//   - file problems raise 52/53/70/75/76 naming the path.
// Nothing here is thread-safe; an AppFile is used from the host's thread.
//
// Scripts reach the object as "RZfile": the component's Invoke and
// MemberNames (left pure here) must expose every operation below under its
// name as written (OpenMode, OpenApplication, ApplicationExists, AppTitle
// and its second name Title, BasePath, ..., MoveFirst, ReadNext, Value,
// Variables, Conditions, ...), properties as get/put pairs, names compared
// without regard to case, and the lists as objects with Count and a 1-based
// Item as their default member.

#ifndef RZ_PLATFORM_APP_FILE_H_
#define RZ_PLATFORM_APP_FILE_H_

#include <array>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "core/dispatch.h"
#include "core/variant.h"
#include "platform/field_definition.h"

namespace rz {

// OpenMode values.
inline constexpr int16_t kOpenCreateNew = 1;
inline constexpr int16_t kOpenExisting = 2;

// Header items a new application receives that have no typed accessor are
// set and read by key. "VERSION" is the format version (a Double, 5.0 for
// the current format). "ITEM1".."ITEM18" are the unnamed items in the order
// a new application receives them: ITEM1..ITEM3 texts, ITEM4 a number,
// ITEM5 a text, ITEM6 a 16-bit number, ITEM7..ITEM16 ten further items,
// ITEM17 a text, ITEM18 a number. Their meaning belongs to the component;
// the engine only transfers them. Keys compare without regard to case.
inline constexpr std::string_view kHeaderVersion = "VERSION";
inline constexpr int kHeaderItemCount = 18;

// "ITEM" followed by `position`; error 5 outside 1..kHeaderItemCount.
std::string HeaderItemKey(int position);
// True for "VERSION" and "ITEM1".."ITEM18" in any case ("item7"), false for
// anything else ("ITEM0", "ITEM19", "ITEM07", "").
bool IsHeaderItemKey(std::string_view key);

// The eight attributes of a rule, carried one to one from the application
// into the repository's rule catalogue: six texts, then two numbers, in the
// order the template stores them after the rule's key and name.
struct RuleAttributes {
  std::array<std::string, 6> texts;
  std::array<double, 2> numbers{};
  bool operator==(const RuleAttributes&) const = default;
};

// One rule of an application: a one-letter key, a name and the eight
// attributes.
struct Rule {
  std::string key;
  std::string name;
  RuleAttributes attributes;
  bool operator==(const Rule&) const = default;
};

// Appends `rule` to `rules`. Error 5 when its key is not one character or
// equals (ignoring case) the key of a rule already there; `rules` is then
// unchanged.
void AppendNewRule(std::vector<Rule>& rules, const Rule& rule);

// One entry of the view catalogue: the view's name and its number (unique
// within the application; the view's file is the base path, ".V" and the
// number).
struct ViewEntry {
  std::string name;
  int32_t number = 0;
  bool operator==(const ViewEntry&) const = default;
};

// One filter condition, the six fields in the order the engine hands them
// over: connective (0 none, 1 And, 2 Or), opening bracket ("(" or ""),
// variable (0 = the record's date-time), operator ("=", "<>", ">", "<",
// ">=", "<=", "LIKE"), literal ("NULL" = no value) and closing bracket.
struct Condition {
  int16_t and_or = 0;
  std::string par1;
  int16_t variable = 0;
  std::string condition;
  std::string value;
  std::string par2;
  bool operator==(const Condition&) const = default;
};

// One group built by the last sort/summary pass: `record` is the number of
// its first record, which locates it (GotoRecord(record) makes that record
// current).
struct SummaryGroup {
  int32_t record = 0;
  bool operator==(const SummaryGroup&) const = default;
};

// The statistics of one variable over the current summary record, in the
// order the system lists them. AvgTBE is the average time between events in
// seconds.
enum class StatisticValue : uint8_t {
  Count,
  Tdev,
  Sum,
  SD,
  Maximum,
  CalcUSL,
  CalcUCL,
  Average,
  CalcLCL,
  CalcLSL,
  Minimum,
  CR,
  TZ,
  CPK,
  CV,
  Range,
  OOOLpct,
  OOOLppm,
  COOLpct,
  COOLppm,
  FirstValue,
  LastValue,
  AvgTBE,
};
inline constexpr int kStatisticValueCount = 23;

// The system's name of a statistic ("Count", "AvgTBE") and back, ignoring
// case; nullopt for an unknown name.
std::string_view StatisticValueName(StatisticValue value);
std::optional<StatisticValue> StatisticValueForName(std::string_view name);

// The 23 statistics of one variable. A statistic that cannot be computed
// (missing inputs, a text variable for anything but Count, FirstValue and
// LastValue) is Null, never 0; a new object holds Null everywhere.
struct ColumnStatistic {
  ColumnStatistic() { values.fill(Variant::Null()); }
  const Variant& operator[](StatisticValue value) const {
    return values[static_cast<size_t>(value)];
  }
  Variant& operator[](StatisticValue value) {
    return values[static_cast<size_t>(value)];
  }
  bool operator==(const ColumnStatistic&) const = default;

  std::array<Variant, kStatisticValueCount> values;
};

// The application's variables in order; variable i is Item(i).
class VariableList {
 public:
  virtual ~VariableList() = default;
  virtual int32_t Count() const = 0;
  // The definition of variable `index` (1-based), shared; error 5 outside
  // 1..Count().
  virtual std::shared_ptr<FieldDefinition> Item(int32_t index) const = 0;
  // Appends a variable to the application about to be created and returns
  // its definition with NAME, TYPE (the letter as given), LENGTH, DECIMALS
  // and POSITION (its number) set; the caller sets the other attributes on
  // it. Only before a new application is created (OpenMode 1 and
  // OpenApplication); while an application is open raises error 5.
  virtual std::shared_ptr<FieldDefinition> Add(std::string_view name,
                                               std::string_view type_letter,
                                               int16_t length,
                                               int16_t decimals) = 0;
};

// The application's rules in template order.
class RuleList {
 public:
  virtual ~RuleList() = default;
  virtual int32_t Count() const = 0;
  // Rule `index` (1-based); error 5 outside 1..Count().
  virtual Rule Item(int32_t index) const = 0;
};

// The view catalogue: the saved views in their order and the default view.
// Changes stay in memory until Save(); RefreshViews() on the AppFile throws
// them away and reads the catalogue again.
class ViewCatalogue {
 public:
  virtual ~ViewCatalogue() = default;
  virtual int32_t Count() const = 0;
  // The view at `position` (1-based); error 5 outside 1..Count().
  virtual ViewEntry Item(int32_t position) const = 0;
  // Appends a view. The caller chooses a number not yet used; error 5 when
  // the number is below 1 or already in the catalogue.
  virtual void Add(std::string_view name, int32_t number) = 0;
  // Removes the view at `position`; later views move up. Error 5 outside
  // 1..Count(). The default position is not touched: the caller keeps it in
  // step (the wizard clears or moves it first).
  virtual void Remove(int32_t position) = 0;
  // Exchanges the views at two positions (names and numbers). Error 5 when
  // either is outside 1..Count(). The default position is not touched.
  virtual void Swap(int32_t position_a, int32_t position_b) = 0;
  // The 1-based position of the default view, 0 for none.
  virtual int32_t DefaultView() const = 0;
  // Error 5 outside 0..Count().
  virtual void SetDefaultView(int32_t position) = 0;
  // Writes the catalogue and the default position into the application's
  // template. Raises the file errors when the template cannot be written.
  virtual void Save() = 0;
};

// The filter conditions. They govern SortFile, RecordIncluded and the
// summary statistics until the list changes. They are checked when first
// used: brackets that do not balance raise error 5 ("Filter brackets do not
// balance") from the operation that uses them, not from Add.
class ConditionList {
 public:
  virtual ~ConditionList() = default;
  virtual void Clear() = 0;
  virtual void Add(int16_t and_or, std::string_view par1, int16_t variable,
                   std::string_view condition, std::string_view value,
                   std::string_view par2) = 0;
  virtual int32_t Count() const = 0;
  // Condition `index` (1-based) as it was added; error 5 outside 1..Count().
  virtual Condition Item(int32_t index) const = 0;
};

// The sort keys of the next SortFile. Kind 3 groups by the distinct values
// of the key's variable (ascending: numbers numerically, text without
// regard to case, the no-value group first); other kinds raise error 5 from
// SortFile.
class SortKeyList {
 public:
  virtual ~SortKeyList() = default;
  virtual void Reset() = 0;
  virtual void Add(int16_t variable, int16_t kind) = 0;
  virtual int32_t Count() const = 0;
};

// The summary keys of the next SortFile with Summarize on: -9 .. -1 Year,
// Quarter, Month, Week, Day, Shift, Hour, Minute, Second; 0 the specific
// interval; k > 0 the distinct values of variable k. A key outside these
// raises error 5 from SortFile.
class SummaryKeyList {
 public:
  virtual ~SummaryKeyList() = default;
  virtual void Reset() = 0;
  virtual void Add(int32_t key) = 0;
  virtual int32_t Count() const = 0;
};

// The groups (or summary records) built by the last SortFile, in order.
class SummaryCursorList {
 public:
  virtual ~SummaryCursorList() = default;
  // Forgets the groups of the last pass.
  virtual void Reset() = 0;
  virtual int32_t Count() const = 0;
  // Group `index` (1-based); error 5 outside 1..Count().
  virtual SummaryGroup Item(int32_t index) const = 0;
};

// The statistics of each variable over the current summary record.
class ColumnStatisticsList {
 public:
  virtual ~ColumnStatisticsList() = default;
  // The number of variables.
  virtual int32_t Count() const = 0;
  // The statistics of `variable` (1-based) over the current summary record
  // (restricted by RestrictStatistics when it was called). Error 9 outside
  // the variables; error 5 when no summary record is current.
  virtual ColumnStatistic Item(int16_t variable) const = 0;
};

class AppFile : public Dispatch {
 public:
  // --- Opening and closing ---

  // How the next OpenApplication opens: kOpenExisting (2) or kOpenCreateNew
  // (1). Error 5 for any other value. A new object has mode 0, with which
  // OpenApplication raises error 5.
  virtual int16_t OpenMode() const = 0;
  virtual void SetOpenMode(int16_t mode) = 0;

  // Mode 2: opens the application whose template is `path` (an existing
  // application is closed first). When the files are missing or are not an
  // application nothing is raised: the object stays closed and
  // ApplicationExists() is false.
  // Mode 1: starts a new application at `path` from the header items and
  // variables set on this object, to be filled with AddRecord, SetValue
  // and SaveRecord; the files appear only at CloseApplication, so a failed
  // export leaves nothing half-written. Raises the file errors when the
  // folder cannot be written, error 5 when an application is already open
  // or no variables were added.
  virtual void OpenApplication(std::string_view path) = 0;

  // True while an application is open.
  virtual bool ApplicationExists() const = 0;

  // Why the last OpenApplication in mode 2 left the object closed although
  // a file is at the path, as a user reads it ("no [GENERAL] section", "the
  // file is empty"); "" after an open that succeeded, for a path where no
  // file is, or when the implementation cannot tell.
  virtual std::string NotApplicationCause() const { return ""; }

  // Closes the application. A new application is put in place now (file
  // errors when that fails). Does nothing when none is open.
  virtual void CloseApplication() = 0;

  // --- Header (read from the open application; for a new application the
  // values set below) ---

  virtual std::string AppTitle() const = 0;
  // The template's path without its extension ("/data/line4"): view files
  // are this plus ".V" and the view number.
  virtual std::string BasePath() const = 0;
  // The application's folder, ending with "/".
  virtual std::string AppFolder() const = 0;
  // The path of the data file the records are read from, for messages
  // about the records; "" when the implementation has no such file.
  virtual std::string DataFilePath() const { return ""; }
  // The last change of the template and of the data, as day counts. Both
  // stay the same while the files are unchanged.
  virtual double TemplateDateTime() const = 0;
  virtual double DataDateTime() const = 0;
  // Records counted back from the last for the default range; -1 = all.
  virtual int16_t DefaultLookBack() const = 0;
  // Default shift length in hours (0 = not set) and start ("hh:mm").
  virtual double ShiftHours() const = 0;
  virtual std::string ShiftStartText() const = 0;
  // The names of the secured functions as one text.
  virtual std::string SecuredFunctions() const = 0;
  // The text of the template's HOOKTIMEOUT key in [GENERAL] (the time limit
  // of hooks and the security script in seconds, checked by the engine);
  // "" when the key is absent.
  virtual std::string HookTimeout() const = 0;
  // False when the template may not be written (read-only file or folder).
  virtual bool TemplateWritable() const = 0;
  // The template's two query texts (empty when none).
  virtual std::array<std::string, 2> TemplateQueries() const = 0;
  virtual int16_t LeadingVariableCount() const = 0;
  virtual int16_t SpecialVariable1() const = 0;
  virtual int16_t SpecialVariable2() const = 0;
  virtual int16_t SpecialVariable3() const = 0;
  virtual Variant FileSetting1() const = 0;
  virtual Variant FileSetting2() const = 0;
  virtual Variant FileSetting3() const = 0;
  // The item stored under "VERSION" or "ITEM1".."ITEM18" (Empty when never
  // set); error 5 for any other key.
  virtual Variant HeaderItem(std::string_view key) const = 0;

  // Setters for the header of a new application. They take effect in the
  // application created by the next OpenApplication in mode 1; while an
  // application is open they raise error 5 (an existing template is not
  // rewritten through them).
  virtual void SetAppTitle(std::string_view value) = 0;
  virtual void SetLeadingVariableCount(int16_t value) = 0;
  virtual void SetDefaultLookBack(int16_t value) = 0;
  virtual void SetSpecialVariable1(int16_t value) = 0;
  virtual void SetSpecialVariable2(int16_t value) = 0;
  virtual void SetSpecialVariable3(int16_t value) = 0;
  virtual void SetFileSetting1(const Variant& value) = 0;
  virtual void SetFileSetting2(const Variant& value) = 0;
  virtual void SetFileSetting3(const Variant& value) = 0;
  virtual void SetShiftHours(double value) = 0;
  virtual void SetShiftStartText(std::string_view value) = 0;
  // Error 5 for a key IsHeaderItemKey() refuses.
  virtual void SetHeaderItem(std::string_view key, const Variant& value) = 0;
  // The secured-function text and the rules of the new application. AddRule
  // appends after the rules added before; error 5 (AppendNewRule) for a key
  // that is not one character or is already used.
  virtual void SetSecuredFunctions(std::string_view value) = 0;
  virtual void AddRule(const Rule& rule) = 0;

  // --- Definitions and catalogues ---

  virtual VariableList& Variables() = 0;
  virtual RuleList& Rules() = 0;
  virtual ViewCatalogue& Views() = 0;
  // Reads the view catalogue again from the template (unsaved changes are
  // lost).
  virtual void RefreshViews() = 0;

  // --- Records (numbered 1..RecordCount() in data order) ---

  virtual int32_t RecordCount() const = 0;
  // Positions before the first record; no record is current.
  virtual void MoveFirst() = 0;
  // Makes the next record current and loads its values. Returns false when
  // there is none (the position is then after the last record and no record
  // is current).
  virtual bool ReadNext() = 0;
  // Positions after the last record; no record is current.
  virtual void MoveLast() = 0;
  // Makes the previous record current. Returns false when there is none
  // (the position is then before the first record).
  virtual bool ReadPrevious() = 0;
  // Makes record `record` current; error 9 outside 1..RecordCount().
  virtual void GotoRecord(int32_t record) = 0;
  // A value of the current record: 0 the record's date-time as a Date; 1
  // the date text "yyyy-mm-dd"; 2 the time text "hh:mm:ss"; others a Double
  // for numeric variables (N, A, R, C), a String for the others, Null when
  // the record has no value. Error 9 for an unknown variable, error 5 when
  // no record is current. An application without records is valid: there
  // no record is ever current and every variable gives Null.
  virtual Variant Value(int16_t variable) const = 0;

  // Values a variable takes over all records (the condition list does not
  // apply), one entry per distinct value in ascending order (numbers
  // numerically before texts; texts trimmed and compared without regard to
  // case, the first spelling met is kept). Records without a value add
  // nothing. Error 9 for an unknown variable.
  virtual std::vector<Variant> DistinctValues(int16_t variable) const = 0;

  // True when both applications have the same number of variables and the
  // same type letter (FieldDefinition::TypeLetter) for each variable in
  // order, so views can be copied between them. Works through Variables()
  // of both, so every implementation shares it.
  bool SameStructure(AppFile& other);

  // --- Filter ---

  virtual ConditionList& Conditions() = 0;
  // True when the current record is marked in the data as taken out of
  // analysis; false for every record of an application that keeps no such
  // marks.
  virtual bool RecordExcluded() const = 0;
  // True when the current record satisfies the condition list (every record
  // does when the list is empty).
  virtual bool RecordIncluded() const = 0;
  // Finds the records whose date-time lies in [begin_text, end_text] (both
  // "yyyy-mm-dd hh:mm:ss", bounds included). `found` is false when there is
  // none. Every record in the range lies within RangeFirstRecord() ..
  // RangeLastRecord(); when the data are not in time order records between
  // them may lie outside the range (the conditions still decide).
  virtual void FindDateRange(std::string_view begin_text,
                             std::string_view end_text, bool& found) = 0;
  // The bounds found by the last FindDateRange; 0 when nothing was found.
  virtual int32_t RangeFirstRecord() const = 0;
  virtual int32_t RangeLastRecord() const = 0;

  // --- Sort and summary ---

  virtual SortKeyList& SortKeys() = 0;
  virtual SummaryKeyList& SummaryKeys() = 0;
  virtual SummaryCursorList& SummaryCursor() = 0;
  // Summary mode on (true) or detail mode (false) for the next SortFile.
  virtual void SetSummarize(bool value) = 0;
  // Summary settings. Interval and ShiftStart are "hh:mm:ss" (error 13
  // otherwise); ShiftDuration in hours; PlusMinus 1 or -1 (the day starts
  // ShiftStart after or before midnight); WeekDays the first day of the
  // week (0 = Sunday); YearBegins the first month of the year (1..12).
  virtual void SetInterval(std::string_view hh_mm_ss) = 0;
  virtual void SetNullIntervals(bool value) = 0;
  virtual void SetShiftDuration(double hours) = 0;
  virtual void SetShiftStart(std::string_view hh_mm_ss) = 0;
  virtual void SetPlusMinus(int16_t value) = 0;
  virtual void SetWeekDays(int16_t value) = 0;
  virtual void SetYearBegins(int16_t value) = 0;

  // The sort/summary pass over the records the conditions let through.
  // Detail mode: one group per distinct value of the single sort key, or
  // one group over all those records without a key. Summary mode: one
  // summary record per interval or value of the summary keys, in time (or
  // value) order. Fills SummaryCursor() and positions before the first
  // summary record.
  virtual void SortFile() = 0;
  // True when no summary record follows the current one.
  virtual bool EndOfSummary() const = 0;
  // Makes the next summary record current (the first on the first call);
  // error 5 past the last. Before the first call the statistics cover
  // every record the pass selected.
  virtual void NextSummary() = 0;
  // The current summary record's position (1-based) and a companion number;
  // both are handed back unchanged to RestrictStatistics.
  virtual int32_t SummaryPosition() const = 0;
  virtual int32_t SummaryExtent() const = 0;
  // Recomputes ColumnStatistics() over only those records of the summary
  // record (position, extent) whose `pivot_variable` equals `pivot_value`
  // ("" = the records without a value); pivot_variable 0 restores the
  // unrestricted statistics. `text` and `work` are working values the
  // component may write; the engine passes "" and 0 and ignores them.
  virtual void RestrictStatistics(int32_t position, int32_t extent,
                                  std::string& text, int16_t pivot_variable,
                                  const std::string& pivot_value,
                                  double& work) = 0;
  virtual ColumnStatisticsList& ColumnStatistics() = 0;

  // --- Writing a new application (after OpenApplication in mode 1) ---

  // Begins a new record after the last; every variable holds no value.
  // Error 5 unless a new application is open.
  virtual void AddRecord() = 0;
  // Sets a variable of the record begun by AddRecord: a number or Null for
  // numeric variables (error 13 for text), anything converted to text for
  // the others, Null for no value. Error 9 for variable 0 or an unknown
  // variable, error 5 when no record was begun.
  virtual void SetValue(int16_t variable, const Variant& value) = 0;
  // `record` 0 appends the record begun by AddRecord (the only form the
  // engine uses); any other value, or no record begun, raises error 5.
  virtual void SaveRecord(int32_t record) = 0;
};

}  // namespace rz

#endif  // RZ_PLATFORM_APP_FILE_H_
