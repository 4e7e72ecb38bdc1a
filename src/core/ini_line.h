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
//
// Line ends (SplitIniLines): files are written with CR LF, but files edited
// on systems that end lines with LF alone must read the same, so a line ends
// at every LF, with or without a CR before it. Text after the last line end
// is not a line (a last line without its line end is lost, as it always
// was). A lone CR inside a line stays in it (the line rule reads it as a
// space).

#ifndef RZ_CORE_INI_LINE_H_
#define RZ_CORE_INI_LINE_H_

#include <string>
#include <string_view>
#include <vector>

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

// The lines of `text` without their line ends (see above). The views point
// into `text`.
std::vector<std::string_view> SplitIniLines(std::string_view text);

// The key line for `key` and `value`, written as given (no trimming or
// upper-casing here), without a line end.
std::string FormatIniKeyLine(std::string_view key, std::string_view value,
                             int leading_spaces = 3, int equal_pos = 17);

}  // namespace rz

#endif  // RZ_CORE_INI_LINE_H_
