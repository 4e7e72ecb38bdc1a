// Copyright 2026 The Veltmark authors.
//
// The model of the progress window ("frmSplash") a run or an export shows
// while it reads, summarises or saves: a label (lblAppName) and the
// progress control's message, total and position. It implements the run's
// RunProgress: the run sets the texts whether or not the window is shown,
// and YieldToUser lets the toolkit process pending events (and repaint).
//
// Show puts the window up without blocking, centred on the screen; the
// user cannot close it (AllowsUserClose is false); Close takes it down and
// is safe to call when it is not shown. The destructor closes it, so a run
// that ends by an error leaves no window behind. The toolkit must outlive
// the model.

#ifndef RZ_UI_SPLASH_MODEL_H_
#define RZ_UI_SPLASH_MODEL_H_

#include <cstdint>
#include <string>
#include <string_view>

#include "output/run_progress.h"
#include "platform/toolkit.h"

namespace rz {

class SplashModel : public DialogModel, public RunProgress {
 public:
  static constexpr TwipSize kSize = {6000, 2400};

  explicit SplashModel(Toolkit& toolkit) : toolkit_(toolkit) {}
  ~SplashModel() override { Close(); }
  SplashModel(const SplashModel&) = delete;
  SplashModel& operator=(const SplashModel&) = delete;

  std::string_view Name() const override { return "frmSplash"; }
  bool AllowsUserClose() const override { return false; }

  void Show();
  void Close();
  bool Shown() const { return shown_; }

  // The window's top-left corner on the screen, in twips.
  int32_t Left() const { return left_; }
  int32_t Top() const { return top_; }

  const std::string& lblAppName() const { return label_; }
  const std::string& Message() const { return message_; }
  int32_t Total() const { return total_; }
  int32_t Position() const { return position_; }

  // RunProgress.
  void SetLabel(std::string_view text) override { label_ = text; }
  void SetMessage(std::string_view text) override { message_ = text; }
  void SetTotal(int32_t total) override { total_ = total; }
  void SetPosition(int32_t position) override { position_ = position; }
  void YieldToUser() override { toolkit_.DoEvents(); }

 private:
  Toolkit& toolkit_;
  bool shown_ = false;
  int32_t left_ = 0;
  int32_t top_ = 0;
  std::string label_ = "Veltmark";
  std::string message_;
  int32_t total_ = 0;
  int32_t position_ = 0;
};

}  // namespace rz

#endif  // RZ_UI_SPLASH_MODEL_H_
