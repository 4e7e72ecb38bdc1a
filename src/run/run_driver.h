// Copyright 2026 The Veltmark authors.
//
// ExecuteCurrentView runs the current view once: it reads the
// application's records through the AppFile of the engine state, keeps
// those the view's range and filter select, lays out the result columns,
// summarises and computes statistics, and fills the repository
// (`DataSource`) with fields and records — all of them (store mode) or one
// working record at a time with an event after each (event mode,
// `fire_event`). The run goes through eighteen stages in a fixed order
// with three early exits (the before-open hook answering "SKIPREAD", a
// cancel from the OpenDataSource or the WriteDataSource event) and traces
// each stage (writer "modRZselect", procedure "ExecuteCurrentView").
//
// The run owns no state: it reads and writes fields of ViewState, calls
// hooks through the script host when RunFromRZ is set, raises events to
// the handlers, and shows the progress window through the platform's
// toolkit when DisplayPacifier is set.
//
// Errors: none is caught. An error of the application file, the
// repository, the progress window or the input-file reader ends the run
// where it happens and reaches the caller; stages not reached are skipped
// and Cancel keeps its value, but the progress window is closed all the
// same. Script errors stay inside the script host.
// Single-threaded; not re-entrant (the caller guards against re-entry).

#ifndef RZ_RUN_RUN_DRIVER_H_
#define RZ_RUN_RUN_DRIVER_H_

namespace rz {

class EventHandlerList;
class ScriptHost;
struct ViewState;

// What a run works on: the engine state (with its DataSource set), the
// script host for the hooks and the host's event handlers.
struct RunContext {
  ViewState& state;
  ScriptHost& scripts;
  const EventHandlerList& events;
};

void ExecuteCurrentView(const RunContext& run, bool fire_event);

}  // namespace rz

#endif  // RZ_RUN_RUN_DRIVER_H_
