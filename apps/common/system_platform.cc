// Copyright 2026 The Veltmark authors.

#include "common/system_platform.h"

#include <chrono>
#include <ctime>

#include "appfile/application_file.h"
#include "core/date_time.h"
#include "inputfile/first_line_reader.h"
#include "jscript/jscript_engine.h"
#include "platform/app_file.h"
#include "platform/input_file_reader.h"
#include "platform/repository.h"
#include "platform/script_engine.h"
#include "repository/result_repository.h"
#include "script/language_switch.h"
#include "trace/trace_client.h"
#include "trace/trace_socket_path.h"
#include "vbscript/vbscript_engine.h"

namespace rz {

std::shared_ptr<AppFile> SystemPlatform::CreateAppFile() {
  return std::make_shared<ApplicationFile>();
}

std::shared_ptr<Repository> SystemPlatform::CreateRepository() {
  return std::make_shared<ResultRepository>();
}

std::shared_ptr<InputFileReader> SystemPlatform::CreateInputFileReader() {
  return std::make_shared<FirstLineReader>(toolkit_);
}

std::unique_ptr<ScriptEngine> SystemPlatform::CreateScriptEngine() {
  Toolkit* toolkit = &toolkit_;
  return std::make_unique<LanguageSwitch>(
      [toolkit] { return std::make_unique<VBScriptEngine>(toolkit); },
      [toolkit] { return std::make_unique<JScriptEngine>(toolkit); });
}

std::unique_ptr<TraceSink> SystemPlatform::FindTraceSink() noexcept {
  try {
    return TraceClient::Connect(DefaultTraceSocketPath());
  } catch (...) {
    return nullptr;
  }
}

double SystemPlatform::Now() {
  const std::time_t now =
      std::chrono::system_clock::to_time_t(std::chrono::system_clock::now());
  std::tm local{};
  localtime_r(&now, &local);
  return DateSerial(local.tm_year + 1900, local.tm_mon + 1, local.tm_mday) +
         TimeSerial(local.tm_hour, local.tm_min, local.tm_sec);
}

}  // namespace rz
