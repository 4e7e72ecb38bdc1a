// Copyright 2026 The Veltmark authors.
//
// The trace server and client talking over a real socket in one process.

#include <gtest/gtest.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

#include <cerrno>
#include <chrono>
#include <cstring>
#include <fstream>
#include <functional>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "core/error.h"
#include "support/temp_folder.h"
#include "trace/trace_client.h"
#include "trace/trace_server.h"
#include "trace/trace_wire.h"

namespace rz {
namespace {

using Clock = std::chrono::steady_clock;

struct Fault {
  TraceLineFault fault;
  std::string raw;
};

// A server on a fresh socket path that collects what it receives.
class ServerFixture {
 public:
  ServerFixture() : path_(folder_.File("trace.sock")) { Start(); }

  void Start() {
    server_ = TraceServer::Listen(
        path_, [this](const TraceRecord& r) { records.push_back(r); },
        [this](TraceLineFault f, std::string_view raw) {
          faults.push_back({f, std::string(raw)});
        });
  }

  // Polls until `done` holds or five seconds have passed; returns `done()`.
  bool PumpUntil(const std::function<bool()>& done) {
    const auto deadline = Clock::now() + std::chrono::seconds(5);
    while (!done() && Clock::now() < deadline) server_->Poll(10);
    return done();
  }

  // Polls a few rounds so anything already sent is taken.
  void Drain() {
    for (int i = 0; i < 5; ++i) server_->Poll(5);
  }

  const std::string& path() const { return path_; }
  TraceServer& server() { return *server_; }
  void Stop() { server_.reset(); }
  const TempFolder& folder() const { return folder_; }

  std::vector<TraceRecord> records;
  std::vector<Fault> faults;

 private:
  TempFolder folder_;
  std::string path_;
  std::unique_ptr<TraceServer> server_;
};

// A plain connected socket, to send arbitrary bytes in arbitrary pieces.
class RawClient {
 public:
  explicit RawClient(const std::string& path)
      : fd_(socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0)) {
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    std::strncpy(address.sun_path, path.c_str(), sizeof address.sun_path - 1);
    connected_ = connect(fd_, reinterpret_cast<sockaddr*>(&address),
                         sizeof address) == 0;
  }
  RawClient(const RawClient&) = delete;
  RawClient& operator=(const RawClient&) = delete;
  ~RawClient() { Close(); }

  bool connected() const { return connected_; }

  // Writes all of `bytes`, letting `server` read whenever the socket is full.
  void Write(std::string_view bytes, TraceServer& server) {
    while (!bytes.empty()) {
      ssize_t n =
          send(fd_, bytes.data(), bytes.size(), MSG_DONTWAIT | MSG_NOSIGNAL);
      if (n > 0) {
        bytes.remove_prefix(static_cast<size_t>(n));
      } else if (n < 0 && (errno == EAGAIN || errno == EWOULDBLOCK)) {
        server.Poll(5);
      } else {
        FAIL() << "send failed: " << std::strerror(errno);
      }
    }
  }

  void Close() {
    if (fd_ >= 0) close(fd_);
    fd_ = -1;
  }

