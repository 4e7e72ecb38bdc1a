// Copyright 2026 The Veltmark authors.

#include "trace/trace_client.h"

#include <sys/socket.h>
#include <sys/time.h>
#include <sys/un.h>
#include <unistd.h>

#include <cerrno>
#include <string>

#include "trace/trace_wire.h"
#include "trace/unix_address.h"

namespace rz {

std::unique_ptr<TraceClient> TraceClient::Connect(
    const std::string& socket_path) {
  sockaddr_un address;
  if (!MakeUnixAddress(socket_path, address)) return nullptr;
  int fd = socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
  if (fd < 0) return nullptr;
  // A Unix-domain connect fails at once when nothing listens (no file, or a
  // stale file); the timeout bounds only the wait on a viewer whose accept
  // queue is full, and later bounds each write.
  timeval timeout{};
  timeout.tv_sec = kSendTimeoutMs / 1000;
  timeout.tv_usec = (kSendTimeoutMs % 1000) * 1000;
  if (setsockopt(fd, SOL_SOCKET, SO_SNDTIMEO, &timeout, sizeof timeout) != 0 ||
      connect(fd, reinterpret_cast<const sockaddr*>(&address),
              sizeof address) != 0) {
    close(fd);
    return nullptr;
  }
  return std::unique_ptr<TraceClient>(new TraceClient(fd));
}

TraceClient::~TraceClient() { close(fd_); }

void TraceClient::Send(std::string_view component, std::string_view writer,
                       std::string_view procedure,
                       std::string_view message) noexcept {
  if (broken_) return;
  try {
    const std::string line =
        EncodeTraceLine(component, writer, procedure, message);
    size_t sent = 0;
    while (sent < line.size()) {
      // MSG_NOSIGNAL: a viewer that has gone gives EPIPE, not SIGPIPE.
      ssize_t n =
          send(fd_, line.data() + sent, line.size() - sent, MSG_NOSIGNAL);
      if (n < 0 && errno == EINTR) continue;
      if (n <= 0) {
        broken_ = true;
        shutdown(fd_, SHUT_WR);
        return;
      }
      sent += static_cast<size_t>(n);
    }
  } catch (...) {
    // Out of memory while encoding: the record is lost, as any undeliverable
    // record is.
  }
}

}  // namespace rz
