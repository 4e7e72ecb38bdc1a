// Copyright 2026 The Veltmark authors.

#include "vbscript/vb_work_clock.h"

#include <utility>

#include "vbscript/vb_errors.h"

namespace rz::vb {
namespace {

struct ThreadRun {
  std::optional<RunDeadline::Clock::time_point> deadline;
  RunDeadline::HeldBytes held_bytes;
  size_t charged = 0;
};

thread_local ThreadRun current_run;

}  // namespace

RunDeadline::RunDeadline(std::optional<Clock::time_point> deadline,
                         HeldBytes held_bytes)
    : outer_(current_run.deadline),
      outer_held_bytes_(std::move(current_run.held_bytes)) {
  current_run.deadline = deadline;
  current_run.held_bytes = std::move(held_bytes);
}

RunDeadline::~RunDeadline() {
  current_run.deadline = outer_;
  current_run.held_bytes = std::move(outer_held_bytes_);
}

void ChargeWork(size_t units) {
  current_run.charged += units;
  if (current_run.charged < kWorkPerClockCheck) return;
  current_run.charged = 0;
  if (current_run.deadline &&
      RunDeadline::Clock::now() > *current_run.deadline) {
    throw ScriptAborted();
  }
  if (current_run.held_bytes && current_run.held_bytes() > kMaxHeldBytes) {
    throw OutOfMemory();
  }
}

}  // namespace rz::vb
