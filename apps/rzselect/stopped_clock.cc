// Copyright 2026 The Veltmark authors.

#include "rzselect/stopped_clock.h"

#include <optional>

#include "core/date_time.h"
#include "core/error.h"
#include "platform/script_engine.h"
#include "platform/trace_sink.h"

namespace rz {

std::shared_ptr<AppFile> StoppedClockPlatform::CreateAppFile() {
  return base_.CreateAppFile();
}

std::shared_ptr<Repository> StoppedClockPlatform::CreateRepository() {
  return base_.CreateRepository();
}

std::shared_ptr<InputFileReader> StoppedClockPlatform::CreateInputFileReader() {
  return base_.CreateInputFileReader();
}

std::unique_ptr<ScriptEngine> StoppedClockPlatform::CreateScriptEngine() {
  return base_.CreateScriptEngine();
}

std::unique_ptr<TraceSink> StoppedClockPlatform::FindTraceSink() noexcept {
  return base_.FindTraceSink();
}

Toolkit& StoppedClockPlatform::UserInterface() { return base_.UserInterface(); }

double AsOf(Platform& platform, const std::string& text) {
  if (text.empty()) return platform.Now();
  const std::optional<double> moment = ParseDateTime(text);
  if (!moment) throw Error::TypeMismatchFor(text, "a moment (--as-of)");
  return *moment;
}

std::shared_ptr<Platform> PlatformAsOf(Platform& platform,
                                       const std::string& text) {
  return std::make_shared<StoppedClockPlatform>(platform, AsOf(platform, text));
}

}  // namespace rz
