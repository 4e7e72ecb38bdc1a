// Copyright 2026 The Veltmark authors.
//
// Feeds arbitrary bytes to the template reader as a template file's text
// (decoded from Windows-1252 as the file reader does). A template that
// reads is written back and read again: what the writer writes, the reader
// must take. Any input must end in a template, "not an application" or an
// rz::Error; never a crash or a sanitizer report.

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <optional>
#include <string>

#include "appfile/app_template.h"
#include "core/codec.h"
#include "core/error.h"
#include "fuzz_files.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  const std::string text = rz::DecodeWindows1252(rz::fuzz::AsText(data, size));
  std::optional<rz::AppTemplate> app;
  try {
    app = rz::ParseAppTemplate(text, "fuzz.rzt");
  } catch (const rz::Error&) {
    return 0;
  }
  if (!app) return 0;
  // Written text goes through the code page like a saved file does.
  const std::string written =
      rz::DecodeWindows1252(rz::EncodeWindows1252(rz::FormatAppTemplate(*app)));
  try {
    if (!rz::ParseAppTemplate(written, "written.rzt")) std::abort();
  } catch (const rz::Error&) {
    std::abort();  // the writer wrote a template its reader refuses
  }
  return 0;
}
