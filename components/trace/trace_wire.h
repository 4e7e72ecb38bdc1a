// Copyright 2026 The Veltmark authors.
//
// The trace channel's wire format. One record is one line: its four fields
// (running component, writer, procedure, message) joined by tabs and ended
// by "\n". Inside a field a backslash is written "\\", a tab "\t", a line
// feed "\n" and a carriage return "\r", so a record never spans lines and
// any bytes (UTF-8 or not) travel unchanged. Nothing here throws except
// std::bad_alloc.

#ifndef RZ_TRACE_TRACE_WIRE_H_
#define RZ_TRACE_TRACE_WIRE_H_

#include <optional>
#include <string>
#include <string_view>

namespace rz {

struct TraceRecord {
  std::string component;
  std::string writer;
  std::string procedure;
  std::string message;

  friend bool operator==(const TraceRecord&, const TraceRecord&) = default;
};

// `field` with backslash, tab, line feed and carriage return escaped.
std::string EscapeTraceField(std::string_view field);

// The wire line of one record, "\n" included.
std::string EncodeTraceLine(std::string_view component, std::string_view writer,
                            std::string_view procedure,
                            std::string_view message);

// The record a wire line holds. A single "\n" ending the line is ignored.
// Returns nullopt when the line does not hold exactly four fields, holds
// another raw line feed, or holds an escape other than the four above (a
// backslash at the end included). A raw carriage return is kept as it is.
std::optional<TraceRecord> DecodeTraceLine(std::string_view line);

}  // namespace rz

#endif  // RZ_TRACE_TRACE_WIRE_H_
