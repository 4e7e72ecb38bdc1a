// Copyright 2026 The Veltmark authors.
//
// Where the trace viewer listens and the engine looks for it: the Unix
// socket named by $VELTMARK_TRACE_SOCKET, else veltmark-trace.sock in
// $XDG_RUNTIME_DIR, else /tmp/veltmark-trace-<uid>.sock. An empty variable
// counts as unset. The environment is read on every call.

#ifndef RZ_TRACE_TRACE_SOCKET_PATH_H_
#define RZ_TRACE_TRACE_SOCKET_PATH_H_

#include <string>

namespace rz {

std::string DefaultTraceSocketPath();

}  // namespace rz

#endif  // RZ_TRACE_TRACE_SOCKET_PATH_H_
