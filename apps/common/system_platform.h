// Copyright 2026 The Veltmark authors.
//
// SystemPlatform wires the real components into the engine for the host
// programs: application files (ApplicationFile), the result repository
// (ResultRepository), the input-file reader (FirstLineReader, showing its
// messages through the toolkit), the trace channel (a running rzdebug
// found on its socket), the given toolkit and the system clock.
// CreateScriptEngine answers a LanguageSwitch over the VBScript
// interpreter and the JScript engine, both showing MsgBox through the
// toolkit.

#ifndef RZ_APPS_COMMON_SYSTEM_PLATFORM_H_
#define RZ_APPS_COMMON_SYSTEM_PLATFORM_H_

#include <memory>

#include "common/console_toolkit.h"
#include "platform/platform.h"

namespace rz {

class SystemPlatform : public Platform {
 public:
  // Uses `toolkit` for the user interface (not owned; must outlive this).
  explicit SystemPlatform(Toolkit& toolkit) : toolkit_(toolkit) {}

  std::shared_ptr<AppFile> CreateAppFile() override;
  std::shared_ptr<Repository> CreateRepository() override;
  std::shared_ptr<InputFileReader> CreateInputFileReader() override;
  std::unique_ptr<ScriptEngine> CreateScriptEngine() override;
  std::unique_ptr<TraceSink> FindTraceSink() noexcept override;
  Toolkit& UserInterface() override { return toolkit_; }
  // The local date-time of the system clock as a day count.
  double Now() override;

 private:
  Toolkit& toolkit_;
};

}  // namespace rz

#endif  // RZ_APPS_COMMON_SYSTEM_PLATFORM_H_
