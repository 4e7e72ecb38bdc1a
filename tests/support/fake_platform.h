// Copyright 2026 The Veltmark authors.
//
// FakePlatform wires the test fakes into the engine: application files on
// a FakeDisk, FakeRepository objects, input files held in a map, an
// optional script-engine factory, a trace sink that records what it
// receives while a test says one is running, a HeadlessToolkit and a clock
// the test sets. Every object it creates is also kept, so a test can look
// at what the engine made.
//
// FakeInputFileReader reads the value stored for a name; a name without
// one fails (Success false, empty text). It counts its attempts: one plus
// Retries for a name that fails.

#ifndef RZ_SUPPORT_FAKE_PLATFORM_H_
#define RZ_SUPPORT_FAKE_PLATFORM_H_

#include <array>
#include <functional>
#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "platform/headless_toolkit.h"
#include "platform/input_file_reader.h"
#include "platform/platform.h"
#include "platform/script_engine.h"
#include "platform/trace_sink.h"
#include "support/fake_app_file.h"
#include "support/fake_repository.h"

namespace rz {

using FakeInputFiles = std::map<std::string, std::string>;

class FakeInputFileReader : public InputFileReader {
 public:
  explicit FakeInputFileReader(std::shared_ptr<const FakeInputFiles> files)
      : files_(std::move(files)) {}

  // Names asked for, in order, and the attempts made on them.
  const std::vector<std::string>& Requests() const { return requests_; }
  int Attempts() const { return attempts_; }

  bool Silent() const override { return silent_; }
  void SetSilent(bool value) override { silent_ = value; }
  int16_t Retries() const override { return retries_; }
  void SetRetries(int16_t value) override { retries_ = value; }
  std::string ReadInputFile(std::string_view name) override;
  bool Success() const override { return success_; }

 private:
  std::shared_ptr<const FakeInputFiles> files_;
  std::vector<std::string> requests_;
  int attempts_ = 0;
  bool silent_ = false;
  int16_t retries_ = 0;
  bool success_ = false;
};

// A trace sink that appends every record it receives (component, writer,
// procedure, message) to a list it does not own.
class RecordingTraceSink : public TraceSink {
 public:
  using Record = std::array<std::string, 4>;
  explicit RecordingTraceSink(std::vector<Record>& records)
      : records_(records) {}
  void Send(std::string_view component, std::string_view writer,
            std::string_view procedure,
            std::string_view message) noexcept override;

 private:
  std::vector<Record>& records_;
};

class FakePlatform : public Platform {
 public:
  // One trace record: component, writer, procedure, message.
  using TraceRecord = std::array<std::string, 4>;
  using ScriptEngineFactory = std::function<std::unique_ptr<ScriptEngine>()>;

  FakePlatform();

  // The applications CreateAppFile objects open; AddApplication puts a new
  // one at `path` and returns it for the test to fill.
  FakeDisk& Disk() { return *disk_; }
  FakeApplication& AddApplication(const std::string& path);
  // Input files by name.
  void SetInputFile(const std::string& name, std::string value);
  // CreateScriptEngine returns what this makes; null when unset.
  void SetScriptEngineFactory(ScriptEngineFactory factory);
  // Whether FindTraceSink finds a sink.
  void SetTraceSinkRunning(bool running) { trace_sink_running_ = running; }
  void SetNow(double now) { now_ = now; }

  HeadlessToolkit& Headless() { return toolkit_; }
  int FindTraceSinkCalls() const { return find_trace_sink_calls_; }
  const std::vector<TraceRecord>& TraceRecords() const { return traces_; }
  // Every object created, in order.
  const std::vector<std::shared_ptr<FakeAppFile>>& AppFiles() const {
    return app_files_;
  }
  const std::vector<std::shared_ptr<FakeRepository>>& Repositories() const {
    return repositories_;
  }
  const std::vector<std::shared_ptr<FakeInputFileReader>>& InputFileReaders()
      const {
    return readers_;
  }

  // Platform.
  std::shared_ptr<AppFile> CreateAppFile() override;
  std::shared_ptr<Repository> CreateRepository() override;
  std::shared_ptr<InputFileReader> CreateInputFileReader() override;
  std::unique_ptr<ScriptEngine> CreateScriptEngine() override;
  std::unique_ptr<TraceSink> FindTraceSink() noexcept override;
  Toolkit& UserInterface() override { return toolkit_; }
  double Now() override { return now_; }

 private:
  std::shared_ptr<FakeDisk> disk_;
  std::shared_ptr<FakeInputFiles> input_files_;
  ScriptEngineFactory script_engine_factory_;
  HeadlessToolkit toolkit_;
  bool trace_sink_running_ = false;
  int find_trace_sink_calls_ = 0;
  std::vector<TraceRecord> traces_;
  double now_ = 0;
  std::vector<std::shared_ptr<FakeAppFile>> app_files_;
  std::vector<std::shared_ptr<FakeRepository>> repositories_;
  std::vector<std::shared_ptr<FakeInputFileReader>> readers_;
};

}  // namespace rz

#endif  // RZ_SUPPORT_FAKE_PLATFORM_H_
