// Copyright 2026 The Veltmark authors.
//
// The model of the run-time parameter dialog ("frmInputDialog"): a prompt
// (lblPrompt) over an editable combo box (cboInput) whose list holds the
// values a variable takes in the application's data, the options frame
// (fraOptions: optIncluded "Include values", optExcluded "Exclude values")
// and the OK and Cancel buttons (cmdOk, cmdCancel). A toolkit draws it and
// calls the handlers; tests call them directly.
//
// Opening sets the controls from the settings; the list is filled the
// first time the user drops it down (DropDown): "NULL", then every value
// of `variable` over all records (the application's condition list is
// emptied for that), numbers as they are, texts trimmed, empty values
// skipped. The form refers to the application file, which must outlive it.
// Errors of the application file while the list fills reach the caller.

#ifndef RZ_UI_INPUT_DIALOG_FORM_H_
#define RZ_UI_INPUT_DIALOG_FORM_H_

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "core/variant.h"
#include "platform/toolkit.h"

namespace rz {

class AppFile;

struct InputDialogSettings {
  std::string title;
  std::string prompt;
  std::string default_text;
  bool show_options = false;
  bool excluded = false;
  bool show_cancel = false;
  AppFile* app_file = nullptr;  // null: the list stays empty
  int32_t variable = 0;
};

class InputDialogForm : public DialogModel {
 public:
  static constexpr int32_t kHeightWithoutOptions = 2130;  // twips
  static constexpr int32_t kHeightWithOptions = 3105;
  static constexpr int32_t kWidth = 4800;

  explicit InputDialogForm(const InputDialogSettings& settings);

  std::string_view Name() const override { return "frmInputDialog"; }

  // Controls.
  const std::string& Caption() const { return caption_; }
  const std::string& lblPrompt() const { return prompt_; }
  std::string& cboInputText() { return text_; }
  const std::vector<Variant>& cboInputList() const { return list_; }
  bool fraOptionsVisible() const { return options_visible_; }
  bool optExcluded() const { return excluded_; }
  bool cmdCancelVisible() const { return cancel_visible_; }
  int32_t Height() const {
    return options_visible_ ? kHeightWithOptions : kHeightWithoutOptions;
  }
  int32_t Width() const { return kWidth; }

  // Handlers.
  void DropDown();
  void SelectExcluded(bool excluded) { excluded_ = excluded; }
  void Ok();
  void Cancel();

  // The outcome once closed: the text answered on OK ("" on Cancel).
  const std::string& InputText() const { return input_text_; }
  bool Cancelled() const { return cancelled_; }

 private:
  std::string caption_;
  std::string prompt_;
  std::string text_;
  std::vector<Variant> list_;
  bool list_filled_ = false;
  bool options_visible_;
  bool excluded_;
  bool cancel_visible_;
  AppFile* app_file_;
  int32_t variable_;
  std::string input_text_;
  bool cancelled_ = false;
};

}  // namespace rz

#endif  // RZ_UI_INPUT_DIALOG_FORM_H_
