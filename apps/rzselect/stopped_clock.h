// Copyright 2026 The Veltmark authors.
//
// The clock of the commands that take --as-of: StoppedClockPlatform is a
// platform whose clock stands at a given moment, so that views resolve
// their ranges as of that moment; everything else is the base platform's,
// which must outlive it.

#ifndef RZ_APPS_RZSELECT_STOPPED_CLOCK_H_
#define RZ_APPS_RZSELECT_STOPPED_CLOCK_H_

#include <memory>
#include <string>

#include "platform/platform.h"

namespace rz {

class StoppedClockPlatform : public Platform {
 public:
  StoppedClockPlatform(Platform& base, double now) : base_(base), now_(now) {}

  std::shared_ptr<AppFile> CreateAppFile() override;
  std::shared_ptr<Repository> CreateRepository() override;
  std::shared_ptr<InputFileReader> CreateInputFileReader() override;
  std::unique_ptr<ScriptEngine> CreateScriptEngine() override;
  std::unique_ptr<TraceSink> FindTraceSink() noexcept override;
  Toolkit& UserInterface() override;
  double Now() override { return now_; }

 private:
  Platform& base_;
  double now_;
};

// The moment an --as-of text names ("yyyy-mm-dd hh:mm:ss", "yyyy-mm-dd",
// "yyyy-mm-dd hh:mm"), or the platform's now for "". Error 13 naming the
// text otherwise.
double AsOf(Platform& platform, const std::string& text);

// `platform` with its clock stopped at AsOf(text).
std::shared_ptr<Platform> PlatformAsOf(Platform& platform,
                                       const std::string& text);

}  // namespace rz

#endif  // RZ_APPS_RZSELECT_STOPPED_CLOCK_H_
