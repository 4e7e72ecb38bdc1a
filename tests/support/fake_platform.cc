// Copyright 2026 The Veltmark authors.

#include "support/fake_platform.h"

#include <algorithm>
#include <utility>

namespace rz {
void RecordingTraceSink::Send(std::string_view component,
                              std::string_view writer,
                              std::string_view procedure,
                              std::string_view message) noexcept {
  try {
    records_.push_back({std::string(component), std::string(writer),
                        std::string(procedure), std::string(message)});
  } catch (...) {
    // A sink never throws; a record it cannot keep is lost.
  }
}

std::string FakeInputFileReader::ReadInputFile(std::string_view name) {
  requests_.emplace_back(name);
  auto found = files_->find(std::string(name));
  success_ = found != files_->end();
  attempts_ += success_ ? 1 : 1 + std::max<int>(retries_, 0);
  return success_ ? found->second : std::string();
}

FakePlatform::FakePlatform()
    : disk_(std::make_shared<FakeDisk>()),
      input_files_(std::make_shared<FakeInputFiles>()) {}

FakeApplication& FakePlatform::AddApplication(const std::string& path) {
  return (*disk_)[path] = FakeApplication();
}

void FakePlatform::SetInputFile(const std::string& name, std::string value) {
  (*input_files_)[name] = std::move(value);
}

void FakePlatform::SetScriptEngineFactory(ScriptEngineFactory factory) {
  script_engine_factory_ = std::move(factory);
}

std::shared_ptr<AppFile> FakePlatform::CreateAppFile() {
  app_files_.push_back(std::make_shared<FakeAppFile>(disk_));
  return app_files_.back();
}

std::shared_ptr<Repository> FakePlatform::CreateRepository() {
  repositories_.push_back(std::make_shared<FakeRepository>());
  return repositories_.back();
}

std::shared_ptr<InputFileReader> FakePlatform::CreateInputFileReader() {
  readers_.push_back(std::make_shared<FakeInputFileReader>(input_files_));
  return readers_.back();
}

std::unique_ptr<ScriptEngine> FakePlatform::CreateScriptEngine() {
  if (!script_engine_factory_) return nullptr;
  return script_engine_factory_();
}

std::unique_ptr<TraceSink> FakePlatform::FindTraceSink() noexcept {
  ++find_trace_sink_calls_;
  if (!trace_sink_running_) return nullptr;
  try {
    return std::make_unique<RecordingTraceSink>(traces_);
  } catch (...) {
    return nullptr;
  }
}

}  // namespace rz
