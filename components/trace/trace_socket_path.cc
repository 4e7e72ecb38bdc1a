// Copyright 2026 The Veltmark authors.

#include "trace/trace_socket_path.h"

#include <unistd.h>

#include <cstdlib>

namespace rz {
namespace {

// The variable's value, or empty when it is unset.
std::string Environment(const char* name) {
  const char* value = std::getenv(name);
  return value == nullptr ? std::string() : std::string(value);
}

}  // namespace

std::string DefaultTraceSocketPath() {
  std::string path = Environment("VELTMARK_TRACE_SOCKET");
  if (!path.empty()) return path;
  std::string runtime_dir = Environment("XDG_RUNTIME_DIR");
  if (!runtime_dir.empty()) {
    if (runtime_dir.back() != '/') runtime_dir += '/';
    return runtime_dir + "veltmark-trace.sock";
  }
  return "/tmp/veltmark-trace-" + std::to_string(getuid()) + ".sock";
}

}  // namespace rz
