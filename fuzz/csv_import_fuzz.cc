// Copyright 2026 The Veltmark authors.
//
// Feeds arbitrary bytes to the import's CSV reader as a file's bytes, and
// records that read to the conversion into an application (in memory;
// nothing is written). Any input must end in records and an application
// or an rz::Error; never a crash or a sanitizer report.

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "core/error.h"
#include "fuzz_files.h"
#include "rzselect/csv_import.h"
#include "rzselect/csv_reader.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  const std::string text = rz::DecodeCsvText(rz::fuzz::AsText(data, size));
  try {
    const std::vector<rz::CsvRecord> records = rz::ParseCsv(text, "fuzz.csv");
    rz::ApplicationFromCsv(records, "fuzz.csv", "Fuzz");
  } catch (const rz::Error&) {
  }
  return 0;
}
