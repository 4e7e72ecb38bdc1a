// Copyright 2026 The Veltmark authors.
//
// The saved views of the example application line4, written through the
// engine (Initialize, then the view's settings, then SaveView) so that
// they are exactly what a user's saved views look like:
//   1. "Last 100 records" (the default view): every variable, record by
//      record, for the last 100 records;
//   2. "Daily averages by line": summarised by day, the fill weight's
//      average overall and one column per line, the fill level's average
//      and the number of fill weights;
//   3. "Previous week by shift": the previous week summarised by shift,
//      with average, calculated control limits and Cpk of fill weight and
//      diameter;
//   4. "Operator query": record by record, for an operator the user is
//      asked for when the view runs ("?").
// The views are added to the application's catalogue (numbers 1 to 4, the
// first the default) and written as line4.V1 .. line4.V4 beside it.
//
// Errors of the engine and the application file propagate (rz::Error);
// each view file is written atomically, so a failure leaves at most the
// views written before it.

#ifndef RZ_APPS_RZSELECT_SAMPLE_VIEWS_H_
#define RZ_APPS_RZSELECT_SAMPLE_VIEWS_H_

#include <memory>
#include <string>

#include "platform/platform.h"

namespace rz {

// The sample's view names, in catalogue order.
inline constexpr const char* kSampleViewNames[] = {
    "Last 100 records", "Daily averages by line", "Previous week by shift",
    "Operator query"};

// Adds the four views to the application at `template_path` (which must
// hold the sample's variables) and writes their files.
void WriteSampleViews(std::shared_ptr<Platform> platform,
                      const std::string& template_path);

}  // namespace rz

#endif  // RZ_APPS_RZSELECT_SAMPLE_VIEWS_H_
