// Copyright 2026 The Veltmark authors.
//
// RunProgress is the progress window as the run drives it: a label, a
// message, a total and a position. The run sets them whether or not a
// window is shown (a run without a window still goes through the same
// calls), and after each update lets the user interface process pending
// events through YieldToUser. Implementations: the progress splash model
// (shown through the toolkit) and test recorders.

#ifndef RZ_OUTPUT_RUN_PROGRESS_H_
#define RZ_OUTPUT_RUN_PROGRESS_H_

#include <cstdint>
#include <string_view>

namespace rz {

class RunProgress {
 public:
  virtual ~RunProgress() = default;

  virtual void SetLabel(std::string_view text) = 0;
  virtual void SetMessage(std::string_view text) = 0;
  virtual void SetTotal(int32_t total) = 0;
  virtual void SetPosition(int32_t position) = 0;
  // Lets the user interface process pending events once.
  virtual void YieldToUser() = 0;
};

}  // namespace rz

#endif  // RZ_OUTPUT_RUN_PROGRESS_H_
