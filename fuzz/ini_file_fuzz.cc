// Copyright 2026 The Veltmark authors.
//
// Feeds arbitrary bytes to INIfile as a file: loads it from one path reused
// across runs, renders it, writes the rendered text next to it in the code
// page SaveFile uses and loads that again. What the document writes must
// read back to the same text. Never a crash or a sanitizer report. (The
// text is written plainly rather than by SaveFile, whose flush to disk
// would make each run a hundred times slower.)

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>

#include "core/codec.h"
#include "core/error.h"
#include "fuzz_files.h"
#include "view/ini_file.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  static const std::string input_path = rz::fuzz::PathIn("input.ini");
  static const std::string saved_path = rz::fuzz::PathIn("saved.ini");
  rz::fuzz::WriteFile(input_path, rz::fuzz::AsText(data, size));
  rz::INIfile document;
  try {
    document.LoadFile(input_path);
  } catch (const rz::Error&) {
    return 0;
  }
  const std::string rendered = document.Render();
  rz::fuzz::WriteFile(saved_path, rz::EncodeWindows1252(rendered));
  rz::INIfile again;
  again.LoadFile(saved_path);
  if (again.INIlines()->Count() != document.INIlines()->Count()) std::abort();
  if (again.Render() != rendered) std::abort();
  return 0;
}
