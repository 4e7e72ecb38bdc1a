// Copyright 2026 The Veltmark authors.

#include "vbscript/vb_work_clock.h"

#include "vbscript/vb_errors.h"

namespace rz::vb {
namespace {

struct ThreadRun {
  std::optional<RunDeadline::Clock::time_point> deadline;
  size_t charged = 0;
};

thread_local ThreadRun current_run;

}  // namespace

RunDeadline::RunDeadline(std::optional<Clock::time_point> deadline)
    : outer_(current_run.deadline) {
  current_run.deadline = deadline;
}

RunDeadline::~RunDeadline() { current_run.deadline = outer_; }

void ChargeWork(size_t units) {
  current_run.charged += units;
  if (current_run.charged < kWorkPerClockCheck) return;
  current_run.charged = 0;
  if (current_run.deadline &&
      RunDeadline::Clock::now() > *current_run.deadline) {
    throw ScriptAborted();
  }
}

}  // namespace rz::vb
