// Copyright 2026 The Veltmark authors.
//
// Feeds arbitrary bytes to the VBScript parser, and code that parses to the
// engine with a short time limit. Any input must end in a result or an
// error record: never a crash, a sanitizer report or a hang.

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string_view>

#include "vbscript/vb_errors.h"
#include "vbscript/vb_parser.h"
#include "vbscript/vbscript_engine.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  const std::string_view code(reinterpret_cast<const char*>(data), size);
  try {
    rz::vb::Parse(code);
  } catch (const rz::vb::VbCompileError&) {
    return 0;
  }
  rz::VBScriptEngine engine(nullptr);
  engine.SetClock([] { return 45000.5; });
  engine.SetTimeout(20);
  if (!engine.AddCode(code)) return 0;
  rz::DispatchArgs args;
  for (const std::string& name : engine.Procedures()) {
    args.assign(3, rz::Variant(int16_t{1}));
    engine.Run(name, args);
  }
  return 0;
}
