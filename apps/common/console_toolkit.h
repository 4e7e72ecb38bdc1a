// Copyright 2026 The Veltmark authors.
//
// ConsoleToolkit is the command line's user interface: message boxes go to
// standard error; questions, input boxes and file choices are asked on the
// terminal when standard input is one, and answered with the box's
// cancelling answer otherwise (No, Cancel, the empty text, no file), so a
// batch run never waits for a person. Dialog models (the wizard, the
// parameter dialog) need a windowing toolkit: ShowModal raises error 5
// naming the dialog. Modeless windows (progress) are not drawn.

#ifndef RZ_APPS_COMMON_CONSOLE_TOOLKIT_H_
#define RZ_APPS_COMMON_CONSOLE_TOOLKIT_H_

#include <cstdio>
#include <optional>
#include <string>

#include "platform/toolkit.h"

namespace rz {

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
  void DoEvents() override {}
  TwipSize ScreenSize() const override;
  void ShowModal(DialogModel& model) override;
  void ShowModeless(DialogModel& model) override { (void)model; }
  void Close(DialogModel& model) override { (void)model; }
  void SetBusy(bool busy) override { (void)busy; }

 private:
  std::optional<std::string> ReadLine();

  std::FILE* in_;
  std::FILE* out_;
  bool interactive_;
};

}  // namespace rz

#endif  // RZ_APPS_COMMON_CONSOLE_TOOLKIT_H_
