// Copyright 2026 The Veltmark authors.
//
// The engine's diagnostic trace. Trace() hands one record (the running
// component's name, the writer, the procedure, the message) to the trace
// sink the Platform finds, and keeps the per-thread on/off rule: when no
// sink is running at a thread's first trace, that thread never looks for
// one again; once a sink has been found, every later trace looks it up anew
// and a record with no sink to take it is skipped. The sink is released
// after each record. Nothing here throws.
//
// Callers build the message text themselves ("ViewName=" + name, "Started").

#ifndef RZ_PLATFORM_TRACE_H_
#define RZ_PLATFORM_TRACE_H_

#include <cstdint>
#include <string_view>

#include "platform/platform.h"

namespace rz {

// The running component's name, sent as the first field of every record.
inline constexpr std::string_view kTraceComponent = "rzselect";

// The writers the engine uses: the engine object and its working procedures.
inline constexpr std::string_view kWriterClass = "RZselectClass";
inline constexpr std::string_view kWriterModule = "modRZselect";

// Writes one trace record through the platform's sink, keeping the on/off
// rule above.
void Trace(Platform& platform, std::string_view writer,
           std::string_view procedure, std::string_view message) noexcept;

// The calling thread's trace state: 0 before its first trace, -1 when no
// sink was found at the first trace (tracing is off for good on this
// thread), 1 when a sink was found at least once.
int16_t TraceState() noexcept;

}  // namespace rz

#endif  // RZ_PLATFORM_TRACE_H_
