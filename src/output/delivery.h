// Copyright 2026 The Veltmark authors.
//
// Delivering a run's result into the repository (DataSource).
//
// FillRepositoryHeader copies the application's header items into the
// repository: its title, the special columns (1, 2 and 0; in detail mode
// the first column showing the application's special variable 1, 2 or 3),
// the leading column count and the three file settings (numbers; a text
// that is not one counts 0).
//
// Delivery writes every cell through Delivery::SetCell and ends each
// output record with Commit. In store mode (events off) records are
// stored from 1; the store grows ahead in steps (10 records up to record
// 100, 100 up to 1000, 500 up to 10000, then 1000) and Trim removes what
// was reserved but not filled. In event mode record 1 is a working record
// rewritten for every output record, and Commit raises WriteDataSource.
//
// Errors of the repository reach the caller.

#ifndef RZ_OUTPUT_DELIVERY_H_
#define RZ_OUTPUT_DELIVERY_H_

#include <cstdint>

#include "core/variant.h"
#include "output/result_column.h"

namespace rz {

class EventHandlerList;
class Repository;
struct ViewState;

void FillRepositoryHeader(ViewState& state, const ResultLayout& columns);

class Delivery {
 public:
  // `events` are raised only when `event_mode`.
  Delivery(Repository& repository, bool event_mode,
           const EventHandlerList& events)
      : repository_(repository), event_mode_(event_mode), events_(events) {}

  // The record count SetCell reserves ahead when it writes `record` past the
  // end of the store.
  static int32_t ReserveStep(int32_t record);

  bool EventMode() const { return event_mode_; }

  void SetCell(int32_t record, int32_t field, const Variant& value);
  // The cell written last for (record, field): record 1 in event mode.
  Variant Cell(int32_t record, int32_t field);
  // Ends output record `record`, which came from data record `source` (0
  // for a summary record). True when the host cancelled the run.
  bool Commit(int32_t record, int32_t source);
  // Removes the records after `last` (store mode).
  void Trim(int32_t last);

 private:
  Repository& repository_;
  const bool event_mode_;
  const EventHandlerList& events_;
};

}  // namespace rz

#endif  // RZ_OUTPUT_DELIVERY_H_
