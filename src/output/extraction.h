// Copyright 2026 The Veltmark authors.
//
// ExtractRecords is the extraction stage of a run (stage 15): with the
// filter given to the application file and the repository's fields
// defined, it writes one output record per selected data record (detail
// mode, SumBy 0) or per summary record (summary mode), each cell the
// value its column's statistic code names, through Delivery (store or
// event mode). Fields 1 and 2 of every record hold its date-time.
//
// Detail mode computes every value here: the value formatted with the
// column's display format (a text cut to the field's length), a count, or
// the time since the column's previous event. Summary mode hands the
// view's summary settings to the application file, lets it build the
// summary records (by interval or by a variable's values) and reads each
// column's statistic there, restricted to the column's pivot value.
//
// Progress goes to `progress` (message, total, position, a yield after
// each update); traces "RecordsToProcess=" and "Done Extracting...".
// Returns true when the host cancelled in WriteDataSource (the rest of
// the stage is then skipped). Errors of the application file and the
// repository reach the caller.

#ifndef RZ_OUTPUT_EXTRACTION_H_
#define RZ_OUTPUT_EXTRACTION_H_

#include "output/result_column.h"

namespace rz {

class EventHandlerList;
class RunProgress;
struct ViewState;

bool ExtractRecords(ViewState& state, ResultLayout& columns, bool fire_event,
                    const EventHandlerList& events, RunProgress& progress);

}  // namespace rz

#endif  // RZ_OUTPUT_EXTRACTION_H_
