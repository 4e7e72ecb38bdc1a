// Copyright 2026 The Veltmark authors.
//
// ResultColumn is one output column of a run: which result field of the
// view produced it, the variable whose values fill it, the pivot variable
// and value it is restricted to, its statistic code, its name in the
// repository, its display format and the time-between-events state of
// detail mode. The run builds the layout (one entry per column, in output
// order) before any record is read and the output stages read and update
// it; it lives for one run.

#ifndef RZ_OUTPUT_RESULT_COLUMN_H_
#define RZ_OUTPUT_RESULT_COLUMN_H_

#include <cstdint>
#include <string>
#include <vector>

namespace rz {

struct ResultColumn {
  int16_t FieldIndex = 0;      // the view's result field (1 date, 2 time)
  int16_t PivotVariable = 0;   // 0: not pivoted
  int16_t SourceVariable = 0;  // the application variable shown
  int16_t Statistic = 0;       // statistic code (detail or summary list)
  std::string ColumnName;
  std::string PivotValue;     // "" when not pivoted or for the NULL value
  std::string DisplayFormat;  // set by the variable setup
  double LastEventTime = 0;   // detail mode: 0 = no event seen yet

  bool operator==(const ResultColumn&) const = default;
};

using ResultLayout = std::vector<ResultColumn>;

}  // namespace rz

#endif  // RZ_OUTPUT_RESULT_COLUMN_H_
