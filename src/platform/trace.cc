// Copyright 2026 The Veltmark authors.

#include "platform/trace.h"

#include <memory>

#include "platform/trace_sink.h"

namespace rz {
namespace {

constexpr int16_t kTraceUnknown = 0;
constexpr int16_t kTraceOff = -1;
constexpr int16_t kTraceOn = 1;

// One state per thread: the engine is used from one thread, and tests use
// fresh threads to start from a clean state.
thread_local int16_t trace_state = kTraceUnknown;

}  // namespace

void Trace(Platform& platform, std::string_view writer,
           std::string_view procedure, std::string_view message) noexcept {
  if (trace_state == kTraceOff) return;
  // FindTraceSink is noexcept, so a failed lookup shows as a null sink.
  std::unique_ptr<TraceSink> sink = platform.FindTraceSink();
  if (sink == nullptr) {
    if (trace_state == kTraceUnknown) trace_state = kTraceOff;
    return;
  }
  sink->Send(kTraceComponent, writer, procedure, message);
  trace_state = kTraceOn;
  // The sink is released here; the next trace looks it up again.
}

int16_t TraceState() noexcept { return trace_state; }

}  // namespace rz
