// Copyright 2026 The Veltmark authors.

#include "support/component_platform.h"

#include <utility>

#include "platform/app_file.h"

namespace rz {
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
  return std::make_unique<RecordingTraceSink>(traces_);
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
