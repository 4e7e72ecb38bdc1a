// Copyright 2026 The Veltmark authors.
//
// The default view and the view files' housekeeping:
//   - SetDefaults resets a ViewState to the default view of its
//     application: every variable a raw result column, the whole data file
//     as the record range (or the application's look-back), the options
//     and report settings at their starting values;
//   - FillStatisticsCatalogue mirrors the repository library's statistics
//     catalogue in ReportStatistics;
//   - DeleteView removes a view's file.
// All three trace as component "modRZselect".
//
// SetDefaults needs state.AppFile open; it moves the application's record
// position and leaves record DefaultFirstRecord current. Errors of the
// application file or the repository propagate unchanged; the state then
// holds what was set before the failing step. The first and the last
// record bound the default range, so their date must be a real
// "yyyy-mm-dd" and their time "hh:mm:ss" or "hh:mm": a missing or
// unreadable one is error 13 "<data file>: record <n>: <problem>" (the
// data file as AppFile::DataFilePath gives it, else the base path), raised
// by the first step, before the range, options and lists are reset. An
// application without records is reset completely: FirstRecordDateTime,
// LastRecordDateTime, BegDate and EndDate 0, BegText and EndText empty,
// DefaultFirstRecord 1.
//
// The lists keep their identity: SetDefaults empties and refills the
// ResultField, WorkFields, Where and ReportStatistics objects the state
// holds (creating them only when missing).

#ifndef RZ_VIEW_VIEW_DEFAULTS_H_
#define RZ_VIEW_VIEW_DEFAULTS_H_

#include <string_view>

namespace rz {

struct ViewState;

void SetDefaults(ViewState& state);

// Replaces the entries of state.ReportStatistics (created when missing)
// with the catalogue of a fresh repository object, in catalogue order.
void FillStatisticsCatalogue(ViewState& state);

// Deletes the file at `path` when it exists, tracing the path; does
// nothing (and traces nothing) otherwise. A failed deletion is ignored.
void DeleteView(ViewState& state, std::string_view path);

}  // namespace rz

#endif  // RZ_VIEW_VIEW_DEFAULTS_H_
