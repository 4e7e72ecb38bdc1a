// Copyright 2026 The Veltmark authors.

#include "run/input_dialog.h"

#include "platform/platform.h"
#include "platform/toolkit.h"
#include "ui/input_dialog_form.h"
#include "view/view_state.h"

namespace rz {

int32_t InputDialog::Width() const { return InputDialogForm::kWidth; }

int32_t InputDialog::Height() const {
  return show_options_ ? InputDialogForm::kHeightWithOptions
                       : InputDialogForm::kHeightWithoutOptions;
}

void InputDialog::ShowDialog(float x, float y) {
  (void)x;  // the toolkit places the form; the model keeps no position
  (void)y;
  InputDialogSettings settings;
  settings.title = title_;
  settings.prompt = prompt_;
  settings.default_text = default_text_;
  settings.show_options = show_options_;
  settings.excluded = excluded_;
  settings.show_cancel = show_cancel_;
  settings.app_file = rz_file_.get();
  settings.variable = variable_;
  InputDialogForm form(settings);
  toolkit_.ShowModal(form);
  input_text_ = form.InputText();
  cancel_ = form.Cancelled();
  excluded_ = form.optExcluded();
}

std::string PromptValue(ViewState& state, int32_t variable,
                        const std::string& message, const std::string& title) {
  Toolkit& toolkit = state.platform->UserInterface();
  InputDialog dialog(toolkit);
  dialog.SetRZFile(state.AppFile);
  dialog.SetVariable(variable);
  dialog.SetShowCancel(false);
  dialog.SetPrompt(message);
  dialog.SetTitle(title);
  const TwipSize screen = toolkit.ScreenSize();
  dialog.ShowDialog(static_cast<float>(screen.width - dialog.Width()) / 2,
                    static_cast<float>(screen.height - dialog.Height()) / 2);
  return dialog.InputText().empty() ? "NULL" : dialog.InputText();
}

}  // namespace rz
