// Copyright 2026 The Veltmark authors.
//
// The date-times of an application's first and last record, which the
// default range and the run's "First Record"/"Last Record" bounds use.
// A record's variable 1 is its date text "yyyy-mm-dd" and variable 2 its
// time text "hh:mm:ss" (or "hh:mm"). A bound must be a real moment: a
// missing or unreadable date or time raises error 13 naming the data file
// and the record. Errors of the application file reach the caller.

#ifndef RZ_VIEW_RECORD_BOUNDS_H_
#define RZ_VIEW_RECORD_BOUNDS_H_

namespace rz {

class AppFile;
struct ViewState;

// Sets FirstRecordDateTime and LastRecordDateTime of `state` from the first
// and last record of `file` (both 0 for an application without records)
// and positions `file` before the first record again.
void ReadRecordBounds(ViewState& state, AppFile& file);

}  // namespace rz

#endif  // RZ_VIEW_RECORD_BOUNDS_H_
