// Copyright 2026 The Veltmark authors.
//
// ConsoleToolkit is the command line's user interface: message boxes go to
// standard error; questions, input boxes and file choices are asked on the
// terminal when standard input is one, and answered with the box's
// cancelling answer otherwise (No, Cancel, the empty text, no file), so a
// batch run never waits for a person. The run-time question
// (InputDialogForm) is asked on the terminal (error 5 without a person);
// the other dialog models (the wizard) need a windowing toolkit: ShowModal
// raises error 5 naming the dialog. The progress window (SplashModel) is
// a line on `out` redrawn as the run yields, when SetShowProgress(true);
// other modeless windows are not drawn.

#ifndef RZ_APPS_COMMON_CONSOLE_TOOLKIT_H_
#define RZ_APPS_COMMON_CONSOLE_TOOLKIT_H_

#include <chrono>
#include <cstdio>
#include <optional>
#include <string>

#include "platform/toolkit.h"

namespace rz {

class InputDialogForm;
class SplashModel;

class ConsoleToolkit : public Toolkit {
 public:
  // Reads answers from `in` and writes boxes to `out`; `interactive` says
  // whether a person answers on `in`.
  ConsoleToolkit(std::FILE* in, std::FILE* out, bool interactive);
  // Standard input and error; interactive when both are terminals.
  ConsoleToolkit();

  // True when a person answers on the terminal.
  bool Interactive() const { return interactive_; }

  MessageAnswer MessageBox(std::string_view title, std::string_view text,
                           MessageIcon icon, MessageButtons buttons) override;
  std::string InputBox(std::string_view prompt, std::string_view title,
                       std::string_view default_text) override;
  std::optional<std::string> OpenFileDialog(std::string_view title,
                                            std::string_view folder,
                                            std::string_view filter) override;
  // Draw the progress window on `out` (for a terminal; off by default).
  void SetShowProgress(bool show) { show_progress_ = show; }

  void DoEvents() override;
  TwipSize ScreenSize() const override;
  void ShowModal(DialogModel& model) override;
  void ShowModeless(DialogModel& model) override;
  void Close(DialogModel& model) override;
  void SetBusy(bool busy) override { (void)busy; }

 private:
  std::optional<std::string> ReadLine();
  void Ask(InputDialogForm& question);
  void ClearProgress();

  std::FILE* in_;
  std::FILE* out_;
  bool interactive_;
  bool show_progress_ = false;
  const SplashModel* progress_ = nullptr;
  bool progress_drawn_ = false;
  std::chrono::steady_clock::time_point last_drawn_;
};

}  // namespace rz

#endif  // RZ_APPS_COMMON_CONSOLE_TOOLKIT_H_
