// Copyright 2026 The Veltmark authors.
//
// The engine's traces reach a real rzdebug viewer through the host's
// platform, and the on/off rule holds across a viewer that starts late.

#include <gtest/gtest.h>
#include <stdlib.h>

#include <fstream>
#include <string>
#include <thread>
#include <vector>

#include "common/system_platform.h"
#include "engine/rzselect.h"
#include "platform/headless_toolkit.h"
#include "platform/trace.h"
#include "support/child_process.h"
#include "support/temp_folder.h"
#include "trace/trace_client.h"

#ifndef RZDEBUG_PATH
#error "RZDEBUG_PATH must name the rzdebug executable"
#endif

namespace rz {
namespace {

using std::chrono::milliseconds;

std::vector<std::string> ReadLines(const std::string& path) {
  std::ifstream file(path, std::ios::binary);
  std::vector<std::string> lines;
  for (std::string line; std::getline(file, line);) lines.push_back(line);
  return lines;
}

// The part of a viewer line after its time stamp and tab.
std::string Record(const std::string& line) {
  const size_t tab = line.find('\t');
  return tab == std::string::npos ? line : line.substr(tab + 1);
}

bool WaitForViewer(const std::string& socket, Child& viewer) {
  const auto deadline = std::chrono::steady_clock::now() + milliseconds(5000);
  while (std::chrono::steady_clock::now() < deadline && viewer.Running()) {
    if (TraceClient::Connect(socket) == nullptr) {
      std::this_thread::sleep_for(milliseconds(20));
      continue;
    }
    return true;
  }
  return false;
}

class TraceViewerTest : public ::testing::Test {
 protected:
  void SetUp() override {
    socket_ = folder_.File("trace.sock");
    output_ = folder_.File("trace.log");
    setenv("VELTMARK_TRACE_SOCKET", socket_.c_str(), 1);
  }
  void TearDown() override { unsetenv("VELTMARK_TRACE_SOCKET"); }

  // Creates and drops an engine on a fresh thread (a fresh trace state);
  // `before` runs on that thread first.
  void EngineOnFreshThread(const std::function<void()>& before = {}) {
    std::thread thread([&] {
      if (before) before();
      auto platform = std::make_shared<SystemPlatform>(toolkit_);
      auto engine = RZselect::Create(platform);
    });
    thread.join();
  }

  TempFolder folder_;
  std::string socket_;
  std::string output_;
  HeadlessToolkit toolkit_;
};

TEST_F(TraceViewerTest, CreatingAnEngineDeliversItsStartLine) {
  // The connection test of WaitForViewer counts as nothing: it sends none.
  Child viewer(
      {RZDEBUG_PATH, "--socket", socket_, "--output", output_, "--count", "2"},
      folder_.File("stdout.txt"), folder_.File("stderr.txt"));
  ASSERT_TRUE(viewer.started());
  ASSERT_TRUE(WaitForViewer(socket_, viewer));
  EngineOnFreshThread();
  ASSERT_EQ(viewer.WaitExit(milliseconds(5000)), 0);
  const std::vector<std::string> lines = ReadLines(output_);
  ASSERT_EQ(lines.size(), 2u);
  EXPECT_EQ(Record(lines[0]),
            "rzselect\tRZselectClass\tClass_Initialize\tStarted  V" +
                std::string(RZselect::Version()));
  EXPECT_EQ(Record(lines[1]),
            "rzselect\tRZselectClass\tClass_Initialize\tEnded");
}

TEST_F(TraceViewerTest, NoViewerAtTheFirstTraceMeansNoLaterLook) {
  std::thread thread([&] {
    auto platform = std::make_shared<SystemPlatform>(toolkit_);
    auto first = RZselect::Create(platform);  // nobody listens yet
    EXPECT_EQ(TraceState(), -1);

    Child viewer({RZDEBUG_PATH, "--socket", socket_, "--output", output_,
                  "--count", "1"},
                 folder_.File("stdout.txt"), folder_.File("stderr.txt"));
    ASSERT_TRUE(WaitForViewer(socket_, viewer));
    auto second = RZselect::Create(platform);
    first.reset();
    second.reset();
    // A marker sent after the engine's traces: had the engine looked
    // again, its line would be the one the viewer took before exiting.
    TraceClient::Connect(socket_)->Send("test", "marker", "end", "");
    ASSERT_EQ(viewer.WaitExit(milliseconds(5000)), 0);
    const std::vector<std::string> lines = ReadLines(output_);
    ASSERT_EQ(lines.size(), 1u);
    EXPECT_EQ(Record(lines[0]), "test\tmarker\tend\t");
  });
  thread.join();
}

}  // namespace
}  // namespace rz
