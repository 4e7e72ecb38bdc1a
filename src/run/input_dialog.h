// Copyright 2026 The Veltmark authors.
//
// InputDialog asks the user for one value, offering the values a variable
// takes in an application's data: it shows the run-time parameter dialog
// (InputDialogForm) modally through the platform's toolkit and keeps the
// answer. All members start empty, 0 or false; RecentFilters starts as an
// empty list the dialog carries for its host. Dispatch: every member under
// its name (Variable, RZFile, RecentFilters, InputText, DefaultText,
// Cancel, Prompt, Title, ShowDialog x y, ShowOptions, Excluded, Width,
// Height, ShowCancel); Cancel, Width and Height are read-only.
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
#include <string_view>
#include <vector>

#include "core/dispatch.h"
#include "run/recent_filters.h"

namespace rz {

class AppFile;
class Toolkit;
struct ViewState;

class InputDialog : public Dispatch {
 public:
  explicit InputDialog(Toolkit& toolkit) : toolkit_(toolkit) {}

  int32_t Variable() const { return variable_; }
  void SetVariable(int32_t value) { variable_ = value; }
  std::shared_ptr<AppFile> RZFile() const { return rz_file_; }
  void SetRZFile(std::shared_ptr<AppFile> file) { rz_file_ = std::move(file); }
  std::shared_ptr<rz::RecentFilters> RecentFilters() const {
    return recent_filters_;
  }
  // Error 91 for null.
  void SetRecentFilters(std::shared_ptr<rz::RecentFilters> list);
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

  std::string_view ClassName() const override { return "InputDialog"; }
  Variant Invoke(std::string_view name, InvokeKind kind,
                 DispatchArgs& args) override;
  std::vector<std::string> MemberNames() const override;

 private:
  Toolkit& toolkit_;
  int32_t variable_ = 0;
  std::shared_ptr<AppFile> rz_file_;
  std::shared_ptr<rz::RecentFilters> recent_filters_ =
      std::make_shared<rz::RecentFilters>();
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
