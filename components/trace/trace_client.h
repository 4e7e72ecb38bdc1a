// Copyright 2026 The Veltmark authors.
//
// TraceClient is the engine's end of the trace channel: a connection to a
// running trace viewer (rzdebug) on a Unix-domain stream socket. Connecting
// is how the engine looks for the viewer, so Connect answers at once: null
// when nothing listens on the path (no exception, no message). Send writes
// one wire line (see trace_wire.h) and never throws or raises SIGPIPE; a
// record that cannot be written within a short time is dropped, and after a
// failed or partial write the connection sends nothing more, so the viewer
// never sees two records glued together. The client owns its socket and
// closes it on destruction.

#ifndef RZ_TRACE_TRACE_CLIENT_H_
#define RZ_TRACE_TRACE_CLIENT_H_

#include <memory>
#include <string>
#include <string_view>

#include "platform/trace_sink.h"

namespace rz {

class TraceClient : public TraceSink {
 public:
  // How long a connect to a viewer with a full queue, or a write to a viewer
  // that stopped reading, may wait before the record is dropped.
  static constexpr int kSendTimeoutMs = 500;

  // A client connected to the viewer listening on `socket_path`, or null
  // when none listens there (or the path cannot name a socket).
  static std::unique_ptr<TraceClient> Connect(const std::string& socket_path);

  TraceClient(const TraceClient&) = delete;
  TraceClient& operator=(const TraceClient&) = delete;
  ~TraceClient() override;

  void Send(std::string_view component, std::string_view writer,
            std::string_view procedure,
            std::string_view message) noexcept override;

 private:
  explicit TraceClient(int fd) : fd_(fd) {}

  int fd_;
  bool broken_ = false;
};

}  // namespace rz

#endif  // RZ_TRACE_TRACE_CLIENT_H_
