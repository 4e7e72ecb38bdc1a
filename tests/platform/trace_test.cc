// Copyright 2026 The Veltmark authors.

#include "platform/trace.h"

#include <gtest/gtest.h>

#include <array>
#include <functional>
#include <memory>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

#include "platform/trace_sink.h"
#include "support/fresh_thread.h"

namespace rz {
namespace {

using Sent = std::array<std::string, 4>;

// A Platform whose only working member is FindTraceSink: it hands out a sink
// while `sink_running` is true, counts the lookups, collects what the sinks
// receive and counts the sinks still alive.
class TraceOnlyPlatform : public Platform {
 public:
  bool sink_running = false;
  int lookups = 0;
  int live_sinks = 0;
  std::vector<Sent> sent;

  std::unique_ptr<TraceSink> FindTraceSink() noexcept override {
    ++lookups;
    if (!sink_running) return nullptr;
    return std::make_unique<RecordingSink>(*this);
  }

  std::shared_ptr<AppFile> CreateAppFile() override { throw Unused(); }
  std::shared_ptr<Repository> CreateRepository() override { throw Unused(); }
  std::shared_ptr<InputFileReader> CreateInputFileReader() override {
    throw Unused();
  }
  std::unique_ptr<ScriptEngine> CreateScriptEngine() override {
    throw Unused();
  }
  Toolkit& UserInterface() override { throw Unused(); }
  double Now() override { throw Unused(); }

 private:
  class RecordingSink : public TraceSink {
   public:
    explicit RecordingSink(TraceOnlyPlatform& platform) : platform_(platform) {
      ++platform_.live_sinks;
    }
    ~RecordingSink() override { --platform_.live_sinks; }
    void Send(std::string_view component, std::string_view writer,
              std::string_view procedure,
              std::string_view message) noexcept override {
      platform_.sent.push_back({std::string(component), std::string(writer),
                                std::string(procedure), std::string(message)});
    }

   private:
    TraceOnlyPlatform& platform_;
  };

  static std::logic_error Unused() {
    return std::logic_error("the trace never asks for this");
  }
};

TEST(TraceTest, NoSinkAtFirstTraceTurnsTracingOffForGood) {
  InFreshThread([] {
    TraceOnlyPlatform platform;
    EXPECT_EQ(TraceState(), 0);
    Trace(platform, kWriterClass, "Initialize", "Started");
    EXPECT_EQ(TraceState(), -1);
    EXPECT_EQ(platform.lookups, 1);

    platform.sink_running = true;  // a viewer starts later
    for (int i = 0; i < 5; ++i) {
      Trace(platform, kWriterModule, "ExecuteCurrentView", "Started");
    }
    EXPECT_EQ(platform.lookups, 1);
    EXPECT_TRUE(platform.sent.empty());
    EXPECT_EQ(TraceState(), -1);
  });
}

TEST(TraceTest, SinkAtFirstTraceIsLookedUpForEveryRecord) {
  InFreshThread([] {
    TraceOnlyPlatform platform;
    platform.sink_running = true;
    Trace(platform, kWriterClass, "LoadView", "ViewName=Daily\tshift");
    EXPECT_EQ(TraceState(), 1);
    ASSERT_EQ(platform.sent.size(), 1u);
    EXPECT_EQ(platform.sent[0], (Sent{"rzselect", "RZselectClass", "LoadView",
                                      "ViewName=Daily\tshift"}));
    EXPECT_EQ(platform.live_sinks, 0) << "the sink is released after a record";

    Trace(platform, kWriterModule, "RangeText", "");
    Trace(platform, kWriterModule, "RangeText", "Ended");
    EXPECT_EQ(platform.lookups, 3);
    EXPECT_EQ(platform.sent.size(), 3u);
    EXPECT_EQ(platform.sent[1][1], "modRZselect");
    EXPECT_EQ(platform.sent[1][3], "");
  });
}

TEST(TraceTest, LaterAbsenceIsSkippedAndTracingResumes) {
  InFreshThread([] {
    TraceOnlyPlatform platform;
    platform.sink_running = true;
    Trace(platform, kWriterClass, "Show", "Started");

    platform.sink_running = false;  // the viewer was closed
    Trace(platform, kWriterClass, "Show", "lost");
    Trace(platform, kWriterClass, "Show", "lost too");
    EXPECT_EQ(TraceState(), 1);
    EXPECT_EQ(platform.lookups, 3);

    platform.sink_running = true;  // and opened again
    Trace(platform, kWriterClass, "Show", "Ended");
    EXPECT_EQ(platform.lookups, 4);
    ASSERT_EQ(platform.sent.size(), 2u);
    EXPECT_EQ(platform.sent[1][3], "Ended");
    EXPECT_EQ(TraceState(), 1);
  });
}

TEST(TraceTest, EachThreadKeepsItsOwnState) {
  InFreshThread([] {
    TraceOnlyPlatform platform;
    Trace(platform, kWriterClass, "Initialize", "Started");
    ASSERT_EQ(TraceState(), -1);

    platform.sink_running = true;
    int other_state = 0;
    std::thread other([&] {
      // The sink only appeared after this thread's neighbour gave up; this
      // thread has not traced yet, so it looks.
      Trace(platform, kWriterClass, "Initialize", "Started");
      other_state = TraceState();
    });
    other.join();
    EXPECT_EQ(other_state, 1);
    EXPECT_EQ(platform.sent.size(), 1u);
    EXPECT_EQ(TraceState(), -1);
  });
}

}  // namespace
}  // namespace rz
