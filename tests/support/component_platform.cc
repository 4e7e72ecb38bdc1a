// Copyright 2026 The Veltmark authors.

#include "support/component_platform.h"

#include <utility>

#include "platform/app_file.h"
#include "platform/trace_sink.h"

namespace rz {
namespace {

class Recorder : public TraceSink {
 public:
  explicit Recorder(std::vector<ComponentPlatform::TraceRecord>& records)
      : records_(records) {}
  void Send(std::string_view component, std::string_view writer,
            std::string_view procedure,
            std::string_view message) noexcept override {
    try {
      records_.push_back({std::string(component), std::string(writer),
                          std::string(procedure), std::string(message)});
    } catch (...) {
      // A sink never throws.
    }
  }

 private:
  std::vector<ComponentPlatform::TraceRecord>& records_;
};

}  // namespace

ComponentPlatform::ComponentPlatform()
    : SystemPlatform(toolkit_),
      input_files_(std::make_shared<FakeInputFiles>()) {}

void ComponentPlatform::SetInputFile(const std::string& name,
                                     std::string value) {
  (*input_files_)[name] = std::move(value);
}

std::vector<std::string> ComponentPlatform::TraceMessages() const {
  std::vector<std::string> messages;
  for (const TraceRecord& record : traces_) messages.push_back(record[3]);
  return messages;
}

std::shared_ptr<InputFileReader> ComponentPlatform::CreateInputFileReader() {
  return std::make_shared<FakeInputFileReader>(input_files_);
}

std::unique_ptr<TraceSink> ComponentPlatform::FindTraceSink() noexcept {
  return std::make_unique<Recorder>(traces_);
}

void MakeApplication(Platform& platform, const std::string& path,
                     const std::vector<TestVariable>& variables,
                     const std::vector<std::vector<Variant>>& records) {
  std::shared_ptr<AppFile> file = platform.CreateAppFile();
  file->SetAppTitle("Test line");
  file->SetDefaultLookBack(-1);
  for (const TestVariable& v : variables) {
    file->Variables().Add(v.name, v.type, v.length, v.decimals);
  }
  file->SetOpenMode(kOpenCreateNew);
  file->OpenApplication(path);
  for (const std::vector<Variant>& record : records) {
    file->AddRecord();
    for (size_t k = 0; k < record.size(); ++k) {
      file->SetValue(static_cast<int16_t>(k + 1), record[k]);
    }
    file->SaveRecord(0);
  }
  file->CloseApplication();
}

}  // namespace rz
