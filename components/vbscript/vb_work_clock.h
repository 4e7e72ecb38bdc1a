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
//
// The same reads keep the memory a script holds in check: a run may give
// its RunDeadline a measure of the bytes its variables hold, and when that
// passes kMaxHeldBytes at a clock read the operation fails with error 7
// ("Out of memory"), which the script sees like any other error. Each value
// has its own limits besides (texts, arrays); this one stops a script that
// keeps many large values.

#ifndef RZ_VBSCRIPT_VB_WORK_CLOCK_H_
#define RZ_VBSCRIPT_VB_WORK_CLOCK_H_

#include <chrono>
#include <cstddef>
#include <functional>
#include <optional>

namespace rz::vb {

inline constexpr size_t kWorkPerClockCheck = size_t{4} << 20;
inline constexpr size_t kMaxHeldBytes = size_t{256} << 20;

class RunDeadline {
 public:
  using Clock = std::chrono::steady_clock;
  using HeldBytes = std::function<size_t()>;
  RunDeadline(std::optional<Clock::time_point> deadline,
              HeldBytes held_bytes = nullptr);
  ~RunDeadline();
  RunDeadline(const RunDeadline&) = delete;
  RunDeadline& operator=(const RunDeadline&) = delete;

 private:
  std::optional<Clock::time_point> outer_;
  HeldBytes outer_held_bytes_;
};

// Raises ScriptAborted when the run on this thread is past its deadline at
// the clock read this charge brings about, error 7 when its variables then
// hold more than kMaxHeldBytes.
void ChargeWork(size_t units);

}  // namespace rz::vb

#endif  // RZ_VBSCRIPT_VB_WORK_CLOCK_H_
