// Copyright 2026 The Veltmark authors.
//
// ExportRepository writes a repository as a new application through a new
// application-file object of the platform (mode 1): the repository's
// fields become the application's variables (fields 1 and 2 the date and
// time, text of length 8; the others with their type, length, decimals,
// limits, attributes and rules), its records the data records (the date
// and time from the date-time of fields 1 and 2; numeric variables take
// numbers, a cell that is not one is stored without a value; text
// variables take the cell as it is). The header is that of a new
// application, with the title of the repository and the file settings of
// the engine's open application. The files appear when the export ends
// (the application-file component puts them in place as a whole).
//
// Progress goes to `progress` ("Saving Veltmark Data - Record N"). Errors
// of the repository and the application file (an unwritable folder, a bad
// value) reach the caller; nothing is rolled back.

#ifndef RZ_OUTPUT_REPOSITORY_EXPORT_H_
#define RZ_OUTPUT_REPOSITORY_EXPORT_H_

#include <string>

namespace rz {

class Repository;
class RunProgress;
struct ViewState;

void ExportRepository(ViewState& state, Repository& source,
                      const std::string& filename, RunProgress& progress);

}  // namespace rz

#endif  // RZ_OUTPUT_REPOSITORY_EXPORT_H_
