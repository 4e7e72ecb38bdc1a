// Copyright 2026 The Veltmark authors.
//
// The repository's fields of a run (stage 12): SetupVariables gives
// DataSource one field per result column, in column order, carrying the
// definition of the variable behind the column (the result field's
// RZfield) and its display format, and completes each column's
// DisplayFormat; ReconcileReferences rewrites each calculated variable's
// @POP[...] / @XBAR[...] list from variable numbers to the numbers of the
// columns that show those variables with the same statistic.
//
// Reconciling: a referenced variable shown with another statistic empties
// the list and stops the scan; a referenced variable without a column
// drops the references found before it and the scan goes on (so later
// references are still collected), as the run has always done.
//
// Errors of the repository (an unknown rule letter: error 5) reach the
// caller.

#ifndef RZ_OUTPUT_VARIABLE_SETUP_H_
#define RZ_OUTPUT_VARIABLE_SETUP_H_

#include "output/result_column.h"

namespace rz {

struct ViewState;

void SetupVariables(ViewState& state, ResultLayout& columns);
void ReconcileReferences(ViewState& state, const ResultLayout& columns);

}  // namespace rz

#endif  // RZ_OUTPUT_VARIABLE_SETUP_H_
