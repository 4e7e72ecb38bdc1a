// Copyright 2026 The Veltmark authors.

#include "trace/trace_server.h"

#include <poll.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

#include <cerrno>
#include <utility>

#include "core/error.h"
#include "trace/unix_address.h"

namespace rz {
namespace {

// How much one connection may hand over in one round, so that a busy
// sender cannot starve the others.
constexpr size_t kReadBytesPerRound = 256 * 1024;
constexpr size_t kReadChunkBytes = 16 * 1024;

// Closes a descriptor unless released.
class FdGuard {
 public:
  explicit FdGuard(int fd) : fd_(fd) {}
  FdGuard(const FdGuard&) = delete;
  FdGuard& operator=(const FdGuard&) = delete;
  ~FdGuard() {
    if (fd_ >= 0) close(fd_);
  }
  int get() const { return fd_; }
  int release() { return std::exchange(fd_, -1); }

 private:
  int fd_;
};

// The rz::Error for a failed socket call on `path`.
Error SocketError(int error_number, const std::string& path) {
  switch (error_number) {
    case EACCES:
    case EPERM:
    case EROFS:
      return Error::PermissionDenied(path);
    case ENOENT:
    case ENOTDIR:
      return Error::PathNotFound(path);
    default:
      return Error::PathFileAccess(path);
  }
}

// Whether a server answers on the socket at `address`. A full accept queue
// (EAGAIN) also means a live server.
bool ServerAnswers(const sockaddr_un& address) {
  FdGuard probe(socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0));
  if (probe.get() < 0) return false;
  if (connect(probe.get(), reinterpret_cast<const sockaddr*>(&address),
              sizeof address) == 0) {
    return true;
  }
  return errno == EAGAIN || errno == EINPROGRESS;
}

// Removes the socket file at `path` when no server answers on it. Throws
// when a server answers or the path holds something other than a socket.
void RemoveStaleSocket(const std::string& path, const sockaddr_un& address) {
  struct stat info;
  if (lstat(path.c_str(), &info) != 0) {
    if (errno == ENOENT) return;  // gone meanwhile: bind again
    throw SocketError(errno, path);
  }
  if (!S_ISSOCK(info.st_mode)) throw Error::PathFileAccess(path);
  if (ServerAnswers(address)) throw Error::SocketInUse(path);
  if (unlink(path.c_str()) != 0 && errno != ENOENT) {
    throw SocketError(errno, path);
  }
}

bool Bind(int fd, const sockaddr_un& address) {
  return bind(fd, reinterpret_cast<const sockaddr*>(&address),
              sizeof address) == 0;
}

}  // namespace

std::string_view TraceLineFaultText(TraceLineFault fault) {
  switch (fault) {
    case TraceLineFault::kMalformed:
      return "malformed line";
    case TraceLineFault::kTooLong:
      return "line too long, cut";
    case TraceLineFault::kIncomplete:
      return "unfinished line";
  }
  return "bad line";
}

std::unique_ptr<TraceServer> TraceServer::Listen(const std::string& path,
                                                 RecordHandler on_record,
                                                 FaultHandler on_fault) {
  sockaddr_un address;
  if (!MakeUnixAddress(path, address)) throw Error::BadFileName(path);
  FdGuard fd(socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0));
  if (fd.get() < 0) throw SocketError(errno, path);
  if (!Bind(fd.get(), address)) {
    if (errno != EADDRINUSE) throw SocketError(errno, path);
    RemoveStaleSocket(path, address);
    if (!Bind(fd.get(), address)) {
      if (errno == EADDRINUSE) throw Error::SocketInUse(path);
      throw SocketError(errno, path);
    }
  }
  struct stat info;
  if (listen(fd.get(), SOMAXCONN) != 0 || stat(path.c_str(), &info) != 0) {
    int error_number = errno;
    unlink(path.c_str());
    throw SocketError(error_number, path);
  }
  return std::unique_ptr<TraceServer>(
      new TraceServer(path, fd.release(), info.st_dev, info.st_ino,
                      std::move(on_record), std::move(on_fault)));
}

