// Copyright 2026 The Veltmark authors.
//
// Internal to the trace channel: the socket address of a Unix-domain socket
// path. Returns false when the path is empty or too long to be bound.

#ifndef RZ_TRACE_UNIX_ADDRESS_H_
#define RZ_TRACE_UNIX_ADDRESS_H_

#include <sys/socket.h>
#include <sys/un.h>

#include <cstring>
#include <string>

namespace rz {

inline bool MakeUnixAddress(const std::string& path, sockaddr_un& address) {
  std::memset(&address, 0, sizeof address);
  address.sun_family = AF_UNIX;
  // The path needs its terminating NUL inside sun_path.
  if (path.empty() || path.size() >= sizeof address.sun_path) return false;
  std::memcpy(address.sun_path, path.data(), path.size());
  return true;
}

}  // namespace rz

#endif  // RZ_TRACE_UNIX_ADDRESS_H_
