// Copyright 2026 The Veltmark authors.
//
// Runs the real rzdebug viewer as a child process and talks to it through
// TraceClient, as the engine does.

#include <fcntl.h>
#include <gtest/gtest.h>
#include <signal.h>
#include <spawn.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <time.h>
#include <unistd.h>

#include <chrono>
#include <cstdlib>
#include <fstream>
#include <memory>
#include <optional>
#include <sstream>
#include <string>
#include <string_view>
#include <thread>
#include <vector>

#include "support/child_process.h"
#include "support/temp_folder.h"
#include "trace/trace_client.h"

#ifndef RZDEBUG_PATH
#error "RZDEBUG_PATH must name the rzdebug executable"
#endif

namespace rz {
namespace {

using Clock = std::chrono::steady_clock;
using std::chrono::milliseconds;

// Connects to the viewer at `path`, retrying while it starts (at most five
// seconds).
std::unique_ptr<TraceClient> ConnectWhenUp(const std::string& path,
                                           Child& viewer) {
  const auto deadline = Clock::now() + std::chrono::seconds(5);
  while (Clock::now() < deadline && viewer.Running()) {
    if (auto client = TraceClient::Connect(path)) return client;
    std::this_thread::sleep_for(milliseconds(20));
  }
  return nullptr;
}

std::vector<std::string> ReadLines(const std::string& path) {
  std::ifstream file(path, std::ios::binary);
  std::vector<std::string> lines;
  for (std::string line; std::getline(file, line);) lines.push_back(line);
  return lines;
}

std::string ReadAll(const std::string& path) {
  std::ifstream file(path, std::ios::binary);
  std::ostringstream text;
  text << file.rdbuf();
  return text.str();
}

bool Exists(const std::string& path) {
  struct stat info;
  return lstat(path.c_str(), &info) == 0;
}

// A time stamp and the tab after it: d stands for a digit.
constexpr std::string_view kTimeStampShape = "dddd-dd-dd dd:dd:dd.ddd\t";

bool StartsWithTimeStamp(const std::string& line) {
  if (line.size() < kTimeStampShape.size()) return false;
  for (size_t i = 0; i < kTimeStampShape.size(); ++i) {
    const bool digit = line[i] >= '0' && line[i] <= '9';
    if (kTimeStampShape[i] == 'd' ? !digit : line[i] != kTimeStampShape[i]) {
      return false;
    }
  }
  return true;
}

// Seconds between the local time stamp at the start of `line`
// ("yyyy-mm-dd hh:mm:ss.mmm") and now.
double SecondsFromNow(const std::string& line) {
  tm stamp{};
  if (strptime(line.c_str(), "%Y-%m-%d %H:%M:%S", &stamp) == nullptr) {
    return 1e9;
  }
  stamp.tm_isdst = -1;
  return std::difftime(std::time(nullptr), std::mktime(&stamp));
}

TEST(RzdebugTest, PrintsEachRecordWithItsArrivalTime) {
  TempFolder folder;
  const std::string socket = folder.File("trace.sock");
  const std::string output = folder.File("trace.log");
  std::ofstream(output) << "kept from before\n";
  Child viewer(
      {RZDEBUG_PATH, "--socket", socket, "--output", output, "--count", "2"},
      folder.File("stdout.txt"), folder.File("stderr.txt"));
  ASSERT_TRUE(viewer.started());

  auto first = ConnectWhenUp(socket, viewer);
  ASSERT_NE(first, nullptr) << ReadAll(folder.File("stderr.txt"));
  first->Send("rzselect", "RZselectClass", "LoadView",
              "ViewName=Daily\tshift\nB");
  first.reset();
  auto second = TraceClient::Connect(socket);
  ASSERT_NE(second, nullptr);
  second->Send("rzselect", "modRZselect", "Größe", "");

  ASSERT_EQ(viewer.WaitExit(milliseconds(5000)), 0)
      << ReadAll(folder.File("stderr.txt"));
  EXPECT_FALSE(Exists(socket)) << "the viewer removes its socket";

  const std::vector<std::string> expected_rest = {
      "rzselect\tRZselectClass\tLoadView\tViewName=Daily\\tshift\\nB",
      "rzselect\tmodRZselect\tGröße\t",
  };
  const std::vector<std::string> lines = ReadLines(output);
  ASSERT_EQ(lines.size(), 3u) << ReadAll(output);
  EXPECT_EQ(lines[0], "kept from before") << "--output appends";
  for (size_t i = 0; i < expected_rest.size(); ++i) {
    const std::string& line = lines[i + 1];
    ASSERT_TRUE(StartsWithTimeStamp(line)) << line;
    EXPECT_EQ(line.substr(kTimeStampShape.size()), expected_rest[i]);
    EXPECT_LT(std::abs(SecondsFromNow(line)), 60.0) << line;
  }
  EXPECT_EQ(ReadLines(folder.File("stdout.txt")),
            std::vector<std::string>(lines.begin() + 1, lines.end()));
}

TEST(RzdebugTest, SecondViewerOnTheSameSocketIsRefused) {
  TempFolder folder;
  const std::string socket = folder.File("trace.sock");
  Child first({RZDEBUG_PATH, "--socket", socket}, folder.File("out1.txt"),
              folder.File("err1.txt"));
  ASSERT_NE(ConnectWhenUp(socket, first), nullptr)
      << ReadAll(folder.File("err1.txt"));

  Child second({RZDEBUG_PATH, "--socket", socket}, folder.File("out2.txt"),
               folder.File("err2.txt"));
  EXPECT_EQ(second.WaitExit(milliseconds(5000)), 1);
  const std::string message = ReadAll(folder.File("err2.txt"));
  EXPECT_NE(message.find("already listening"), std::string::npos) << message;
  EXPECT_NE(message.find(socket), std::string::npos) << message;

  // The first viewer still listens, and SIGTERM ends it cleanly.
  ASSERT_TRUE(first.Running());
  EXPECT_NE(TraceClient::Connect(socket), nullptr);
  first.Signal(SIGTERM);
  EXPECT_EQ(first.WaitExit(milliseconds(5000)), 0);
  EXPECT_FALSE(Exists(socket));
}

TEST(RzdebugTest, InterruptEndsTheViewerCleanly) {
  TempFolder folder;
  const std::string socket = folder.File("trace.sock");
  Child viewer({RZDEBUG_PATH, "--socket", socket}, folder.File("out.txt"),
               folder.File("err.txt"));
  ASSERT_NE(ConnectWhenUp(socket, viewer), nullptr);
  viewer.Signal(SIGINT);
  EXPECT_EQ(viewer.WaitExit(milliseconds(5000)), 0);
  EXPECT_FALSE(Exists(socket));
}

TEST(RzdebugTest, RefusesWhatItCannotDo) {
  TempFolder folder;
  const std::string socket = folder.File("trace.sock");
  const std::string missing = folder.File("missing/x");
  struct Case {
    std::vector<std::string> args;
    int status;
  } cases[] = {
      {{"--socket", socket, "--count", "0"}, 2},
      {{"--socket", socket, "--count", "-3"}, 2},
      {{"--socket", socket, "--count", "two"}, 2},
      {{"--socket", socket, "--colour"}, 2},
      {{"--socket", missing}, 1},
      {{"--socket", socket, "--output", missing}, 1},
  };
  for (const Case& row : cases) {
    std::vector<std::string> args = {RZDEBUG_PATH};
    args.insert(args.end(), row.args.begin(), row.args.end());
    Child viewer(args, folder.File("out.txt"), folder.File("err.txt"));
    EXPECT_EQ(viewer.WaitExit(milliseconds(5000)), row.status)
        << row.args.back();
    EXPECT_FALSE(ReadAll(folder.File("err.txt")).empty()) << row.args.back();
    EXPECT_FALSE(Exists(socket)) << row.args.back();
  }
}

TEST(RzdebugTest, VersionNamesTheProjectVersion) {
  TempFolder folder;
  Child viewer({RZDEBUG_PATH, "--version"}, folder.File("out.txt"),
               folder.File("err.txt"));
  EXPECT_EQ(viewer.WaitExit(milliseconds(5000)), 0);
  EXPECT_EQ(ReadAll(folder.File("out.txt")), "rzdebug " RZ_VERSION "\n");
}

}  // namespace
}  // namespace rz
