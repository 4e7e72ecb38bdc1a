// Copyright 2026 The Veltmark authors.
//
// The time limit inside long operations. The interpreter reads the clock
// once every few thousand statements; a statement that handles a large
// text or array (a concatenation, a built-in over a 60 MB text, copying one
// into a variable) can take long, so such operations charge the bytes or
// elements they touch with ChargeWork, and once kWorkPerClockCheck units
// have been charged the clock is read and ScriptAborted raised past the
// deadline. A run's deadline is installed for the current thread by a
// RunDeadline for as long as the run lasts (a nested run installs its own
// and the outer one's comes back). Without a deadline ChargeWork only
// counts.

#ifndef RZ_VBSCRIPT_VB_WORK_CLOCK_H_
#define RZ_VBSCRIPT_VB_WORK_CLOCK_H_

#include <chrono>
#include <cstddef>
#include <optional>

namespace rz::vb {

inline constexpr size_t kWorkPerClockCheck = size_t{4} << 20;

class RunDeadline {
 public:
  using Clock = std::chrono::steady_clock;
  explicit RunDeadline(std::optional<Clock::time_point> deadline);
  ~RunDeadline();
  RunDeadline(const RunDeadline&) = delete;
  RunDeadline& operator=(const RunDeadline&) = delete;

 private:
  std::optional<Clock::time_point> outer_;
};

// Raises ScriptAborted when the run on this thread is past its deadline at
// the clock read this charge brings about.
void ChargeWork(size_t units);

}  // namespace rz::vb

#endif  // RZ_VBSCRIPT_VB_WORK_CLOCK_H_
