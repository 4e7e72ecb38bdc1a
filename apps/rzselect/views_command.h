// Copyright 2026 The Veltmark authors.
//
// `rzselect views APP.rzt`: the application's view catalogue, one view per
// line in catalogue order, the default marked, each with its range rule
// (kind, From and To types, the amount that applies) and the begin and end
// it resolves to as of now or as of a given moment. Each view is loaded
// through the engine exactly as a host loads it (Initialize, LoadView), so
// what is listed is what a run of the view would cover.
//
// Errors (rz::Error, the caller prints them and exits with 1): 53 when the
// application does not exist or is not one, 13 naming an --as-of text that
// is not "yyyy-mm-dd hh:mm:ss" (or "yyyy-mm-dd", "yyyy-mm-dd hh:mm"), 5
// naming an unknown format or a hook time limit that is not a number of
// seconds (Initialize loads the security script, under that limit), and the
// errors of the application file while it
// is opened. Once the application is open nothing ends the listing: a view
// that cannot be loaded (file missing, empty, binary, a bad line; the
// default view too) is listed with its error (number, and the file, line
// and cause the error names) instead of a range, and two catalogue entries
// with the same name are both listed with error 457 naming the two
// entries and their files; the others are still listed.

#ifndef RZ_APPS_RZSELECT_VIEWS_COMMAND_H_
#define RZ_APPS_RZSELECT_VIEWS_COMMAND_H_

#include <cstdint>
#include <ostream>
#include <string>

#include "core/error.h"
#include "platform/platform.h"

namespace rz {

struct ViewsOptions {
  std::string template_path;
  std::string as_of;             // "yyyy-mm-dd hh:mm:ss"; empty: now
  std::string format = "table";  // "table" or "json"
  std::string hook_timeout;      // seconds; "" = the template's HOOKTIMEOUT
};

void RunViews(Platform& platform, const ViewsOptions& options,
              std::ostream& out);

// An error number as the listing shows it: the engine's own numbers
// (0x80040001) in hexadecimal, the others in decimal.
std::string ErrorNumberText(int32_t number);

// "; file looked for: PATH" for an error that carries the file it is about
// apart from its description (a missing view or application), else "".
// Printed after the error's text.
std::string LookedForText(const Error& error);

}  // namespace rz

#endif  // RZ_APPS_RZSELECT_VIEWS_COMMAND_H_
