// Copyright 2026 The Veltmark authors.

#include "bench_data.h"

#include <cmath>
#include <filesystem>

#include "appfile/data_writer.h"
#include "core/date_time.h"

namespace rz::bench {
namespace {

namespace fs = std::filesystem;

const char* const kOperators[] = {"Anna",  "Bernd",  "Chloé", "Dariusz",
                                  "Emeka", "Fumiko", "Gösta", "Hana"};

double Start() { return DateSerial(2020, 1, 1); }

}  // namespace

std::vector<bool> Numeric() {
  std::vector<bool> numeric(kVariables, false);
  for (int k = 3; k <= 2 + kNumbers; ++k) numeric[k - 1] = true;
  return numeric;
}

std::vector<Variant> Record(int index, std::mt19937_64& random) {
  std::normal_distribution<double> measurement(250.0, 40.0);
  const double when =
      Start() + static_cast<double>(index) * kSecondsApart / 86400;
  std::vector<Variant> values;
  values.reserve(kVariables);
  values.emplace_back(FormatDate(when));
  values.emplace_back(FormatTime(when));
  for (int k = 0; k < kNumbers; ++k) {
    if ((index + k) % 997 == 0) {
      values.push_back(Variant::Null());
    } else {
      values.emplace_back(std::round(measurement(random) * 1000) / 1000);
    }
  }
  values.emplace_back("Line " + std::to_string(index % 4 + 1));
  values.emplace_back(index % 1013 == 0 ? Variant::Null()
                                        : Variant(kOperators[index % 8]));
  return values;
}

std::string DataFile(int records) {
  const fs::path folder = RZ_BENCH_DATA_DIR;
  const std::string name = records == kRecords
                               ? "load1m.rzd"
                               : "load" + std::to_string(records) + ".rzd";
  const fs::path path = folder / name;
  if (fs::exists(path)) return path.string();
  fs::create_directories(folder);
  const fs::path partial = folder / (name + ".partial");
  fs::remove(partial);
  std::mt19937_64 random(42);
  auto writer = DataWriter::Create(partial.string(), Numeric());
  for (int i = 0; i < records; ++i) writer->Append(Record(i, random));
  writer->Commit();
  fs::rename(partial, path);
  return path.string();
}

}  // namespace rz::bench
