// Copyright 2026 The Veltmark authors.

#include "output/delivery.h"

#include <cmath>

#include "platform/app_file.h"
#include "platform/field_format.h"
#include "platform/repository.h"
#include "platform/rzselect_events.h"
#include "view/view_state.h"

namespace rz {
namespace {

// A header number of the application as a 32-bit number.
int32_t WholeNumber(const Variant& value) {
  const double number = std::nearbyint(ToNumber(value));
  if (!(number >= INT32_MIN && number <= INT32_MAX)) return 0;
  return static_cast<int32_t>(number);
}

// The first column (1-based) showing `variable`, or `fallback`.
int32_t ColumnOf(const ResultLayout& columns, int16_t variable,
                 int32_t fallback) {
  for (size_t j = 0; j < columns.size(); ++j) {
    if (columns[j].SourceVariable == variable) {
      return static_cast<int32_t>(j + 1);
    }
  }
  return fallback;
}

}  // namespace

void FillRepositoryHeader(ViewState& state, const ResultLayout& columns) {
  Repository& repository = *state.DataSource;
  AppFile& file = *state.AppFile;
  repository.SetTitle(file.AppTitle());
  const bool detail = state.SumBy == 0;
  repository.SetSpecialColumn1(
      detail ? ColumnOf(columns, file.SpecialVariable1(), 1) : 1);
  repository.SetSpecialColumn2(
      detail ? ColumnOf(columns, file.SpecialVariable2(), 2) : 2);
  repository.SetSpecialColumn3(
      detail ? ColumnOf(columns, file.SpecialVariable3(), 0) : 0);
  int32_t leading = 2;
  for (int32_t j = 1; j <= file.LeadingVariableCount(); ++j) {
    if (static_cast<size_t>(j) <= columns.size() &&
        columns[static_cast<size_t>(j - 1)].SourceVariable == j) {
      leading = j;
    }
  }
  repository.SetLeadingColumnCount(leading);
  repository.SetFileSetting1(WholeNumber(file.FileSetting1()));
  repository.SetFileSetting2(WholeNumber(file.FileSetting2()));
  repository.SetFileSetting3(ToNumber(file.FileSetting3()));
}

int32_t Delivery::ReserveStep(int32_t record) {
  if (record <= 100) return 10;
  if (record <= 1000) return 100;
  if (record <= 10000) return 500;
  return 1000;
}

void Delivery::SetCell(int32_t record, int32_t field, const Variant& value) {
  if (event_mode_) {
    repository_.SetValue(1, field, value);
    return;
  }
  if (record > repository_.RecordCount()) {
    repository_.SetValue(record + ReserveStep(record), 1, Variant(""));
  }
  repository_.SetValue(record, field, value);
}

Variant Delivery::Cell(int32_t record, int32_t field) {
  return repository_.Value(event_mode_ ? 1 : record, field);
}

bool Delivery::Commit(int32_t record, int32_t source) {
  if (!event_mode_) {
    repository_.SetSourceRecord(record, source);
    return false;
  }
  repository_.SetSourceRecord(1, source);
  bool cancel = false;
  events_.RaiseWriteDataSource(cancel);
  return cancel;
}

void Delivery::Trim(int32_t last) {
  for (int32_t k = repository_.RecordCount(); k > last; --k) {
    repository_.DeleteRecord(k);
  }
}

}  // namespace rz
