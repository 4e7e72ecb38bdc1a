// Copyright 2026 The Veltmark authors.
//
// TraceSink is a running trace viewer that receives the engine's trace
// records. The engine never creates one: it asks the Platform to find a
// running sink (Platform::FindTraceSink), uses it for one record and drops
// it. A sink must never throw; a record it cannot deliver is lost.

#ifndef RZ_PLATFORM_TRACE_SINK_H_
#define RZ_PLATFORM_TRACE_SINK_H_

#include <string_view>

namespace rz {

class TraceSink {
 public:
  virtual ~TraceSink() = default;

  // Delivers one record: the running component's name, the class or module
  // that writes, the procedure and the message. Never throws.
  virtual void Send(std::string_view component, std::string_view writer,
                    std::string_view procedure,
                    std::string_view message) noexcept = 0;
};

}  // namespace rz

#endif  // RZ_PLATFORM_TRACE_SINK_H_