 private:
  int fd_;
  bool connected_ = false;
};

bool IsSocket(const std::string& path) {
  struct stat info;
  return lstat(path.c_str(), &info) == 0 && S_ISSOCK(info.st_mode);
}

// Leaves a socket file at `path` that nobody listens on, as a crashed
// viewer does.
void MakeStaleSocket(const std::string& path) {
  int fd = socket(AF_UNIX, SOCK_STREAM, 0);
  sockaddr_un address{};
  address.sun_family = AF_UNIX;
  std::strncpy(address.sun_path, path.c_str(), sizeof address.sun_path - 1);
  ASSERT_EQ(bind(fd, reinterpret_cast<sockaddr*>(&address), sizeof address), 0);
  close(fd);
  ASSERT_TRUE(IsSocket(path));
}

long ElapsedMs(Clock::time_point since) {
  return static_cast<long>(
      std::chrono::duration_cast<std::chrono::milliseconds>(Clock::now() -
                                                            since)
          .count());
}

TEST(TraceChannelTest, RecordsOfSeveralClientsArriveIntactAndInOrder) {
  ServerFixture fixture;
  constexpr int kClients = 3;
  constexpr int kRecords = 20;
  std::vector<std::unique_ptr<TraceClient>> clients;
  for (int c = 0; c < kClients; ++c) {
    clients.push_back(TraceClient::Connect(fixture.path()));
    ASSERT_NE(clients.back(), nullptr);
  }
  // Interleaved sends, with the server reading now and then.
  for (int i = 0; i < kRecords; ++i) {
    for (int c = 0; c < kClients; ++c) {
      clients[c]->Send("client" + std::to_string(c), "RZselectClass",
                       "Proc\t" + std::to_string(i),
                       "n=" + std::to_string(i) + "\r\n\\ü");
    }
    if (i % 7 == 0) fixture.server().Poll(0);
  }
  ASSERT_TRUE(fixture.PumpUntil(
      [&] { return fixture.records.size() == kClients * kRecords; }));
  EXPECT_TRUE(fixture.faults.empty());
  for (int c = 0; c < kClients; ++c) {
    int next = 0;
    for (const TraceRecord& r : fixture.records) {
      if (r.component != "client" + std::to_string(c)) continue;
      EXPECT_EQ(r.writer, "RZselectClass");
      EXPECT_EQ(r.procedure, "Proc\t" + std::to_string(next));
      EXPECT_EQ(r.message, "n=" + std::to_string(next) + "\r\n\\ü");
      ++next;
    }
    EXPECT_EQ(next, kRecords) << "client " << c;
  }
}

TEST(TraceChannelTest, OneConnectionPerRecordKeepsTheSendOrder) {
  // The engine connects anew for every record; the viewer must still show
  // them in the order written, even when it reads them all in one go.
  ServerFixture fixture;
  constexpr int kRecords = 40;
  for (int i = 0; i < kRecords; ++i) {
    auto client = TraceClient::Connect(fixture.path());
    ASSERT_NE(client, nullptr);
    client->Send("rzselect", "modRZselect", "Run", std::to_string(i));
  }
  ASSERT_TRUE(
      fixture.PumpUntil([&] { return fixture.records.size() == kRecords; }));
  for (int i = 0; i < kRecords; ++i) {
    EXPECT_EQ(fixture.records[i].message, std::to_string(i));
  }
  EXPECT_TRUE(fixture.PumpUntil([&] {
    return fixture.server().ClientCount() == 0;
  })) << "closed connections are dropped";
}

TEST(TraceChannelTest, LinesSplitAcrossWritesArriveWhole) {
  ServerFixture fixture;
  RawClient raw(fixture.path());
  ASSERT_TRUE(raw.connected());
  const std::string first = EncodeTraceLine("c", "w", "p", "tab\there");
  const std::string second = EncodeTraceLine("c", "w", "p\\", "two");
  // Cut inside the escape "\t" of the first line, then send the rest of it
  // together with most of the second line.
  const size_t cut = first.find("\\t") + 1;
  raw.Write(first.substr(0, cut), fixture.server());
  fixture.Drain();
  EXPECT_TRUE(fixture.records.empty());
  const std::string rest = first.substr(cut) + second;
  raw.Write(rest.substr(0, rest.size() - 2), fixture.server());
  ASSERT_TRUE(fixture.PumpUntil([&] { return fixture.records.size() == 1; }));
  raw.Write(rest.substr(rest.size() - 2), fixture.server());
  ASSERT_TRUE(fixture.PumpUntil([&] { return fixture.records.size() == 2; }));
  EXPECT_EQ(fixture.records[0], (TraceRecord{"c", "w", "p", "tab\there"}));
  EXPECT_EQ(fixture.records[1], (TraceRecord{"c", "w", "p\\", "two"}));
  EXPECT_TRUE(fixture.faults.empty());
}

TEST(TraceChannelTest, DisconnectMidLineIsReportedAndServerGoesOn) {
  ServerFixture fixture;
  {
    RawClient raw(fixture.path());
    ASSERT_TRUE(raw.connected());
    raw.Write("rzselect\tRZselectClass\tInitia", fixture.server());
  }
  ASSERT_TRUE(fixture.PumpUntil([&] { return fixture.faults.size() == 1; }));
  EXPECT_EQ(fixture.faults[0].fault, TraceLineFault::kIncomplete);
  EXPECT_EQ(fixture.faults[0].raw, "rzselect\tRZselectClass\tInitia");
  EXPECT_TRUE(fixture.records.empty());

  auto client = TraceClient::Connect(fixture.path());
  ASSERT_NE(client, nullptr);
  client->Send("a", "b", "c", "d");
  ASSERT_TRUE(fixture.PumpUntil([&] { return fixture.records.size() == 1; }));
}

TEST(TraceChannelTest, MalformedLinesAreReportedAndTheConnectionGoesOn) {
  ServerFixture fixture;
  RawClient raw(fixture.path());
  ASSERT_TRUE(raw.connected());
  raw.Write("only\tthree\tfields\na\tb\tc\td\\q\n\ngood\tw\tp\tm\n",
            fixture.server());
  ASSERT_TRUE(fixture.PumpUntil([&] { return fixture.records.size() == 1; }));
  EXPECT_EQ(fixture.records[0], (TraceRecord{"good", "w", "p", "m"}));
  ASSERT_EQ(fixture.faults.size(), 3u);
  EXPECT_EQ(fixture.faults[0].raw, "only\tthree\tfields");
  EXPECT_EQ(fixture.faults[1].raw, "a\tb\tc\td\\q");
  EXPECT_EQ(fixture.faults[2].raw, "");
  for (const Fault& f : fixture.faults) {
    EXPECT_EQ(f.fault, TraceLineFault::kMalformed);
  }
}

TEST(TraceChannelTest, LinesUpToTheLimitPassLongerOnesAreCut) {
  constexpr size_t kMax = TraceServer::kMaxLineBytes;
  // Three tabs and the message make up the line.
  const std::string at_limit = "\t\t\t" + std::string(kMax - 3, 'a');
  const std::string over_limit = "\t\t\t" + std::string(kMax - 2, 'b');
  struct Case {
    const char* what;
    std::string bytes;
    size_t piece;  // written in pieces of this size
  } cases[] = {
      {"at the limit, one write", at_limit + "\n", 1 << 20},
      {"at the limit, in pieces", at_limit + "\n", 1000},
      {"one byte over, one write", over_limit + "\n", 1 << 20},
      {"one byte over, in pieces", over_limit + "\n", 1000},
      {"far over, in pieces", "\t\t\t" + std::string(3 * kMax, 'c') + "\n",
       7000},
  };
  for (const Case& row : cases) {
    SCOPED_TRACE(row.what);
    ServerFixture fixture;
    RawClient raw(fixture.path());
    ASSERT_TRUE(raw.connected());
    const std::string bytes = row.bytes + "after\tw\tp\tm\n";
    for (size_t at = 0; at < bytes.size(); at += row.piece) {
      raw.Write(std::string_view(bytes).substr(at, row.piece),
                fixture.server());
    }
    ASSERT_TRUE(fixture.PumpUntil([&] {
      return !fixture.records.empty() &&
             fixture.records.back().component == "after";
    }));
    const bool fits = row.bytes.size() - 1 <= kMax;
    if (fits) {
      ASSERT_EQ(fixture.records.size(), 2u);
      EXPECT_EQ(fixture.records[0].message.size(), kMax - 3);
      EXPECT_TRUE(fixture.faults.empty());
    } else {
      ASSERT_EQ(fixture.records.size(), 1u) << "the cut tail is skipped";
      ASSERT_EQ(fixture.faults.size(), 1u);
      EXPECT_EQ(fixture.faults[0].fault, TraceLineFault::kTooLong);
      EXPECT_EQ(fixture.faults[0].raw, row.bytes.substr(0, kMax));
    }
  }
}

TEST(TraceChannelTest, ConnectWhereNothingListensIsNullAndFast) {
  TempFolder folder;
  const std::string stale = folder.File("stale.sock");
  MakeStaleSocket(stale);
  const std::string regular = folder.File("plain.txt");
  std::ofstream(regular) << "not a socket";
  const std::string paths[] = {
      folder.File("missing.sock"),
      stale,
      regular,
      folder.File("no-such-folder/trace.sock"),
      "",
      "/tmp/" + std::string(200, 'x'),  // longer than a socket address holds
  };
  for (const std::string& path : paths) {
    const auto start = Clock::now();
    EXPECT_EQ(TraceClient::Connect(path), nullptr) << path;
    EXPECT_LT(ElapsedMs(start), 200) << path;
  }
}

TEST(TraceChannelTest, StaleSocketFileIsReplaced) {
  TempFolder folder;
  const std::string path = folder.File("trace.sock");
  MakeStaleSocket(path);
  std::vector<TraceRecord> records;
  auto server = TraceServer::Listen(
      path, [&](const TraceRecord& r) { records.push_back(r); },
      [](TraceLineFault, std::string_view) {});
  auto client = TraceClient::Connect(path);
  ASSERT_NE(client, nullptr);
  client->Send("rzselect", "w", "p", "after restart");
  for (int i = 0; i < 500 && records.empty(); ++i) server->Poll(10);
  ASSERT_EQ(records.size(), 1u);
  EXPECT_EQ(records[0].message, "after restart");
}

TEST(TraceChannelTest, SecondServerOnALivePathIsRefused) {
  ServerFixture fixture;
  try {
    TraceServer::Listen(
        fixture.path(), [](const TraceRecord&) {},
        [](TraceLineFault, std::string_view) {});
    FAIL() << "a second server was allowed";
  } catch (const Error& error) {
    EXPECT_EQ(error.Number(), 70);
    EXPECT_NE(error.Description().find(fixture.path()), std::string::npos)
        << error.Description();
  }
  // The refused attempt left the first server's socket in place.
  auto client = TraceClient::Connect(fixture.path());
  ASSERT_NE(client, nullptr);
  client->Send("still", "there", "", "");
  ASSERT_TRUE(fixture.PumpUntil([&] { return fixture.records.size() == 1; }));
}

TEST(TraceChannelTest, ListenRefusesPathsItMustNotTake) {
  TempFolder folder;
  const std::string regular = folder.File("notes.txt");
  std::ofstream(regular) << "keep me";
  struct Case {
    std::string path;
    int number;
  } cases[] = {
      {regular, 75},
      {folder.File("no-such-folder/trace.sock"), 76},
      {"", 52},
      {"/tmp/" + std::string(200, 'x'), 52},
  };
  for (const Case& row : cases) {
    try {
      TraceServer::Listen(
          row.path, [](const TraceRecord&) {},
          [](TraceLineFault, std::string_view) {});
      ADD_FAILURE() << "listening was allowed on " << row.path;
    } catch (const Error& error) {
      EXPECT_EQ(error.Number(), row.number) << row.path;
      EXPECT_NE(error.Description().find(row.path), std::string::npos)
          << error.Description();
    }
  }
  std::ifstream kept(regular);
  std::string text;
  std::getline(kept, text);
  EXPECT_EQ(text, "keep me") << "a file that is not a socket is left alone";
}

TEST(TraceChannelTest, StoppedServerRemovesItsSocketOnly) {
  ServerFixture fixture;
  ASSERT_TRUE(IsSocket(fixture.path()));
  fixture.Stop();
  EXPECT_FALSE(IsSocket(fixture.path()));
  EXPECT_EQ(TraceClient::Connect(fixture.path()), nullptr);

  // A server whose socket file was replaced by a newer server leaves the
  // newer one alone when it stops.
  fixture.Start();
  ASSERT_EQ(unlink(fixture.path().c_str()), 0);
  auto newer = TraceServer::Listen(
      fixture.path(), [](const TraceRecord&) {},
      [](TraceLineFault, std::string_view) {});
  fixture.Stop();
  EXPECT_TRUE(IsSocket(fixture.path()));
  EXPECT_NE(TraceClient::Connect(fixture.path()), nullptr);
}

TEST(TraceChannelTest, SendingToAGoneViewerNeitherKillsNorHangs) {
  ServerFixture fixture;
  auto client = TraceClient::Connect(fixture.path());
  ASSERT_NE(client, nullptr);
  fixture.Drain();  // accepted, so stopping closes the connection
  fixture.Stop();
  // Without MSG_NOSIGNAL the second send would raise SIGPIPE and end the
  // test program.
  const auto start = Clock::now();
  client->Send("a", "b", "c", "d");
  client->Send("a", "b", "c", "d");
  EXPECT_LT(ElapsedMs(start), 200);
}

TEST(TraceChannelTest, SendingToAViewerThatStoppedReadingGivesUp) {
  ServerFixture fixture;
  auto client = TraceClient::Connect(fixture.path());
  ASSERT_NE(client, nullptr);
  // Far more than the socket buffers hold, and nobody reads.
  const std::string huge(4 << 20, 'h');
  const auto start = Clock::now();
  client->Send("a", "b", "c", huge);
  client->Send("a", "b", "c", "small");  // the connection is given up
  EXPECT_LT(ElapsedMs(start), 4 * TraceClient::kSendTimeoutMs);
  client.reset();
  fixture.PumpUntil([&] { return fixture.server().ClientCount() == 0; });
  fixture.Drain();
  EXPECT_TRUE(fixture.records.empty())
      << "a cut record is never taken for a whole one";
  ASSERT_FALSE(fixture.faults.empty());
  EXPECT_EQ(fixture.faults[0].fault, TraceLineFault::kTooLong);
}

}  // namespace
}  // namespace rz
