// Copyright 2026 The Veltmark authors.
//
// The line rules of the system's INI files (view files, application
// templates): how one line is read into a key and a value, and how a key
// line is written. Both are pure functions; neither throws (beyond
// std::bad_alloc).
//
// Reading (ParseIniLine): every tab, carriage return and line feed becomes a
// space and the line is trimmed. An empty line gives an empty key and value.
// A line starting with "[" is a section header: the key is the whole line
// upper-cased, brackets included, the value empty. Any other line without
// "=" gives an empty key and value (comments, stray text). Otherwise the key
// is the text before the first "=", right-trimmed and upper-cased, and the
// value is the text after it, trimmed; later "=" belong to the value.
//
// Writing (FormatIniKeyLine): `leading_spaces` spaces, the key, spaces up to
// a width of equal_pos - 1 characters, then "= " and the value, or "=" alone
// when the value is empty. A key too long for the width is not cut: the "="
// follows it directly. Widths count characters (code points), not bytes, so
// the layout is the same once the text is written as Windows-1252.

#ifndef RZ_CORE_INI_LINE_H_
#define RZ_CORE_INI_LINE_H_

#include <string>
#include <string_view>

namespace rz {

struct IniLine {
  std::string key;    // upper case; "[NAME]" for a header; "" for no data
  std::string value;  // trimmed
  bool operator==(const IniLine&) const = default;
};

// True when the parsed line is a section header ("[GENERAL]").
inline bool IsIniHeader(const IniLine& line) {
  return !line.key.empty() && line.key.front() == '[';
}

IniLine ParseIniLine(std::string_view line);

// The key line for `key` and `value`, written as given (no trimming or
// upper-casing here), without a line end.
std::string FormatIniKeyLine(std::string_view key, std::string_view value,
                             int leading_spaces = 3, int equal_pos = 17);

}  // namespace rz

#endif  // RZ_CORE_INI_LINE_H_
