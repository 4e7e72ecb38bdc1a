// Copyright 2026 The Veltmark authors.
//
// ComponentPlatform is the host programs' platform (the real application
// files, repository and script engines) with what a test needs to watch
// and steer: a HeadlessToolkit, a trace sink that records every line, a
// clock the test sets, and input files held in a map (FakeInputFileReader).
//
// MakeApplication writes a small application through the real
// application-file component: `variables` as (name, type letter, length,
// decimals), variable 1 the date and 2 the time texts of each record.

#ifndef RZ_SUPPORT_COMPONENT_PLATFORM_H_
#define RZ_SUPPORT_COMPONENT_PLATFORM_H_

#include <array>
#include <memory>
#include <string>
#include <vector>

#include "common/system_platform.h"
#include "core/variant.h"
#include "platform/headless_toolkit.h"
#include "support/fake_platform.h"

namespace rz {

class ComponentPlatform : public SystemPlatform {
 public:
  using TraceRecord = RecordingTraceSink::Record;

  ComponentPlatform();

  HeadlessToolkit& Toolkit() { return toolkit_; }
  void SetNow(double now) { now_ = now; }
  void SetInputFile(const std::string& name, std::string value);
  const std::vector<TraceRecord>& Traces() const { return traces_; }
  // The messages traced, in order.
  std::vector<std::string> TraceMessages() const;
  void ClearTraces() { traces_.clear(); }

  std::shared_ptr<InputFileReader> CreateInputFileReader() override;
  std::unique_ptr<TraceSink> FindTraceSink() noexcept override;
  double Now() override { return now_; }

 private:
  HeadlessToolkit toolkit_;
  double now_ = 0;
  std::shared_ptr<FakeInputFiles> input_files_;
  std::vector<TraceRecord> traces_;
};

struct TestVariable {
  std::string name;
  std::string type = "T";
  int16_t length = 10;
  int16_t decimals = 0;
};

void MakeApplication(Platform& platform, const std::string& path,
                     const std::vector<TestVariable>& variables,
                     const std::vector<std::vector<Variant>>& records);

}  // namespace rz

#endif  // RZ_SUPPORT_COMPONENT_PLATFORM_H_
