// Copyright 2026 The Veltmark authors.
//
// TraceServer is the trace viewer's end of the trace channel: it listens on
// a Unix-domain stream socket, accepts any number of engine connections,
// splits what each sends into lines (a line may arrive in pieces, several
// may arrive at once) and hands each decoded record to a callback, on the
// caller's thread, inside Poll. Records of one connection arrive in the
// order sent; connections are read in the order they were accepted, so a
// sender that connects once per record (as the engine does) keeps its order
// too.
//
// A line that cannot be decoded, a line longer than kMaxLineBytes (cut, the
// rest of it skipped) and a line left unfinished when its sender
// disconnects are each reported to the fault callback with the raw bytes.
//
// Listen replaces a stale socket file left by a dead server but throws
// rz::Error naming the path when another server answers there, when the
// path holds something other than a socket, or when the socket cannot be
// made. The server owns its sockets; the destructor closes them and removes
// the socket file if it is still the one this server made. The callbacks
// must not throw.

#ifndef RZ_TRACE_TRACE_SERVER_H_
#define RZ_TRACE_TRACE_SERVER_H_

#include <sys/types.h>

#include <atomic>
#include <cstddef>
#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "trace/trace_wire.h"

namespace rz {

enum class TraceLineFault {
  kMalformed,   // not four fields, or a bad escape
  kTooLong,     // longer than kMaxLineBytes; the raw text is the cut head
  kIncomplete,  // the sender disconnected before ending the line
};

// A short description of a fault for people: "malformed line" etc.
std::string_view TraceLineFaultText(TraceLineFault fault);

class TraceServer {
 public:
  // The longest line kept, "\n" not counted.
  static constexpr size_t kMaxLineBytes = 64 * 1024;

  using RecordHandler = std::function<void(const TraceRecord& record)>;
  using FaultHandler =
      std::function<void(TraceLineFault fault, std::string_view raw)>;

  // A server listening on `path`; see the contract above for failures.
  static std::unique_ptr<TraceServer> Listen(const std::string& path,
                                             RecordHandler on_record,
                                             FaultHandler on_fault);

  TraceServer(const TraceServer&) = delete;
  TraceServer& operator=(const TraceServer&) = delete;
  ~TraceServer();

  const std::string& Path() const { return path_; }

  // The connections currently open.
  size_t ClientCount() const { return clients_.size(); }

  // One round: waits up to `timeout_ms` (-1: no limit) for activity, then
  // accepts every waiting connection, reads what every connection has sent
  // and hands over each complete line. Returns early when a signal
  // interrupts the wait.
  void Poll(int timeout_ms);

  // Polls until `stop` is true; `stop` is checked at least every
  // `interval_ms` and after each signal.
  void Run(const std::atomic<bool>& stop, int interval_ms = 100);

 private:
  struct Client {
    int fd;
    std::string pending;      // bytes after the last complete line
    bool discarding = false;  // skipping the rest of a cut line
  };

  TraceServer(std::string path, int fd, dev_t device, ino_t inode,
              RecordHandler on_record, FaultHandler on_fault);

  void AcceptWaiting();
  // Reads what `client` has sent; false once it has disconnected.
  bool ReadClient(Client& client);
  void TakeLines(Client& client);
  void Deliver(std::string_view line);

  std::string path_;
  int listen_fd_;
  dev_t device_;
  ino_t inode_;
  RecordHandler on_record_;
  FaultHandler on_fault_;
  std::vector<Client> clients_;
};

}  // namespace rz

#endif  // RZ_TRACE_TRACE_SERVER_H_