TraceServer::TraceServer(std::string path, int fd, dev_t device, ino_t inode,
                         RecordHandler on_record, FaultHandler on_fault)
    : path_(std::move(path)),
      listen_fd_(fd),
      device_(device),
      inode_(inode),
      on_record_(std::move(on_record)),
      on_fault_(std::move(on_fault)) {}

TraceServer::~TraceServer() {
  for (const Client& client : clients_) close(client.fd);
  close(listen_fd_);
  // Remove the socket file only while it is still ours: a later server may
  // have replaced it.
  struct stat info;
  if (lstat(path_.c_str(), &info) == 0 && info.st_dev == device_ &&
      info.st_ino == inode_) {
    unlink(path_.c_str());
  }
}

void TraceServer::Poll(int timeout_ms) {
  std::vector<pollfd> fds;
  fds.reserve(clients_.size() + 1);
  fds.push_back({listen_fd_, POLLIN, 0});
  for (const Client& client : clients_) fds.push_back({client.fd, POLLIN, 0});
  if (poll(fds.data(), fds.size(), timeout_ms) <= 0) return;
  // Accept first, then read every connection in accept order: a record
  // written by a connection that is already accepted is then always taken
  // before one from a connection that came later.
  AcceptWaiting();
  std::vector<Client> open;
  open.reserve(clients_.size());
  for (Client& client : clients_) {
    if (ReadClient(client)) {
      open.push_back(std::move(client));
    } else {
      close(client.fd);
    }
  }
  clients_ = std::move(open);
}

void TraceServer::Run(const std::atomic<bool>& stop, int interval_ms) {
  while (!stop.load()) Poll(interval_ms);
}

void TraceServer::AcceptWaiting() {
  while (true) {
    int fd =
        accept4(listen_fd_, nullptr, nullptr, SOCK_NONBLOCK | SOCK_CLOEXEC);
    if (fd >= 0) {
      clients_.push_back(Client{fd, std::string(), false});
      continue;
    }
    if (errno == EINTR || errno == ECONNABORTED) continue;
    // EAGAIN: none waiting. Out of descriptors: the rest wait for a round
    // in which some have closed.
    return;
  }
}

bool TraceServer::ReadClient(Client& client) {
  char chunk[kReadChunkBytes];
  size_t taken = 0;
  while (taken < kReadBytesPerRound) {
    ssize_t n = read(client.fd, chunk, sizeof chunk);
    if (n > 0) {
      client.pending.append(chunk, static_cast<size_t>(n));
      taken += static_cast<size_t>(n);
      TakeLines(client);
      continue;
    }
    if (n < 0 && errno == EINTR) continue;
    if (n < 0 && (errno == EAGAIN || errno == EWOULDBLOCK)) return true;
    // End of stream or a reset connection.
    if (!client.pending.empty() && !client.discarding) {
      on_fault_(TraceLineFault::kIncomplete, client.pending);
    }
    return false;
  }
  return true;
}

void TraceServer::TakeLines(Client& client) {
  std::string_view pending = client.pending;
  size_t start = 0;
  for (size_t end = pending.find('\n'); end != std::string_view::npos;
       end = pending.find('\n', start)) {
    if (client.discarding) {
      client.discarding = false;  // the end of a cut line
    } else {
      Deliver(pending.substr(start, end - start));
    }
    start = end + 1;
  }
  if (client.discarding) {
    client.pending.clear();
    return;
  }
  client.pending.erase(0, start);
  if (client.pending.size() > kMaxLineBytes) {
    on_fault_(TraceLineFault::kTooLong,
              std::string_view(client.pending).substr(0, kMaxLineBytes));
    client.pending.clear();
    client.discarding = true;
  }
}

void TraceServer::Deliver(std::string_view line) {
  if (line.size() > kMaxLineBytes) {
    on_fault_(TraceLineFault::kTooLong, line.substr(0, kMaxLineBytes));
    return;
  }
  std::optional<TraceRecord> record = DecodeTraceLine(line);
  if (record) {
    on_record_(*record);
  } else {
    on_fault_(TraceLineFault::kMalformed, line);
  }
}

}  // namespace rz
