// Copyright 2026 The Veltmark authors.

#include "common/system_platform.h"

#include <chrono>
#include <ctime>

#include "core/date_time.h"
#include "core/error.h"
#include "platform/app_file.h"
#include "platform/input_file_reader.h"
#include "platform/repository.h"
#include "platform/script_engine.h"
#include "trace/trace_client.h"
#include "trace/trace_socket_path.h"

namespace rz {
namespace {

Error ComponentMissing(std::string_view component) {
  return Error::InvalidArgument("the component " + std::string(component) +
                                " is not available yet in this version");
}

}  // namespace

std::shared_ptr<AppFile> SystemPlatform::CreateAppFile() {
  throw ComponentMissing("RZaccess (application files)");
}

std::shared_ptr<Repository> SystemPlatform::CreateRepository() {
  throw ComponentMissing("RzRep (result repository)");
}

std::shared_ptr<InputFileReader> SystemPlatform::CreateInputFileReader() {
  throw ComponentMissing("RZCOMsrv (input-file reader)");
}

std::unique_ptr<ScriptEngine> SystemPlatform::CreateScriptEngine() {
  return nullptr;
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
