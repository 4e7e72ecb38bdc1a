// Copyright 2026 The Veltmark authors.
//
// Feeds arbitrary bytes to the view file reader the way a host reaches it:
// the engine, initialized once on a copy of the example application, loads
// its first view from a file holding the input (one path reused across
// runs). The clock is stopped so that relative ranges resolve the same in
// every run. Any input must end in a loaded view or an rz::Error; never a
// crash or a sanitizer report.

#include <stdlib.h>

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <string>

#include "common/console_toolkit.h"
#include "common/system_platform.h"
#include "core/error.h"
#include "engine/rzselect.h"
#include "fuzz_files.h"

namespace {

// A fixed moment: Tuesday 2026-01-20 12:00.
constexpr double kNow = 46042.5;

// The system platform with its clock stopped at kNow.
class StoppedClockPlatform : public rz::SystemPlatform {
 public:
  using SystemPlatform::SystemPlatform;
  double Now() override { return kNow; }
};

struct Engine {
  std::string view_path;
  std::string view_name;
  std::shared_ptr<rz::RZselect> select;
};

Engine& InitializedEngine() {
  static Engine* const engine = [] {
    const std::string example = RZ_EXAMPLE_APPLICATION;
    const std::string template_path = rz::fuzz::PathIn("app/line4.rzt");
    rz::fuzz::CopyFile(example + "/line4.rzt", template_path);
    rz::fuzz::CopyFile(example + "/line4.rzd",
                       rz::fuzz::PathIn("app/line4.rzd"));
    auto* made = new Engine;
    made->view_path = rz::fuzz::PathIn("app/line4.V1");
    rz::fuzz::CopyFile(example + "/line4.V1", made->view_path);
    // No site scripts: an empty system folder.
    ::setenv("VELTMARK_SYSTEM_DIR", rz::fuzz::PathIn("sys").c_str(), 1);
    rz::fuzz::PathIn("sys/.keep");
    static std::FILE* const null_file = std::fopen("/dev/null", "r+");
    static rz::ConsoleToolkit toolkit(null_file, null_file, false);
    static auto platform = std::make_shared<StoppedClockPlatform>(toolkit);
    made->select = rz::RZselect::Create(platform);
    made->select->SetFilename(template_path);
    made->select->Initialize();
    made->view_name = made->select->CurrentViewName();
    return made;
  }();
  return *engine;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  Engine& engine = InitializedEngine();
  rz::fuzz::WriteFile(engine.view_path, rz::fuzz::AsText(data, size));
  try {
    engine.select->LoadView(engine.view_name);
  } catch (const rz::Error&) {
  }
  return 0;
}
