// Copyright 2026 The Veltmark authors.
//
// Feeds arbitrary filter condition lists to the condition parser and the
// filter compiled over the example application's data. The input is one
// condition per line, its six fields separated by tabs: connective,
// opening brackets, variable, operator, literal, closing brackets (missing
// fields are empty, numbers read as their leading digits). Every compiled
// filter is run over the first records. Any input must end in a filter or
// an rz::Error; never a crash or a sanitizer report.

#include <algorithm>
#include <charconv>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "appfile/app_template.h"
#include "appfile/condition_filter.h"
#include "appfile/condition_parser.h"
#include "appfile/data_store.h"
#include "core/error.h"
#include "fuzz_files.h"
#include "platform/field_format.h"

namespace {

constexpr int32_t kRecordsMatched = 64;
constexpr size_t kMaxConditions = 256;

int16_t LeadingInt16(std::string_view text) {
  int value = 0;
  std::from_chars(text.data(), text.data() + text.size(), value);
  return static_cast<int16_t>(std::clamp(value, -32768, 32767));
}

rz::Condition ConditionFrom(std::string_view line) {
  const std::vector<std::string_view> fields =
      rz::fuzz::SplitPieces(line, '\t');
  auto field = [&](size_t i) {
    return i < fields.size() ? std::string(fields[i]) : std::string();
  };
  rz::Condition condition;
  condition.and_or = LeadingInt16(field(0));
  condition.par1 = field(1);
  condition.variable = LeadingInt16(field(2));
  condition.condition = field(3);
  condition.value = field(4);
  condition.par2 = field(5);
  return condition;
}

// The example's data file, copied into the fuzz folder so that no file of
// the source tree is touched, opened with its template's numeric flags.
std::unique_ptr<rz::DataStore> OpenExampleData() {
  const std::string folder = RZ_EXAMPLE_APPLICATION;
  const std::optional<rz::AppTemplate> app =
      rz::ReadAppTemplate(folder + "/line4.rzt");
  if (!app) std::abort();
  std::vector<bool> numeric;
  for (size_t i = 0; i < app->variables.size(); ++i) {
    numeric.push_back(i >= 2 &&
                      rz::IsNumericType(app->variables[i]->TypeLetter()));
  }
  const std::string data = rz::fuzz::PathIn("line4.rzd");
  rz::fuzz::CopyFile(folder + "/line4.rzd", data);
  return rz::DataStore::Open(data, numeric);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  static const std::unique_ptr<rz::DataStore> store = OpenExampleData();
  std::vector<rz::Condition> conditions;
  for (std::string_view line :
       rz::fuzz::SplitPieces(rz::fuzz::AsText(data, size), '\n')) {
    if (conditions.size() == kMaxConditions) break;
    conditions.push_back(ConditionFrom(line));
  }
  try {
    const rz::FilterTree tree = rz::ParseConditionShape(conditions);
    if (conditions.empty() != (tree.root < 0)) std::abort();
    const std::unique_ptr<rz::ConditionFilter> filter =
        rz::ConditionFilter::Compile(conditions, *store);
    const int32_t last = std::min(store->RecordCount(), kRecordsMatched);
    for (int32_t record = 1; record <= last; ++record) {
      filter->Matches(*store, record);
    }
  } catch (const rz::Error&) {
  }
  return 0;
}
