// Copyright 2026 The Veltmark authors.
//
// The result column layout of a run (stages 10 and 11): which output
// columns the view's result fields give, in order.
//
// ExcludeEmptyVariables runs one summary over the records the filter
// selects and marks each result field whose variable has no value in any
// of them (a field named "Comments", in any case, is never marked).
// DetermineResultingVariables lays out the columns: a field without a pivot
// gives one column; a pivoted field one column per distinct value of its
// pivot variable among the selected records (one sort pass each), named
// with the value in place of the first "*" ("NULL" for the records without
// a value, a column only when NullPivots is 1). It then decides ReadOnly
// and traces why.
//
// Errors: a result field naming a variable (or pivot variable) the
// application does not have raises error 9 naming the view and the field,
// before any pass; errors of the application file reach the caller.

#ifndef RZ_RUN_RESULT_LAYOUT_H_
#define RZ_RUN_RESULT_LAYOUT_H_

#include <vector>

#include "output/result_column.h"

namespace rz {

struct ViewState;

// One flag per result field (entry i - 1 for field i).
std::vector<bool> ExcludeEmptyVariables(ViewState& state);

ResultLayout DetermineResultingVariables(ViewState& state,
                                         const std::vector<bool>& excluded);

}  // namespace rz

#endif  // RZ_RUN_RESULT_LAYOUT_H_
