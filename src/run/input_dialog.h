// Copyright 2026 The Veltmark authors.
//
// InputDialog asks the user for one value, offering the values a variable
// takes in an application's data: it shows the run-time parameter dialog
// (InputDialogForm) modally through the platform's toolkit and keeps the
// answer. All members start empty, 0 or false.
//
// PromptValue is the engine's question of a "?" filter row: the dialog
// without options or Cancel, centred on the screen, over the engine's
// application; an empty answer (or none, when the toolkit shows nothing)
// is "NULL".

#ifndef RZ_RUN_INPUT_DIALOG_H_
#define RZ_RUN_INPUT_DIALOG_H_

#include <cstdint>
#include <memory>
#include <string>

namespace rz {

class AppFile;
class Toolkit;
struct ViewState;

class InputDialog {
 public:
  explicit InputDialog(Toolkit& toolkit) : toolkit_(toolkit) {}

  int32_t Variable() const { return variable_; }
  void SetVariable(int32_t value) { variable_ = value; }
  std::shared_ptr<AppFile> RZFile() const { return rz_file_; }
  void SetRZFile(std::shared_ptr<AppFile> file) { rz_file_ = std::move(file); }
  const std::string& InputText() const { return input_text_; }
  void SetInputText(std::string value) { input_text_ = std::move(value); }
  const std::string& DefaultText() const { return default_text_; }
  void SetDefaultText(std::string value) { default_text_ = std::move(value); }
  bool Cancel() const { return cancel_; }
  const std::string& Prompt() const { return prompt_; }
  void SetPrompt(std::string value) { prompt_ = std::move(value); }
  const std::string& Title() const { return title_; }
  void SetTitle(std::string value) { title_ = std::move(value); }
  bool ShowOptions() const { return show_options_; }
  void SetShowOptions(bool value) { show_options_ = value; }
  bool Excluded() const { return excluded_; }
  void SetExcluded(bool value) { excluded_ = value; }
  bool ShowCancel() const { return show_cancel_; }
  void SetShowCancel(bool value) { show_cancel_ = value; }
  // The form's size in twips.
  int32_t Width() const;
  int32_t Height() const;

  // Shows the dialog modally at (x, y) twips; returns when it is closed.
  void ShowDialog(float x, float y);

 private:
  Toolkit& toolkit_;
  int32_t variable_ = 0;
  std::shared_ptr<AppFile> rz_file_;
  std::string input_text_;
  std::string default_text_;
  bool cancel_ = false;
  std::string prompt_;
  std::string title_;
  bool show_options_ = false;
  bool excluded_ = false;
  bool show_cancel_ = false;
};

std::string PromptValue(ViewState& state, int32_t variable,
                        const std::string& message, const std::string& title);

}  // namespace rz

#endif  // RZ_RUN_INPUT_DIALOG_H_
