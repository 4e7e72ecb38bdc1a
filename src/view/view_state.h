// Copyright 2026 The Veltmark authors.
//
// ViewState is the engine state record: the current view (record range,
// options, report settings, the three lists), the objects the engine works
// with (the application file, the host's repository) and what the run
// remembers between calls. Every part of the engine reads and writes it;
// nothing else holds view state. Each RZselect owns one ViewState, so two
// engine objects never share state.
//
// Fields carry the system's own names and start at the values a new engine
// object has. The lists are created with the record and keep their
// identity: resets empty them, they are replaced only when a host assigns
// another list object.
//
// `platform` is not part of the system's record: it is how every part
// reaches the trace sink, the toolkit, the clock and the component
// factory.

#ifndef RZ_VIEW_VIEW_STATE_H_
#define RZ_VIEW_VIEW_STATE_H_

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "view/result_field_types.h"
#include "view/stat_types.h"
#include "view/where_types.h"

namespace rz {

class AppFile;
class Dispatch;
class Platform;
class Repository;

// The host screen to show after a view.
enum rzScreenTypes : int32_t {
  scrDefault = -1,
  scrLogSheet = 0,
  scrPrioritize = 1,
  scrControl = 2,
  scrRelate = 3,
  scrCompare = 4,
  scrReport = 5,
  scrAdd = 6,
  scrSummary = 7,
  scrKesmor = 8,
};

// The wizard's tabs.
enum rzSelectTabs : int32_t {
  SelectTabViews = 0,
  SelectTabVariables = 1,
  SelectTabFilter = 2,
  SelectTabOptions = 3,
  SelectTabReport = 4,
  SelectTabSave = 5,
};

// Range kinds of FilterRangeType.
inline constexpr int32_t kRangeBackward = -1;
inline constexpr int32_t kRangeFromTo = 0;
inline constexpr int32_t kRangeForward = 1;

struct ViewState {
  std::shared_ptr<Platform> platform;

  std::shared_ptr<rz::AppFile> AppFile;
  std::weak_ptr<Dispatch> SelfRef;  // weak: the host's release ends the engine
  std::shared_ptr<Repository> DataSource;
  std::string Filename;
  std::string CurrentViewName;
  bool Cancel = false;
  bool ReadOnly = false;
  bool RunFromRZ = false;
  bool DisplayPacifier = true;
  std::string UserIdentification;
  std::string RunCaption = "Run";
  std::string RunTooltip = "Execute the current View";
  int32_t GotoTab = 0;

  std::shared_ptr<WhereTypes> Where;
  std::shared_ptr<ResultFieldTypes> ResultField;
  std::shared_ptr<StatTypes> ReportStatistics;
  std::shared_ptr<ResultFieldTypes> WorkFields;
  std::shared_ptr<WhereTypes> WorkWhere;

  int32_t FilterRangeType = 0;
  int32_t FromType = 0;
  int32_t ToType = 0;
  double FromDateTime = 0;
  double ToDateTime = 0;
  int32_t ForwardAmount = 0;
  int32_t ForwardUnits = 0;
  int32_t BackwardAmount = 0;
  int32_t BackwardUnits = 0;
  double BegDate = 0;
  double EndDate = 0;
  std::string BegText;
  std::string EndText;
  double FirstRecordDateTime = 0;
  double LastRecordDateTime = 0;
  double DefaultsTime = 0;
  int32_t FileRecordCount = 0;
  int32_t DefaultFirstRecord = 0;

  int16_t SumBy = 0;
  double Interval = 0;  // days
  int16_t NullIntervals = 0;
  int16_t NullPivots = 0;
  int16_t ExcludeEmpty = 0;
  double ShiftDuration = 0;  // hours
  double ShiftStart = 0;     // days
  int16_t PlusMinus = 0;
  int16_t WeekDays = 0;
  int16_t YearBegins = 0;
  int32_t ReturnScreen = 0;

  int32_t ReportType = 0;
  std::string ReportHeader;
  std::string ReportFooter;
  int16_t ReportNumericOnly = 0;
  int16_t ReportIncludeDetails = 0;
  int16_t ReportIncludeColumns = 0;
  int16_t ReportIncludeStatistics = 0;
  int16_t ReportIncludeFilter = 0;

  double LastRZTdateTime = 0;
  double LastRZDdateTime = 0;

  // Run-time parameter values, one per filter condition; entry i holds
  // the value of condition i + 1.
  std::vector<std::string> PromptValues;
};

// A new record with empty lists, as a new engine object has it. New result
// columns in its two column lists take their RULES from the rule count of
// the record's application.
std::shared_ptr<ViewState> NewViewState(std::shared_ptr<Platform> platform);

// Sets BegDate and EndDate from FromDateTime and ToDateTime, and BegText
// and EndText to the same two dates as "yyyy-mm-dd hh:mm:ss".
void SetRangeText(ViewState& state);

// The number of rules of the state's application (0 without one).
int ApplicationRuleCount(const ViewState& state);

// The current view's name as messages name it: "(default settings)" while
// no saved view is loaded.
std::string ViewNameForMessages(const ViewState& state);

}  // namespace rz

#endif  // RZ_VIEW_VIEW_STATE_H_
