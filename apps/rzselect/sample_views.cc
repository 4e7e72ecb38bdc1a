// Copyright 2026 The Veltmark authors.

#include "rzselect/sample_views.h"

#include <iterator>
#include <string>
#include <utility>

#include "engine/rzselect.h"
#include "platform/app_file.h"
#include "platform/field_definition.h"
#include "view/date_range.h"
#include "view/result_field_types.h"
#include "view/view_state.h"

namespace rz {
namespace {

// The sample's variables (docs/cli.md).
constexpr int16_t kDate = 1;
constexpr int16_t kTime = 2;
constexpr int16_t kLine = 3;
constexpr int16_t kOperator = 4;
constexpr int16_t kFillWeight = 5;
constexpr int16_t kFillLevel = 6;
constexpr int16_t kDiameter = 8;

// SumBy values: the entry of the summarising list.
constexpr int16_t kSumByDay = 5;
constexpr int16_t kSumByShift = 6;

// Statistic codes of a summarised view.
constexpr int16_t kFirstValue = 0;
constexpr int16_t kCount = 2;
constexpr int16_t kCalcUcl = 8;
constexpr int16_t kAverage = 9;
constexpr int16_t kCalcLcl = 10;
constexpr int16_t kCpk = 19;

// Appends a column built as the wizard builds it.
void AddColumn(RZselect& engine, int16_t pivot, int16_t raw, int16_t statistic,
               const std::string& name) {
  AddVariableColumn(*engine.ResultField(),
                    *engine.RZaccess()->Variables().Item(raw), pivot, raw,
                    statistic, name, engine.SumBy() != 0);
}

// The date and time columns every summarised view starts with.
void AddDateAndTime(RZselect& engine) {
  engine.ResultField()->Clear();
  AddColumn(engine, 0, kDate, kFirstValue, "Date");
  AddColumn(engine, 0, kTime, kFirstValue, "Time");
}

void LastRecords(RZselect& engine) {
  engine.SetFilterRangeType(kRangeBackward);
  engine.SetToType(kTypeRecordBound);
  engine.SetBackwardAmount(100);
  engine.SetBackwardUnits(kUnitRecords);
}

void DailyAveragesByLine(RZselect& engine) {
  engine.SetFilterRangeType(kRangeFromTo);  // the whole file
  engine.SetFromType(kTypeRecordBound);
  engine.SetToType(kTypeRecordBound);
  engine.SetSumBy(kSumByDay);
  AddDateAndTime(engine);
  AddColumn(engine, 0, kFillWeight, kAverage, "Fill Weight_[Average]");
  AddColumn(engine, kLine, kFillWeight, kAverage,
            "Line_[*]_Fill Weight_[Average]");
  AddColumn(engine, 0, kFillLevel, kAverage, "Fill Level_[Average]");
  AddColumn(engine, 0, kFillWeight, kCount, "Fill Weight_[Count]");
}

void PreviousWeekByShift(RZselect& engine) {
  engine.SetFilterRangeType(kRangeFromTo);
  engine.SetFromType(kTypePreviousWeek);
  engine.SetToType(kTypePreviousWeek);
  engine.SetSumBy(kSumByShift);
  AddDateAndTime(engine);
  for (const auto& [variable, name] :
       {std::pair{kFillWeight, "Fill Weight"}, {kDiameter, "Diameter"}}) {
    const std::string prefix = std::string(name) + "_[";
    AddColumn(engine, 0, variable, kAverage, prefix + "Average]");
    AddColumn(engine, 0, variable, kCalcUcl, prefix + "CalcUCL]");
    AddColumn(engine, 0, variable, kCalcLcl, prefix + "CalcLCL]");
    AddColumn(engine, 0, variable, kCpk, prefix + "CPK]");
  }
}

void OperatorQuery(RZselect& engine) {
  engine.Where()->Add(0, "", kOperator, "=", "?", "");
}

}  // namespace

void WriteSampleViews(std::shared_ptr<Platform> platform,
                      const std::string& template_path) {
  std::shared_ptr<RZselect> engine = RZselect::Create(std::move(platform));
  engine->SetFilename(template_path);
  engine->Initialize();
  int32_t number = 0;
  for (const char* name : kSampleViewNames) {
    engine->RZaccess()->Views().Add(name, ++number);
  }
  engine->RZaccess()->Views().Save();

  void (*const settings[])(RZselect&) = {LastRecords, DailyAveragesByLine,
                                         PreviousWeekByShift, OperatorQuery};
  for (size_t i = 0; i < std::size(kSampleViewNames); ++i) {
    engine->Initialize();  // back to the default view
    settings[i](*engine);
    engine->SaveView(kSampleViewNames[i]);
  }
  // The default is marked last: Initialize loads the default view, whose
  // file exists only now.
  ViewCatalogue& views = engine->RZaccess()->Views();
  views.SetDefaultView(1);
  views.Save();
  engine->ReleaseObject();
}

}  // namespace rz
