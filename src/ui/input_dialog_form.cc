// Copyright 2026 The Veltmark authors.

#include "ui/input_dialog_form.h"

#include "core/text.h"
#include "platform/app_file.h"

namespace rz {

namespace {
constexpr int16_t kDistinctValues = 3;  // sort-key kind: one group a value
}  // namespace

InputDialogForm::InputDialogForm(const InputDialogSettings& settings)
    : caption_(settings.title),
      prompt_(settings.prompt),
      text_(settings.default_text),
      options_visible_(settings.show_options),
      excluded_(settings.excluded),
      cancel_visible_(settings.show_cancel),
      app_file_(settings.app_file),
      variable_(settings.variable) {}

void InputDialogForm::DropDown() {
  if (list_filled_) return;
  list_filled_ = true;
  list_.clear();
  list_.emplace_back("NULL");
  if (app_file_ == nullptr) return;
  AppFile& file = *app_file_;
  file.Conditions().Clear();
  file.SortKeys().Reset();
  file.SortKeys().Add(static_cast<int16_t>(variable_), kDistinctValues);
  file.SetSummarize(false);
  file.SortFile();
  SummaryCursorList& groups = file.SummaryCursor();
  for (int32_t g = 1; g <= groups.Count(); ++g) {
    file.GotoRecord(groups.Item(g).record);
    const Variant value = file.Value(static_cast<int16_t>(variable_));
    if (value.IsNull() || value.IsEmpty()) continue;
    if (value.IsNumber()) {
      list_.push_back(value);
      continue;
    }
    std::string text(Trim(value.ToString()));
    if (!text.empty()) list_.emplace_back(std::move(text));
  }
  file.SortKeys().Reset();
}

void InputDialogForm::Ok() {
  input_text_ = text_;
  cancelled_ = false;
}

void InputDialogForm::Cancel() {
  input_text_.clear();
  cancelled_ = true;
}

}  // namespace rz
