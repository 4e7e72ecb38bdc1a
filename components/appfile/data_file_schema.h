// Copyright 2026 The Veltmark authors.
//
// The names shared by the data writer (which creates a data file) and the
// data store (which reads it):
//   records(recno INTEGER PRIMARY KEY, v1 TEXT, v2 TEXT, v3 REAL|TEXT, ...)
//     one row per record in recno order, one column per variable;
//   meta(key TEXT PRIMARY KEY, value)
//     "edit_generation": raised by triggers whenever a record is changed,
//     removed or inserted before the last one, never by an append;
//     "variable_count": the number of variable columns.
// A data file made by hand may lack `meta`; it is still readable.

#ifndef RZ_APPFILE_DATA_FILE_SCHEMA_H_
#define RZ_APPFILE_DATA_FILE_SCHEMA_H_

#include <string>
#include <string_view>

namespace rz::data_file {

inline constexpr std::string_view kRecordsTable = "records";
inline constexpr std::string_view kRecordNumberColumn = "recno";
inline constexpr std::string_view kMetaTable = "meta";
inline constexpr std::string_view kEditGenerationKey = "edit_generation";
inline constexpr std::string_view kVariableCountKey = "variable_count";

// The column of variable `variable` (1-based): "v1", "v2", ...
inline std::string VariableColumn(int variable) {
  return "v" + std::to_string(variable);
}

}  // namespace rz::data_file

#endif  // RZ_APPFILE_DATA_FILE_SCHEMA_H_
